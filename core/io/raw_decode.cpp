#include "core/io/raw_decode.h"

#include "core/image/bands.h"
#include "core/image/resample.h"
#include "core/image/tamlo_error.h"
#include "core/io/raw_colour.h"
#include "core/text/error_words.h"
#include "core/text/loc.h"
#include "platform/platform_error.h"
#include "platform/raw_engine.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <new>

namespace tamlo::ImageLoader {
namespace {

// A scale made as cap / native must give the cap back; what the division lost is not a further pixel.
constexpr double kExtentTolerance = 1e-6;

std::int64_t scaledExtent(std::int64_t native, double scale)
{
    const double extent = static_cast<double>(native) * scale;
    if (!std::isfinite(extent) || extent <= 0.0) return 0;
    return std::max<std::int64_t>(static_cast<std::int64_t>(std::ceil(extent - kExtentTolerance)), 1);
}

platform::RawHead readHead(const std::filesystem::path& path)
{
    try {
        return platform::readRawHead(path.string());
    } catch (const platform::PlatformError& error) {
        throw TamloError::io(
            T("io.err.rawOpen", {{"file", path.string()}, {"error", ErrorWords::reason(error)}}));
    }
}

/// In draft mode half the size is developed where that still holds every pixel of the result.
platform::Demosaic demosaicFor(const RAWImage& image, Size target)
{
    if (!image.draft) return platform::Demosaic::best;
    const bool halfIsEnough =
        target.width <= image.nativeSize.width / 2 && target.height <= image.nativeSize.height / 2;
    return halfIsEnough ? platform::Demosaic::halfSize : platform::Demosaic::fast;
}

std::unique_ptr<platform::RawFrame> develop(const RAWImage& image, const RawColourPlan& plan, Size target)
{
    try {
        return std::make_unique<platform::RawFrame>(image.path.string(), plan.gains,
                                                    demosaicFor(image, target));
    } catch (const platform::PlatformError& error) {
        throw TamloError::io(T("io.err.rawNoImage", {{"file", image.path.filename().string()},
                                                     {"error", ErrorWords::reason(error)}}));
    }
}

} // namespace

WBMode decodeWBMode(std::string_view option)
{
    return option == "asshot" ? WBMode::asShot : WBMode::film;
}

const char* rawText(WBMode mode)
{
    return mode == WBMode::asShot ? "asshot" : "film";
}

std::int64_t RAWDecode::width() const
{
    return scaledExtent(image.nativeSize.width, image.scale);
}

std::int64_t RAWDecode::height() const
{
    return scaledExtent(image.nativeSize.height, image.scale);
}

void RAWDecode::render(std::span<float> into) const
{
    const Size target{width(), height()};
    if (target.width < 1 || target.height < 1 ||
        into.size() < static_cast<std::size_t>(target.width * target.height * 3))
        throw TamloError::io(T("io.err.emptyImage"));
    const RawColourPlan plan = planRawColour(readHead(image.path).colour, image.wbMode);
    std::unique_ptr<platform::RawFrame> frame = develop(image, plan, target);
    const RawSamples samples{frame->samples(), frame->width(), frame->height(), frame->flip()};
    const Size developed = samples.uprightSize();
    // The engine holds the whole frame in any case; from it each row goes straight to its place, so that
    // there is nothing for bands to save.
    const auto convert = [&](float* to) {
        parallelBands(developed.height, developed.width, [&](std::int64_t start, std::int64_t end) {
            raw_to_linear(samples, plan.toLinear, to, start, end);
        });
    };
    if (developed == target) return convert(into.data());
    RGBImage full(developed.width, developed.height);
    convert(full.mutableData());
    frame.reset();
    const RGBImage scaled = pilResize(full, target.width, target.height, Resampling::lanczos);
    std::transform(scaled.data.begin(), scaled.data.end(), into.begin(),
                   [](float v) { return std::max(v, 0.0f); });
}

RAWDecode decodeRAW(const std::filesystem::path& path, double scale, std::optional<bool> draft, WBMode wbMode)
{
    const platform::RawHead head = readHead(path);
    return {{path, {head.width, head.height}, scale, draft.value_or(scale < 1.0), wbMode}};
}

RGBImage loadRAWLinear(const std::filesystem::path& path, double scale, std::optional<bool> draft,
                       WBMode wbMode)
{
    const RAWDecode decode = decodeRAW(path, scale, draft, wbMode);
    RGBImage image(decode.width(), decode.height());
    decode.render({image.mutableData(), image.data.size()});
    return image;
}

std::optional<std::int64_t> rawNativeLong(const std::filesystem::path& path)
{
    try {
        const platform::RawHead head = platform::readRawHead(path.string());
        return std::max(head.width, head.height);
    } catch (const platform::PlatformError&) {
        return std::nullopt; // no failure: the caller decodes at the file's own size and hears why there
    }
}

} // namespace tamlo::ImageLoader
