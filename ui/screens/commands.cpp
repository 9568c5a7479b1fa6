#include "ui/screens/commands.h"

#include "ui/kit/words.h"

#include <QStringList>

namespace tamlo::ui {

const char* titleKey(MenuOf menu)
{
    switch (menu) {
    case MenuOf::file:
        return "menu.file";
    case MenuOf::edit:
        return "menu.edit";
    case MenuOf::frame:
        return "menu.frame";
    case MenuOf::process:
        return "menu.process";
    case MenuOf::view:
        return "menu.view";
    case MenuOf::help:
        break;
    }
    return "menu.help";
}

bool isEnabled(const Command& command, const Desk& desk)
{
    return !command.isEnabled || command.isEnabled(desk);
}

QString textOf(const Command& command, const Desk& desk)
{
    const std::string id = command.id;
    const auto named = [&](const std::vector<History::Step>& stack) {
        return stack.empty() ? word(id) : word(id + "Named", {{"name", stack.back().name}});
    };
    if (id == "menu.edit.undo") return named(desk.model.history().undoStack());
    if (id == "menu.edit.redo") return named(desk.model.history().redoStack());
    return word(id);
}

QList<QKeySequence> keysOf(const Command& command)
{
    QList<QKeySequence> keys;
    for (const QString& one : qt(command.keys).split(QLatin1Char(' '), Qt::SkipEmptyParts))
        keys.append(QKeySequence(one, QKeySequence::PortableText));
    return keys;
}

} // namespace tamlo::ui
