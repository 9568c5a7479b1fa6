// tamlo develop: photographs in, finished pictures out, one after the other.
#pragma once

#include "cli/arguments.h"

#include <iosfwd>

namespace tamlo::cli {

/// Develops every picture of the command line and writes the path of each finished file, or with -o - the
/// file itself, to `results`. A picture that fails does not stop the others; it is named at the end on
/// standard error. Returns the exit status: 0, 1 when a picture failed, 130 when the user stopped the run.
/// Errors: UsageError and TamloError, before the first picture is opened.
int develop(const DevelopArguments& arguments, std::ostream& results);

} // namespace tamlo::cli
