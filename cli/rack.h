// tamlo rack: which knobs stand on the rack of a frame, their ranges, and what differs from its recipe.
#pragma once

#include "cli/project_arguments.h"

#include <iosfwd>

namespace tamlo::cli {

/// tamlo rack ROLL FRAME [--json]
struct RackArguments : RollArguments {};

void describeRack(CLI::App& command, RackArguments& into);

/// Errors: UsageError for a roll or a frame that is not there; std::runtime_error where the film can't be
/// had.
int runRack(const RackArguments& arguments, std::ostream& results);

} // namespace tamlo::cli
