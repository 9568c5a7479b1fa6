// Runs the built program as a user would and keeps what it said.
#pragma once

#include "tests/support/scratch_folder.h"

#include <chrono>
#include <csignal>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace tamlo::test {

struct RunSettings {
    std::filesystem::path folder;                   ///< where it is started
    std::map<std::string, std::string> environment; ///< added to ours
    std::optional<std::size_t> fileSizeLimit;       ///< bytes that a file may have: a full disk
    std::optional<std::string> interruptAtPhase;    ///< Ctrl-C as soon as standard error tells this
    std::vector<int> signals{SIGINT};               ///< what is sent then
    std::string outputTo;                           ///< file that takes standard output; empty: kept
};

struct RunResult {
    int status = -1; ///< exit status; -N when signal N killed it
    std::string out;
    std::string err;

    /// Messages to the user: the lines of standard error that are not progress.
    std::vector<std::string> messages() const;
};

RunResult runTamlo(const std::vector<std::string>& arguments, const RunSettings& settings);

} // namespace tamlo::test
