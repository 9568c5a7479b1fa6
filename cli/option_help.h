// The options of the render in words: tamlo list options, tamlo help KEY, and the same for the man page. All
// of it is read from the option table and the tables of texts.
#pragma once

#include "cli/arguments.h"
#include "core/profiles/options/option_table.h"

#include <iosfwd>
#include <string>
#include <vector>

namespace tamlo::cli {

/// One option, in the language in force.
struct OptionInWords {
    std::string key;
    std::string type;     ///< "number"
    std::string range;    ///< "-4 … 4", or the texts it may have; empty for any
    std::string standard; ///< its default, "–" for none
    std::string unit;
    std::string meaning;
    std::vector<std::string> synonyms;
};
OptionInWords inWords(const OptionRow& row);

/// A line for each option, in the order of the table; on a terminal its meaning is folded to the terminal's
/// width. With --json an array of objects with the keys "key", "type", "low", "high", "values", "default",
/// "unit", "meaning" and "synonyms"; with --ids the keys alone.
void listOptions(const ListArguments& arguments, std::ostream& out);

/// Errors: UsageError naming the nearest key, when the topic is neither a key nor a synonym.
void helpOnOption(const HelpArguments& arguments, std::ostream& out);

} // namespace tamlo::cli
