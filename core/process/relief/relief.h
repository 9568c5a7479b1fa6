// Relief of a thick pigment layer. Carbon tissue and gum stand up from the paper by the amount of pigment,
// and a slanting light finds the slopes: flanks that face it are lighter, the others darker, and full layers
// have a sheen. It runs on the coloured print with the amount of colourant beside it. Domain: display-linear
// positive. Light is redistributed, none is added: the modulation has a mean of 0 where the pigment lies.
#pragma once

#include "core/image/rgb_image.h"
#include "core/profiles/formats/paper_profile.h"
#include "core/profiles/options/render_options.h"

namespace tamlo::AltPrint {

/// The print in slanting light. Shape: `amount` (colourant, 0...1) of the image's size.
/// Units: options.printPxUm micrometres of print a pixel. Does nothing without a relief in the profile or at
/// knob 0.
RGBImage applyRelief(RGBImage image, const Plane& amount, const PaperProfile& paper,
                     const RenderOptions& options);

} // namespace tamlo::AltPrint
