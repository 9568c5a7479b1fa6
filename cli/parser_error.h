// The refusals of the option parser in the program's own words, in the language in force.
#pragma once

#include <CLI/CLI.hpp>

#include <string>

namespace tamlo::cli {

/// One sentence that names the option and what it takes.
std::string inOurWords(const CLI::ParseError& error);

} // namespace tamlo::cli
