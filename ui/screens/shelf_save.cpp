#include "ui/screens/shelf_save.h"

#include "ui/kit/kit_button.h"
#include "ui/kit/theme.h"
#include "ui/kit/words.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

namespace tamlo::ui {

ShelfSave::ShelfSave(AppModel& model, QWidget* parent)
    : QWidget(parent),
      model_(model),
      title_(new QLabel(this)),
      note_(new QLabel(this)),
      name_(new QLineEdit(this)),
      cancel_(new KitButton(this)),
      save_(new KitButton(this))
{
    title_->setFont(Theme::titleFont());
    note_->setWordWrap(true);
    note_->setFont(Theme::smallFont());
    note_->setForegroundRole(QPalette::PlaceholderText);
    save_->setPrimary(true);
    auto* row = new QHBoxLayout;
    row->addWidget(name_, 1);
    row->addWidget(cancel_);
    row->addWidget(save_);
    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(Theme::kInset, Theme::kGap, Theme::kInset, Theme::kGap);
    all->addWidget(title_);
    all->addLayout(row);
    all->addWidget(note_);
    connect(name_, &QLineEdit::textChanged, this,
            [this](const QString& text) { save_->setEnabled(!text.trimmed().isEmpty()); });
    connect(name_, &QLineEdit::returnPressed, this, &ShelfSave::save);
    connect(save_, &QAbstractButton::clicked, this, &ShelfSave::save);
    connect(cancel_, &QAbstractButton::clicked, this, &ShelfSave::ended);
}

void ShelfSave::retranslate()
{
    title_->setText(word("preset.saveTitle"));
    name_->setAccessibleName(word("preset.saveTitle"));
    name_->setPlaceholderText(word("preset.savePlaceholder"));
    cancel_->setText(word("common.cancel"));
    save_->setText(word("shelf.save"));
    const bool isWhole = blocks_.size() == PresetSchema::order().size();
    note_->setText(isWhole ? word("preset.saveInfo")
                           : word("shelf.saveBlocks", {{"blocks", blocksTail(blocks_)}}));
}

void ShelfSave::ask(const PresetSchema::Blocks& blocks)
{
    blocks_ = blocks;
    retranslate();
    name_->clear();
    save_->setEnabled(false);
    show();
    name_->setFocus();
}

void ShelfSave::save()
{
    const std::string name = utf8(name_->text().trimmed());
    if (name.empty()) return;
    const ProcessSettings now = model_.rack.rackSettings();
    const std::string id = PresetSchema::slug(name);
    try {
        if (model_.store().presetEntry(id)) {
            note_->setText(word("preset.existsTitle"));
            return;
        }
        const auto file = model_.store().savePreset(
            id, {now.stock, now.lens, now.paper, presetOpts(now.options), blocks_, {}}, name);
        model_.lists.refreshPresets();
        model_.tell(T("preset.saved", {{"file", file.filename().string()}}));
        Q_EMIT ended();
    } catch (const std::exception& error) {
        note_->setText(word("preset.saveFailed", {{"error", error.what()}}));
    }
}

void ShelfSave::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape) {
        Q_EMIT ended();
        return;
    }
    QWidget::keyPressEvent(event);
}

} // namespace tamlo::ui
