// What an instant picture measures: the density of its finished positive, and how far the surface that the
// reagent and the rollers leave departs from even, part by part. Read from pictures that the stages of a
// render make; nothing is read from the profile's own figures but the size of the card.
#pragma once

#include "core/profiles/formats/developed_film.h"
#include "core/profiles/options/render_options.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace tamlo::Sensitometry {

/// Standard deviation of density of a grey card on the whole picture, the layers' variances weighed by the
/// eye.
struct SurfacePart {
    std::string name; ///< "mottle", "fine", "streaks", "silk", "chatter", "lattice"
    double deviation = 0.0;
};

struct InstantSurface {
    double density = 0.0;           ///< visual, over white
    double whole = 0.0;             ///< deviation of all parts together
    std::vector<SurfacePart> parts; ///< those that are there
};

/// Of a developed film; absent on other film.
std::optional<InstantSurface> measureInstantSurface(const DevelopedFilm& film, const RenderOptions& options);

/// Reflection densities of a picture on instant film without its surface: three planes, or one of a silver
/// picture. Units: pxUm micrometres of film a pixel. Errors: those of the stage.
std::vector<Plane> instantDensities(RGBImage light, const DevelopedFilm& film, const RenderOptions& options,
                                    double pxUm);

} // namespace tamlo::Sensitometry
