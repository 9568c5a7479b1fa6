// Reversal film: the layer curves read backwards give the positive directly. A slide has no printer who
// filters out the base, so all layers are read against one reference, the smallest Dmin, and their
// differences show as a cast. It is shown as a transparency, printed on reversal paper, or read by a scanner
// (scan_positive.h). Domain: light at the emulsion in; display-linear 0...1 out.
#pragma once

#include "core/film/emulsion/hd_curve.h"
#include "core/image/rgb_image.h"
#include "core/profiles/formats/developed_film.h"
#include "core/profiles/formats/paper_profile.h"
#include "core/profiles/options/render_options.h"

#include <array>

namespace tamlo::Film {

/// Toe of a reversal film's curves where its profile gives none.
inline constexpr double kPositiveToe = 1.2;

/// Curves of a positive material: a layer without a mid density is anchored where it shows as 0.18.
std::array<HDCurve, 3> positiveCurves(const ColorLayers& layers, double defaultToe);

/// A developed slide: absolute density per layer and the curves that made it.
struct SlideFilm {
    RGBImage density;
    std::array<HDCurve, 3> curves;
};

/// Units: pxUm micrometres of film a pixel. Errors: ProfileError "slide film without 'layers'".
SlideFilm slideDensity(RGBImage light, const DevelopedFilm& film, const RenderOptions& options, double pxUm);

/// The transparency. Units: pxUm micrometres of film a pixel.
/// Errors: ProfileError "slide film without 'layers'".
RGBImage renderSlide(RGBImage light, const DevelopedFilm& film, const RenderOptions& options, double pxUm);

/// The transparency printed on a positive paper.
RGBImage renderSlidePrint(RGBImage light, const DevelopedFilm& film, const PaperProfile& paper,
                          const RenderOptions& options, double pxUm);

} // namespace tamlo::Film
