// Instant film: a direct positive, exposed and viewed as one sheet, so that there is no print and no paper.
// Order: diffusion in the pod, softness, halation, the positive curves, the surface that the reagent and the
// rollers leave in density, and the light that the sheet throws back. No grain stage: the dyes have none that
// one could see. Domain: light at the emulsion in; display-linear 0...1 out, of the same size. The card round
// the picture stands in core/process/card.
#pragma once

#include "core/image/rgb_image.h"
#include "core/profiles/formats/developed_film.h"
#include "core/profiles/options/render_options.h"

namespace tamlo::Film {

/// Three dye layers. Units: pxUm micrometres of film a pixel.
/// Errors: ProfileError "instant film without 'layers'".
RGBImage renderInstant(RGBImage light, const DevelopedFilm& film, const RenderOptions& options, double pxUm);

/// One silver layer, its curve that of `r`. The same units and errors.
RGBImage renderInstantMono(RGBImage light, const DevelopedFilm& film, const RenderOptions& options,
                           double pxUm);

} // namespace tamlo::Film
