#include "core/pipeline/render_size.h"

#include "core/image/render_profiler.h"
#include "core/image/resample.h"
#include "core/image/rounding.h"
#include "core/process/altprint/plate_mark.h"
#include "core/process/instant/picture_mm.h"
#include "core/process/raster/tube_geometry.h"
#include "core/profiles/options/film_format.h"
#include "core/profiles/options/peel_size.h"

#include <algorithm>

namespace tamlo {
namespace {

/// Long over short side of the picture that an instant card holds.
std::optional<double> cardPictureAspect(const InstantFrameParams& frame, const OptText& peelSize)
{
    if (frame.style == "peel") {
        const Pipeline::SidesMm mm = Pipeline::peelSizeCfg(frame, peelSize).imageMm;
        return mm.longMm / mm.shortMm;
    }
    const double longMm = frame.imageLongMm.value_or(0.0), shortMm = frame.imageShortMm.value_or(0.0);
    if (longMm > 0.0 && shortMm > 0.0) return longMm / shortMm;
    return std::nullopt;
}

} // namespace

std::int64_t Pipeline::masterLongPx(const FilmProfile& film, double fmtUm)
{
    return film.isInstant() ? instantMasterLongPx(film, fmtUm) : roundAway(fmtUm / kMasterUm);
}

std::int64_t Pipeline::instantMasterLongPx(const FilmProfile& film, double longUm)
{
    const double f50 = film.mtf ? film.mtf->f50CycMm.value_or(0.0) : 0.0;
    const double stepUm = f50 > 0.0 ? std::max(1000.0 / (f50 * 4.0), kMasterUm) : kMasterUm;
    return roundAway(longUm / stepUm);
}

std::optional<Size> Pipeline::masterCapSize(Size size, std::int64_t cap)
{
    const std::int64_t longSide = std::max(size.width, size.height);
    if (cap >= longSide) return std::nullopt;
    const double k = static_cast<double>(cap) / static_cast<double>(longSide);
    const auto scaled = [&](std::int64_t side) {
        return std::max<std::int64_t>(roundAway(k * static_cast<double>(side)), 1);
    };
    return Size{scaled(size.width), scaled(size.height)};
}

RGBImage Pipeline::applyMasterCap(RGBImage image, double fmtUm, std::optional<std::int64_t> cap)
{
    const RenderProfiler::Scope booked("master ceiling", image.pixelCount());
    const auto size = masterCapSize(image.size(), cap.value_or(roundAway(fmtUm / kMasterUm)));
    if (!size) return image;
    return pilResize(std::move(image), size->width, size->height, Resampling::lanczos);
}

double Pipeline::instantLongUm(const FilmProfile& film, const std::optional<std::string>& peelSize)
{
    if (film.frame) {
        if (film.frame->style == "peel") return peelSizeCfg(*film.frame, peelSize).imageMm.longMm * 1000.0;
        if (film.frame->imageLongMm.value_or(0.0) > 0.0) return *film.frame->imageLongMm * 1000.0;
    }
    return film.texture ? film.texture->cardUm.value_or(Film::kCardUm) : Film::kCardUm;
}

Pipeline::FilmLength Pipeline::filmLength(const FilmProfile& film, const RenderOptions& options, Size source,
                                          Size picture)
{
    if (film.isInstant()) {
        const double um = instantLongUm(film, options.peelSize);
        return {um, um, true};
    }
    const auto window = Formats::formatWindow(film, options, {source, picture});
    return {window.fmtUm, window.capUm, window.exact};
}

std::optional<double> Pipeline::cardAspect(const FilmProfile& film, const RenderOptions& options)
{
    if (!film.isInstant() || !film.frame || !options.instantFrame) return std::nullopt;
    if (film.frame->crop == "square") return 1.0;
    if (film.frame->crop == "aspect") return cardPictureAspect(*film.frame, options.peelSize);
    return std::nullopt;
}

std::optional<Pipeline::PixelRect> Pipeline::cardCropRect(Size size, const FilmProfile& film,
                                                          const RenderOptions& options)
{
    const std::optional<double> aspect = cardAspect(film, options);
    if (!aspect) return std::nullopt;
    const PixelRect rect = aspectRect(size, *aspect);
    if (rect.width() == size.width && rect.height() == size.height) return std::nullopt;
    return rect;
}

RGBImage Pipeline::cropToCard(RGBImage image, const FilmProfile& film, const RenderOptions& options)
{
    const std::optional<PixelRect> rect = cardCropRect(image.size(), film, options);
    return rect ? cropTo(std::move(image), *rect) : image;
}

RenderOptions Pipeline::instantBareOptions(const FilmProfile& film, RenderOptions options, Size picture)
{
    if (!film.frame) return options;
    const double longMm = film.frame->style == "peel"
                              ? peelSizeCfg(*film.frame, options.peelSize).imageMm.longMm
                              : film.frame->imageLongMm.value_or(0.0);
    if (longMm > 0.0)
        options.printPxUm = longMm * 1000.0 / static_cast<double>(std::max(picture.width, picture.height));
    return options;
}

void Pipeline::resolvePrintScale(RenderOptions& options, const PaperProfile& paper, const FrameScale& scale,
                                 bool isInstant)
{
    const double longSide = static_cast<double>(std::max<std::int64_t>(scale.longSide, 1));
    if (options.sheetCm.value_or(0.0) > 0.0 && !isInstant) {
        const double b = options.border * static_cast<double>(scale.baseLong) / longSide;
        options.printCm = std::max(1.0, *options.sheetCm / (2.0 * b + 1.0));
    }
    if (paper.repro == "crt") options.printCm = CRTScreen::screen(paper, options).longCm;
    if (paper.isPlate()) {
        if (scale.fmtUm > 0.0)
            options.printCm = scale.fmtUm / 10'000.0;
        else if (options.formatLongUm > 0.0)
            options.printCm = options.formatLongUm / 10'000.0;
    }
    options.printPxUm = options.printCm * 10'000.0 / longSide;
}

double Pipeline::resolveBorder(RenderOptions& options, const PaperProfile& paper, const FrameScale& scale,
                               const std::optional<std::array<double, 4>>& insetFrac)
{
    if (paper.isScan() || !paper.sheet.value_or(true)) {
        options.mat.reset();
        options.embossLine.reset();
        options.blindStamp.reset();
        options.stampText.reset();
        options.table.reset();
    }
    const double longSide = static_cast<double>(std::max<std::int64_t>(scale.longSide, 1));
    const double baseLong = static_cast<double>(scale.baseLong);
    double b = options.border > 0.0 ? options.border * baseLong / longSide : options.border;
    if (paper.isPlate()) b = 0.0;
    if (!options.mat || options.mat->empty() || *options.mat == "none") options.frameWhitePx.reset();
    options.borderPx = b * longSide;
    if (insetFrac) {
        options.picInsetPx.emplace();
        for (const double inset : *insetFrac)
            options.picInsetPx->push_back(options.borderPx + inset * baseLong);
    }
    return b;
}

std::int64_t Pipeline::borderMarginPx(double border, std::int64_t longSide)
{
    return border > 0.0 ? pyRound(border * static_cast<double>(longSide)) : 0;
}

std::array<double, 4> Pipeline::frameInsetFrac(const std::optional<std::array<double, 4>>& insetsPx,
                                               std::int64_t baseLong)
{
    std::array<double, 4> fractions{};
    if (!insetsPx) return fractions;
    for (std::size_t side = 0; side < 4; ++side)
        fractions[side] = (*insetsPx)[side] / static_cast<double>(std::max<std::int64_t>(baseLong, 1));
    return fractions;
}

double Pipeline::plateInset(const PaperProfile& paper, const RenderOptions& options)
{
    if (!paper.hasSheet()) return 0.0;
    return AltPrint::plateEdgePx(paper, options, options.borderPx, options.printPxUm).value_or(0.0);
}

void Pipeline::afterScanCap(std::int64_t& baseLong, RenderOptions& options, double ratio)
{
    baseLong = roundAway(ratio * static_cast<double>(baseLong));
    options.printPxUm /= ratio;
}

} // namespace tamlo
