// The hand on the picture: pointer, wheel, pinch and keys. Each asks; what comes of it is told by setView.
#include "ui/canvas/picture_view.h"

#include <QGestureEvent>
#include <QMouseEvent>
#include <QNativeGestureEvent>
#include <QPinchGesture>
#include <QWheelEvent>

#include <cmath>

namespace tamlo::ui {
namespace {

constexpr double kZoomAStep = 1.25; ///< of a wheel's notch
constexpr double kNotch = 120;      ///< eighths of a degree
constexpr double kPanPtANotch = 60;
constexpr double kPanShareAKey = 0.1; ///< of the panel

} // namespace

QPointF PictureView::fromCentre(QPointF point) const
{
    const QRectF second = panelOf(Side::beside);
    const QRectF panel = isTwo() && second.contains(point) ? second : panelOf(Side::main);
    return point - panel.center();
}

void PictureView::askZoomBy(double factor, QPointF point)
{
    Q_EMIT zoomAsked(zoom_ * factor, fromCentre(point));
}

bool PictureView::event(QEvent* event)
{
    if (event->type() == QEvent::NativeGesture) {
        const auto* gesture = static_cast<QNativeGestureEvent*>(event);
        if (gesture->gestureType() == Qt::ZoomNativeGesture)
            askZoomBy(1 + gesture->value(), gesture->position());
        return true;
    }
    if (event->type() == QEvent::Gesture) {
        auto* const gestures = static_cast<QGestureEvent*>(event);
        auto* const pinch = static_cast<QPinchGesture*>(gestures->gesture(Qt::PinchGesture));
        if (!pinch) return QWidget::event(event);
        const QPointF centre = mapFromGlobal(pinch->centerPoint());
        const QPointF moved = pinch->centerPoint() - pinch->lastCenterPoint();
        if (pinch->state() == Qt::GestureUpdated) {
            Q_EMIT panAsked(pan_ + moved);
            askZoomBy(pinch->scaleFactor(), centre);
        }
        gestures->accept(pinch);
        return true;
    }
    if (event->type() == QEvent::ScreenChangeInternal) {
        refreshColor();
        stepped();
    }
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut) update();
    return QWidget::event(event);
}

void PictureView::mousePressEvent(QMouseEvent* event)
{
    const bool pans = event->button() == Qt::LeftButton || event->button() == Qt::MiddleButton;
    if (!pans) return event->ignore();
    dragFrom_ = event->position() - pan_;
    if (canPan()) setCursor(Qt::ClosedHandCursor);
}

void PictureView::mouseMoveEvent(QMouseEvent* event)
{
    if (dragFrom_)
        Q_EMIT panAsked(event->position() - *dragFrom_);
    else
        setCursor(canPan() ? Qt::OpenHandCursor : Qt::ArrowCursor);
}

void PictureView::mouseReleaseEvent(QMouseEvent* event)
{
    if (!(event->buttons() & (Qt::LeftButton | Qt::MiddleButton))) dragFrom_.reset();
    setCursor(canPan() ? Qt::OpenHandCursor : Qt::ArrowCursor);
}

void PictureView::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton) Q_EMIT oneToOneAsked(fromCentre(event->position()));
}

void PictureView::wheelEvent(QWheelEvent* event)
{
    const QPointF turn = QPointF(event->angleDelta()) / kNotch;
    if (wheelZooms_ || event->modifiers().testFlag(Qt::ControlModifier)) {
        askZoomBy(std::pow(kZoomAStep, turn.y()), event->position());
    } else if (canPan()) {
        const QPointF by = event->pixelDelta().isNull() ? turn * kPanPtANotch : QPointF(event->pixelDelta());
        Q_EMIT panAsked(pan_ + by);
    } else {
        return event->ignore();
    }
    event->accept();
}

void PictureView::keyPressEvent(QKeyEvent* event)
{
    const auto pan = [this](double x, double y) {
        const QSizeF panel = panelSize();
        Q_EMIT panAsked(pan_ + QPointF(x * panel.width(), y * panel.height()) * kPanShareAKey);
    };
    if (event->modifiers() != Qt::ShiftModifier || !canPan()) return QWidget::keyPressEvent(event);
    switch (event->key()) {
    case Qt::Key_Left:
        return pan(1, 0);
    case Qt::Key_Right:
        return pan(-1, 0);
    case Qt::Key_Up:
        return pan(0, 1);
    case Qt::Key_Down:
        return pan(0, -1);
    default:
        return QWidget::keyPressEvent(event);
    }
}

} // namespace tamlo::ui
