#include "core/pipeline/film_dispatch.h"

#include "core/film/emulsion/development.h"
#include "core/film/print/black_and_white.h"
#include "core/film/print/color_negative.h"
#include "core/film/print/plate_positive.h"
#include "core/film/print/scan.h"
#include "core/film/print/scan_positive.h"
#include "core/film/print/slide.h"
#include "core/image/tamlo_error.h"
#include "core/process/altprint/brushed_coat.h"
#include "core/process/altprint/render_alt.h"
#include "core/process/gum/gum_layers.h"
#include "core/process/instant/instant_film.h"
#include "core/process/press/repro.h"
#include "core/process/tricolor/tricolor.h"
#include "core/text/loc.h"

#include <algorithm>
#include <utility>

namespace tamlo {
namespace {

using Film::FilmInput;

RGBImage scannedPositive(RGBImage positive, const FilmInput& in)
{
    if (!in.paper.scansPositive()) return positive;
    return Film::scanPositive(std::move(positive), in.paper, in.options);
}

RGBImage renderSlidePrint(RGBImage light, const FilmInput& in)
{
    return Film::renderSlidePrint(std::move(light), in.film, in.paper, in.options, in.pxUm);
}

RGBImage renderSlide(RGBImage light, const FilmInput& in)
{
    return scannedPositive(Film::renderSlide(std::move(light), in.film, in.options, in.pxUm), in);
}

RGBImage renderTricolor(RGBImage light, const FilmInput& in)
{
    return scannedPositive(Tricolor::render(std::move(light), in.film, in.options, in.pxUm), in);
}

RGBImage viewPlate(RGBImage light, const FilmInput& in)
{
    return Film::renderPlateView(std::move(light), in.film, in.paper, in.options, in.pxUm);
}

RGBImage renderInstantMono(RGBImage light, const FilmInput& in)
{
    return Film::renderInstantMono(std::move(light), in.film, in.options, in.pxUm);
}

RGBImage renderInstant(RGBImage light, const FilmInput& in)
{
    return Film::renderInstant(std::move(light), in.film, in.options, in.pxUm);
}

/// The handmade print lays the rebate itself and uses the mask up.
template <RGBImage (*Print)(RGBImage, const DevelopedFilm&, const AltPrint::Job&, double)>
RGBImage printByHand(RGBImage light, const FilmInput& in)
{
    const AltPrint::Job job{in.paper, in.options, in.windowMask ? &*in.windowMask : nullptr};
    light = Print(std::move(light), in.film, job, in.pxUm);
    in.windowMask.reset();
    return light;
}

RGBImage renderBW(RGBImage light, const FilmInput& in)
{
    return Film::renderBW(std::move(light), in.film, in.paper, in.options, in.pxUm);
}

RGBImage renderColorOnBWPaper(RGBImage light, const FilmInput& in)
{
    return Film::renderColorOnBWPaper(std::move(light), in.film, in.paper, in.options, in.pxUm);
}

RGBImage renderColor(RGBImage light, const FilmInput& in)
{
    return Film::renderColor(std::move(light), in.film, in.paper, in.options, in.pxUm);
}

bool isNegative(const FilmProfile& film)
{
    return film.type == "color" || film.isBW() || film.isCollodion();
}

bool isSilver(const FilmProfile& film)
{
    return film.isBW() || film.isCollodion();
}

bool isByHand(const FilmProfile& film, const PaperProfile& paper)
{
    return isNegative(film) && paper.isAlt() && !(film.isCollodion() && paper.isPlate());
}

bool hasLayers(const PaperProfile& paper)
{
    return paper.layers && !paper.layers->empty();
}

struct Row {
    bool (*holds)(const FilmProfile&, const PaperProfile&);
    RGBImage (*stage)(RGBImage, const FilmInput&);
};

/// Read from the top: the first row that holds gives the stage.
constexpr Row kTable[] = {
    {[](const FilmProfile& f, const PaperProfile& p) { return f.isSlide() && p.isReversal(); },
     renderSlidePrint},
    {[](const FilmProfile& f, const PaperProfile&) { return f.isSlide(); }, renderSlide},
    {[](const FilmProfile& f, const PaperProfile&) { return f.isTricolor(); }, renderTricolor},
    {[](const FilmProfile& f, const PaperProfile& p) { return f.isCollodion() && p.isPlate(); }, viewPlate},
    {[](const FilmProfile& f, const PaperProfile&) { return f.isMonoInstant(); }, renderInstantMono},
    {[](const FilmProfile& f, const PaperProfile&) { return f.isInstant(); }, renderInstant},
    {[](const FilmProfile& f, const PaperProfile& p) { return isByHand(f, p) && hasLayers(p); },
     printByHand<Film::renderGum>},
    {isByHand, printByHand<Film::renderAlt>},
    {[](const FilmProfile& f, const PaperProfile&) { return isSilver(f); }, renderBW},
    {[](const FilmProfile& f, const PaperProfile& p) { return f.type == "color" && p.isBW(); },
     renderColorOnBWPaper},
    {[](const FilmProfile& f, const PaperProfile&) { return f.type == "color"; }, renderColor},
};

constexpr std::int64_t blackProbePx = 8;
constexpr std::int64_t kStripRows = 8;

} // namespace

RGBImage Film::render(RGBImage light, const FilmInput& input)
{
    for (const Row& row : kTable)
        if (row.holds(input.film.film, input.paper)) return row.stage(std::move(light), input);
    throw TamloError::invalidArgument(T("pipeline.err.filmType", {{"type", input.film.film.type}}));
}

Size Film::printedSize(Size picture, const FilmProfile& film, const PaperProfile& paper,
                       const RenderOptions& options)
{
    return isByHand(film, paper) ? AltPrint::coatedSize(picture, paper, options) : picture;
}

Vec3d Film::printBlackRGB(const DevelopedFilm& film, const PaperProfile& paper, const RenderOptions& options,
                          double pxUm)
{
    RenderOptions probe = options;
    probe.grainMult = 0.0;
    probe.borderPx = probe.borderPxBottom = probe.plateInsetPx = 0.0;
    probe.frameWhitePx.reset();
    probe.matGripsPx.reset();
    probe.picInsetPx.reset();
    probe.blackProbe = true;
    probe.platePour = 0.0;
    probe.coat = "none";
    DevelopedFilm even = film;
    even.unevenField.reset();

    std::optional<Plane> noMask;
    RGBImage image = render(RGBImage(blackProbePx, blackProbePx), {even, paper, probe, pxUm, noMask});
    if (paper.isRepro() || paper.surface)
        image = applyRepro(std::move(image), paper, probe, film.film.isBW());
    if (paper.isScan()) image = applyScan(std::move(image), paper);

    Vec3d sum{};
    for (std::int64_t i = 0; i < image.pixelCount(); ++i)
        for (std::size_t c = 0; c < 3; ++c) sum[c] += image.data[static_cast<std::size_t>(i) * 3 + c];
    for (double& channel : sum) channel /= static_cast<double>(image.pixelCount());
    return sum;
}

Vec3d Film::printBlackRGB(const FilmProfile& film, const PaperProfile& paper, const RenderOptions& options,
                          double pxUm)
{
    return printBlackRGB(applyFilmStateAndDevelopment(film, options), paper, options, pxUm);
}

/// A strip of that length has the same places for grain as the whole picture.
void Film::prepareGrain(const DevelopedFilm& film, const RenderOptions& options, std::int64_t longPx,
                        double pxUm)
{
    if (options.grainEngine != GrainEngine::growth) return;
    RGBImage strip(longPx, std::min(longPx, kStripRows));
    RenderOptions probe = options;
    probe.grainZone = Grain::GrowthZone::aggregate; // the cheaper of two paths that ask for the same
    probe.coat = "none";
    if (film.film.isBW())
        bwNegativeDb(std::move(strip), film, probe, pxUm);
    else if (film.film.isSlide())
        slideDensity(std::move(strip), film, probe, pxUm);
    else if (film.film.type == "color")
        colorNegativeDb(std::move(strip), film, probe, pxUm);
}

} // namespace tamlo
