#include "app/shell/crop_rect.h"

#include <algorithm>

namespace tamlo {

namespace {

/// Which edge of an axis a handle moves: the low one, none, the high one.
struct Sides {
    int x = 0, y = 0;
};

Sides sidesOf(CropHandle handle)
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

/// One axis of a rectangle under a handle.
struct Axis {
    double low, size, bound;
    int side;         ///< the edge that moves
    bool aboutCentre; ///< what stays is the centre, not the opposite edge

    /// The most that fits round what stays.
    double room() const
    {
        const double centre = low + size / 2;
        if (aboutCentre) return 2 * std::min(centre, bound - centre);
        return side > 0 ? bound - low : low + size;
    }
    double wanted(double offset, bool fromCentre) const
    {
        return size + side * offset * (fromCentre ? 2 : 1);
    }
    double placed(double newSize) const
    {
        if (aboutCentre) return low + (size - newSize) / 2;
        return side > 0 ? low : low + size - newSize;
    }
};

double within(double value, double least, double most)
{
    return std::clamp(value, std::min(least, most), most);
}

} // namespace

RectPx CropGeometry::clamped(const RectPx& rect, Size bounds, double minSide)
{
    const double boundW = static_cast<double>(bounds.width), boundH = static_cast<double>(bounds.height);
    const double w = within(rect.w, minSide, boundW), h = within(rect.h, minSide, boundH);
    return {std::clamp(rect.centreX() - w / 2, 0.0, boundW - w),
            std::clamp(rect.centreY() - h / 2, 0.0, boundH - h), w, h};
}

RectPx CropGeometry::moved(const RectPx& rect, double dx, double dy, Size bounds)
{
    const auto place = [](double at, double side, std::int64_t bound) {
        return std::clamp(at, 0.0, std::max(static_cast<double>(bound) - side, 0.0));
    };
    return {place(rect.x + dx, rect.w, bounds.width), place(rect.y + dy, rect.h, bounds.height), rect.w,
            rect.h};
}

RectPx CropGeometry::transposed(const RectPx& rect, Size bounds, double minSide)
{
    if (!(rect.w > 0 && rect.h > 0)) return clamped(rect, bounds, minSide);
    const double most =
        std::min(static_cast<double>(bounds.width) / rect.h, static_cast<double>(bounds.height) / rect.w);
    const double scale = within(1.0, minSide / std::min(rect.w, rect.h), most);
    const double w = rect.h * std::min(scale, most), h = rect.w * std::min(scale, most);
    return clamped({rect.centreX() - w / 2, rect.centreY() - h / 2, w, h}, bounds, minSide);
}

RectPx CropGeometry::resized(const RectPx& rect, CropHandle handle, double dx, double dy, Size bounds,
                             std::optional<double> aspect, bool fromCentre, double minSide)
{
    if (handle == CropHandle::body) return moved(rect, dx, dy, bounds);
    const Sides sides = sidesOf(handle);
    const Axis across{rect.x, rect.w, static_cast<double>(bounds.width), sides.x, fromCentre || sides.x == 0};
    const Axis down{rect.y, rect.h, static_cast<double>(bounds.height), sides.y, fromCentre || sides.y == 0};
    double w = across.wanted(dx, fromCentre), h = down.wanted(dy, fromCentre);
    if (aspect) {
        const double a = *aspect;
        if (sides.x == 0) w = h * a;
        if (sides.x != 0 && sides.y != 0) w = std::max(w, h * a);
        w = within(w, minSide * std::max(a, 1.0), std::min(across.room(), down.room() * a));
        h = w / a;
    } else {
        if (sides.x != 0) w = within(w, minSide, across.room());
        if (sides.y != 0) h = within(h, minSide, down.room());
    }
    return {across.placed(w), down.placed(h), w, h};
}

} // namespace tamlo
