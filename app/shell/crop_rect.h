// CropGeometry: arithmetic on a rectangle in pixels that stays within a picture.
#pragma once

#include "core/image/plane.h"

#include <optional>

namespace tamlo {

/// In pixels, origin at top left.
struct RectPx {
    double x = 0, y = 0, w = 0, h = 0;

    double centreX() const { return x + w / 2; }
    double centreY() const { return y + h / 2; }
    bool operator==(const RectPx&) const = default;
};

enum class CropHandle { body, topLeft, top, topRight, right, bottomRight, bottom, bottomLeft, left };

namespace CropGeometry {

/// Sides of at least minSide and at most the bounds, round the same centre as far as the bounds allow.
RectPx clamped(const RectPx& rect, Size bounds, double minSide);
/// The same size in another place.
RectPx moved(const RectPx& rect, double dx, double dy, Size bounds);
/// Width and height exchanged round the centre; shrunk as a whole where the bounds are too narrow, so that
/// the ratio stays.
RectPx transposed(const RectPx& rect, Size bounds, double minSide);
/// The handle's edge or corner follows an offset. aspect: width / height to be kept, the narrower way out;
/// fromCentre: the centre stays, else the opposite edge or corner. Where the bounds leave less than minSide,
/// the ratio and the bounds hold.
RectPx resized(const RectPx& rect, CropHandle handle, double dx, double dy, Size bounds,
               std::optional<double> aspect, bool fromCentre, double minSide);

} // namespace CropGeometry

} // namespace tamlo
