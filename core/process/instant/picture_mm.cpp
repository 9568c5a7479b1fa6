#include "core/process/instant/picture_mm.h"

#include "core/profiles/options/peel_size.h"

#include <algorithm>

namespace tamlo {
namespace {

/// A card of less than this, or of more, is drawn as one of this size: no structure lies beyond.
constexpr double kLeastMm = 0.01;
constexpr double kMostMm = 1e5;

double longSidePx(Size picture)
{
    return static_cast<double>(std::max(picture.width, picture.height));
}

/// Long side by the frame block.
std::optional<double> frameLongMm(const FilmProfile& film, const RenderOptions& options)
{
    if (!film.isInstant() || !film.frame) return std::nullopt;
    if (const auto peel = Film::peelImageLongMm(film, options)) return peel;
    const double mm = film.frame->imageLongMm.value_or(0.0);
    return mm > 0.0 ? std::optional(mm) : std::nullopt;
}

} // namespace

std::optional<double> Film::peelImageLongMm(const FilmProfile& film, const RenderOptions& options)
{
    if (!film.isInstant() || !film.frame || film.frame->style != "peel") return std::nullopt;
    return Pipeline::peelSizeCfg(*film.frame, options.peelSize).imageMm.longMm;
}

std::optional<Film::ImageMm> Film::imageMm(const FilmProfile& film, const RenderOptions& options,
                                           Size picture)
{
    const std::optional<double> longMm = frameLongMm(film, options);
    if (!longMm) return std::nullopt;
    const double mmPerPx = std::clamp(*longMm, kLeastMm, kMostMm) / longSidePx(picture);
    return ImageMm{static_cast<double>(picture.height) * mmPerPx,
                   static_cast<double>(picture.width) * mmPerPx};
}

Film::PictureScale Film::pictureScale(const FilmProfile& film, const RenderOptions& options, Size picture)
{
    constexpr double kUmPerMm = 1000.0;
    PictureScale scale;
    if (const auto mm = imageMm(film, options, picture)) {
        scale.longMm = std::max(mm->height, mm->width);
        scale.pxUm = scale.longMm * kUmPerMm / longSidePx(picture);
    } else {
        const double widthUm = film.texture ? film.texture->cardUm.value_or(kCardUm) : kCardUm;
        scale.pxUm =
            std::clamp(widthUm, kLeastMm * kUmPerMm, kMostMm * kUmPerMm) / static_cast<double>(picture.width);
        scale.longMm = scale.pxUm * longSidePx(picture) / kUmPerMm;
    }
    scale.ppmm = kUmPerMm / scale.pxUm;
    return scale;
}

} // namespace tamlo
