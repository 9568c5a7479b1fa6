// Growth grain: the picture rebuilt from crystals. Every site of a lattice of about two micrometres holds a
// Poisson number of developed crystals (silver) or of dye clouds (colour), the sites of a pixel are averaged
// as light, and a density comes out; image and grain are one thing. The strength is calibrated so that a 48
// µm aperture measures what classic grain measures at the same profile numbers. It stands in the negative's
// chain after adjacency and before the grey anchor is taken off; where no size of the film is known
// (formatLongUm 0 or less) classic grain takes its place. The model and its moments: docs/math/grain.md.
#pragma once

#include "core/film/grain/growth_geometry.h"
#include "core/film/grain/growth_lattice.h"
#include "core/image/plane.h"
#include "core/image/rgb_image.h"

#include <cstdint>

namespace tamlo::Grain {

/// How a frame's growth grain is laid.
struct GrowthFrame {
    /// As Film::grainProfile gives it.
    GrainParams grain;
    /// Long side of the frame in micrometres of film; more than 0.
    double formatLongUm = 0.0;
    /// Seeds::growthSeed of the frame.
    std::uint32_t seed = 0;
    /// The options grainMult and grainSizeMult.
    double ampMult = 1.0;
    double sizeMult = 1.0;
    GrowthZone zone = GrowthZone::automatic;
    GrowthTiling tiling;
};

/// Grain on a single silver layer. Domain: absolute density; dmin and dmax are those of the developed curve.
/// Returns the plane unchanged at an amount of 1e-5 or less, and, in the automatic zone, where pixels are so
/// large that the grain would not show. Absent size and amount: 14 µm, 0.055.
Plane growthBW(Plane density, double dmin, double dmax, const GrowthFrame& frame);

/// Grain on the three dye layers of a colour film, each with a pattern of its own. Domain: absolute density.
/// Absent size and amount: 8.4 µm, 0.04; absent layer scales are 1, 0.9, 1.35, of the size 1, 1, 1.2.
RGBImage growthColor(RGBImage density, const Vec3d& dmins, const Vec3d& dmaxs, const GrowthFrame& frame);

} // namespace tamlo::Grain
