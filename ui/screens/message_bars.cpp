#include "ui/screens/message_bars.h"

#include "ui/kit/kit_button.h"
#include "ui/kit/words.h"

#include <QEvent>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QToolButton>

namespace tamlo::ui {

MessageBars::MessageBars(Desk desk, QWidget* parent) : QWidget(parent), desk_(desk)
{
    auto* lines = new QVBoxLayout(this);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSpacing(1);
    make(offline, {{"bar.locateFolder", [this] { desk_.window.locateFolder(); }}});
    make(lost, {{"bar.locateFile", [this] { desk_.window.locateFile(); }},
                {"bar.locateFolder", [this] { desk_.window.locateFolder(); }},
                {"grid.removeLost", [this] { desk_.model.linker.removeLostFrames(); }}});
    make(unreadable, {{"bar.details", [this] { desk_.window.showUnreadable(); }},
                      {"grid.removeLost", [this] { desk_.model.linker.removeUnreadableFrames(); }}});
    subscription_ = desk_.model.subscribe({Concern::fileStates, Concern::roll, Concern::document},
                                          [this](const ChangeSet&) { refresh(); });
    retranslate();
}

void MessageBars::make(Kind kind, std::vector<std::pair<const char*, std::function<void()>>> actions)
{
    Bar& bar = bars_[kind];
    auto* frame = new QFrame(this);
    frame->setAutoFillBackground(true);
    frame->setBackgroundRole(QPalette::Button);
    auto* line = new QHBoxLayout(frame);
    line->setContentsMargins(12, 4, 6, 4);
    bar.frame = frame;
    bar.text = new QLabel(frame);
    bar.text->setTextFormat(Qt::PlainText);
    bar.text->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    line->addWidget(bar.text, 1);
    for (auto& [key, act] : actions) {
        auto* button = new KitButton(frame);
        connect(button, &QPushButton::clicked, this, act);
        bar.buttons.emplace_back(button, key);
        line->addWidget(button);
    }
    bar.close = new QToolButton(frame);
    bar.close->setText(QStringLiteral("✕"));
    bar.close->setAutoRaise(true);
    connect(bar.close, &QToolButton::clicked, this, [this, kind] {
        bars_[kind].dismissed = bars_[kind].count;
        refresh();
    });
    line->addWidget(bar.close);
    frame->hide();
    layout()->addWidget(frame);
}

void MessageBars::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange) retranslate();
    QWidget::changeEvent(event);
}

void MessageBars::retranslate()
{
    for (Bar& bar : bars_) {
        for (auto& [button, key] : bar.buttons) button->setText(word(key));
        bar.close->setToolTip(word("bar.close"));
        bar.close->setAccessibleName(word("bar.close"));
    }
    refresh();
}

void MessageBars::refresh()
{
    std::size_t away = 0, missing = 0, unread = 0;
    std::string volume;
    const AppModel& model = desk_.model;
    for (const Frame& frame : model.project().frames) {
        const FileState state = model.linker.state(frame.id);
        missing += state == FileState::missing;
        unread += state == FileState::unreadable;
        if (state != FileState::offline) continue;
        ++away;
        if (volume.empty()) volume = model.seams().volumes.name(frame.url).value_or("");
    }
    const auto text = [](const char* key, std::size_t n, const Loc::Args& args = {}) {
        return QStringLiteral("⚠ ") + qt(Loc::string(key, static_cast<std::int64_t>(n), args));
    };
    show(offline, away, text("grid.offlineBar", away, {{"volume", volume}}));
    show(lost, missing, text("grid.lostBar", missing));
    show(unreadable, unread, text("grid.unreadableBar", unread));
}

void MessageBars::show(Kind kind, std::size_t count, const QString& text)
{
    Bar& bar = bars_[kind];
    bar.count = count;
    if (count < bar.dismissed) bar.dismissed = count;
    bar.text->setText(text);
    bar.text->setToolTip(text);
    bar.frame->setAccessibleName(text);
    bar.frame->setVisible(count > bar.dismissed);
}

} // namespace tamlo::ui
