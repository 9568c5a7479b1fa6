#include "core/process/card/card_geometry.h"

#include "core/process/card/card_relief.h"
#include "core/process/mat/mat_plan.h"
#include "core/process/mat/table.h"
#include "core/profiles/options/peel_size.h"
#include "core/profiles/options/seed_stream.h"

#include <algorithm>
#include <cmath>

namespace tamlo {
namespace {

constexpr double kSideFrac = 0.06;
constexpr double kLeastMarginPx = 4.0;
constexpr double kMostMarginPx = 1e9; // far beyond any canvas that is drawn

std::int64_t marginPx(double px, double least)
{
    return static_cast<std::int64_t>(std::rint(std::clamp(px, least, kMostMarginPx)));
}

double longSidePx(Size size)
{
    return static_cast<double>(std::max(size.width, size.height));
}

} // namespace

const InstantFrameParams& Pipeline::cardFrame(const FilmProfile& film)
{
    static const InstantFrameParams plain;
    return film.frame ? *film.frame : plain;
}

bool Pipeline::isPeel(const InstantFrameParams& frame)
{
    return frame.style == "peel";
}

bool Pipeline::isTurnedCard(const InstantFrameParams& frame, Size picture)
{
    return (frame.nativeOrientation == "landscape" && picture.height > picture.width) ||
           (frame.nativeOrientation == "portrait" && picture.width > picture.height);
}

double Pipeline::cardImageLongMm(const InstantFrameParams& frame, const OptText& peelSize)
{
    if (isPeel(frame)) return peelSizeCfg(frame, peelSize).imageMm.longMm;
    return std::max(frame.imageLongMm.value_or(0.0), 0.0);
}

Pipeline::CardMargins Pipeline::instantFrameWhites(Size picture, const InstantFrameParams& frame,
                                                   const OptText& peelSize)
{
    std::int64_t side = 0, top = 0, bottom = 0;
    if (isPeel(frame)) {
        const PeelSize& sheet = peelSizeCfg(frame, peelSize);
        const double ppmm = longSidePx(picture) / sheet.imageMm.longMm;
        side = marginPx(sheet.sides * ppmm, kLeastMarginPx);
        top = marginPx(sheet.top * ppmm, kLeastMarginPx);
        bottom = marginPx(sheet.bottom * ppmm, kLeastMarginPx);
    } else {
        side = marginPx(frame.sideFrac.value_or(kSideFrac) * longSidePx(picture), kLeastMarginPx);
        top = marginPx(frame.topRatio.value_or(1.0) * static_cast<double>(side), 0.0);
        bottom = marginPx(frame.bottomRatio.value_or(1.0) * static_cast<double>(side), 0.0);
    }
    if (isTurnedCard(frame, picture)) return {side, side, top, bottom};
    return {top, bottom, side, side};
}

RenderOptions Pipeline::instantCardOptions(const FilmProfile& film, RenderOptions options, Size picture,
                                           Size card)
{
    constexpr double kUmPerMm = 1000.0;
    const InstantFrameParams& frame = cardFrame(film);
    if (isPeel(frame))
        options.printPxUm = peelSizeCfg(frame, options.peelSize).sheetMm.longMm * kUmPerMm / longSidePx(card);
    else if (const double longMm = cardImageLongMm(frame, options.peelSize); longMm > 0.0)
        options.printPxUm = longMm * kUmPerMm / longSidePx(picture);
    const std::array<double, 4> grips = matCardGrips(picture, frame, options);
    options.matGripsPx = std::vector<double>(grips.begin(), grips.end());
    return options;
}

std::array<double, 4> Pipeline::matCardGrips(Size picture, const InstantFrameParams& frame,
                                             const RenderOptions& options)
{
    constexpr std::uint64_t kOffset = 26;
    constexpr double kImageMm = 79.0, kShownMm = 3.0, kOffCentreMm = 0.4, kLeastMm = 0.5;
    const double longMm = cardImageLongMm(frame, options.peelSize);
    const double ppmm = longSidePx(picture) / (longMm > 0.0 ? longMm : kImageMm);
    const CardMargins card = instantFrameWhites(picture, frame, options.peelSize);
    GrainRNG rng = Seeds::streamRNG(options, Seeds::SeedStream::print, kOffset);
    const double dx = ppmm * (2.0 * kOffCentreMm * rng.random() - kOffCentreMm);
    const double dy = ppmm * (2.0 * kOffCentreMm * rng.random() - kOffCentreMm);
    const auto grip = [&](std::int64_t margin, double off) {
        return std::max(static_cast<double>(margin) - kShownMm * ppmm + off, kLeastMm * ppmm);
    };
    return {grip(card.top, dy), grip(card.bottom, -dy), grip(card.left, dx), grip(card.right, -dx)};
}

GrainRNG Pipeline::instantFrameRNG(const FilmProfile& film, const RenderOptions& options)
{
    const std::uint64_t offset = isPeel(cardFrame(film)) ? 25 : 27;
    return Seeds::streamRNG(options, Seeds::SeedStream::film, offset);
}

bool Pipeline::cardMaskApplies(const FilmProfile& film, const RenderOptions& options)
{
    if (!film.isInstant() || !options.instantFrame || options.cardOutside) return false;
    const InstantFrameParams& frame = cardFrame(film);
    if (isPeel(frame) || !CardRelief::isCut(frame)) return false;
    return !Finishing::wantsMat(options) && !Table::wantsTable(options);
}

} // namespace tamlo
