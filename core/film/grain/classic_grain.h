// Classic grain: a smooth Gaussian noise field added to density, with a film-like dependence on density. It
// stands in the negative's chain after adjacency and before the grey anchor is taken off, and is also the
// yardstick of growth grain, which is calibrated to measure the same through a 48 µm aperture.
// The noise is a hash of the pixel's position, so that it exists outside the frame too and bands meet without
// a seam; the pattern belongs to the pixel grid of the picture that is rendered.
#pragma once

#include "core/film/grain/grain_profile.h"
#include "core/image/plane.h"
#include "core/image/rgb_image.h"

#include <cstdint>

namespace tamlo::Grain {

/// Smallest sigma in pixels. Finer grain can't be drawn on the pixel grid: it shows as less noise instead.
inline constexpr double minSigmaPx = 0.45;
/// A layer whose amplitude in density is this or less gets no grain at all.
inline constexpr double kMinAmplitude = 1e-5;

/// Size and relative strength of one layer's noise on the pixel grid.
struct SigmaAmp {
    double sigmaPx = 0.0;
    double amp = 0.0;
};

/// Units: sizeUm sigma of the noise in micrometres of film; pxUm micrometres of film per pixel. The result's
/// amp is ampMult, scaled down where the grain is finer than minSigmaPx.
SigmaAmp effectiveSigmaAmp(double sizeUm, double pxUm, double sizeMult, double ampMult);

/// How a frame's classic grain is laid.
struct ClassicGrain {
    /// As Film::grainProfile gives it.
    GrainParams gprof{};
    double pxUm = 1.0;
    /// The options grainSizeMult and grainMult.
    double sizeMult = 1.0;
    double ampMult = 1.0;
    /// Seeds::growthSeed of the frame.
    std::uint32_t seed = 0;
};

/// A noise plane of unit variance. `layer` is the channel of a colour film, 0 for a single layer.
/// Shape: the plane's sample (x, y) depends on x, y, sigmaPx, seed and layer alone.
Plane field(Size size, double sigmaPx, std::uint32_t seed, std::uint32_t layer);

/// Grain on a single layer. Domain: absolute density; dmin and dmax are those of the developed curve.
/// An absent size or amount is 6 µm, 0.08.
Plane addBW(Plane density, double dmin, double dmax, const ClassicGrain& grain);

/// Grain on the three layers of a colour film, each with a pattern of its own. Domain: absolute density.
/// An absent size or amount is 4 µm, 0.05; absent layer scales are 1, 0.9, 1.35, of the size 1, 1, 1.2.
RGBImage addColor(RGBImage density, const Vec3d& dmins, const Vec3d& dmaxs, const ClassicGrain& grain);

/// Granularity: the standard deviation of means through a round aperture of 48 µm, over every place where the
/// aperture lies inside the plane; 0 with fewer than two places. Units: pxUm micrometres per sample.
double disc48Std(const Plane& plane, double pxUm);

/// Granularity of classic grain at a density of 1.0 over dmin, measured without a frame on a fixed noise
/// field of 512 x 512 samples of 6 µm, so that it never changes between runs.
double classicSigma48(const GrainParams& gprof, double dmin, double dmax);
/// The same for each layer of a colour film.
Vec3d classicSigma48Color(const GrainParams& gprof, const Vec3d& dmins, const Vec3d& dmaxs);

} // namespace tamlo::Grain
