#include "ui/canvas/canvas_place.h"

#include <algorithm>
#include <cmath>

namespace tamlo::ui {

QSizeF CanvasPlace::fit() const
{
    if (isEmpty()) return {};
    const double roomW = std::max(panel.width() - 2 * kMarginPt, 1.0);
    const double roomH = std::max(panel.height() - 2 * kMarginPt, 1.0);
    const double w = static_cast<double>(shape.width), h = static_cast<double>(shape.height);
    const double scale = std::min(roomW / w, roomH / h);
    return {w * scale, h * scale};
}

Size CanvasPlace::shown() const
{
    const QSizeF size = fit() * (zoom * displayScale);
    const Size whole{std::max<std::int64_t>(std::llround(size.width()), 1),
                     std::max<std::int64_t>(std::llround(size.height()), 1)};
    return isNearly(whole, pixels) ? pixels : whole;
}

QRect CanvasPlace::rect() const
{
    const Size size = shown();
    const auto corner = [&](double room, double offset, std::int64_t side) {
        return static_cast<int>(
            std::lround((room / 2 + offset) * displayScale - static_cast<double>(side) / 2));
    };
    return {corner(panel.width(), pan.x(), size.width), corner(panel.height(), pan.y(), size.height),
            static_cast<int>(size.width), static_cast<int>(size.height)};
}

QPointF CanvasPlace::shareAt(QPointF point) const
{
    const QRect at = rect();
    return {(point.x() * displayScale - at.x()) / at.width(),
            (point.y() * displayScale - at.y()) / at.height()};
}

QPointF CanvasPlace::pointOf(QPointF share) const
{
    const QRect at = rect();
    return {(at.x() + share.x() * at.width()) / displayScale,
            (at.y() + share.y() * at.height()) / displayScale};
}

bool isNearly(Size a, Size b)
{
    constexpr std::int64_t kMostPx = 2;
    return std::abs(a.width - b.width) <= kMostPx && std::abs(a.height - b.height) <= kMostPx;
}

bool isSameShape(Size a, Size b)
{
    const auto near = [](Size large, Size small) {
        const double scale = static_cast<double>(std::max(small.width, small.height)) /
                             static_cast<double>(std::max(large.width, large.height));
        return std::abs(static_cast<double>(large.width) * scale - static_cast<double>(small.width)) <= 1 &&
               std::abs(static_cast<double>(large.height) * scale - static_cast<double>(small.height)) <= 1;
    };
    if (std::min({a.width, a.height, b.width, b.height}) < 1) return false;
    return std::max(a.width, a.height) > std::max(b.width, b.height) ? near(a, b) : near(b, a);
}

} // namespace tamlo::ui
