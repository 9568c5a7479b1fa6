// The words of a session's line, read with a sentence for what is no such word; and the tables of verbs that
// the files of the session hold.
#pragma once

#include "cli/session_screen.h"
#include "cli/usage_error.h"
#include "core/image/plane.h"

#include <map>
#include <string>
#include <vector>

namespace tamlo::cli {

using SessionWords = std::vector<std::string>;
using SessionVerb = void (*)(LiveSession&, const SessionWords&, std::ostream&);
using SessionVerbs = std::map<std::string, SessionVerb, std::less<>>;

/// The line does not fit its verb.
UsageError badLine(const SessionWords& words);
/// The word at a place. Errors: badLine, also of the two below.
const std::string& textAt(const SessionWords& words, std::size_t at);
double numberAt(const SessionWords& words, std::size_t at);
/// A whole number; 1 where there is no word.
int countAt(const SessionWords& words, std::size_t at);
/// All words from a place on as one text.
std::string restFrom(const SessionWords& words, std::size_t at);

template <typename Value>
Value wordAt(const SessionWords& words, std::size_t at, const std::map<std::string, Value>& known)
{
    const auto found = at < words.size() ? known.find(words[at]) : known.end();
    if (found == known.end()) throw badLine(words);
    return found->second;
}

/// Errors: UsageError where no frame is open.
void needDevelop(LiveSession& session);
/// A workflow has told of a failure on the status line. Errors: std::runtime_error with it.
void needNoFailure(LiveSession& session);

/// What the targets, the rack and the crop are told; what becomes of recipes and profiles.
/// By file: session_edits.cpp, session_catalogue.cpp.
const SessionVerbs& editVerbs();
const SessionVerbs& catalogueVerbs();

} // namespace tamlo::cli
