// Which picture goes to which file: decided, and checked for conflicts, before anything is opened. No
// picture is written over a source of the run, and no two are written to one file.
#pragma once

#include "cli/arguments.h"
#include "cli/develop_choices.h"

namespace tamlo::cli {

/// What -o takes for standard output.
inline constexpr const char* kStandardOutput = "-";

struct DevelopJob {
    std::filesystem::path input;
    std::filesystem::path output;
    bool toStandardOutput = false; ///< output is then a file of our own, read back
};

/// One job an input, in the order of the command line, a folder's pictures in natural order. Without -o and
/// --out-dir the current folder is written to; the name follows --name, else it is the input's stem with
/// "-tamlo.jpg". A RAW file keeps that name, and a JPEG of the same shot beside it adds its own extension. A
/// picture that a folder brings and that is a print of this run is no input. Errors: UsageError: -o with
/// several inputs or with an extension that can't be written; a field of --name that nobody knows, a name
/// that leaves the folder; an output that is one of the inputs, by whatever name or link; two inputs with one
/// output; a folder to write to whose parent is not there. TamloError io: as expandedInputs.
std::vector<DevelopJob> planJobs(const DevelopArguments& arguments, const DevelopChoices& choices);

} // namespace tamlo::cli
