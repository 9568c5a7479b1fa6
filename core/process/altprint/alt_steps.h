// Steps of a handmade print that one coat and several share: from a negative's density to an amount of
// colourant t, 0...1, its shape, what a press takes over, and the colour that it gives on the paper.
// A silver paper's curve gives a brightness; here it gives an amount, and the colour is the colourant's.
#pragma once

#include "core/film/emulsion/hd_curve.h"
#include "core/image/rgb_image.h"
#include "core/profiles/formats/paper_profile.h"
#include "core/profiles/options/render_options.h"

#include <cstdint>

namespace tamlo::AltPrint {

/// Seed of a print's texture: the first draw of the frame's `print` stream.
std::uint64_t printSeed(const RenderOptions& options);

/// How much of its range the paper's curve gives at each density. Units: d0 the density of a grey card,
/// ev stops. The plane is changed in place.
Plane printAmount(Plane density, float d0, const HDCurve& curve, double ev);

/// The hard cut of an inked print's highlights, then the filling-in of its shadows.
Plane shapeAmount(Plane amount, const PaperProfile& paper);

/// What a press lifts off an inked matrix: less in the midtones than in full ink, and a little soft.
/// Does nothing without a `transfer` in the profile.
Plane pressTransfer(Plane amount, const PaperProfile& paper, const RenderOptions& options);

/// Colour of an amount on the paper: ink covers it, a stain in the fibre filters it by Bouguer and Lambert.
RGBImage colorize(const Plane& amount, const PaperProfile& paper, const Vec3f& base);

} // namespace tamlo::AltPrint
