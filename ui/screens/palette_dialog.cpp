#include "ui/screens/palette_dialog.h"

#include "core/profiles/catalogue/profile_store.h"
#include "core/text/error_words.h"
#include "ui/kit/words.h"
#include "ui/screens/commands.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace tamlo::ui {
namespace {

constexpr int kMostShown = 60;

void applyPreset(AppModel& model, const std::string& id, const std::string& title)
{
    try {
        model.presets.applyToTargets(model.store().preset(id), title);
    } catch (const std::exception& error) {
        model.tellFailure(ErrorWords::of(error));
    }
}

} // namespace

PaletteDialog::PaletteDialog(Desk desk, QWidget* parent)
    : Dialog("menu.edit.find", parent),
      desk_(desk),
      search_(new QLineEdit(this)),
      list_(new QListWidget(this))
{
    lines().addWidget(search_);
    lines().addWidget(list_, 1);
    search_->installEventFilter(this);
    connect(search_, &QLineEdit::textChanged, this, [this] { filter(); });
    connect(search_, &QLineEdit::returnPressed, this, [this] { runChosen(); });
    connect(list_, &QListWidget::itemActivated, this, [this] { runChosen(); });
    resize(560, 460);
    retranslate();
    search_->setFocus();
}

void PaletteDialog::retranslate()
{
    search_->setPlaceholderText(word("palette.hint"));
    search_->setAccessibleName(word("menu.edit.find"));
    list_->setAccessibleName(word("palette.found"));
    gather();
    filter();
}

void PaletteDialog::gather()
{
    entries_.clear();
    gatherCommands();
    gatherRecipes();
    gatherFrames();
}

void PaletteDialog::gatherCommands()
{
    for (const Command& command : commands())
        if (ui::isEnabled(command, desk_))
            entries_.push_back({textOf(command, desk_), word(titleKey(command.menu)), [this, &command] {
                                    Desk desk = desk_;
                                    command.run(desk);
                                }});
}

/// Films, lenses, papers and presets are taken by the frames that an action reaches.
void PaletteDialog::gatherRecipes()
{
    if (!desk_.hasCursor()) return;
    AppModel& model = desk_.model;
    const auto choices = [&](const CatalogueLists::Items& items, const char* kind,
                             std::string ProcessSettings::*field) {
        for (const ProfileItem& item : items)
            entries_.push_back({qt(item.title), word(kind), [&model, id = item.id, field] {
                                    model.rack.change(model.selection.actionTargets(),
                                                      [&](ProcessSettings& process) { process.*field = id; });
                                }});
    };
    const CatalogueLists& lists = model.lists.all();
    choices(lists.films, "knob.stock", &ProcessSettings::stock);
    choices(lists.lenses, "palette.lens", &ProcessSettings::lens);
    for (const PresetInfo& preset : lists.presetInfos)
        entries_.push_back(
            {qt(preset.title), word("palette.preset"),
             [&model, id = preset.id, title = preset.title] { applyPreset(model, id, title); }});
}

void PaletteDialog::gatherFrames()
{
    const Roll& roll = desk_.model.project().frames;
    for (std::size_t i = 0; i < roll.size(); ++i)
        entries_.push_back({qt(Project::label(i) + " " + roll[i].fileName()), word("menu.frame"),
                            [&model = desk_.model, id = roll[i].id] {
                                model.selection.screen() == Screen::develop ? model.selection.openFrame(id)
                                                                            : model.selection.select({id});
                            }});
}

void PaletteDialog::filter()
{
    list_->clear();
    const QStringList wanted = search_->text().split(QLatin1Char(' '), Qt::SkipEmptyParts);
    for (std::size_t i = 0; i < entries_.size() && list_->count() < kMostShown; ++i) {
        const QString text = entries_[i].text + QStringLiteral("  ·  ") + entries_[i].kind;
        bool passes = true;
        for (const QString& part : wanted) passes = passes && text.contains(part, Qt::CaseInsensitive);
        if (!passes) continue;
        auto* item = new QListWidgetItem(text, list_);
        item->setData(Qt::UserRole, QVariant::fromValue(static_cast<qulonglong>(i)));
    }
    list_->setCurrentRow(0);
}

/// What was found may open a dialogue of its own, so this one goes first.
void PaletteDialog::runChosen()
{
    const QListWidgetItem* item = list_->currentItem();
    if (!item) return;
    const std::function<void()> run = entries_[item->data(Qt::UserRole).toULongLong()].run;
    hide();
    run();
    close();
}

bool PaletteDialog::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == search_ && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        const int by = key == Qt::Key_Down ? 1 : key == Qt::Key_Up ? -1 : 0;
        if (by != 0) {
            list_->setCurrentRow(qBound(0, list_->currentRow() + by, list_->count() - 1));
            return true;
        }
    }
    return Dialog::eventFilter(watched, event);
}

} // namespace tamlo::ui
