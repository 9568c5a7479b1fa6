// The page of the manual, in the language in force, from the commands as --help tells them, the option table
// and the tables of texts.
#pragma once

#include <string>

namespace tamlo::cli {

/// A page for man(7), in UTF-8.
std::string manPage();

} // namespace tamlo::cli
