// The torn edge of a peel-apart picture: where the emulsion stops short of the window, as a line of offsets
// along each side. A fine and a slow wave, and bites where it broke away. Drawn in millimetres of the sheet,
// so that two sizes of a picture have the same edge.
#pragma once

#include "core/image/random.h"

#include <cstdint>
#include <vector>

namespace tamlo::Pipeline {

/// A smooth line of unit deviation on a grid of ppmm nodes a millimetre, read at `into` samples.
/// Units: sigma in millimetres. Draws one normal a node of the grid and of its margins.
std::vector<float> mmLine(double lengthMm, double ppmm, double sigmaMm, std::int64_t into, GrainRNG& rng);

/// How far the emulsion stops short of the window at each of `length` samples, in pixels of pxMm a
/// millimetre. `chips` scales how often it is bitten; below 0 the emulsion reaches beyond.
std::vector<float> peelEdgeOffsets(std::int64_t length, double pxMm, GrainRNG& rng, double chips,
                                   double lengthMm);

} // namespace tamlo::Pipeline
