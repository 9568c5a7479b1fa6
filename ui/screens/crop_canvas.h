// CropCanvas: the picture under a crop: where it lies on the panel, how it is turned, and its pixels in the
// colours of the screen. What is level stays level on screen: a tilt turns the picture, not the rectangle.
// Points are of the widget that it is drawn on; pixels of the picture as the crop's draft counts them.
#pragma once

#include "app/shell/crop_draft.h"
#include "platform/job_queue.h"
#include "ui/canvas/tiles.h"

#include <QObject>
#include <QPainter>

#include <functional>

namespace tamlo::ui {

class CropCanvas : public QObject {
public:
    using Image = std::shared_ptr<const ReadyImage>;

    /// changed: draw again.
    explicit CropCanvas(std::function<void()> changed, QObject* parent = nullptr);
    ~CropCanvas() override;

    void setPicture(Image picture, ScreenColor color);
    /// The panel, device pixels a point, and the draft's picture and tilt.
    void setPlace(QSizeF panel, double displayScale, const CropDraft& draft);

    double pointsAPixel() const { return scale_; }
    QPointF pointOf(double x, double y) const { return box_.topLeft() + QPointF(x, y) * scale_; }
    QRectF pointsOf(const RectPx& rect) const;
    Pipeline::PointPx pixelAt(QPointF point) const;
    /// Of the upright picture.
    const QRectF& box() const { return box_; }

    /// isMoving: what comes next comes at once, so that haste goes before smoothness.
    void paint(QPainter& painter, bool isMoving) const;

private:
    void prepare();

    std::function<void()> changed_;
    Image picture_;
    ScreenColor color_;
    QRectF box_;
    double scale_ = 1, displayScale_ = 1, degrees_ = 0;
    QImage prepared_;   ///< the picture at the box's size
    quint64 asked_ = 0; ///< which preparation is awaited
    Size preparedFor_;
    platform::SerialQueue queue_{"tamlo.crop"}; ///< last: joined before the rest goes
};

} // namespace tamlo::ui
