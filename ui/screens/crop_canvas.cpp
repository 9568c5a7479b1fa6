#include "ui/screens/crop_canvas.h"

#include <algorithm>
#include <cmath>

namespace tamlo::ui {
namespace {

constexpr double kMarginPt = 40; ///< for the corners of a tilted picture, and for a hand beside the handles

} // namespace

CropCanvas::CropCanvas(std::function<void()> changed, QObject* parent)
    : QObject(parent), changed_(std::move(changed))
{}

CropCanvas::~CropCanvas() = default;

void CropCanvas::setPicture(Image picture, ScreenColor color)
{
    if (picture == picture_ && color == color_) return;
    if (!picture || picture_ != picture) prepared_ = {};
    picture_ = std::move(picture);
    color_ = std::move(color);
    preparedFor_ = {};
    prepare();
}

void CropCanvas::setPlace(QSizeF panel, double displayScale, const CropDraft& draft)
{
    const Size size = draft.picture().size;
    const double w = static_cast<double>(size.width), h = static_cast<double>(size.height);
    scale_ = std::min(std::max(panel.width() - 2 * kMarginPt, 1.0) / w,
                      std::max(panel.height() - 2 * kMarginPt, 1.0) / h);
    box_ =
        QRectF((panel.width() - w * scale_) / 2, (panel.height() - h * scale_) / 2, w * scale_, h * scale_);
    displayScale_ = displayScale;
    degrees_ = draft.angle();
    prepare();
}

QRectF CropCanvas::pointsOf(const RectPx& rect) const
{
    return {pointOf(rect.x, rect.y), QSizeF(rect.w, rect.h) * scale_};
}

Pipeline::PointPx CropCanvas::pixelAt(QPointF point) const
{
    return {(point.x() - box_.left()) / scale_, (point.y() - box_.top()) / scale_};
}

void CropCanvas::prepare()
{
    const QSizeF points = box_.size() * displayScale_;
    const Size size{std::llround(points.width()), std::llround(points.height())};
    if (!picture_ || size.width < 1 || size.height < 1 || size == preparedFor_) return;
    preparedFor_ = size;
    queue_.dropPending();
    queue_.submit([this, size, picture = picture_, color = color_, number = ++asked_] {
        const QRect whole(0, 0, static_cast<int>(size.width), static_cast<int>(size.height));
        QImage made = makeTile(*picture, size, whole, color.transform.get());
        QMetaObject::invokeMethod(
            this,
            [this, number, made = std::move(made)] {
                if (number != asked_) return;
                prepared_ = made;
                changed_();
            },
            Qt::QueuedConnection);
    });
}

void CropCanvas::paint(QPainter& painter, bool isMoving) const
{
    if (prepared_.isNull()) return painter.fillRect(box_, QColor(60, 60, 60));
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform, !isMoving);
    if (degrees_ != 0) {
        painter.translate(box_.center());
        painter.rotate(degrees_);
        painter.translate(-box_.center());
    }
    // Upright and as large as it was prepared, it is drawn pixel by pixel.
    const QPointF corner = box_.topLeft() * displayScale_;
    const QPointF whole(std::lround(corner.x()), std::lround(corner.y()));
    const QSizeF size = QSizeF(prepared_.size()) / displayScale_;
    const bool isCurrent = std::abs(size.width() - box_.width()) * displayScale_ < 1;
    painter.drawImage(isCurrent ? QRectF(whole / displayScale_, size) : box_, prepared_);
    painter.restore();
}

} // namespace tamlo::ui
