// The command line as plain structs. Parsing checks form and simple ranges; what a name or a key means is
// checked by whoever uses it.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace tamlo::cli {

/// tamlo develop INPUT… [options]
struct DevelopArguments {
    std::vector<std::filesystem::path> inputs;
    std::optional<std::filesystem::path> output;
    std::optional<std::filesystem::path> outFolder;
    std::string film = "portra400";
    std::string lens = "modern_clean";
    std::optional<std::string> paper; ///< absent: the one that suits the film
    /// Filters by the key of their option; absent: as the options have it.
    std::map<std::string, std::string> filters;
    std::vector<std::string> settings; ///< "key=value", in order
    std::optional<std::filesystem::path> optionsFile;
    std::optional<std::int64_t> seed; ///< absent: from the picture's file name
    std::optional<std::int64_t> longPx;
    int quality = 95;
};

/// tamlo list KIND [--json]
struct ListArguments {
    std::string kind;
    bool json = false;
};

/// tamlo show KIND ID
struct ShowArguments {
    std::string kind;
    std::string id;
};

/// What --help and --version answer with: goes to standard output.
struct Answer {
    std::string text;
};

using Command = std::variant<DevelopArguments, ListArguments, ShowArguments, Answer>;

/// Errors: UsageError with one sentence.
Command parseArguments(const std::vector<std::string>& arguments);

/// "tamlo VERSION".
std::string versionText();

} // namespace tamlo::cli
