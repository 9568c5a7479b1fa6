// The full path of growth grain: the light through a frame, built site by site. The lattice under a master
// has hundreds of millions of sites, so it is never held: strips of columns run down bands of rows, each with
// a few rows of noise and of dye clouds in hand, and a band begins with the rows above that its kernels
// reach. A site follows from its coordinates alone, so strips and bands meet without seams.
#pragma once

#include "core/film/grain/growth_geometry.h"
#include "core/film/grain/growth_passes.h"
#include "core/image/plane.h"

#include <variant>
#include <vector>

namespace tamlo {

/// One channel of density: its first float and the floats from one pixel to the next.
struct GrowthChannel {
    const float* first;
    std::int64_t stride;
    Size size;
};

/// Half kernels w[0...radius] in 32-bit floats, as the passes fold them.
std::vector<float> growthKernel(double sigmaSites);

/// The full path of one layer, ready to run.
struct GrowthLatticePlan {
    std::int64_t scale = 1;
    /// The clump field's kernel along x, and the same along y with the factor that makes its variance 1.
    std::vector<float> clumpX, clumpY;
    /// The kernel of the dye clouds; empty where they are points, and for silver.
    std::vector<float> cloud;
    std::variant<GrowthSilverParams, GrowthDyeParams> layer;
};

/// How the lattice is cut. No result depends on it.
struct GrowthTiling {
    std::int64_t stripSites = 2048;
    std::int64_t bandSites = 2'097'152;
};

/// The kernels of a clump field of that sigma.
void planClumps(GrowthLatticePlan& plan, double clumpSites);

/// Mean light through each pixel, before the optical spread, into a plane of the channel's size.
void growthTransmission(const GrowthChannel& density, const GrowthLatticePlan& plan,
                        const GrowthTiling& tiling, Plane& light);

} // namespace tamlo
