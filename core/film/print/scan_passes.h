// Passes of a scanner: sharpening and clipping of a positive, in place.
#pragma once

#include "core/image/rgb_image.h"

namespace tamlo {

/// (1 + k) E - k × blur(E).
void unsharp(RGBImage& image, const RGBImage& blurred, float k);

/// All above `clip` is compressed fourfold, then held to 0...1.
void scan_clip(RGBImage& image, float clip);

} // namespace tamlo
