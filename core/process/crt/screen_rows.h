// The drawn screen, row by row: lines mixed into each row of pixels, beams out of register, the dimmer edge
// of the raster, mask and wires. Each row of each channel is a sum of a few lines whatever the size of the
// picture, also where red and blue fall between two rows, so that no picture of bare impulses ever stands in
// memory.
#pragma once

#include "core/image/plane.h"
#include "core/process/crt/tube.h"

#include <vector>

namespace tamlo::CRTScreen {

struct ScreenPlan {
    const Tube& tube;
    Size size;                         ///< of the picture
    double pxUm = 1.0;                 ///< micrometres of screen a pixel
    double linePx = 0.0;               ///< pixels a line; 0 where the planes are rows of pixels already
    double maskPx = 0.0;               ///< 0 leaves the mask out
    double phaseX = 0.0, phaseY = 0.0; ///< of the mask, shares of its pitch
    double zoom = 1.0;
};

/// Shape: planes of the picture's width, of lines or of rows of pixels; one of a tube without a mask.
std::vector<Plane> drawScreen(std::vector<Plane> lines, const ScreenPlan& plan);

} // namespace tamlo::CRTScreen
