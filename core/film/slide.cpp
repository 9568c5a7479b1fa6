#include "core/film/slide.h"

#include "core/film/adjacency.h"
#include "core/film/color_negative_passes.h"
#include "core/film/dev_field.h"
#include "core/film/emulsion_soften.h"
#include "core/film/grain_stage.h"
#include "core/film/halation.h"
#include "core/film/print.h"
#include "core/film/slide_passes.h"
#include "core/image/render_profiler.h"
#include "core/profiles/profile_error.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tamlo {
namespace {

constexpr double kSlideToe = 1.2;

CurvesColorParams planCurves(const DevelopedFilm& film, const RenderOptions& options)
{
    CurvesColorParams params;
    params.curves = Film::positiveCurves(*film.film.layers, kSlideToe);
    params.evTerm = static_cast<float>((options.ev + film.exposureShift) * LOG10_2);
    params.negate = true;
    params.couplers = GPUCouplers(film.film.couplers, true, false, options.interlayer);
    // Longer development of a reversal film thins it.
    for (std::size_t c = 0; c < 3; ++c) params.unevenWeights[c] = -DevField::layerWColor[c];
    return params;
}

SlidePrintParams planPrint(const PaperProfile& paper, const RenderOptions& options)
{
    SlidePrintParams params;
    params.curve = Print::paperCurve(paper, options.grade, options.printBlack, options.printWhite);
    params.printEvTerm = static_cast<float>(Print::printEvTerm(options.printEv));
    const double purity = paper.dyePurity.value_or(0.0);
    if (std::abs(purity) >= 0.0001) params.dyePurity = static_cast<float>(1.0 + purity);
    if (paper.tone)
        for (std::size_t c = 0; c < 3; ++c) params.tone[c] = static_cast<float>((*paper.tone)[c]);
    return params;
}

} // namespace

std::array<HDCurve, 3> Film::positiveCurves(const ColorLayers& layers, double defaultToe)
{
    const auto curve = [&](const NegativeLayer& l) {
        return HDCurve(l.dmin, l.dmax, l.gamma, l.toe.value_or(defaultToe),
                       l.midDensity.value_or(kPaperAnchor));
    };
    return {curve(layers.r), curve(layers.g), curve(layers.b)};
}

Film::SlideFilm Film::slideDensity(RGBImage light, const DevelopedFilm& film, const RenderOptions& options,
                                   double pxUm)
{
    if (!film.film.layers) throw ProfileError::invalid("slide film without 'layers'");
    light = emulsionSoften(std::move(light), film.film, pxUm);
    light = applyHalation(std::move(light), film.film.halation, pxUm, options.halationMult);

    const CurvesColorParams params = planCurves(film, options);
    RenderProfiler::cpu("curves", light.pixelCount(), [&] {
        curves_color(light, params, film.unevenField ? &*film.unevenField : nullptr);
    });
    RGBImage density = applyAdjacency(std::move(light), film, pxUm);
    return {addGrain(std::move(density), params.curves, film.film, options, pxUm), params.curves};
}

RGBImage Film::renderSlide(RGBImage light, const DevelopedFilm& film, const RenderOptions& options,
                           double pxUm)
{
    SlideFilm slide = slideDensity(std::move(light), film, options, pxUm);
    const auto& curves = slide.curves;
    const float reference = std::min({curves[0].fDmin, curves[1].fDmin, curves[2].fDmin});
    RenderProfiler::cpu("print", slide.density.pixelCount(),
                        [&] { positive_out(slide.density, reference, LookOp(film.film.look)); });
    return std::move(slide.density);
}

RGBImage Film::renderSlidePrint(RGBImage light, const DevelopedFilm& film, const PaperProfile& paper,
                                const RenderOptions& options, double pxUm)
{
    RGBImage transparency = renderSlide(std::move(light), film, options, pxUm);
    RenderProfiler::cpu("print", transparency.pixelCount(),
                        [&] { slide_print(transparency, planPrint(paper, options)); });
    return transparency;
}

} // namespace tamlo
