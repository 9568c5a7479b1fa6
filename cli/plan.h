// tamlo plan: size and physical scale of finished pictures, without developing them.
#pragma once

#include "cli/arguments.h"

#include <iosfwd>

namespace tamlo::cli {

/// Writes the plan of every picture of the command line to `results`. A picture that can't be read does not
/// stop the others; it is named at the end on standard error.
/// Returns the exit status: 0, or 1 when a picture failed. Errors: as develop, before a picture is opened.
int plan(const PlanArguments& arguments, std::ostream& results);

} // namespace tamlo::cli
