#include "ui/screens/empty_screen.h"

#include "ui/kit/kit_button.h"
#include "ui/kit/words.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

#include <filesystem>

namespace tamlo::ui {
namespace {

constexpr int kWidthPx = 560;
constexpr double kSentenceScale = 1.35; // of the window's letters; taste

} // namespace

EmptyScreen::EmptyScreen(Desk desk, QWidget* parent)
    : QWidget(parent),
      desk_(desk),
      sentence_(new QLabel(this)),
      recentTitle_(new QLabel(this)),
      add_(new KitButton(this)),
      addFolder_(new KitButton(this)),
      open_(new KitButton(this)),
      recents_(new QVBoxLayout)
{
    auto* across = new QHBoxLayout(this);
    auto* column = new QWidget(this);
    column->setMaximumWidth(kWidthPx);
    auto* lines = new QVBoxLayout(column);
    lines->setSpacing(18);
    QFont large = sentence_->font();
    large.setPointSizeF(large.pointSizeF() * kSentenceScale);
    sentence_->setFont(large);
    sentence_->setWordWrap(true);
    sentence_->setAlignment(Qt::AlignHCenter);
    auto* buttons = new QHBoxLayout;
    for (QPushButton* button : {add_, addFolder_, open_}) buttons->addWidget(button, 1);
    recentTitle_->setForegroundRole(QPalette::PlaceholderText);
    recents_->setSpacing(2);
    lines->addStretch(2);
    lines->addWidget(sentence_);
    lines->addLayout(buttons);
    lines->addSpacing(12);
    lines->addWidget(recentTitle_);
    lines->addLayout(recents_);
    lines->addStretch(3);
    across->addStretch(1);
    across->addWidget(column, 6);
    across->addStretch(1);
    connect(add_, &QPushButton::clicked, this, [this] { desk_.window.addPhotographs(); });
    connect(addFolder_, &QPushButton::clicked, this, [this] { desk_.window.addFolder(); });
    connect(open_, &QPushButton::clicked, this, [this] { desk_.window.openProject(); });
    retranslate();
}

void EmptyScreen::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange) retranslate();
    QWidget::changeEvent(event);
}

void EmptyScreen::retranslate()
{
    sentence_->setText(word("empty.sentence"));
    add_->setText(word("menu.file.add"));
    addFolder_->setText(word("menu.file.addFolder"));
    open_->setText(word("menu.file.open"));
    recentTitle_->setText(word("empty.recent"));
}

void EmptyScreen::refresh()
{
    while (QLayoutItem* item = recents_->takeAt(0)) {
        item->widget()->deleteLater();
        delete item;
    }
    fillRecents();
    recentTitle_->setVisible(recents_->count() > 0);
}

void EmptyScreen::fillRecents()
{
    for (const ProjectRegistry::RecentItem& item : desk_.model.recents.menu()) {
        auto* button = new QToolButton(this);
        button->setAutoRaise(true);
        button->setToolButtonStyle(Qt::ToolButtonTextOnly);
        button->setText(qt(item.title));
        button->setToolTip(qt(item.url));
        button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        connect(button, &QToolButton::clicked, this, [this, url = item.url] { desk_.window.openFile(url); });
        recents_->addWidget(button);
    }
}

} // namespace tamlo::ui
