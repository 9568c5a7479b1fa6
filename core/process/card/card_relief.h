// The body of an integral card as the light shows it: a line and a dark skirt along the opening, a diamond
// lattice pressed into the mask, a rounded rim, and corners that may all differ. Measures are millimetres of
// the card. Shape: the canvas of the card with the picture in it. Domain: display-linear.
#pragma once

#include "core/image/random.h"
#include "core/image/rgb_image.h"
#include "core/process/card/card_passes.h"
#include "core/process/mat/sheet_light.h"
#include "core/profiles/formats/film_profile.h"

#include <array>
#include <optional>

namespace tamlo::CardRelief {

/// The card's material and its making; taste, set against scans of cards.
inline constexpr double cornerMm = 0.3;
inline constexpr double chamferRoundFrac = 0.3;
inline constexpr double ringMm = 0.06, ringDark = 0.25;
inline constexpr double skirtMm = 0.15, skirtDepth = 0.3;
inline constexpr double embossTiltDeg = 1.0;
inline constexpr double embossMinPitchPx = 4.0; ///< below it the lattice fades
inline constexpr double thicknessMmDefault = 0.45;

struct Corner {
    bool isChamfer = false;
    double mm = cornerMm;
    double roundMm = chamferRoundFrac * cornerMm; ///< of a chamfer
};
/// Top left, top right, bottom left, bottom right; an absent one is square.
using Corners = std::array<std::optional<Corner>, 4>;

/// Of the card as it leaves the camera.
Corners corners(const InstantFrameParams& frame);
/// As they lie on a turned card.
Corners displayCorners(const Corners& native, bool turned);
/// Whether any corner is taken off, on a card whose size is known.
bool isCut(const InstantFrameParams& frame);

/// Width in millimetres and the light that it leaves, 1 being none.
struct Line {
    double mm = ringMm;
    double gain = ringDark;
};
Line windowLine(const InstantFrameParams& frame);

/// Colour of the card's body.
Vec3d baseTint(const InstantFrameParams& frame);

/// How the card lies on its canvas.
struct Lying {
    Size canvas;
    Size picture;
    std::int64_t left = 0, top = 0; ///< of the picture
    double pxMm = 1.0;              ///< pixels a millimetre
    bool turned = false;
};

/// Everything of a card's body. A card with an embossed lattice takes three draws: its tilt and two phases.
CardParams plan(const InstantFrameParams& frame, const Lying& lying, const Vec3f& base, const Vec3f& outside,
                GrainRNG& rng);

/// Signed distance in pixels from the card's outline, negative inside, at a continuous place.
double sdf(const Outline& outline, double x, double y);
Outline outline(const InstantFrameParams& frame, Size canvas, double pxMm, bool turned);

/// What of each pixel the card covers, 0...1.
Plane mask(const Outline& outline);

/// The cut-out card over white, for a file without transparency. The image carries its coverage.
RGBImage flatten(RGBImage image, const Plane& mask);
/// The card's own colour also where a pixel is covered in part.
RGBImage unmixed(RGBImage image, const Plane& mask);

} // namespace tamlo::CardRelief
