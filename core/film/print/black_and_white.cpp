#include "core/film/print/black_and_white.h"

#include "core/film/emulsion/adjacency.h"
#include "core/film/emulsion/dev_field.h"
#include "core/film/emulsion/emulsion_soften.h"
#include "core/film/emulsion/halation.h"
#include "core/film/grain/grain_stage.h"
#include "core/film/print/black_and_white_passes.h"
#include "core/film/print/color_negative.h"
#include "core/film/print/print.h"
#include "core/image/render_profiler.h"
#include "core/process/plates/plate_coating.h"
#include "core/profiles/formats/profile_error.h"

#include <algorithm>
#include <utility>

namespace tamlo {
namespace {

HDCurve silverCurve(const FilmProfile& film, double intensify)
{
    const NegativeLayer& n = *film.negative;
    double dmax = n.dmax;
    if (film.isCollodion() && intensify > 0.0 && n.dmaxIntensified)
        dmax += (*n.dmaxIntensified - n.dmax) * std::min(intensify, 1.0);
    return {n.dmin, dmax, n.gamma, n.toe.value_or(1.6), n.midDensity.value_or(0.95)};
}

/// Prints one plane of density differences d - d0 on the paper.
RGBImage printPlane(const Plane& density, float d0, const PaperProfile& paper, const RenderOptions& options)
{
    const RenderProfiler::Scope booked("print", density.width * density.height);
    PrintBWParams params;
    params.curve = Print::paperCurve(paper, options.grade, options.printBlack, options.printWhite);
    params.d0 = d0;
    params.printEvTerm = static_cast<float>(Print::printEvTerm(options.printEv));
    const std::span<const float> samples(density.data.data(), density.data.size());
    params.flareAdd = static_cast<float>(
        Film::enlargerFlareAdd(paper.flare.value_or(0.0), samples, {1, 0}, d0, params.printEvTerm));
    if (paper.tone)
        for (std::size_t c = 0; c < 3; ++c) params.tone[c] = static_cast<float>((*paper.tone)[c]);
    RGBImage out(density.width, density.height);
    print_bw(out, density, params);
    return out;
}

} // namespace

Vec3f Film::normalisedWeights(const Vec3d& weights)
{
    Vec3f w{static_cast<float>(weights[0]), static_cast<float>(weights[1]), static_cast<float>(weights[2])};
    const float sum = w[0] + w[1] + w[2];
    if (sum != 0.0f)
        for (float& v : w) v /= sum;
    return w;
}

Film::SilverNegative Film::bwNegativeDb(RGBImage light, const DevelopedFilm& film,
                                        const RenderOptions& options, double pxUm, const PlateExposure& plate)
{
    if (!film.film.negative) throw ProfileError::invalid("BW film without 'negative'");
    const Vec3d own = film.film.spectralWeights.value_or(Vec3d{0.3, 0.36, 0.34});
    Plane y(light.width, light.height);
    RenderProfiler::cpu("emulsion input", light.pixelCount(),
                        [&] { dot3(y, light, normalisedWeights(plate.weights.value_or(own)), {}); });
    light = {}; // the silver chain runs on a third of the scene's memory

    y = emulsionSoften(std::move(y), film.film, pxUm);
    y = applyHalation(std::move(y), film.film.halation, pxUm, options.halationMult);
    Plate::Coating coat(film.film, options, y.size(), pxUm);
    const auto coated = [&](auto&& step) { RenderProfiler::cpu("plate", y.count(), step); };
    coated([&] { y = coat.onLight(std::move(y)); });
    const HDCurve curve = silverCurve(film.film, options.intensify);
    const double ev = plate.evExtra + options.ev + film.exposureShift;
    RenderProfiler::cpu("curves", y.width * y.height,
                        [&] { curve_bw(y, curve, static_cast<float>(ev * LOG10_2)); });
    coated([&] { y = coat.onDensity(std::move(y), curve.dmin, curve.dmax); });
    if (film.unevenField) y = DevField::apply(std::move(y), curve.fDmin, *film.unevenField);
    y = applyAdjacency(std::move(y), film, pxUm);
    y = addGrain(std::move(y), curve, film.film, options, pxUm, plate.grainSeed);
    coated([&] { y = coat.atTheEnd(std::move(y), curve.dmin); });
    return {std::move(y), curve};
}

RGBImage Film::renderBW(RGBImage light, const DevelopedFilm& film, const PaperProfile& paper,
                        const RenderOptions& options, double pxUm)
{
    SilverNegative negative = bwNegativeDb(std::move(light), film, options, pxUm);
    return printPlane(negative.density, negative.curve.fD0, paper, options);
}

RGBImage Film::renderColorOnBWPaper(RGBImage light, const DevelopedFilm& film, const PaperProfile& paper,
                                    const RenderOptions& options, double pxUm)
{
    // A black-and-white paper is hardly sensitive to the red that the cyan layer holds back.
    constexpr Vec3d kPaperWeights{0.1, 0.45, 0.45};
    ColorNegative negative = colorNegativeDb(std::move(light), film, options, pxUm);
    Plane db(negative.db.width, negative.db.height);
    dot3(db, negative.db, normalisedWeights(paper.spectralWeights.value_or(kPaperWeights)), {});
    negative.db = {};
    return printPlane(db, 0.0f, paper, options);
}

} // namespace tamlo
