#include "ui/kit/kit_knob.h"
#include "ui/kit/theme.h"

#include <QEvent>
#include <QFontMetrics>
#include <QPainter>

#include <cmath>

namespace tamlo::ui {

namespace {

constexpr double kTrackHeight = 4, kThumb = 2 * KnobRow::kTrackInset;
constexpr int kMostEngravings = 40;

} // namespace

QRectF KitKnob::trackRect() const
{
    const double top = fontMetrics().height() + Theme::kSmallGap;
    return {0, top, static_cast<double>(width()), height() - top};
}

QRectF KitKnob::numberRect() const
{
    QFont bold = Theme::numberFont();
    bold.setBold(true);
    const double wide = QFontMetrics(bold).horizontalAdvance(valueText()) + Theme::kSmallGap;
    return {width() - wide, 0, wide, static_cast<double>(fontMetrics().height())};
}

QSize KitKnob::sizeHint() const
{
    constexpr int kUsualWidth = 240;
    return {kUsualWidth, Theme::knobHeight()};
}

QSize KitKnob::minimumSizeHint() const
{
    constexpr int kLeastWidth = 120;
    return {kLeastWidth, Theme::knobHeight()};
}

void KitKnob::paintTrack(QPainter& painter) const
{
    const QRectF track = trackRect();
    const double y = std::floor(track.center().y()) - 1, left = track.left() + KnobRow::kTrackInset;
    const QRectF groove(left, y - kTrackHeight / 2, trackWidth(), kTrackHeight);
    const double at = placeOf(row_.value), home = placeOf(row_.def);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Theme::line());
    painter.drawRoundedRect(groove, kTrackHeight / 2, kTrackHeight / 2);
    if (!row_.atDefault()) {
        painter.setBrush(isEnabled() ? Theme::accent() : Theme::edge());
        painter.drawRect(QRectF(std::min(at, home), groove.top(), std::abs(at - home), kTrackHeight));
    }
    painter.setBrush(Theme::edge());
    constexpr double kTick = 4, kTickGap = 3;
    const double span = row_.high - row_.low;
    if (engravings_ > 0 && span / engravings_ <= kMostEngravings)
        for (double v = std::ceil(row_.low / engravings_ - 1e-9) * engravings_; v <= row_.high + 1e-9;
             v += engravings_)
            painter.drawRect(QRectF(std::round(placeOf(v)) - 0.5, groove.bottom() + kTickGap, 1, kTick));
    // The default is a notch through the track, which the thumb covers when it lies there.
    painter.setBrush(Theme::dimText());
    painter.drawRect(QRectF(std::round(home) - 1, groove.top() - kTickGap, 2, kTrackHeight + 2 * kTickGap));
    const bool isLit = drag_.has_value() || isHovered_;
    painter.setPen(QPen(Theme::panel(), 1));
    painter.setBrush(isLit ? Theme::number() : row_.atDefault() ? Theme::dimText() : Theme::accent());
    painter.drawEllipse(QPointF(at, y), kThumb / 2, kThumb / 2);
}

void KitKnob::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF number = numberRect();
    const double room = number.left() - Theme::kGap;
    painter.setFont(font());
    painter.setPen(Theme::text());
    const QString shown = fontMetrics().elidedText(label_, Qt::ElideRight, static_cast<int>(room));
    painter.drawText(QRectF(0, 0, room, number.height()), Qt::AlignLeft | Qt::AlignVCenter, shown);
    const QString tip = shown == label_ ? QString() : label_;
    if (toolTip() != tip) setToolTip(tip);
    QFont digits = Theme::numberFont();
    digits.setBold(!row_.atDefault());
    painter.setFont(digits);
    painter.setPen(row_.atDefault() ? Theme::number() : Theme::accent());
    painter.drawText(number, Qt::AlignRight | Qt::AlignVCenter, valueText());
    paintTrack(painter);
    if (hasFocus()) Theme::drawFocus(painter, QRectF(rect()).adjusted(0, number.bottom(), 0, 0));
}

void KitKnob::enterEvent(QEnterEvent*)
{
    isHovered_ = true;
    update();
}

void KitKnob::leaveEvent(QEvent*)
{
    isHovered_ = false;
    update();
}

void KitKnob::focusInEvent(QFocusEvent* event)
{
    QWidget::focusInEvent(event);
    update();
}

void KitKnob::focusOutEvent(QFocusEvent* event)
{
    QWidget::focusOutEvent(event);
    wheelRest_ = 0;
    Q_EMIT gestureEnded();
    update();
}

void KitKnob::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange) updateGeometry();
}

} // namespace tamlo::ui
