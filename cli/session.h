// tamlo session: one session that stays open, told what to do line by line: the verbs of `tamlo project`
// without ROLL, and what a screen would do: opening a frame, waiting for its picture, undo, A/B, crop, zoom.
#pragma once

#include <filesystem>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace tamlo::cli {

/// tamlo session [ROLL] [-c COMMAND]… [SCRIPT|-] [--json]
struct SessionArguments {
    std::optional<std::filesystem::path> roll;
    std::vector<std::string> commands;
    std::optional<std::string> script; ///< absent without commands: standard input
    bool json = false;
};

void describeSession(CLI::App& command, SessionArguments& into);

/// Runs the lines; one that fails is told, and the next goes on. What has changed is saved at the end.
/// Returns the exit status: the worst of the lines'. Errors: UsageError, Interrupted.
int runSession(const SessionArguments& arguments, std::ostream& results);

/// The words of a line: parted by blanks, "…" and '…' keep theirs, \ takes the next character as it is, # in
/// front of a word begins a comment. Errors: UsageError for a quote that has no end.
std::vector<std::string> wordsOf(const std::string& line);

} // namespace tamlo::cli
