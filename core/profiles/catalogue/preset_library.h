// What the preset operations of ProfileStore take and give.
#pragma once

#include "core/profiles/presets/preset_document.h"

namespace tamlo {

struct PresetEntry {
    std::string id;
    std::optional<std::filesystem::path> url; ///< of a user's file
    bool builtin = false;
    bool hidden = false;
};

/// What an import does when a preset of the same id is there.
enum class PresetConflict { ask, replace, copy, cancel };

struct PresetImportResult {
    enum class Action { added, replaced, copied, cancelled };
    Action action = Action::added;
    std::string id;
    std::optional<std::filesystem::path> url;
    std::vector<std::string> warnings;
};

/// What a new preset is made of.
struct PresetRecipe {
    std::string stock, lens, paper;
    PresetOpts opts;
    PresetSchema::Blocks blocks = PresetSchema::order();
    std::string notes;
};

/// The groups of the carried presets, in the order of the list.
namespace PresetGroups {

/// Russian titles, as the documents hold them.
const std::vector<std::string>& order();
/// Title in the language in force: the document's own English one, else the text of the group's key, else
/// the group's text itself.
std::string title(const std::string& group, const std::string& en);

} // namespace PresetGroups

} // namespace tamlo
