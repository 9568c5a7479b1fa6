// Reproduction: the finished positive of a paper that reaches the eye through a machine, run through the
// physics of its press, and the surface that any paper may have. The picture comes out larger where the plan
// of its structure asks for it.
// Domain: display-linear positive, read as reflectance relative to the paper.
#pragma once

#include "core/image/rgb_image.h"
#include "core/profiles/formats/paper_profile.h"
#include "core/profiles/options/render_options.h"

namespace tamlo::Film {

/// Offset, inkjet, the photographed screen and added surface; a picture on other papers passes through. The
/// print's scale is options.printPxUm, micrometres of print a pixel of the image as it is handed in. `mono`
/// is true for a black-and-white film, which offset prints with black alone.
RGBImage applyRepro(RGBImage image, const PaperProfile& paper, const RenderOptions& options, bool mono);

} // namespace tamlo::Film
