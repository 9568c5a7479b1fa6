// Three black-and-white plates of one scene, taken one after another through a red, a green and a blue
// filter, printed by contact as three diapositives and thrown on one screen through three filters. No dye
// takes part: the colour is light added to light, and what did not lie in place shows as coloured edges.
// Domain: light at the emulsion in; display-linear transmission out, as of a slide.
#pragma once

#include "core/film/emulsion/hd_curve.h"
#include "core/image/random.h"
#include "core/image/rgb_image.h"
#include "core/profiles/formats/developed_film.h"
#include "core/profiles/options/render_options.h"

#include <array>
#include <cstdint>
#include <string_view>

namespace tamlo::Tricolor {

/// The plates in the order that everything is drawn in; red is the reference.
inline constexpr std::array<std::string_view, 3> plates{"r", "g", "b"};
/// Offset of the process's generator in the `film` stream.
inline constexpr std::uint64_t salt = 68;

/// The curves of the negatives and of the diapositives.
struct Curves {
    HDCurve neg, pos;
};
Curves curves(const FilmProfile& film);

/// Exposure of each plate in stops. Draws one normal a plate where the profile has a spread, else nothing.
std::array<double, 3> plateEV(const FilmProfile& film, GrainRNG& rng);

/// Seed of the growth grain of a plate: grain of its own, whatever its registration.
std::uint32_t grainSeed(const RenderOptions& options, std::size_t plate);

/// Units: pxUm micrometres of plate a pixel. Errors: those of the silver chain.
RGBImage render(RGBImage light, const DevelopedFilm& film, const RenderOptions& options, double pxUm);

} // namespace tamlo::Tricolor
