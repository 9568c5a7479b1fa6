// The lattice embossed into a silk pack film: rows of pits along the pull, each offset by half a step, with
// continuous grooves between them, wandering a little, deeper here and shallower there. In density, on the
// picture's millimetres; below four pixels a period it fades instead of showing a pattern of its own.
#pragma once

#include "core/image/random.h"
#include "core/process/instant/picture_mm.h"
#include "core/process/instant/surface_passes.h"

namespace tamlo::Film {

struct LatticePlan {
    Plane pattern; ///< at unit deviation by the gain's scale
    LatticeGain gain;
};

/// Takes one draw, the fields' seed. textureSeed: of the fine grain in the lattice. The knob `devMottle`
/// acts on the strength, and on the wander up to 2.
LatticePlan silkLattice(Size picture, const SilkLatticeParams& lattice, const PictureScale& scale,
                        double devMottle, std::uint32_t textureSeed, GrainRNG& rng);

} // namespace tamlo::Film
