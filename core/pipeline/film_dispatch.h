// Film and printing: which stage turns the light at the emulsion into a positive, by film and paper.
#pragma once

#include "core/image/rgb_image.h"
#include "core/profiles/formats/developed_film.h"
#include "core/profiles/formats/paper_profile.h"
#include "core/profiles/options/render_options.h"

#include <optional>
#include <string>
#include <vector>

namespace tamlo::Film {

/// All that a film stage is given beside the picture.
struct FilmInput {
    const DevelopedFilm& film;
    const PaperProfile& paper;
    const RenderOptions& options;
    double pxUm = 0.0; // micrometres of film a pixel
    /// Coverage of the picture window in the rebate; a stage that has used it up drops it.
    std::optional<Plane>& windowMask;
};

/// Runs the first stage whose condition holds. Errors: invalidArgument for a film of unknown type.
RGBImage render(RGBImage light, const FilmInput& input);

/// Size of a picture once it is printed: a brushed coat is wider than the picture.
Size printedSize(Size picture, const FilmProfile& film, const PaperProfile& paper,
                 const RenderOptions& options);

/// The darkest that this process reaches on this paper, per channel: an unexposed 8 × 8 frame without grain
/// and tank pattern, through film, reproduction and scan.
Vec3d printBlackRGB(const DevelopedFilm& film, const PaperProfile& paper, const RenderOptions& options,
                    double pxUm);
/// The same for a film as it comes from the catalogue.
Vec3d printBlackRGB(const FilmProfile& film, const PaperProfile& paper, const RenderOptions& options,
                    double pxUm);

/// Solves ahead of a render what the grain of its film asks for, so that the render finds it solved. Nothing
/// for films whose grain is their own process's. longPx: long side of the picture on the film.
void prepareGrain(const DevelopedFilm& film, const RenderOptions& options, std::int64_t longPx, double pxUm);

} // namespace tamlo::Film
