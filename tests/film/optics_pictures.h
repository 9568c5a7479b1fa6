// Pictures and measures shared by the tests of the lens.
#pragma once

#include "core/image/rgb_image.h"
#include "tests/image/test_pictures.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tamlo::test {

inline RGBImage flat(std::int64_t w, std::int64_t h, const Vec3f& light)
{
    return RGBImage(w, h, light);
}

/// A Gaussian spot of height 1, grey, on black.
inline RGBImage spotAt(std::int64_t w, std::int64_t h, double atX, double atY, double sigma)
{
    Plane plane(w, h);
    float* to = plane.mutableData();
    for (std::int64_t y = 0; y < h; ++y)
        for (std::int64_t x = 0; x < w; ++x) {
            const double dx = static_cast<double>(x) - atX, dy = static_cast<double>(y) - atY;
            to[y * w + x] = static_cast<float>(std::exp(-0.5 * (dx * dx + dy * dy) / (sigma * sigma)));
        }
    return {plane, plane, plane};
}

/// Second moments of the light within `reach` of a place, along x, y and across.
struct Moments {
    double sum = 0.0, x = 0.0, y = 0.0, xx = 0.0, yy = 0.0;
};

inline Moments moments(const Plane& plane, double atX, double atY, double reach)
{
    Moments m;
    for (std::int64_t y = 0; y < plane.height; ++y)
        for (std::int64_t x = 0; x < plane.width; ++x) {
            const double dx = static_cast<double>(x) - atX, dy = static_cast<double>(y) - atY;
            if (std::max(std::abs(dx), std::abs(dy)) > reach) continue;
            const double v = plane.at(x, y);
            m.sum += v;
            m.x += v * dx;
            m.y += v * dy;
            m.xx += v * dx * dx;
            m.yy += v * dy * dy;
        }
    return m;
}

inline std::pair<double, double> centroid(const Plane& plane, double atX, double atY, double reach)
{
    const Moments m = moments(plane, atX, atY, reach);
    return {atX + m.x / m.sum, atY + m.y / m.sum};
}

} // namespace tamlo::test
