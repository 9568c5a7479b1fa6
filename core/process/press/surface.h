// The surface of a paper: a lustre grain pressed into it, lit from the side. Any paper may ask for it, silver
// ones too. Domain: display-linear positive, clamped to 0...1; its mean stays.
#pragma once

#include "core/image/rgb_image.h"
#include "core/profiles/formats/paper_profile.h"
#include "core/profiles/options/render_options.h"

namespace tamlo::ReproPrint {

/// Unchanged on a paper without a surface and where the print's texture is off.
/// Units: pxUm micrometres of print a pixel.
RGBImage applySurface(RGBImage image, const PaperProfile& paper, const RenderOptions& options, double pxUm);

} // namespace tamlo::ReproPrint
