// The card round an instant picture, as sizes: its margins, the way it lies, its scale, and what a mat grips
// of it. Plain numbers, so that the output plan can ask without drawing. An integral card has a body in
// shares of the picture's long side, a peel-apart sheet in millimetres.
#pragma once

#include "core/image/random.h"
#include "core/image/rgb_image.h"
#include "core/profiles/formats/film_profile.h"
#include "core/profiles/options/render_options.h"

#include <array>
#include <cstdint>
#include <optional>

namespace tamlo::Pipeline {

/// White of the card round the picture, pixels.
struct CardMargins {
    std::int64_t top = 0, bottom = 0, left = 0, right = 0;
    Size around(Size picture) const { return {picture.width + left + right, picture.height + top + bottom}; }
};

/// The frame block of a film, or that of a plain integral card.
const InstantFrameParams& cardFrame(const FilmProfile& film);
bool isPeel(const InstantFrameParams& frame);

/// The picture lies across the way in which the card leaves the camera. A square picture is never turned.
bool isTurnedCard(const InstantFrameParams& frame, Size picture);

/// Long side of the picture on the card in millimetres; 0 where the frame gives none.
double cardImageLongMm(const InstantFrameParams& frame, const OptText& peelSize);

/// Errors: none; a card that no memory holds is refused where it is drawn.
CardMargins instantFrameWhites(Size picture, const InstantFrameParams& frame, const OptText& peelSize);

/// The options of a finished card: the scale is the card's, and a mat grips it so that 3 mm of its margin
/// show round the picture, hardly off centre.
RenderOptions instantCardOptions(const FilmProfile& film, RenderOptions options, Size picture, Size card);

/// Grips of a mat on a card, pixels: top, bottom, left, right. Two draws of the `print` stream.
std::array<double, 4> matCardGrips(Size picture, const InstantFrameParams& frame,
                                   const RenderOptions& options);

/// Stream of the card's own draws.
GrainRNG instantFrameRNG(const FilmProfile& film, const RenderOptions& options);

/// Nothing lies outside an integral card, so that its rounded outline can be cut out of the file: no mat, no
/// table and no colour for it.
bool cardMaskApplies(const FilmProfile& film, const RenderOptions& options);

} // namespace tamlo::Pipeline
