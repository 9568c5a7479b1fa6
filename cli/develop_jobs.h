// Which picture goes to which file: decided, and checked for conflicts, before anything is opened. No
// picture is written over a source of the run, and no two are written to one file.
#pragma once

#include "cli/arguments.h"

namespace tamlo::cli {

struct DevelopJob {
    std::filesystem::path input;
    std::filesystem::path output;
};

/// One job an input, in the order of the command line. Without -o and --out-dir the current folder is
/// written to; the name is the input's stem with "-tamlo.jpg".
/// Errors: UsageError: -o with several inputs or with an extension that can't be written; an output that is
/// one of the inputs, by whatever name or link; two inputs with one output.
std::vector<DevelopJob> planJobs(const DevelopArguments& arguments);

} // namespace tamlo::cli
