// The command line as plain structs. Parsing checks form and simple ranges; what a name or a key means is
// checked by whoever uses it.
#pragma once

#include "core/profiles/preset_library.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace tamlo::cli {

/// The photographs of a run and how they are to be developed.
struct RenderArguments {
    std::vector<std::filesystem::path> inputs;
    std::optional<std::string> preset; ///< id, or path of a preset's file
    /// Absent: the preset's, else portra400, modern_clean and the paper that suits the film.
    std::optional<std::string> film, lens, paper;
    /// Options of the render that have a name of their own, text by key; absent: as the options have it.
    std::map<std::string, std::string> named;
    std::vector<std::string> settings; ///< "key=value", in order
    std::optional<std::filesystem::path> optionsFile;
    std::optional<std::int64_t> seed; ///< absent: from the picture's file name
    std::optional<std::int64_t> longPx;
    double scale = 1.0; ///< of the finished picture
};

/// tamlo develop INPUT… [options]
struct DevelopArguments : RenderArguments {
    std::optional<std::filesystem::path> output;
    std::optional<std::filesystem::path> outFolder;
    int quality = 95;
};

/// tamlo plan INPUT… [options] [--json]
struct PlanArguments : RenderArguments {
    bool json = false;
};

/// tamlo measure FILM [--paper ID] [--json] [--plot FILE.svg]
struct MeasureArguments : RenderArguments {
    bool json = false;
    std::optional<std::filesystem::path> plot;
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

/// tamlo check FILE…
struct CheckArguments {
    std::vector<std::filesystem::path> files;
};

/// tamlo import FILE… [--on-conflict replace|copy|cancel]
struct ImportArguments {
    std::vector<std::filesystem::path> files;
    PresetConflict onConflict = PresetConflict::ask;
};

/// tamlo export KIND ID FILE
struct ExportArguments {
    std::string kind;
    std::string id;
    std::filesystem::path file;
};

/// What --help and --version answer with: goes to standard output.
struct Answer {
    std::string text;
};

using Command = std::variant<DevelopArguments, PlanArguments, MeasureArguments, ListArguments, ShowArguments,
                             CheckArguments, ImportArguments, ExportArguments, Answer>;

/// Chooses the language of the run where --lang names one, before anything is said.
/// Errors: UsageError with one sentence.
Command parseArguments(const std::vector<std::string>& arguments);

/// "tamlo VERSION".
std::string versionText();

} // namespace tamlo::cli
