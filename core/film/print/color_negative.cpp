#include "core/film/print/color_negative.h"

#include "core/film/emulsion/adjacency.h"
#include "core/film/emulsion/dev_field.h"
#include "core/film/emulsion/emulsion_soften.h"
#include "core/film/emulsion/halation.h"
#include "core/film/grain/grain_stage.h"
#include "core/film/print/color_negative_passes.h"
#include "core/film/print/print.h"
#include "core/film/print/slide.h"
#include "core/image/render_profiler.h"
#include "core/profiles/formats/profile_error.h"

#include <cmath>

namespace tamlo {
namespace {

HDCurve layerCurve(const NegativeLayer& layer)
{
    return {layer.dmin, layer.dmax, layer.gamma, layer.toe.value_or(1.5), layer.midDensity.value_or(0.85)};
}

PrintColorParams planPrint(const Film::ColorNegative& negative, const DevelopedFilm& film,
                           const PaperProfile& paper, const RenderOptions& options)
{
    PrintColorParams params;
    params.curve = Print::paperCurve(paper, options.grade, options.printBlack, options.printWhite);
    params.printEvTerm = static_cast<float>(Print::printEvTerm(options.printEv));
    const std::span<const float> db(negative.db.data.data(), negative.db.data.size());
    for (std::int64_t c = 0; c < 3; ++c)
        params.flareAdd[static_cast<std::size_t>(c)] = static_cast<float>(
            Film::enlargerFlareAdd(paper.flare.value_or(0.0), db, {3, c}, 0.0f, params.printEvTerm));
    params.look = Film::LookOp(film.film.look);
    if (paper.tone)
        for (std::size_t c = 0; c < 3; ++c) params.tone[c] = static_cast<float>((*paper.tone)[c]);
    return params;
}

} // namespace

CurvesColorParams Film::planColorCurves(const DevelopedFilm& film, const RenderOptions& options)
{
    const bool positive = film.film.isSlide() || film.film.isInstant();
    const ColorLayers& layers = *film.film.layers;
    CurvesColorParams params;
    params.curves = positive ? positiveCurves(layers, kPositiveToe)
                             : std::array{layerCurve(layers.r), layerCurve(layers.g), layerCurve(layers.b)};
    params.evTerm = static_cast<float>((options.ev + film.exposureShift) * LOG10_2);
    params.negate = positive;
    params.couplers = GPUCouplers(film.film.couplers, positive, !positive, options.interlayer);
    params.unevenWeights = DevField::layerWColor;
    if (positive) {
        // Longer development of a reversal film thins it.
        for (float& weight : params.unevenWeights) weight = -weight;
        return params;
    }
    const Vec3d layerEV = film.layerEV.value_or(Vec3d{});
    for (std::size_t c = 0; c < 3; ++c) params.layerEv[c] = static_cast<float>(layerEV[c] * LOG10_2);
    params.retainedSilver = film.retainedSilver > 0.0001 ? static_cast<float>(film.retainedSilver) : 0.0f;
    return params;
}

GPUCouplers::GPUCouplers(const std::optional<Couplers>& couplers, bool allowNegative, bool allowMatrix,
                         bool interlayer)
{
    if (!couplers) return;
    const bool own = allowMatrix && couplers->matrix;
    const auto& given = own ? couplers->matrix : interlayer ? couplers->matrixDs : std::nullopt;
    if (const auto taken = given ? asMatrix3(*given) : std::nullopt) {
        mode = Mode::matrix;
        for (std::size_t i = 0; i < 3; ++i)
            for (std::size_t j = 0; j < 3; ++j) a[i][j] = static_cast<float>((*taken)[i][j]);
        return;
    }
    const double saturation = couplers->saturation.value_or(0.0);
    if (saturation > 0.0 || (allowNegative && std::abs(saturation) > 0.0001)) {
        mode = Mode::scalar;
        csF = static_cast<float>(saturation + 1.0);
    }
}

Film::ColorNegative Film::colorNegativeDb(RGBImage light, const DevelopedFilm& film,
                                          const RenderOptions& options, double pxUm)
{
    if (!film.film.layers) throw ProfileError::invalid("color film without 'layers'");
    light = emulsionSoften(std::move(light), film.film, pxUm);
    light = applyHalation(std::move(light), film.film.halation, pxUm, options.halationMult);

    const CurvesColorParams params = planColorCurves(film, options);
    ColorNegative negative{std::move(light), {}, params.curves};
    RenderProfiler::cpu("curves", negative.db.pixelCount(), [&] {
        curves_color(negative.db, params, film.unevenField ? &*film.unevenField : nullptr);
    });

    negative.db = applyAdjacency(std::move(negative.db), film, pxUm);
    negative.db = addGrain(std::move(negative.db), params.curves, film.film, options, pxUm);

    for (std::size_t c = 0; c < 3; ++c) negative.d0[c] = params.curves[c].fD0;
    RenderProfiler::cpu("curves", negative.db.pixelCount(),
                        [&] { subtract_anchor(negative.db, negative.d0); });
    return negative;
}

double Film::enlargerFlareAdd(double flare, std::span<const float> density, Channel channel, float d0,
                              float printEvTerm)
{
    if (flare <= 0.0) return 0.0;
    return flare * mean_paper_light(density, channel, d0, printEvTerm);
}

RGBImage Film::renderColor(RGBImage light, const DevelopedFilm& film, const PaperProfile& paper,
                           const RenderOptions& options, double pxUm)
{
    ColorNegative negative = colorNegativeDb(std::move(light), film, options, pxUm);
    const RenderProfiler::Scope booked("print", negative.db.pixelCount());
    const PrintColorParams params = planPrint(negative, film, paper, options);
    print_color(negative.db, params);
    return std::move(negative.db);
}

} // namespace tamlo
