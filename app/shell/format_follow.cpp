#include "app/shell/format_follow.h"

#include "app/shell/crop_aspect.h"
#include "app/shell/loaded_profiles.h"
#include "core/pipeline/crop_geometry.h"
#include "core/pipeline/render_size.h"
#include "core/profiles/options/film_format.h"

#include <algorithm>
#include <cmath>

namespace tamlo {

namespace {

bool isMadeIn(const FilmProfile& film, const std::string& format)
{
    static const TextList kUsual{"135", "120", "sheet"};
    const TextList& made = film.formats ? *film.formats : kUsual;
    return std::ranges::any_of(made, [&](const std::string& one) {
        return Formats::normalizeFormat(one, std::nullopt).format == format;
    });
}

/// Long over short side of the format's window over the source, or of the card's picture.
std::optional<double> windowAspect(const ProcessSettings& settings, Size source, const WindowOf& window)
{
    const std::optional<FilmProfile> film = filmOf(settings, window.store);
    if (!film) return std::nullopt;
    RenderOptions options = settings.options;
    options.cropGate = window.cropGate.value_or(options.cropGate);
    if (const auto card = Pipeline::cardAspect(*film, options)) return std::max(*card, 1 / *card);
    const auto result = Formats::formatWindow(*film, options, {source, source});
    if (!(result.windowShortPx > 0)) return std::nullopt;
    return result.windowLongPx / result.windowShortPx;
}

bool liesWithin(const Crop& crop, Size source)
{
    constexpr double kTolerancePx = 0.5;
    const double x = kTolerancePx / static_cast<double>(source.width);
    const double y = kTolerancePx / static_cast<double>(source.height);
    return crop.x >= -x && crop.y >= -y && crop.x + crop.w <= 1 + x && crop.y + crop.h <= 1 + y &&
           Pipeline::cropFits(crop, std::nullopt, source, kTolerancePx);
}

} // namespace

ProcessSettings formatFittingStock(const ProcessSettings& from, ProcessSettings to, const ProfileStore& store)
{
    if (from.stock == to.stock || !to.options.format) return to;
    const std::optional<FilmProfile> film = filmOf(to, store);
    if (!film || film->isInstant()) return to;
    // The older names of a size say more than the format that they normalise to.
    const FilmFormat format = *to.options.format;
    OptText size = to.options.frameSize;
    if (!size && (format == FilmFormat::half || format == FilmFormat::sheet4x5))
        size = Formats::legacyFrameSize(rawText(format), to.options.format120Cm);
    Formats::FormatName name = Formats::normalizeFormat(rawText(format), size);
    if (!isMadeIn(*film, name.format))
        name = Formats::normalizeFormat(film->formatDefault.value_or("135"), name.size);
    to.options.format = fromRawText<FilmFormat>(name.format);
    to.options.frameSize = name.size;
    return to;
}

bool formatWindowKeysChanged(const ProcessSettings& a, const ProcessSettings& b)
{
    const RenderOptions &x = a.options, &y = b.options;
    return a.stock != b.stock || x.format != y.format || x.frameSize != y.frameSize ||
           x.format120Cm != y.format120Cm || x.instantFrame != y.instantFrame || x.peelSize != y.peelSize ||
           x.cropGate != y.cropGate;
}

void followFormatWindow(Frame& frame, const ProcessSettings& before, const WindowOf& window, Refit refit)
{
    constexpr double kNothing = 1e-6;
    if (!frame.crop || !frame.process || !formatWindowKeysChanged(before, *frame.process)) return;
    const std::optional<Size> source = window.sourceSize(frame);
    if (!source || source->width < 1 || source->height < 1) return;
    const auto was = windowAspect(before, *source, window);
    const auto is = windowAspect(*frame.process, *source, window);
    if (!was || !is || std::abs(*is - *was) < kNothing) return;
    const Crop& crop = *frame.crop;
    const double ratio =
        crop.w * static_cast<double>(source->width) / (crop.h * static_cast<double>(source->height));
    if (!std::isfinite(ratio)) return;
    const bool isAutomatic = crop.angle == 0 && hasAspect(ratio, *was);
    const bool isBeyond = refit == Refit::automaticAndBeyond && !liesWithin(crop, *source);
    if (!isAutomatic && !isBeyond) return;
    const bool stands = ratio < 1;
    frame.crop = Pipeline::clamped(Pipeline::expandCrop(crop, *source, stands ? 1 / *is : *is));
}

} // namespace tamlo
