#include "ui/screens/dialog.h"

#include "ui/kit/kit_button.h"
#include "ui/kit/words.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QVBoxLayout>

namespace tamlo::ui {
namespace {

constexpr int kMarginPx = 16, kSpacingPx = 10;

} // namespace

Dialog::Dialog(std::string titleKey, QWidget* parent)
    : QDialog(parent),
      titleKey_(std::move(titleKey)),
      whole_(new QVBoxLayout(this)),
      lines_(new QVBoxLayout),
      buttons_(new QHBoxLayout)
{
    setAttribute(Qt::WA_DeleteOnClose);
    whole_->setContentsMargins(kMarginPx, kMarginPx, kMarginPx, kMarginPx);
    whole_->setSpacing(kMarginPx);
    lines_->setSpacing(kSpacingPx);
    buttons_->setSpacing(kSpacingPx);
    buttons_->addStretch();
    whole_->addLayout(lines_, 1);
    whole_->addLayout(buttons_);
    retranslateFrame();
}

QPushButton* Dialog::addButton(const std::string& key, std::function<void()> act)
{
    auto* button = new KitButton(this);
    button->setText(word(key));
    button->setAutoDefault(false);
    texts_.emplace_back(button, key);
    buttons_->addWidget(button);
    connect(button, &QPushButton::clicked, this, std::move(act));
    return button;
}

QPushButton* Dialog::addSideButton(const std::string& key, std::function<void()> act)
{
    QPushButton* button = addButton(key, std::move(act));
    buttons_->removeWidget(button);
    buttons_->insertWidget(0, button);
    return button;
}

void Dialog::retranslateFrame()
{
    setWindowTitle(word(titleKey_));
    for (const auto& [button, key] : texts_) button->setText(word(key));
}

void Dialog::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange) {
        retranslateFrame();
        retranslate();
    }
    QDialog::changeEvent(event);
}

} // namespace tamlo::ui
