// What a plate measures beyond its curves: how even its coat lies, what the chemistry left on it, how much of
// it is bare, and the ring that its glass gives a light. Read as a densitometer reads it, from quarter plates
// (101 × 76 mm) that the silver chain makes under a dark, an even and a single light, without grain.
#pragma once

#include "core/profiles/formats/film_profile.h"
#include "core/profiles/options/render_options.h"

#include <optional>

namespace tamlo::Sensitometry {

struct PlateReport {
    /// Density of a plate exposed evenly to a grey card, 12 mm and more from its edges: standard deviation,
    /// least and most against the mean.
    double unevenness = 0.0, thinnest = 0.0, thickest = 0.0;
    double veil = 0.0;     ///< mean density above the base of the same part, unexposed
    double rim = 0.0;      ///< density of the outermost 2 mm against the mean of that part, exposed
    double bare = 0.0;     ///< share of the plate with less than half of that mean
    double crystals = 0.0; ///< share of the unexposed plate that crystals darken by 0.05 or more
    /// Radius of the ring round a light; absent without one.
    std::optional<double> ringMm;
};

/// Options: platePour, push, developer and seed of the plate. Nothing for a film that is no plate.
std::optional<PlateReport> measurePlate(const FilmProfile& film, const RenderOptions& options);

} // namespace tamlo::Sensitometry
