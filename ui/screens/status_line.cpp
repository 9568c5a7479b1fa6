#include "ui/screens/status_line.h"

#include "ui/kit/theme.h"
#include "ui/kit/words.h"
#include "ui/screens/print_size.h"

#include <QAbstractButton>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPainter>
#include <QToolButton>

namespace tamlo::ui {
namespace {

constexpr std::size_t kLogLines = 20;
constexpr double kTickSeconds = 0.25;

QLabel* field(QWidget* parent)
{
    auto* label = new QLabel(parent);
    label->setTextFormat(Qt::PlainText);
    label->setForegroundRole(QPalette::PlaceholderText);
    return label;
}

} // namespace

/// The message at the left end of the line, as much of it as there is room for.
class StatusButton : public QAbstractButton {
public:
    explicit StatusButton(QWidget* parent) : QAbstractButton(parent)
    {
        setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
        setFocusPolicy(Qt::TabFocus);
    }
    QSize sizeHint() const override { return {200, fontMetrics().height() + 2 * Theme::kSmallGap}; }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        const QRect room = rect().adjusted(Theme::kSmallGap, 0, -Theme::kSmallGap, 0);
        painter.setPen(font().bold() ? Theme::warning() : Theme::text());
        painter.drawText(room, Qt::AlignLeft | Qt::AlignVCenter,
                         fontMetrics().elidedText(text(), Qt::ElideRight, room.width()));
        if (hasFocus()) Theme::drawFocus(painter, QRectF(rect()));
    }
};

StatusLine::StatusLine(Desk desk, QWidget* parent)
    : QWidget(parent),
      desk_(desk),
      status_(new StatusButton(this)),
      export_(field(this)),
      loading_(field(this)),
      source_(field(this)),
      size_(field(this)),
      cancel_(new QToolButton(this)),
      subscription_(desk_.model.subscribe({Concern::status, Concern::roll, Concern::selection,
                                           Concern::exporting, Concern::tiles, Concern::frameView},
                                          [this](const ChangeSet& change) {
                                              if (change.concerns.has(Concern::status)) showStatus();
                                              showFrame();
                                              watchWork();
                                          }))
{
    build();
    retranslate();
}

void StatusLine::build()
{
    auto* line = new QHBoxLayout(this);
    line->setContentsMargins(6, 2, 10, 2);
    line->setSpacing(12);
    cancel_->setAutoRaise(true);
    cancel_->setText(QStringLiteral("✕"));
    line->addWidget(status_, 1);
    line->addWidget(export_);
    line->addWidget(cancel_);
    line->addWidget(loading_);
    line->addWidget(source_);
    line->addWidget(size_);
    connect(status_, &QAbstractButton::clicked, this, &StatusLine::showLog);
    connect(cancel_, &QToolButton::clicked, this, [this] {
        desk_.model.exporter.stop();
        showWork();
    });
}

void StatusLine::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange) retranslate();
    QWidget::changeEvent(event);
}

void StatusLine::retranslate()
{
    setAccessibleName(word("status.name"));
    status_->setToolTip(word("status.log"));
    cancel_->setToolTip(word("export.stop"));
    cancel_->setAccessibleName(word("export.stop"));
    loading_->setToolTip(word("status.loading"));
    source_->setToolTip(word("status.source"));
    size_->setToolTip(word("status.print"));
    showStatus();
    showFrame();
    showWork();
}

/// The mark of a failure stands in the text, so that it is no matter of colour alone.
void StatusLine::showStatus()
{
    const bool failed = desk_.model.lastActionFailed();
    const QString text = qt(desk_.model.status());
    const QString shown = failed ? QStringLiteral("! ") + text : text;
    if (!text.isEmpty() && (log_.empty() || log_.back() != shown)) log_.push_back(shown);
    if (log_.size() > kLogLines) log_.pop_front();
    QFont font = status_->font();
    font.setBold(failed);
    status_->setFont(font);
    status_->setText(shown);
    status_->update();
    status_->setAccessibleName(shown);
}

void StatusLine::showLog()
{
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (auto line = log_.rbegin(); line != log_.rend(); ++line) menu->addAction(*line);
    if (log_.empty()) menu->addAction(word("status.nothing"))->setEnabled(false);
    menu->popup(status_->mapToGlobal(QPoint(0, -menu->sizeHint().height())));
}

void StatusLine::showWork()
{
    const auto& task = desk_.model.exporter.task();
    export_->setVisible(task.has_value());
    cancel_->setVisible(task && !task->cancelling);
    if (task) export_->setText(qt(task->caption(desk_.model.seams().loop.now())));
    const std::size_t loading = desk_.views.loads().loadingCount();
    loading_->setVisible(loading > 0);
    loading_->setText(QStringLiteral("… %1").arg(loading));
}

/// Work tells nothing by itself, so it is looked at while there is some.
void StatusLine::watchWork()
{
    showWork();
    const bool works = desk_.model.exporter.isExporting() || desk_.views.loads().loadingCount() > 0;
    ticks_ =
        works ? desk_.model.seams().loop.after(kTickSeconds, [this] { watchWork(); }) : platform::Timer();
}

void StatusLine::showFrame()
{
    const FrameRef frame = desk_.model.selection.currentFrame();
    source_->setText(frame ? qt(desk_.views.loads().sourceInfo(frame->id)) : QString());
    source_->setVisible(!source_->text().isEmpty());
    size_->setText(frame ? printSizeText(desk_, *frame) : QString());
    size_->setVisible(!size_->text().isEmpty());
}

} // namespace tamlo::ui
