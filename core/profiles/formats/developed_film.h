// DevelopedFilm: a film after its state (age, redscale, intensification) and its development were worked
// into its numbers, the value that every film stage receives. A copy for one render.
#pragma once

#include "core/image/plane.h"
#include "core/profiles/formats/film_profile.h"

namespace tamlo {

struct DevelopedFilm {
    FilmProfile film;
    double exposureShift = 0; ///< stops; a pushed slide
    /// The developer's own edge effect: strength, reach in micrometres, limit. Apart from film.adjacency.
    double adjacency = 0;
    double adjacencyUm = 150;
    double adjacencySat = 0.3;
    double retainedSilver = 0; ///< share of silver left in the dye image
    std::optional<Vec3d> silverTint;
    double devMottle = 1;
    double tempRough = 1;         ///< how much rougher instant film gets away from room temperature
    std::optional<Vec3d> layerEV; ///< stops per layer
    std::optional<Plane> unevenField;
};

} // namespace tamlo
