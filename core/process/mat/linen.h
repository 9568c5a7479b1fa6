// Linen under a sheet: a weave of fixed thread pitch, drawn and not sampled, with slubs, the threads that
// came out thick. Four short tables hold all of it.
#pragma once

#include "core/image/plane.h"
#include "core/image/random.h"

#include <vector>

namespace tamlo::Table {

struct Linen {
    std::vector<float> cosX, cosY; ///< the weave along each axis, as a pixel's average
    std::vector<float> colF, rowF; ///< what slubs add to columns and rows
    float nap = 0.0f;              ///< what brings the nap's field to its deviation
};

/// Draws the slubs. Units: ppmm pixels a millimetre of print.
Linen planLinen(Size canvas, double ppmm, GrainRNG& rng);

} // namespace tamlo::Table
