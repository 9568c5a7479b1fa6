// Errors in the user's language. The layers below the texts (the platform, its libraries, the image tools)
// say in plain English why something failed; here those sentences are found again among the English texts of
// the keys "reason.…" and told in the language in force.
#pragma once

#include <stdexcept>
#include <string>

namespace tamlo::ErrorWords {

/// A reason as the platform gave it, in the language in force. A sentence of a library that no key knows
/// comes back as it is in English, and marked as the library's own elsewhere.
std::string reason(const std::string& english);
std::string reason(const std::exception& error);

/// What an error has to say to the user: what(), with the kind of a TamloError and the sentence below it in
/// the language in force.
std::string of(const std::exception& error);

} // namespace tamlo::ErrorWords
