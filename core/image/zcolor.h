// Colour constants and transfer functions of the linear sRGB working space.
#pragma once

#include "core/image/rgb_image.h"

namespace tamlo::ZColor {

/// Scene middle grey, linear.
inline constexpr float midGray = 0.18f;
inline constexpr double midGrayDouble = 0.18;
inline constexpr float eps = 1e-6f;
/// Luminance weights of linear sRGB (IEC 61966-2-1, from ITU-R BT.709).
inline constexpr Vec3f luma{0.2126f, 0.7152f, 0.0722f};

/// Luminance of one pixel, in 32-bit floats.
inline float lumaOf(float r, float g, float b)
{
    return luma[0] * r + luma[1] * g + luma[2] * b;
}

/// sRGB value 0...1 to linear light (IEC 61966-2-1).
float srgbToLinear(float v);

/// Linear light, clamped to 0...1, to an sRGB value.
float linearToSRGB(float v);

/// White of a black body of K kelvin in linear sRGB with Y = 1; K is clamped to 1667...25000 and each
/// channel raised to at least 1e-6. Source: cubic-spline approximation of the Planckian locus (Kim et al.,
/// US 7,024,034), then the four-decimal sRGB matrix.
Vec3d kelvinToLinearSRGBWhite(double kelvin);

/// Gains that take light balanced for baseK to a balance shifted by tempMired (positive: warmer) and tint
/// (positive takes green away), keeping luminance.
Vec3f wbFilterGains(double tempMired, double tint, double baseK);

} // namespace tamlo::ZColor
