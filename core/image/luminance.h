// Luminance of an image on sRGB primaries.
#pragma once

#include "core/image/rgb_image.h"

namespace tamlo {

/// Luminance of each pixel, in 32-bit floats.
Plane lumaPlane(const RGBImage& image);

/// Luminance of each pixel into a plane of the image's size.
void luma_plane(Plane& out, const RGBImage& image);

/// Mean luminance, summed in 64-bit floats in fixed chunks.
double luma_mean(const RGBImage& image);

} // namespace tamlo
