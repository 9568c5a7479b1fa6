// Geometry of growth grain: where the crystals of a film frame lie and how large they are. A frame is laid
// out in sites of about two micrometres, a whole number of them to a pixel, and everything that decides the
// pattern is addressed by site. Here are the sizes, the constants of the model and the moments that a pixel
// keeps of what its sites do; docs/math/grain.md derives them. Units: micrometres of film, or sites where a
// name says so.
#pragma once

#include "core/profiles/formats/film_profile.h"
#include "core/profiles/formats/option_enums.h"
#include "core/profiles/options/render_options.h"

#include <array>
#include <cstdint>
#include <optional>

namespace tamlo::Grain {

/// Nominal pitch of the sites.
inline constexpr double growthSiteUm = 2.0;
/// Sigma of the optical spread when the negative is read.
inline constexpr double growthPsfUm = 4.0;
/// Optical depth of the fog of a silver film.
inline constexpr float growthFogMu = 0.05f;
inline constexpr float ln10f = 2.3025851f;
/// The aggregate path needs a pixel of at least this many sites...
inline constexpr double aggSiteRatio = 4.0;
/// ...and of at least this many clump sigmas.
inline constexpr double aggClumpRatio = 2.0;
/// Sigma in density below which automatic silver grain is not computed.
inline constexpr double skipSigmaD = 0.0015;
/// Sigma of a dye cloud as a share of the film's grain size.
inline constexpr double growthCloudK = 0.3;

/// Grain size where a profile gives none.
inline constexpr double growthSizeBWUm = 14.0;
inline constexpr double growthSizeColorUm = 8.4;
/// Grain beyond this size is drawn at it: coarser than any emulsion, and a bound on the width of the kernels.
inline constexpr double growthMaxSizeUm = 100.0;
/// Widest Gaussian over the site lattice, in sites, for the same reason.
inline constexpr double growthMaxSigmaSites = 128.0;
/// Longest lattice that is built site by site, half a metre of film; beyond it the aggregate stands in.
inline constexpr double growthMaxLatticeSites = 262'144.0;

/// Eight-point Gauss-Hermite quadrature over a standard normal (probabilists' form).
/// Source: Abramowitz, Stegun, "Handbook of Mathematical Functions", table 25.10, rescaled.
inline constexpr std::array<double, 8> hermiteNodes{-4.1445471861, -2.8024858613, -1.6365190424,
                                                    -0.5390798114, 0.5390798114,  1.6365190424,
                                                    2.8024858613,  4.1445471861};
inline constexpr std::array<double, 8> hermiteWeights{0.0001126145, 0.0096352201, 0.1172399077, 0.3730122577,
                                                      0.3730122577, 0.1172399077, 0.0096352201, 0.0001126145};

/// What decides the pattern of one render.
struct GrowthSetup {
    double site = 0.0;      ///< pitch, micrometres
    double crystalUm = 0.0; ///< radius of a crystal; silver only
    double clumpUm = 0.0;   ///< sigma of the clump field
    float clumpSigma = 0.0f;
    std::uint32_t seed = 0;
};

/// The lattice under a frame of pixels.
struct GrowthLattice {
    double pxUm = 0.0;
    double site = 0.0;
    std::int64_t scale = 1; ///< sites per side of a pixel
};

/// Sites per side of a pixel: as many as bring the pitch nearest to two micrometres, at least one.
std::int64_t growthScale(double pxUm);

/// The lattice of a frame whose long side is formatLongUm of film. A pixel is at least a nanometre.
GrowthLattice growthLattice(Size size, double formatLongUm);

/// The profile's size, or the one in its place, within 0...growthMaxSizeUm.
double growthSizeUm(const GrainParams& grain, bool colour);

/// Radius of a silver crystal of a film with that grain size.
double growthCrystalUm(double sizeUm);

/// Sigma of the clump field; colour: of a film with dye layers.
double growthClumpUm(double sizeUm, bool colour, double sizeMult);

/// The clump sigma on the lattice, 0.6...growthMaxSigmaSites.
double growthClumpSites(double clumpUm, double site);

/// Sigma of the dye clouds of a layer on the lattice.
double growthCloudSites(double sizeUm, double layerSizeScale, double sizeMult, double site);

/// Whether a pixel holds so many sites and clumps that their sum can be drawn as one Gaussian.
bool aggregateFits(double pxUm, double site, double clumpUm);

/// Share of the variance of a field of correlation sigma sigUm that is left after averaging over a pixel.
double aggClumpFactor(double pxUm, double sigUm);

/// What soft clouds leave of the grain of hard ones.
struct CloudFactors {
    double h = 1.0;     ///< share of the site variance that a pixel-wide box keeps
    double kappa = 1.0; ///< density of a soft cloud, read in transmission, over that of a hard one
};
CloudFactors aggCloudFactors(std::int64_t scale, double cloudSites, double delta);

/// Eight nodes of cloud density and their eight weights, for the mean transmission under clumping.
std::array<float, 16> aggColorNodes(double cs, double kappa);

/// Largest long side, in pixels, at which a frame still takes the aggregate path; none where the film shows
/// no growth grain. Never below 64.
std::optional<std::int64_t> aggregateLongPx(const FilmProfile& film, const RenderOptions& options,
                                            double formatLongUm);

} // namespace tamlo::Grain
