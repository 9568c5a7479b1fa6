#include "ui/screens/keys_dialog.h"

#include "ui/kit/words.h"
#include "ui/screens/commands.h"

#include <QHeaderView>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace tamlo::ui {
namespace {

/// Keys that a widget takes by itself, with no command behind them.
constexpr std::pair<const char*, const char*> kOtherKeys[] = {{"keys.move", "← → ↑ ↓"},
                                                              {"keys.extend", "Shift+← → ↑ ↓"},
                                                              {"keys.cursorAlone", "Ctrl+← → ↑ ↓"},
                                                              {"keys.toggle", "Ctrl+Space"},
                                                              {"keys.reorder", "Alt+← → ↑ ↓"},
                                                              {"keys.edges", "Home, End"},
                                                              {"keys.openFrame", "Enter"},
                                                              {"keys.back", "Esc"}};

QString keyTexts(const Command& command)
{
    QStringList texts;
    for (const QKeySequence& key : keysOf(command)) texts << key.toString(QKeySequence::NativeText);
    return texts.join(QStringLiteral(", "));
}

QTreeWidgetItem* addGroup(QTreeWidget& list, const char* key)
{
    auto* group = new QTreeWidgetItem(&list, {word(key)});
    QFont bold = list.font();
    bold.setBold(true);
    group->setFont(0, bold);
    group->setFlags(Qt::ItemIsEnabled);
    return group;
}

} // namespace

KeysDialog::KeysDialog(QWidget* parent)
    : Dialog("menu.help.keys", parent), search_(new QLineEdit(this)), list_(new QTreeWidget(this))
{
    list_->setColumnCount(2);
    list_->setHeaderHidden(true);
    list_->setRootIsDecorated(false);
    list_->header()->setStretchLastSection(false);
    list_->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    list_->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    lines().addWidget(search_);
    lines().addWidget(list_, 1);
    addButton("common.close", [this] { close(); });
    connect(search_, &QLineEdit::textChanged, this, [this] { filter(); });
    resize(520, 640);
    retranslate();
}

void KeysDialog::retranslate()
{
    search_->setPlaceholderText(word("common.search"));
    search_->setAccessibleName(word("common.search"));
    list_->setAccessibleName(word("menu.help.keys"));
    list_->clear();
    QTreeWidgetItem* group = nullptr;
    std::optional<MenuOf> menu;
    for (const Command& command : commands()) {
        if (command.keys[0] == '\0') continue;
        if (menu != command.menu) group = addGroup(*list_, titleKey(command.menu));
        menu = command.menu;
        new QTreeWidgetItem(group, {word(command.id), keyTexts(command)});
    }
    group = addGroup(*list_, "keys.inLists");
    for (const auto& [key, keys] : kOtherKeys)
        new QTreeWidgetItem(group, {word(key), QString::fromUtf8(keys)});
    list_->expandAll();
    filter();
}

void KeysDialog::filter()
{
    const QString wanted = search_->text();
    for (int i = 0; i < list_->topLevelItemCount(); ++i) {
        QTreeWidgetItem* group = list_->topLevelItem(i);
        bool any = false;
        for (int k = 0; k < group->childCount(); ++k) {
            QTreeWidgetItem* item = group->child(k);
            const bool passes = item->text(0).contains(wanted, Qt::CaseInsensitive) ||
                                item->text(1).contains(wanted, Qt::CaseInsensitive);
            item->setHidden(!passes);
            any |= passes;
        }
        group->setHidden(!any);
    }
}

} // namespace tamlo::ui
