// A wet plate seen as itself: an ambrotype on black lacquer, a tintype on iron. Not an inversion but the
// light that the silver scatters over the dark behind it, so that the highlights come together and read milky
// and the shadows fall almost vertically. Domain: absolute density in, display-linear positive out.
#pragma once

#include "core/image/rgb_image.h"
#include "core/profiles/formats/developed_film.h"
#include "core/profiles/formats/paper_profile.h"
#include "core/profiles/options/render_options.h"

#include <optional>

namespace tamlo::Plate {

/// Exposure shift in stops of a plate that is to be seen so: what is not said is -1.5.
double positiveEv(const PaperProfile& paper);

/// Colour of the silver: the plate's own by the developer's tint.
Vec3d silverColor(const std::optional<Vec3d>& tint, const PaperProfile& paper);

/// On an opaque base nothing stands behind the emulsion that could return a ring.
DevelopedFilm withoutGlassOnOpaque(DevelopedFilm film, const PaperProfile& paper);

/// Densities of a plate: what the clear plate reaches, and its fullest silver.
struct Range {
    double dmin = 0.0, dmaxRef = 0.0;
};
/// Intensified silver may go beyond the fullest. Each channel is at least 0.
RGBImage viewPlate(const Plane& density, const PaperProfile& paper, const RenderOptions& options,
                   const Range& range, const std::optional<Vec3d>& silverTint);

} // namespace tamlo::Plate
