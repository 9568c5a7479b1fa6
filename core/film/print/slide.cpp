#include "core/film/print/slide.h"

#include "core/film/emulsion/adjacency.h"
#include "core/film/emulsion/dev_field.h"
#include "core/film/emulsion/emulsion_soften.h"
#include "core/film/emulsion/halation.h"
#include "core/film/grain/grain_stage.h"
#include "core/film/print/color_negative_passes.h"
#include "core/film/print/print.h"
#include "core/film/print/slide_passes.h"
#include "core/image/render_profiler.h"
#include "core/profiles/formats/profile_error.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tamlo {
namespace {

SlidePrintParams planPrint(const PaperProfile& paper, const RenderOptions& options)
{
    SlidePrintParams params;
    params.curve = Print::paperCurve(paper, options.grade, options.printBlack, options.printWhite);
    params.printEvTerm =
        static_cast<float>(Print::printEvTerm(options.printEv - paper.exposureEv.value_or(0.0)));
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

    const CurvesColorParams params = planColorCurves(film, options);
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
