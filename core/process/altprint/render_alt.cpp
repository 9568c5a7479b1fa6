#include "core/process/altprint/render_alt.h"

#include "core/film/print/black_and_white.h"
#include "core/film/print/black_and_white_passes.h"
#include "core/film/print/color_negative.h"
#include "core/film/print/print.h"
#include "core/image/render_profiler.h"
#include "core/process/altprint/alt_passes.h"
#include "core/process/altprint/alt_steps.h"
#include "core/process/altprint/alt_texture.h"
#include "core/process/altprint/brushed_coat.h"
#include "core/process/altprint/paper_base.h"
#include "core/process/relief/relief.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace tamlo {
namespace {

/// A mask of another size than the picture's says nothing of it.
const Plane* fitting(const Plane* mask, Size size)
{
    return mask && mask->size() == size ? mask : nullptr;
}

bool outOfRange(const PaperProfile& paper, const Vec3f& base)
{
    const auto outside = [](double v) { return !(v >= 0.0 && v <= 1.0); };
    const bool ink = paper.pigment && paper.pigment->rgb &&
                     std::any_of(paper.pigment->rgb->begin(), paper.pigment->rgb->end(), outside);
    return ink || std::any_of(base.begin(), base.end(), outside);
}

} // namespace

AltPrint::Negative AltPrint::developNegative(RGBImage light, const DevelopedFilm& film,
                                             const RenderOptions& options, double pxUm)
{
    Negative negative;
    if (film.film.isBW() || film.film.isCollodion()) {
        Film::SilverNegative silver = Film::bwNegativeDb(std::move(light), film, options, pxUm);
        negative.density = std::move(silver.density);
        negative.d0 = silver.curve.fD0;
    } else {
        negative.db = Film::colorNegativeDb(std::move(light), film, options, pxUm).db;
    }
    return negative;
}

RGBImage AltPrint::printOneCoat(Plane density, float d0, const Job& job)
{
    const PaperProfile& paper = job.paper;
    const RenderOptions& options = job.options;
    const HDCurve curve = Print::paperCurve(paper, options.grade, options.printBlack, options.printWhite);
    const Plane* window = fitting(job.windowMask, density.size());
    Plane amount = printAmount(std::move(density), d0, curve, options.printEv);
    amount = shapeAmount(std::move(amount), paper);
    amount = applyTexture(std::move(amount), paper, options, printSeed(options));
    amount = pressTransfer(std::move(amount), paper, options);

    std::optional<CoatProfiles> coat;
    if (coatStyle(paper, options) != "none") {
        // A clear rebate passes light like the absence of a negative.
        if (window) alt_window(amount, *window, coatBand(paper));
        window = nullptr;
        GrainRNG rng = coatRNG(options);
        coat = coatProfiles(amount.size(), paper, options, rng);
    }
    if (coat) amount = coatCanvas(amount, *coat);

    const Vec3f base = resolveBase(paper, options);
    RGBImage image = colorize(amount, paper, base);
    image = applyRelief(std::move(image), amount, paper, options);
    if (window) composite_mask(image, *window, base);
    if (coat) image = maskPrint(std::move(image), *coat, base);
    if (outOfRange(paper, base)) alt_clamp(image);
    return image;
}

RGBImage Film::renderAlt(RGBImage light, const DevelopedFilm& film, const AltPrint::Job& job, double pxUm)
{
    AltPrint::Negative negative = AltPrint::developNegative(std::move(light), film, job.options, pxUm);
    if (negative.db.pixelCount() == 0)
        return AltPrint::printOneCoat(std::move(negative.density), negative.d0, job);
    // A handmade emulsion sees blue and ultraviolet: the yellow layer holds most of its light back.
    constexpr Vec3d kPaperWeights{0.1, 0.45, 0.45};
    const Vec3d weights = job.paper.spectralWeights.value_or(kPaperWeights);
    const double sum = weights[0] + weights[1] + weights[2];
    Vec3f w{};
    for (std::size_t c = 0; c < 3; ++c) w[c] = static_cast<float>(sum != 0.0 ? weights[c] / sum : weights[c]);
    Plane density(negative.db.width, negative.db.height);
    dot3(density, negative.db, w, {});
    negative.db = {};
    return AltPrint::printOneCoat(std::move(density), 0.0f, job);
}

} // namespace tamlo
