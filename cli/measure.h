// tamlo measure: what a film, a print of it, and a handmade paper by itself measure, as a table, as JSON and,
// for a film, as a data sheet.
#pragma once

#include "cli/arguments.h"

#include <iosfwd>

namespace tamlo::cli {

/// Returns the exit status 0. Errors: UsageError for an unknown film, paper or setting; TamloError for a
/// material that can't be measured yet and a sheet that can't be written, which then leaves no file.
int measure(const MeasureArguments& arguments, std::ostream& results);

} // namespace tamlo::cli
