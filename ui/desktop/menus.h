// Menus: the table of commands as the menu bar, the keys and the context menus of a window.
#pragma once

#include "ui/screens/commands.h"

#include <QObject>

#include <initializer_list>
#include <unordered_map>
#include <vector>

class QAction;
class QMenu;
class QMenuBar;
class QWidget;

namespace tamlo::ui {

class Menus : public QObject {
public:
    /// Keys hold in the whole of `window`.
    Menus(Desk desk, QMenuBar& bar, QWidget& window);

    /// Texts, and which commands act now.
    void refresh();
    void retranslate();
    /// Runs the command that has this key now. Returns whether there was one.
    bool press(const QKeySequence& key);
    /// Shows these commands at a place of the screen; an empty id is a line.
    void popup(std::initializer_list<const char*> ids, QPoint global);

private:
    void fillRecents();

    Desk desk_;
    QWidget& window_;
    std::vector<std::pair<const Command*, QAction*>> actions_;
    std::vector<std::pair<MenuOf, QMenu*>> menus_;
    QMenu* recents_ = nullptr;
};

} // namespace tamlo::ui
