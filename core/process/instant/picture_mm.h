// The real size of an instant picture, to which all that the reagent and the rollers leave on it is scaled.
// Only instant film knows its size.
#pragma once

#include "core/image/plane.h"
#include "core/profiles/formats/film_profile.h"
#include "core/profiles/options/render_options.h"

#include <optional>

namespace tamlo::Film {

/// Width of a picture whose profile gives no size.
inline constexpr double kCardUm = 79'000.0;

/// Height and width, millimetres.
struct ImageMm {
    double height = 0.0;
    double width = 0.0;
};

/// The picture in millimetres, its long side as its card says and both axes at one scale, whether or not it
/// is cut to the card; absent where the profile gives none.
std::optional<ImageMm> imageMm(const FilmProfile& film, const RenderOptions& options, Size picture);
/// Long side of the picture on pack film; absent on other film.
std::optional<double> peelImageLongMm(const FilmProfile& film, const RenderOptions& options);

/// Scale of the surface.
struct PictureScale {
    double pxUm = 1.0;   ///< micrometres of the picture a pixel
    double longMm = 1.0; ///< its long side
    double ppmm = 1.0;   ///< pixels a millimetre
};
PictureScale pictureScale(const FilmProfile& film, const RenderOptions& options, Size picture);

} // namespace tamlo::Film
