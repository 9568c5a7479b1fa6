// The command line of `tamlo project` as plain structs, one a verb.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace CLI {
class App;
}

namespace tamlo::cli {

/// What every verb but recent names.
struct RollArguments {
    std::filesystem::path roll;
    std::string frames; ///< such as "2-7", "IMG_*.NEF" or "picked"; empty: all
    bool json = false;
};

/// new ROLL [PHOTO|FOLDER…], add ROLL PHOTO|FOLDER…
struct ProjectAddArguments : RollArguments {
    bool isNew = false;
    std::vector<std::filesystem::path> inputs;
    std::optional<std::string> pairs;
    std::optional<std::string> title;
};
struct ProjectShowArguments : RollArguments {};
struct ProjectCheckArguments : RollArguments {};
struct ProjectSetArguments : RollArguments {
    std::vector<std::string> settings; ///< "key=value"
};
struct ProjectPresetArguments : RollArguments {
    std::string preset; ///< id, or a file
    std::optional<std::string> blocks;
};
struct ProjectAutoPrintArguments : RollArguments {};
struct ProjectMarkArguments : RollArguments {
    std::string mark;
};
struct ProjectTurnArguments : RollArguments {
    std::string turn;
};
struct ProjectCopyArguments : RollArguments {
    std::optional<std::string> block;
};
struct ProjectPasteArguments : RollArguments {
    std::string file = "-";
};
struct ProjectApplyArguments : RollArguments {
    std::optional<std::string> toAll;
};
struct ProjectResetArguments : RollArguments {
    std::optional<std::string> block;
};
struct ProjectRemoveArguments : RollArguments {};
/// order ROLL name|shot|reverse, order ROLL FRAMES --before|--after FRAME
struct ProjectOrderArguments : RollArguments {
    std::optional<std::string> before, after;
};
/// crop ROLL FRAMES X,Y,W,H[,ANGLE]|none, crop ROLL FRAMES [--ratio R] [--level DEG]
struct ProjectCropArguments : RollArguments {
    std::string crop;
    std::optional<std::string> ratio;
    std::optional<double> levelDegrees;
};
struct ProjectRerollArguments : RollArguments {
    std::string stream;
};
/// locate ROLL FOLDER, locate ROLL FRAME FILE
struct ProjectLocateArguments : RollArguments {
    std::optional<std::filesystem::path> file; ///< absent: `frames` is a folder
    bool force = false;
};
struct ProjectBackupsArguments : RollArguments {
    bool usage = false;
    std::optional<int> purgeDays;
};
struct ProjectRestoreArguments : RollArguments {
    std::string stamp;
    std::filesystem::path output;
};
struct ProjectPreviewArguments : RollArguments {
    std::filesystem::path output;
    std::string tier = "master";
    std::optional<std::string> fit; ///< "1600x1000"
};
struct ProjectExportArguments : RollArguments {
    std::optional<std::string> set; ///< "selected", "not-rejected", "all"
    std::filesystem::path to;
    std::string naming = "tamlo";
    std::optional<std::string> text;
    std::string type = "jpg";
    int quality = 95;
    std::string scale = "1";
    std::optional<std::string> social; ///< "1080" or "2048"
    std::optional<std::string> onConflict;
    bool skipExisting = false;
    bool resume = false;
    std::optional<std::string> shard; ///< "2/5"
    bool record = false;
    bool dryRun = false;
    bool noRecord = false;
};
struct ProjectSheetArguments : RollArguments {
    std::filesystem::path output;
    int cols = 6;
    bool originals = false;
    std::optional<std::size_t> page;
};
struct ProjectRecentArguments {
    bool json = false;
    bool clear = false;
};

using ProjectCommand =
    std::variant<std::monostate, ProjectAddArguments, ProjectShowArguments, ProjectCheckArguments,
                 ProjectSetArguments, ProjectPresetArguments, ProjectAutoPrintArguments, ProjectMarkArguments,
                 ProjectTurnArguments, ProjectCopyArguments, ProjectPasteArguments, ProjectApplyArguments,
                 ProjectResetArguments, ProjectRemoveArguments, ProjectOrderArguments, ProjectCropArguments,
                 ProjectRerollArguments, ProjectLocateArguments, ProjectBackupsArguments,
                 ProjectRestoreArguments, ProjectRecentArguments, ProjectPreviewArguments,
                 ProjectExportArguments, ProjectSheetArguments>;

/// Adds the command with its verbs; the one that is called ends up in `into`, which outlives the parser.
void describeProject(CLI::App& app, ProjectCommand& into);

} // namespace tamlo::cli
