#include "core/pipeline/film_dispatch.h"

#include "core/film/black_and_white.h"
#include "core/film/color_negative.h"
#include "core/film/development.h"
#include "core/film/pending_stages.h"
#include "core/film/scan.h"
#include "core/film/scan_positive.h"
#include "core/film/slide.h"
#include "core/image/tamlo_error.h"

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
    return scannedPositive(Pending::renderTricolor(std::move(light)), in);
}

RGBImage viewPlate(RGBImage light, const FilmInput&)
{
    return Pending::viewPlate(std::move(light));
}

RGBImage renderInstantMono(RGBImage light, const FilmInput&)
{
    return Pending::renderInstantMono(std::move(light));
}

RGBImage renderInstant(RGBImage light, const FilmInput&)
{
    return Pending::renderInstant(std::move(light));
}

RGBImage renderAlt(RGBImage light, const FilmInput& in)
{
    light = Pending::renderAlt(std::move(light));
    in.windowMask.reset(); // the alternative print has laid the rebate itself
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

struct Row {
    bool (*holds)(const FilmProfile&, const PaperProfile&);
    RGBImage (*stage)(RGBImage, const FilmInput&);
    /// What is not built yet and lets the light through; null where the stage stands.
    const char* pending = nullptr;
};

bool isNegative(const FilmProfile& film)
{
    return film.type == "color" || film.isBW() || film.isCollodion();
}

bool isSilver(const FilmProfile& film)
{
    return film.isBW() || film.isCollodion();
}

/// Read from the top: the first row that holds gives the stage.
constexpr Row kTable[] = {
    {[](const FilmProfile& f, const PaperProfile& p) { return f.isSlide() && p.isReversal(); },
     renderSlidePrint},
    {[](const FilmProfile& f, const PaperProfile&) { return f.isSlide(); }, renderSlide},
    {[](const FilmProfile& f, const PaperProfile&) { return f.isTricolor(); }, renderTricolor,
     "three-colour plates"},
    {[](const FilmProfile& f, const PaperProfile& p) { return f.isCollodion() && p.isPlate(); }, viewPlate,
     "the view of a plate"},
    {[](const FilmProfile& f, const PaperProfile&) { return f.isMonoInstant(); }, renderInstantMono,
     "instant film"},
    {[](const FilmProfile& f, const PaperProfile&) { return f.isInstant(); }, renderInstant, "instant film"},
    {[](const FilmProfile& f, const PaperProfile& p) { return isNegative(f) && p.isAlt(); }, renderAlt,
     "alternative prints"},
    {[](const FilmProfile& f, const PaperProfile&) { return isSilver(f); }, renderBW},
    {[](const FilmProfile& f, const PaperProfile& p) { return f.type == "color" && p.isBW(); },
     renderColorOnBWPaper},
    {[](const FilmProfile& f, const PaperProfile&) { return f.type == "color"; }, renderColor},
};

constexpr std::int64_t blackProbePx = 8;

} // namespace

RGBImage Film::render(RGBImage light, const FilmInput& input)
{
    for (const Row& row : kTable)
        if (row.holds(input.film.film, input.paper)) return row.stage(std::move(light), input);
    throw TamloError::invalidArgument("film type \"" + input.film.film.type +
                                      "\" (use color, bw, slide, instant, collodion or tricolor)");
}

std::optional<std::string> Film::pendingStage(const FilmProfile& film, const PaperProfile& paper)
{
    for (const Row& row : kTable)
        if (row.holds(film, paper)) {
            if (row.pending) return row.pending;
            break;
        }
    if (paper.isRepro()) return "reproduction on a screen or in print";
    return std::nullopt;
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
    DevelopedFilm even = film;
    even.unevenField.reset();

    std::optional<Plane> noMask;
    RGBImage image = render(RGBImage(blackProbePx, blackProbePx), {even, paper, probe, pxUm, noMask});
    image = Pending::applyRepro(std::move(image));
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

} // namespace tamlo
