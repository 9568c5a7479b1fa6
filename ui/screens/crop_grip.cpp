#include "ui/screens/crop_grip.h"

#include "ui/kit/theme.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

namespace tamlo::ui {
namespace {

/// -1, 0 or 1 along each axis: which side of the rectangle a handle stands on.
QPoint sideOf(CropHandle handle)
{
    switch (handle) {
    case CropHandle::topLeft:
        return {-1, -1};
    case CropHandle::top:
        return {0, -1};
    case CropHandle::topRight:
        return {1, -1};
    case CropHandle::right:
        return {1, 0};
    case CropHandle::bottomRight:
        return {1, 1};
    case CropHandle::bottom:
        return {0, 1};
    case CropHandle::bottomLeft:
        return {-1, 1};
    case CropHandle::left:
        return {-1, 0};
    case CropHandle::body:
        break;
    }
    return {};
}

Qt::CursorShape cursorOf(QPoint side)
{
    if (side.x() == 0) return Qt::SizeVerCursor;
    if (side.y() == 0) return Qt::SizeHorCursor;
    return side.x() == side.y() ? Qt::SizeFDiagCursor : Qt::SizeBDiagCursor;
}

} // namespace

const std::array<CropHandle, 8>& CropGrip::handles()
{
    static constexpr std::array kHandles{
        CropHandle::topLeft,     CropHandle::top,    CropHandle::topRight,   CropHandle::right,
        CropHandle::bottomRight, CropHandle::bottom, CropHandle::bottomLeft, CropHandle::left};
    return kHandles;
}

CropGrip::CropGrip(CropHandle handle, QWidget* parent) : QAbstractButton(parent), handle_(handle)
{
    setFixedSize(kSidePt, kSidePt);
    setFocusPolicy(Qt::StrongFocus);
    setCursor(cursorOf(sideOf(handle)));
    setObjectName(name());
}

QPointF CropGrip::placeOn(const QRectF& rect) const
{
    const QPoint side = sideOf(handle_);
    return rect.center() + QPointF(side.x() * rect.width() / 2, side.y() * rect.height() / 2);
}

QString CropGrip::name() const
{
    static constexpr const char* kNames[] = {"body",        "topLeft", "top",        "topRight", "right",
                                             "bottomRight", "bottom",  "bottomLeft", "left"};
    return QLatin1String(kNames[static_cast<std::size_t>(handle_)]);
}

void CropGrip::paintEvent(QPaintEvent*)
{
    constexpr double kArmPt = 13, kThickPt = 3;
    QPainter painter(this);
    const QPoint side = sideOf(handle_);
    const QPointF at = QRectF(rect()).center();
    const bool isCorner = side.x() && side.y();
    const QColor ink = hasFocus() ? Theme::accent() : QColor(250, 250, 250);
    const auto bar = [&](QPointF from, QPointF to) {
        const QRectF body =
            QRectF(from, to).normalized().adjusted(-kThickPt / 2, -kThickPt / 2, kThickPt / 2, kThickPt / 2);
        painter.fillRect(body.adjusted(-1, -1, 1, 1), QColor(0, 0, 0, 160));
        painter.fillRect(body, ink);
    };
    // Corners embrace the rectangle, edges lie along it.
    const QPointF along(isCorner ? -side.x() * kArmPt : side.x() ? 0 : kArmPt, 0);
    const QPointF down(0, isCorner ? -side.y() * kArmPt : side.y() ? 0 : kArmPt);
    if (isCorner) {
        bar(at, at + along);
        bar(at, at + down);
    } else {
        bar(at - along - down, at + along + down);
    }
    if (hasFocus()) Theme::drawFocus(painter, rect());
}

void CropGrip::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) return event->ignore();
    press_ = event->globalPosition();
    setFocus(Qt::MouseFocusReason);
    Q_EMIT gripped();
}

void CropGrip::mouseMoveEvent(QMouseEvent* event)
{
    if (press_) Q_EMIT dragged(event->globalPosition() - *press_, event->modifiers());
}

void CropGrip::mouseReleaseEvent(QMouseEvent*)
{
    if (!press_) return;
    press_.reset();
    Q_EMIT released();
}

std::optional<QPoint> arrowOf(int key)
{
    switch (key) {
    case Qt::Key_Left:
        return QPoint(-1, 0);
    case Qt::Key_Right:
        return QPoint(1, 0);
    case Qt::Key_Up:
        return QPoint(0, -1);
    case Qt::Key_Down:
        return QPoint(0, 1);
    default:
        return std::nullopt;
    }
}

void CropGrip::keyPressEvent(QKeyEvent* event)
{
    if (const auto by = arrowOf(event->key())) {
        Q_EMIT stepped(*by, event->modifiers());
        return;
    }
    event->ignore(); // Enter applies the crop, wherever the focus is
}

} // namespace tamlo::ui
