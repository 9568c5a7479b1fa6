#include "ui/screens/sheet.h"

#include "ui/kit/kit_button.h"
#include "ui/kit/words.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace tamlo::ui {
namespace {

constexpr int kMarginPx = 14, kSpacingPx = 8;

QLabel* wrapped(const QString& text, QWidget* parent)
{
    auto* label = new QLabel(text, parent);
    label->setWordWrap(true);
    label->setTextFormat(Qt::PlainText);
    return label;
}

} // namespace

Sheet::Sheet(const QString& title, const QString& note, QWidget* parent)
    : QFrame(parent), lines_(new QVBoxLayout(this)), buttons_(new QHBoxLayout)
{
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Button);
    setAccessibleName(title);
    setAccessibleDescription(note);
    lines_->setContentsMargins(kMarginPx, kMarginPx, kMarginPx, kMarginPx);
    lines_->setSpacing(kSpacingPx);
    QLabel* heading = wrapped(title, this);
    QFont bold = heading->font();
    bold.setBold(true);
    heading->setFont(bold);
    lines_->addWidget(heading);
    if (!note.isEmpty()) lines_->addWidget(wrapped(note, this));
    buttons_->setSpacing(kSpacingPx);
    buttons_->addStretch();
    lines_->addLayout(buttons_);
}

void Sheet::addButton(const std::string& key, std::function<void()> act)
{
    auto* button = new KitButton(this);
    button->setText(word(key));
    button->setAutoDefault(true);
    texts_.emplace_back(button, key);
    buttons_->addWidget(button);
    connect(button, &QPushButton::clicked, this, [this, act = std::move(act)] { end(act); });
}

QCheckBox* Sheet::addCheck(const std::string& key)
{
    auto* check = new KitSwitch(this);
    check->setText(word(key));
    texts_.emplace_back(check, key);
    buttons_->insertWidget(0, check);
    return check;
}

void Sheet::addWidget(QWidget* widget)
{
    lines_->insertWidget(lines_->count() - 1, widget);
}

void Sheet::retranslate()
{
    for (const auto& [button, key] : texts_) button->setText(word(key));
}

/// The act is copied out: it goes with the sheet.
void Sheet::end(const std::function<void()>& act)
{
    const std::function<void()> kept = act;
    if (const auto ended = std::exchange(onEnd, nullptr)) ended();
    if (kept) kept();
}

void Sheet::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape) return end({});
    QFrame::keyPressEvent(event);
}

void Sheet::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange) retranslate();
    QFrame::changeEvent(event);
}

void Sheet::showEvent(QShowEvent* event)
{
    QFrame::showEvent(event);
    const auto button = std::ranges::find_if(
        texts_, [](const auto& one) { return qobject_cast<QPushButton*>(one.first) != nullptr; });
    if (button != texts_.end()) button->first->setFocus(Qt::OtherFocusReason);
}

SheetHost::SheetHost(QWidget* parent) : QWidget(parent)
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    hide();
}

void SheetHost::show(std::unique_ptr<Sheet> sheet)
{
    Sheet* shown = sheet.release();
    shown->hide();
    layout()->addWidget(shown);
    sheets_.push_back(shown);
    shown->onEnd = [this, shown] {
        std::erase(sheets_, shown);
        shown->hide();
        shown->deleteLater();
        showFirst();
    };
    showFirst();
}

void SheetHost::showFirst()
{
    setVisible(!sheets_.empty());
    if (!sheets_.empty()) sheets_.front()->show();
}

} // namespace tamlo::ui
