// The command line as plain structs. Parsing checks form and simple ranges; what a name or a key means is
// checked by whoever uses it.
#pragma once

#include "cli/cache.h"
#include "cli/project_arguments.h"
#include "cli/rack.h"
#include "cli/session.h"
#include "core/profiles/catalogue/preset_library.h"

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
    std::optional<std::string> preset;         ///< id, or path of a preset's file
    std::optional<std::filesystem::path> like; ///< a print whose recipe is taken
    /// Absent: the preset's, else portra400, modern_clean and the paper that suits the film.
    std::optional<std::string> film, lens, paper;
    /// Options of the render that have a name of their own, text by key; absent: as the options have it.
    std::map<std::string, std::string> named;
    std::vector<std::string> settings; ///< "key=value", in order
    std::optional<std::filesystem::path> optionsFile;
    std::optional<std::int64_t> seed; ///< absent: from the picture's file name
    std::optional<std::int64_t> longPx;
    double scale = 1.0;             ///< of the finished picture
    std::optional<std::string> fit; ///< how the film's frame takes the picture in: crop, inside
};

/// tamlo develop INPUT… [options]
struct DevelopArguments : RenderArguments {
    std::optional<std::filesystem::path> output; ///< - is standard output
    std::optional<std::filesystem::path> outFolder;
    std::optional<std::string> name; ///< pattern of the files' names
    bool skipExisting = false;
    bool quiet = false;
    bool json = false;
    int quality = 95;
    bool autoPrint = false; ///< each print is exposed and graded for its own frame
    bool tolerant = false;  ///< a damaged picture is taken as far as it can be decoded
    bool recipe = true;     ///< the print remembers how it was made
    /// Of the finished pictures; absent: the user's preference, else what the source says.
    std::optional<std::string> author, copyright;
};

/// tamlo plan INPUT… [options] [--json]
struct PlanArguments : RenderArguments {
    bool json = false;
};

/// tamlo measure [FILM] [--paper ID] [--json] [--plot FILE.svg]
struct MeasureArguments : RenderArguments {
    bool json = false;
    std::optional<std::filesystem::path> plot;
};

/// tamlo list KIND [--json|--ids]
struct ListArguments {
    std::string kind;
    bool json = false;
    bool ids = false;
};

/// tamlo show KIND ID [--json]
struct ShowArguments {
    std::string kind;
    std::string id;    ///< of a recipe: the print's file
    bool json = false; ///< of a recipe; a profile is JSON in any case
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

/// tamlo help [TOPIC], of an option of the render
struct HelpArguments {
    std::string topic;
};

/// tamlo completion SHELL
struct CompletionArguments {
    std::string shell;
};

/// What --help and --version answer with: goes to standard output.
struct Answer {
    std::string text;
};

using Command = std::variant<DevelopArguments, PlanArguments, MeasureArguments, ListArguments, ShowArguments,
                             CheckArguments, ImportArguments, ExportArguments, ProjectCommand, CacheArguments,
                             RackArguments, SessionArguments, HelpArguments, CompletionArguments, Answer>;

/// Chooses the language of the run where --lang names one, before anything is said.
/// Errors: UsageError with one sentence.
Command parseArguments(const std::vector<std::string>& arguments);

/// An option or an argument of a command, for documents.
struct OptionDescription {
    std::vector<std::string> names; ///< "-o", "--output"; empty for an argument
    std::string value;              ///< what it takes, "FILE"; empty for a switch
    std::string help;
};

struct CommandDescription {
    std::string name; ///< empty for the program itself
    std::string help;
    std::vector<OptionDescription> arguments, options;
};

/// The program and its commands as --help tells them, in the language in force.
std::vector<CommandDescription> describeCommands();

/// "tamlo VERSION".
std::string versionText();

} // namespace tamlo::cli
