#include "core/pipeline/output_plan.h"

#include "core/film/print/scan.h"
#include "core/image/orient.h"
#include "core/image/resample.h"
#include "core/image/rounding.h"
#include "core/pipeline/crop_geometry.h"
#include "core/pipeline/film_dispatch.h"
#include "core/pipeline/render_size.h"
#include "core/process/card/card_geometry.h"
#include "core/process/mat/mat_plan.h"
#include "core/process/mat/table.h"
#include "core/process/raster/raster_note.h"
#include "core/process/raster/tube_geometry.h"
#include "core/process/rebate/frame_plan.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <optional>

namespace tamlo {
namespace {

constexpr double kFullScale = 0.999; // a scale from here on leaves a finished picture alone
constexpr double kSocialAspect = 0.8;

std::int64_t longSideOf(Size size)
{
    return std::max(size.width, size.height);
}

template <std::int64_t (*Rounded)(double)>
Size scaledBy(Size size, double k)
{
    const auto side = [&](std::int64_t v) {
        return std::max<std::int64_t>(Rounded(k * static_cast<double>(v)), 1);
    };
    return {side(size.width), side(size.height)};
}

/// The picture as it enters the lens: cropped, turned, under the master's ceiling where it has one, cut to
/// its card.
Size exposedSize(Size input, const FilmProfile& film, const RenderOptions& options,
                 std::optional<std::int64_t> ceiling)
{
    Size size = Pipeline::croppedSize(options.crop, input);
    if (Orientation::orientQuarter(options.rotate) % 2 != 0) std::swap(size.width, size.height);
    if (ceiling) size = Pipeline::masterCapSize(size, *ceiling).value_or(size);
    if (const auto rect = Pipeline::cardCropRect(size, film, options)) size = {rect->width(), rect->height()};
    return size;
}

Size withBorder(Size size, std::int64_t marginPx)
{
    return {size.width + 2 * marginPx, size.height + 2 * marginPx};
}

/// The board of a mat, of the kinds that have a window.
void addMat(Pipeline::OutputPlan& plan, Size& size, const RenderOptions& options)
{
    const auto& known = Finishing::styles;
    if (!Finishing::wantsMat(options)) return;
    if (std::find(known.begin(), known.end(), *options.mat) == known.end()) return;
    const Finishing::MatMargins margins = Finishing::matMargins(options);
    plan.matPx = margins.m;
    plan.matBottomPx = margins.mb;
    size = {size.width + 2 * margins.m, size.height + margins.m + margins.mb};
}

double ratioOf(Size size, std::int64_t before)
{
    return static_cast<double>(longSideOf(size)) / static_cast<double>(before);
}

/// The dots of a press or a tube, and the picture that is enlarged for them.
void addRaster(Pipeline::OutputPlan& plan, Size& size, std::int64_t& baseLong, const PaperProfile& paper,
               RenderOptions& options)
{
    if (!paper.isRepro()) return;
    plan.raster = ReproPrint::planRaster(paper, options, options.printPxUm, size);
    plan.rasterNote = ReproPrint::rasterNote(paper, options, options.printPxUm, size);
    plan.supersample = plan.raster.ss;
    plan.dotsDrawn = ReproPrint::raster(paper, options.printPxUm / plan.raster.grow, options)->resolved;
    const std::int64_t before = longSideOf(size);
    size = ReproPrint::grownSize(size, plan.raster.grow);
    if (paper.repro == "crt")
        plan.linesDrawn =
            CRTScreen::geometry(paper, options.printPxUm / plan.raster.grow, size.height, options).linesDrawn;
    const double ratio = ratioOf(size, before);
    if (ratio > 1.001) Pipeline::afterScanCap(baseLong, options, ratio);
}

/// The resolution of a scanner.
void addScan(Size& size, std::int64_t& baseLong, const PaperProfile& paper, RenderOptions& options)
{
    if (!paper.isScan() || !paper.scan) return;
    const std::int64_t before = longSideOf(size);
    size = Film::scanSize(size, *paper.scan).value_or(size);
    const double ratio = ratioOf(size, before);
    if (ratio < 0.999) Pipeline::afterScanCap(baseLong, options, ratio);
}

void addTable(Pipeline::OutputPlan& plan, Size& size, const RenderOptions& options)
{
    if (!Table::wantsTable(options)) return;
    plan.tablePx = Table::marginPx(options.tableWidthCm, options.printPxUm);
    size = withBorder(size, plan.tablePx);
}

std::string inMegapixels(Size size)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.1f", static_cast<double>(size.width * size.height) / 1e6);
    return text;
}

/// Factor of the social copy of a picture; 1 where it is not above the limit.
double socialFactor(Size size, const RenderOptions& options)
{
    const std::int64_t measure = options.socialBy == "long" ? longSideOf(size) : size.width;
    if (options.socialPx < 1 || options.socialPx >= measure) return 1.0;
    return static_cast<double>(options.socialPx) / static_cast<double>(measure);
}

RGBImage resampled(RGBImage image, Size size)
{
    if (size == image.size()) return image;
    return pilResize(std::move(image), size.width, size.height, Resampling::lanczos);
}

/// The centre of a picture at 4:5.
Size socialCut(Size size)
{
    const double w = static_cast<double>(size.width), h = static_cast<double>(size.height);
    if (w / h > kSocialAspect) return {std::max<std::int64_t>(pyRound(kSocialAspect * h), 1), size.height};
    return {size.width, std::clamp<std::int64_t>(pyRound(w / kSocialAspect), 1, size.height)};
}

} // namespace

Pipeline::OutputPlan Pipeline::outputPlan(Size input, const FilmProfile& film, const PaperProfile& paper,
                                          const RenderOptions& asked, double scale)
{
    RenderOptions options = asked;
    const FilmLength length = filmLength(film, options, input, croppedSize(options.crop, input));
    std::optional<std::int64_t> ceiling;
    if (options.masterCap) ceiling = masterLongPx(film, length.capUm);
    Size size = exposedSize(input, film, options, ceiling);
    std::int64_t baseLong = longSideOf(size);
    std::array<double, 4> insets{};
    if (!film.isInstant() && paper.repro != "crt")
        if (const auto rebate = framePlan(size, film, options, {length.fmtUm, length.whole})) {
            size = rebate->layout.canvas(size);
            insets = frameInsetFrac(rebate->insetsPx(), baseLong);
        }

    OutputPlan plan;
    plan.fmtUm = length.fmtUm;
    plan.pxUm = length.fmtUm / static_cast<double>(longSideOf(size));
    options.formatLongUm = length.fmtUm;
    resolvePrintScale(options, paper, {baseLong, longSideOf(size), length.fmtUm}, film.isInstant());
    const std::int64_t uncoated = size.width;
    size = Film::printedSize(size, film, paper, options);
    plan.coatPx = (size.width - uncoated) / 2;

    addRaster(plan, size, baseLong, paper, options);
    addScan(size, baseLong, paper, options);
    plan.picture = {size.width - 2 * plan.coatPx, size.height - 2 * plan.coatPx};
    if (film.isInstant()) {
        options = instantBareOptions(film, std::move(options), size);
        if (options.instantFrame) {
            const Size bare = size;
            size = instantFrameWhites(bare, cardFrame(film), options.peelSize).around(bare);
            options = instantCardOptions(film, std::move(options), bare, size);
        }
    } else {
        const double border =
            resolveBorder(options, paper, {baseLong, longSideOf(size), length.fmtUm}, insets);
        size = withBorder(size, borderMarginPx(border, longSideOf(size)));
    }
    addMat(plan, size, options);
    if (paper.hasSheet() || film.isInstant()) addTable(plan, size, options);
    size = downscaledSize(size, scale);
    plan.width = size.width;
    plan.height = size.height;
    plan.printPxUm = options.printPxUm;
    plan.printCm = options.printPxUm * static_cast<double>(longSideOf(plan.picture)) / 10'000.0;
    return plan;
}

Size Pipeline::outputSize(Size input, const FilmProfile& film, const PaperProfile& paper,
                          const RenderOptions& options, double scale)
{
    return outputPlan(input, film, paper, options, scale).size();
}

std::int64_t Pipeline::sourceLongFor(Size source, const FilmProfile& film, const RenderOptions& options,
                                     std::int64_t wantedLong)
{
    const std::int64_t whole = longSideOf(source);
    const auto exposedLong = [&](std::int64_t sourceLong) {
        const double k = static_cast<double>(sourceLong) / static_cast<double>(whole);
        return longSideOf(exposedSize(scaledBy<pyRound>(source, k), film, options, std::nullopt));
    };
    const double share = static_cast<double>(exposedLong(whole)) / static_cast<double>(whole);
    const double wanted = std::ceil(static_cast<double>(wantedLong) / std::max(share, 1e-9));
    if (wanted >= static_cast<double>(whole)) return whole;
    std::int64_t sourceLong = std::max<std::int64_t>(static_cast<std::int64_t>(wanted), 1);
    while (sourceLong < whole && exposedLong(sourceLong) < wantedLong) ++sourceLong; // what rounding took
    return sourceLong;
}

std::int64_t Pipeline::previewInputLong(Size source, const FilmProfile& film, const PaperProfile& paper,
                                        const RenderOptions& options,
                                        std::span<const std::int64_t> candidates)
{
    if (candidates.empty()) return longSideOf(source);
    std::vector<std::int64_t> ascending(candidates.begin(), candidates.end());
    std::sort(ascending.begin(), ascending.end());
    const auto planFrom = [&](std::int64_t candidate) {
        const double k = static_cast<double>(candidate) / static_cast<double>(longSideOf(source));
        return outputPlan(k < 1.0 ? scaledBy<pyRound>(source, k) : source, film, paper, options, 1.0);
    };
    const auto costOf = [](const OutputPlan& plan) {
        return static_cast<double>(plan.width) * static_cast<double>(plan.height) * plan.supersample *
               plan.supersample;
    };
    const OutputPlan largest = planFrom(ascending.back());
    double lowest = costOf(largest);
    std::int64_t best = std::min(longSideOf(source), ascending.back());
    ascending.pop_back();
    for (const std::int64_t candidate : ascending) {
        const OutputPlan plan = planFrom(candidate);
        if (plan.dotsDrawn != largest.dotsDrawn || plan.linesDrawn != largest.linesDrawn) continue;
        if (costOf(plan) >= lowest) continue;
        lowest = costOf(plan);
        best = std::min(longSideOf(source), candidate);
    }
    return best;
}

Size Pipeline::socialSize(Size input, const FilmProfile& film, const PaperProfile& paper,
                          const RenderOptions& options)
{
    Size size = outputSize(input, film, paper, options, 1.0);
    if (options.socialCrop45) size = socialCut(size);
    return scaledBy<roundAway>(size, socialFactor(size, options));
}

RGBImage Pipeline::socialVariant(RGBImage image, const RenderOptions& options)
{
    if (options.socialCrop45) {
        const Size cut = socialCut(image.size());
        const std::int64_t x = (image.width - cut.width) / 2, y = (image.height - cut.height) / 2;
        image = cropTo(std::move(image), {x, y, x + cut.width, y + cut.height});
    }
    const Size size = scaledBy<roundAway>(image.size(), socialFactor(image.size(), options));
    return resampled(std::move(image), size);
}

Size Pipeline::downscaledSize(Size size, double factor)
{
    return factor < kFullScale ? scaledBy<roundAway>(size, factor) : size;
}

RGBImage Pipeline::exportDownscale(RGBImage image, double factor)
{
    const Size size = downscaledSize(image.size(), factor);
    return resampled(std::move(image), size);
}

std::string Pipeline::sizeLabel(Size size, std::string_view megapixelUnit)
{
    std::string text = std::to_string(size.width) + " × " + std::to_string(size.height);
    if (!megapixelUnit.empty()) text += ", " + inMegapixels(size) + " " + std::string(megapixelUnit);
    return text;
}

} // namespace tamlo
