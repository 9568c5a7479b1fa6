// Runs the built program as a user would and keeps what it said.
#pragma once

#include <chrono>
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

/// A folder of its own for a test, removed with it.
class ScratchFolder {
public:
    ScratchFolder();
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }
    std::filesystem::path operator/(const std::string& name) const { return path_ / name; }
    /// Every file and folder below, relative and sorted.
    std::vector<std::string> listing() const;

private:
    std::filesystem::path path_;
};

std::string readFile(const std::filesystem::path& path);
void writeFile(const std::filesystem::path& path, const std::string& bytes);

} // namespace tamlo::test
