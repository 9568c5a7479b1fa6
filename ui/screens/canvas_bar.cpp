#include "ui/screens/canvas_bar.h"

#include "ui/kit/kit_button.h"
#include "ui/kit/kit_progress.h"
#include "ui/kit/words.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>

#include <cmath>

namespace tamlo::ui {
namespace {

constexpr double kTickSeconds = 0.1;

} // namespace

CanvasBar::CanvasBar(Desk desk, QWidget* parent)
    : QWidget(parent),
      desk_(desk),
      zoom_(new KitButton(this)),
      zooms_(new QMenu(this)),
      badge_(new QLabel(this)),
      arc_(new KitArc(this)),
      original_(new KitButton(this)),
      message_(new QLabel(this))
{
    auto* line = new QHBoxLayout(this);
    line->setContentsMargins(10, 3, 10, 3);
    line->setSpacing(8);
    message_->setTextFormat(Qt::PlainText);
    message_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    zoom_->setMenu(zooms_);
    original_->setCheckable(true);
    badge_->setMinimumWidth(badge_->fontMetrics().horizontalAdvance(QLatin1Char('M')) + 4);
    badge_->setAlignment(Qt::AlignCenter);
    line->addWidget(message_, 1);
    line->addWidget(original_);
    line->addWidget(badge_);
    line->addWidget(arc_);
    line->addWidget(zoom_);
    connect(zooms_, &QMenu::aboutToShow, this, [this] { fillZooms(); });
    connect(original_, &QPushButton::clicked, this, [this] { desk_.window.toggleOriginals(); });
    retranslate();
}

void CanvasBar::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange) retranslate();
    QWidget::changeEvent(event);
}

void CanvasBar::retranslate()
{
    zoom_->setToolTip(word("canvas.zoom"));
    zoom_->setAccessibleName(word("canvas.zoom"));
    original_->setText(word("menu.view.original"));
    badge_->setAccessibleName(word("canvas.detail"));
    arc_->setAccessibleName(word("canvas.detail"));
    refresh();
}

void CanvasBar::fillZooms()
{
    zooms_->clear();
    const Zoom& zoom = desk_.model.zoom;
    connect(zooms_->addAction(word("menu.view.fit")), &QAction::triggered, this,
            [this] { desk_.model.zoom.reset(); });
    zooms_->addSeparator();
    for (const double percent : zoom.zoomLadder()) {
        QAction* action = zooms_->addAction(QStringLiteral("%1 %").arg(std::lround(percent)));
        connect(action, &QAction::triggered, this,
                [this, percent] { desk_.model.zoom.setZoomPercent(percent); });
    }
}

void CanvasBar::refresh()
{
    zoom_->setText(qt(desk_.model.zoom.zoomLabel()));
    original_->setChecked(desk_.window.showsOriginals());
    const auto& cursor = desk_.model.selection.cursor();
    const FileState state = cursor ? desk_.model.linker.state(*cursor) : FileState::ok;
    QString message;
    if (canRelink(state)) message = word("canvas.noOriginal");
    if (state == FileState::unreadable) message = word("canvas.unreadable");
    message_->setText(message.isEmpty() ? message : QStringLiteral("⚠ ") + message);
    message_->setToolTip(message);
    watchArc();
}

/// The time that a tier takes tells nothing by itself, so the arc is looked at while one is being made.
void CanvasBar::watchArc()
{
    const FrameScreen& screen = desk_.views.screen();
    const Tiers::Badge badge = screen.badge();
    badge_->setText(screen.image() && !desk_.window.showsOriginals() ? qt(badge.letter)
                                                                     : QStringLiteral("…"));
    badge_->setToolTip(qt(badge.help));
    badge_->setAccessibleDescription(qt(badge.help));
    arc_->setFraction(screen.arc());
    arc_->setToolTip(qt(badge.help));
    const bool goesOn = isVisible() && screen.isBusy();
    ticks_ =
        goesOn ? desk_.model.seams().loop.after(kTickSeconds, [this] { watchArc(); }) : platform::Timer();
}

} // namespace tamlo::ui
