// The silver chain: the scene summed to one plane by the emulsion's own eye, one curve, one paper; and the
// other way to a monochrome print, a colour negative under a black-and-white paper whose sensitivity decides
// how the dye layers count. A colour filter acts through the weights, which is what darkens a sky under red.
// Domain: light at the emulsion in; display-linear positive out, a grey card at 0.18 times the paper's tone.
#pragma once

#include "core/film/emulsion/hd_curve.h"
#include "core/image/rgb_image.h"
#include "core/profiles/formats/developed_film.h"
#include "core/profiles/formats/paper_profile.h"
#include "core/profiles/options/render_options.h"

#include <cstdint>
#include <optional>

namespace tamlo::Film {

/// Weights of r, g, b adding up to 1, in 32-bit floats; unchanged where they add up to nothing.
Vec3f normalisedWeights(const Vec3d& weights);

/// One silver negative: absolute density and the curve that made it.
struct SilverNegative {
    Plane density;
    HDCurve curve;
};

/// One plate of a film that takes several.
struct PlateExposure {
    std::optional<Vec3d> weights; ///< in place of the film's
    double evExtra = 0.0;         ///< stops
    std::optional<std::uint32_t> grainSeed;
};

/// Units: pxUm micrometres of film a pixel. Errors: ProfileError "BW film without 'negative'".
SilverNegative bwNegativeDb(RGBImage light, const DevelopedFilm& film, const RenderOptions& options,
                            double pxUm, const PlateExposure& plate = {});

RGBImage renderBW(RGBImage light, const DevelopedFilm& film, const PaperProfile& paper,
                  const RenderOptions& options, double pxUm);

/// Errors: those of colorNegativeDb.
RGBImage renderColorOnBWPaper(RGBImage light, const DevelopedFilm& film, const PaperProfile& paper,
                              const RenderOptions& options, double pxUm);

} // namespace tamlo::Film
