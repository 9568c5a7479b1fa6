#include "core/image/zcolor.h"

#include <algorithm>
#include <cmath>

namespace tamlo::ZColor {

float srgbToLinear(float v)
{
    if (v <= 0.04045f) return v / 12.92f;
    return std::pow((v + 0.055f) / 1.055f, 2.4f);
}

float linearToSRGB(float v)
{
    const float c = std::clamp(v, 0.0f, 1.0f);
    if (c <= 0.0031308f) return c * 12.92f;
    return 1.055f * std::pow(std::max(c, 1e-6f), 0.41666666f) - 0.055f;
}

Vec3d kelvinToLinearSRGBWhite(double kelvin)
{
    const double t = std::clamp(kelvin, 1667.0, 25000.0);
    const double t2 = t * t, t3 = t2 * t;
    const double x = t <= 4000.0 ? -266123900.0 / t3 - 234358.9 / t2 + 877.6956 / t + 0.17991
                                 : -3025846900.0 / t3 + 2107037.9 / t2 + 222.6347 / t + 0.24039;
    const double x2 = x * x, x3 = x2 * x;
    double y;
    if (t <= 2222.0)
        y = -1.1063814 * x3 - 1.3481102 * x2 + 2.18555832 * x - 0.20219683;
    else if (t <= 4000.0)
        y = -0.9549476 * x3 - 1.37418593 * x2 + 2.09137015 * x - 0.16748867;
    else
        y = 3.081758 * x3 - 5.8733867 * x2 + 3.75112997 * x - 0.37001483;
    const double X = x / y, Z = (1.0 - x - y) / y;
    return {std::max(3.2406 * X - 1.5372 - 0.4986 * Z, 1e-6),
            std::max(-0.9689 * X + 1.8758 + 0.0415 * Z, 1e-6),
            std::max(0.0557 * X - 0.204 + 1.057 * Z, 1e-6)};
}

Vec3f wbFilterGains(double tempMired, double tint, double baseK)
{
    const double mired = tempMired + 1e6 / baseK;
    const double kelvin = mired > 40.0 ? 1e6 / std::min(mired, 600.0) : 25000.0;
    const Vec3d to = kelvinToLinearSRGBWhite(kelvin);
    const Vec3d from = kelvinToLinearSRGBWhite(baseK);
    Vec3d gains{to[0] / from[0], to[1] / from[1], to[2] / from[2]};
    gains[1] *= std::pow(10.0, -0.0006 * tint);
    const double y = luma[0] * gains[0] + luma[1] * gains[1] + luma[2] * gains[2];
    return {static_cast<float>(gains[0] / y), static_cast<float>(gains[1] / y),
            static_cast<float>(gains[2] / y)};
}

} // namespace tamlo::ZColor
