// commands: everything that the window can be told to do, in one table. Menus, keys, the palette, the sheet
// of keys and the names that assistive programs read all come from it.
#pragma once

#include "ui/screens/desk.h"

#include <QKeySequence>
#include <QList>

#include <span>
#include <string>

namespace tamlo::ui {

enum class MenuOf { file, edit, frame, process, view, help };
/// Key of a menu's title.
const char* titleKey(MenuOf menu);

struct Command {
    const char* id; ///< the key of its text
    MenuOf menu;
    const char* keys;               ///< portable texts, alternatives parted by a blank
    bool (*isEnabled)(const Desk&); ///< null: always
    void (*run)(Desk&);
    bool (*isChecked)(const Desk&) = nullptr; ///< null: not a switch
    bool beginsGroup = false;                 ///< a line stands above it in its menu
    bool isInMenu = true;
};

/// In the order of the menus. Two that share a key are never enabled together.
std::span<const Command> commands();

bool isEnabled(const Command& command, const Desk& desk);
/// The text as it stands in a menu now; undo and redo tell their step.
QString textOf(const Command& command, const Desk& desk);
QList<QKeySequence> keysOf(const Command& command);

} // namespace tamlo::ui
