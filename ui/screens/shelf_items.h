// ShelfItems: what stands on a shelf, in its sections, and what the rack's settings become with each.
#pragma once

#include "core/profiles/presets/process_settings.h"

#include <QString>

#include <string>
#include <vector>

namespace tamlo {
class AppModel;
}

namespace tamlo::ui {

enum class ShelfKind { film, lens, filter, paper, presets };

struct ShelfItem {
    std::string id = {}; ///< of the profile or preset; empty: none of this section
    QString title = {}, badge = {}, summary = {};
    ProcessSettings process = {}; ///< with it in
    QString fault = {};           ///< why it can't be taken; empty where it can
    bool isIn = false;            ///< it is what the rack has now
};

struct ShelfSection {
    QString title; ///< empty for what stands above all sections
    std::vector<ShelfItem> items;
};

namespace ShelfItems {

/// keepsPaper: a film is put in and the paper stays, instead of the one that suits it.
std::vector<ShelfSection> sections(ShelfKind kind, const AppModel& model, bool keepsPaper);
/// What the profile or preset says of itself, in the language in force.
QString notes(ShelfKind kind, const std::string& id, const AppModel& model);
QString title(ShelfKind kind);

} // namespace ShelfItems

} // namespace tamlo::ui
