// CanvasPlace: where a picture lies on a panel. Points are those of the screen; a device pixel is a point
// divided by the display scale. The picture always covers whole device pixels, the same for every size in
// which it is at hand, so that a finer one takes a coarser one's place without a move.
#pragma once

#include "core/image/plane.h"

#include <QPointF>
#include <QRect>
#include <QSizeF>

namespace tamlo::ui {

struct CanvasPlace {
    static constexpr double kMarginPt = 16; ///< surround that a fitted picture leaves on every side

    Size shape;              ///< of the picture in all its pixels; empty: there is none
    Size pixels = {};        ///< that are at hand; shown as they are where that is the size but for rounding
    QSizeF panel;            ///< points
    double displayScale = 1; ///< device pixels a point
    double zoom = 1;         ///< times the fit
    QPointF pan;             ///< points, of the picture's centre from the panel's

    bool isEmpty() const { return shape.width < 1 || shape.height < 1 || panel.isEmpty(); }
    /// Points of the fitted picture.
    QSizeF fit() const;
    /// Device pixels of the shown picture, at least 1 × 1, and where it lies on the panel.
    Size shown() const;
    QRect rect() const;
    /// A point of the panel as a share of the picture, 0...1 within it; and back.
    QPointF shareAt(QPointF point) const;
    QPointF pointOf(QPointF share) const;
};

/// Whether two sizes differ by no more than the rounding of sides at another scale.
bool isNearly(Size a, Size b);
/// Whether two sizes are of one picture at two scales, up to the rounding of their sides.
bool isSameShape(Size a, Size b);

} // namespace tamlo::ui
