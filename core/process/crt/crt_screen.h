// A picture shown on a cathode-ray tube and photographed off the screen: the band of the video signal, the
// scan lines, the beams that miss each other towards the sides, the mask and its phosphors, the glow of the
// glass, the curved face, and the camera's lens and exposure. The frame lies inside the screen; no edge of a
// tube is drawn. A structure finer than three pixels is left undrawn, and the tone of it stays (tube_tone.h).
// Domain: display-linear positive in and out.
#pragma once

#include "core/image/rgb_image.h"
#include "core/process/crt/tube.h"
#include "core/profiles/formats/paper_profile.h"
#include "core/profiles/options/render_options.h"

namespace tamlo::CRTScreen {

/// The whole chain, on a picture enlarged to `shown` first where its structure asks for it.
/// Units: pxUm micrometres of screen a pixel of that size.
RGBImage apply(RGBImage image, Size shown, const PaperProfile& paper, const RenderOptions& options,
               double pxUm);

} // namespace tamlo::CRTScreen
