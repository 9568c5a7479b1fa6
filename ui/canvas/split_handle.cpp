#include "ui/canvas/split_handle.h"

#include <QMouseEvent>
#include <QPainter>

#include <cmath>

namespace tamlo::ui {

SplitHandle::SplitHandle(QWidget* parent) : QSlider(Qt::Horizontal, parent)
{
    setRange(0, kSteps);
    setSingleStep(kSteps / 100);
    setPageStep(kSteps / 10);
    setValue(kSteps / 2);
    setCursor(Qt::SplitHCursor);
    setFocusPolicy(Qt::StrongFocus);
    hide();
}

void SplitHandle::place()
{
    const double x = parentWidget()->width() * double(value()) / kSteps;
    setGeometry(static_cast<int>(std::lround(x)) - kWidthPt / 2, 0, kWidthPt, parentWidget()->height());
}

void SplitHandle::paintEvent(QPaintEvent*)
{
    constexpr double kGripPt = 9;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double x = width() / 2.0;
    // A light line with dark borders stands out from any picture.
    painter.fillRect(QRectF(x - 1.5, 0, 3, height()), QColor(0, 0, 0, 140));
    painter.fillRect(QRectF(x - 0.5, 0, 1, height()), QColor(255, 255, 255, 230));
    const QPointF middle(x, height() / 2.0);
    painter.setPen(QPen(hasFocus() ? palette().color(QPalette::Highlight) : QColor(255, 255, 255, 230), 2));
    painter.setBrush(QColor(40, 40, 40, 220));
    painter.drawEllipse(middle, kGripPt, kGripPt);
    painter.setPen(QPen(QColor(255, 255, 255, 230), 1.5));
    for (const int side : {-1, 1}) {
        const QPointF tip = middle + QPointF(side * 5.5, 0);
        painter.drawLine(tip, tip + QPointF(-side * 3, -3));
        painter.drawLine(tip, tip + QPointF(-side * 3, 3));
    }
}

void SplitHandle::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) return event->ignore();
    offset_ = event->position().x() - width() / 2.0;
    setSliderDown(true);
}

void SplitHandle::mouseMoveEvent(QMouseEvent* event)
{
    if (!isSliderDown()) return;
    const double x = mapToParent(event->position()).x() - offset_;
    setValue(static_cast<int>(std::lround(x / parentWidget()->width() * kSteps)));
}

void SplitHandle::mouseReleaseEvent(QMouseEvent*)
{
    setSliderDown(false);
}

} // namespace tamlo::ui
