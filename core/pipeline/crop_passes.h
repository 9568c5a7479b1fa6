// The pass that cuts a tilted rectangle from the source. All trigonometry lies in its two short lists.
#pragma once

#include "core/image/rgb_image.h"

#include <cstdint>
#include <vector>

namespace tamlo {

/// A row's or a column's part of a source position, as whole and fractional part, so that 32-bit floats still
/// land where the 64-bit sum does.
struct CropAxis {
    std::int32_t xWhole = 0, yWhole = 0;
    float xPart = 0.0f, yPart = 0.0f;
};

struct CropAxes {
    std::vector<CropAxis> rows, columns;
};

/// Fills `out` by separable Catmull-Rom at the sum of its row's and column's positions; taps beyond the
/// source repeat its edge.
void in_crop_rotate(RGBImage& out, const RGBImage& source, const CropAxes& axes);

} // namespace tamlo
