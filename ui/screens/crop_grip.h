// CropGrip: one of the eight handles of a crop: dragged, or moved by the arrow keys while it has the focus.
#pragma once

#include "app/shell/crop_rect.h"

#include <QAbstractButton>

#include <optional>

namespace tamlo::ui {

class CropGrip : public QAbstractButton {
    Q_OBJECT

public:
    static constexpr int kSidePt = 28;

    CropGrip(CropHandle handle, QWidget* parent);
    CropHandle handle() const { return handle_; }
    /// The eight, clockwise from the top left: the order in which Tab walks them.
    static const std::array<CropHandle, 8>& handles();
    /// Its place on a rectangle of points.
    QPointF placeOn(const QRectF& rect) const;
    /// "topLeft".
    QString name() const;

Q_SIGNALS:
    void gripped();
    /// The hand has moved so far since it gripped; points.
    void dragged(QPointF by, Qt::KeyboardModifiers modifiers);
    void released();
    /// An arrow key: one step along an axis.
    void stepped(QPoint by, Qt::KeyboardModifiers modifiers);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    CropHandle handle_;
    std::optional<QPointF> press_;
};

/// The step of an arrow key; none for other keys.
std::optional<QPoint> arrowOf(int key);

} // namespace tamlo::ui
