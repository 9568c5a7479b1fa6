#include "ui/desktop/menus.h"

#include "ui/kit/words.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>

#include <algorithm>
#include <cstring>

namespace tamlo::ui {

Menus::Menus(Desk desk, QMenuBar& bar, QWidget& window) : desk_(desk), window_(window)
{
    for (const Command& command : commands()) {
        if (menus_.empty() || menus_.back().first != command.menu)
            menus_.emplace_back(command.menu, bar.addMenu(QString()));
        QMenu* menu = menus_.back().second;
        auto* action = new QAction(&window);
        action->setShortcuts(keysOf(command));
        action->setCheckable(command.isChecked != nullptr);
        connect(action, &QAction::triggered, this, [this, &command] {
            if (isEnabled(command, desk_)) command.run(desk_);
            refresh(); // a switch that did not move shows where it stands
        });
        if (command.beginsGroup) menu->addSeparator();
        command.isInMenu ? menu->addAction(action) : window.addAction(action);
        actions_.emplace_back(&command, action);
        if (std::strcmp(command.id, "menu.file.open") == 0) {
            recents_ = menu->addMenu(QString());
            connect(recents_, &QMenu::aboutToShow, this, [this] { fillRecents(); });
        }
    }
    for (const auto& [of, menu] : menus_) connect(menu, &QMenu::aboutToShow, this, [this] { refresh(); });
    retranslate();
}

void Menus::retranslate()
{
    for (const auto& [of, menu] : menus_) menu->setTitle(word(titleKey(of)));
    recents_->setTitle(word("menu.file.recent"));
    refresh();
}

void Menus::refresh()
{
    for (const auto& [command, action] : actions_) {
        action->setText(textOf(*command, desk_).replace(QLatin1Char('&'), QStringLiteral("&&")));
        action->setEnabled(isEnabled(*command, desk_));
        if (command->isChecked) action->setChecked(command->isChecked(desk_));
    }
}

void Menus::fillRecents()
{
    recents_->clear();
    const auto items = desk_.model.recents.menu();
    for (const ProjectRegistry::RecentItem& item : items) {
        QAction* action = recents_->addAction(qt(item.title).replace(QLatin1Char('&'), QStringLiteral("&&")));
        action->setStatusTip(qt(item.url));
        connect(action, &QAction::triggered, this, [this, url = item.url] { desk_.window.openFile(url); });
    }
    if (items.empty()) recents_->addAction(word("status.nothing"))->setEnabled(false);
    recents_->addSeparator();
    QAction* clear = recents_->addAction(word("menu.file.clearRecent"));
    clear->setEnabled(!items.empty());
    connect(clear, &QAction::triggered, this, [this] { desk_.model.recents.clearRecentProjects(); });
}

bool Menus::press(const QKeySequence& key)
{
    refresh();
    for (const auto& [command, action] : actions_)
        if (action->isEnabled() && action->shortcuts().contains(key)) {
            action->trigger();
            return true;
        }
    return false;
}

void Menus::popup(std::initializer_list<const char*> ids, QPoint global)
{
    refresh();
    auto* menu = new QMenu(&window_);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (const char* id : ids) {
        const auto found = std::ranges::find_if(
            actions_, [&](const auto& one) { return std::strcmp(one.first->id, id) == 0; });
        found != actions_.end() ? menu->addAction(found->second) : void(menu->addSeparator());
    }
    menu->popup(global);
}

} // namespace tamlo::ui
