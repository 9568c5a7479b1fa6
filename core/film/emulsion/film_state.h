// FilmState: what happened to a film before it reached the tank: loaded back to front (redscale), or kept
// past its date. The first step of a render: a rewritten profile, offsets of the layers and a shift of
// exposure. No pixel is touched, and development works on the rewritten film, so that an expired film can be
// pushed.
#pragma once

#include "core/profiles/formats/film_profile.h"
#include "core/profiles/options/render_options.h"

#include <optional>

namespace tamlo::FilmState {

/// Exposure of the layers r, g, b when light comes through the base, stops.
inline constexpr Vec3d redscaleLayerEV{-1.7, -3.5, -5.7};
/// Light that comes through the base scatters more: factor on the strength of halation.
inline constexpr double redscaleHalation = 2.0;
/// Age in years beyond which an instant pack changes no more.
inline constexpr double instantYearsMax = 40.0;

struct Result {
    FilmProfile film;
    std::optional<Vec3d> layerEV; ///< stops, ahead of the layer curves
    double exposureShift = 0.0;   ///< stops, beside RenderOptions.ev
};

/// Redscale acts on colour negatives; age on colour, black-and-white, slide and instant film, not on plates.
/// Negative years count as 0.
Result apply(const FilmProfile& film, const RenderOptions& options);

/// It is the paste of an instant pack that ages: colour first, contrast later, and a pack turns yellow or
/// blue by the `film` stream's luck.
Result ageInstant(const FilmProfile& film, double years, const RenderOptions& options);

} // namespace tamlo::FilmState
