// Passes of the lights of a display picture: the frame gathered into the cells of a grid, and the light
// added.
#pragma once

#include "core/image/rgb_image.h"

#include <vector>

namespace tamlo {

/// What is told of the pixels that fall into one cell.
struct LightCell {
    double lit = 0.0;     ///< how many are bright enough to be touched
    double clipped = 0.0; ///< how many of these ended at the display's white, or nearly
    float peak = 0.0f;    ///< brightest channel
    Vec3d light{};        ///< sum
    Vec3d rim{};          ///< sum over pixels near the light's edge
    double pixels = 0.0;
};

/// Cells of a grid no larger than the frame; a pixel belongs to the one that holds its first corner.
std::vector<LightCell> gather_lights(const RGBImage& frame, Size grid);

/// p += amount × weight × missing, of no other colour than the pixel's own where that is known.
void add_lights(RGBImage& image, const RGBImage& missing, float amount);

} // namespace tamlo
