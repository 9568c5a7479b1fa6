#include "app/preview/source_decode.h"

#include "core/image/half_float.h"
#include "core/image/orient.h"
#include "core/image/rounding.h"
#include "core/image/tamlo_error.h"
#include "core/io/image_loader.h"
#include "core/pipeline/backend.h"
#include "core/pipeline/render_size.h"

#include <algorithm>
#include <vector>

namespace tamlo {
namespace {

constexpr double kFullFrameUm = 36'000.0;
/// Of the native size, where that is not known.
constexpr double kProxyScale = 0.25, kDetailScale = 0.5;

double scaleTo(std::int64_t longSide, const SourceDecode::Path& file, double otherwise)
{
    const std::optional<std::int64_t> native = ImageLoader::rawNativeLong(file);
    if (!native || *native < 1) return otherwise;
    return std::min(static_cast<double>(longSide) / static_cast<double>(*native), 1.0);
}

void throughHalves(RGBImage& image)
{
    std::vector<std::uint16_t> halves(image.data.size());
    float* const floats = image.mutableData();
    HalfFloat::encode({floats, halves.size()}, halves);
    HalfFloat::decode(halves, {floats, halves.size()});
}

/// The proxy of an encoded picture, and the size that it was made from.
Size readEncoded(const SourceDecode::Path& file, FrameSource& into)
{
    ImageLoader::EncodedDecode decode = ImageLoader::decodeEncoded(file);
    const Size size{decode.width, decode.height};
    const auto samples = static_cast<std::size_t>(size.width * size.height * 3);
    into.proxy = resized(size, ProxyFile::kProxyLong, [&](float* to) {
        decode.linearize({to, samples});
        decode.rgba = {};
    });
    into.proxy = Orientation::orientImage(std::move(into.proxy), decode.rotate, decode.mirror);
    return size;
}

/// The same of a RAW file, measured on the way.
Size readRAW(const SourceDecode::Path& file, WBMode wb, FrameSource& into)
{
    const double scale = scaleTo(SourceDecode::statsDecodeLong(), file, kProxyScale);
    RGBImage image = ImageLoader::loadRAWLinear(file, scale, std::nullopt, wb);
    into.stats = SourceExposure::stats(SourceExposure::luminance(image));
    const Size size = image.size();
    into.proxy = resized(std::move(image), ProxyFile::kProxyLong);
    return size;
}

} // namespace

std::int64_t SourceDecode::statsDecodeLong()
{
    return roundAway(kFullFrameUm / Pipeline::kMasterUm);
}

FrameSource SourceDecode::proxy(const Path& file, WBMode wb)
{
    FrameSource source;
    source.isRAW = ImageLoader::isRAW(file);
    source.wb = source.isRAW ? wb : WBMode::film;
    const Size decoded = source.isRAW ? readRAW(file, source.wb, source) : readEncoded(file, source);
    Size full = fullPixelSize(file).value_or(decoded);
    const Size own = source.proxy.size();
    if ((own.width < own.height && full.width > full.height) ||
        (own.width > own.height && full.width < full.height))
        std::swap(full.width, full.height);
    source.fullWidth = full.width;
    source.fullHeight = full.height;
    source.halfPrecision = std::max(decoded.width, decoded.height) > ProxyFile::kProxyLong;
    if (source.halfPrecision) throughHalves(source.proxy);
    if (!source.isRAW) source.lights = DisplayLights::measure(source.proxy);
    return source;
}

DisplayLights::Map SourceDecode::lights(const RGBImage& whole)
{
    if (whole.longSide() <= ProxyFile::kProxyLong) return DisplayLights::measure(whole);
    RGBImage proxy = resized(whole, ProxyFile::kProxyLong);
    throughHalves(proxy);
    return DisplayLights::measure(proxy);
}

RGBImage SourceDecode::detail(const Path& file, std::int64_t longSide, WBMode wb)
{
    RGBImage image =
        ImageLoader::isRAW(file)
            ? ImageLoader::loadRAWLinear(file, scaleTo(longSide, file, kDetailScale), std::nullopt, wb)
            : ImageLoader::loadEncodedAsLinear(file);
    return resized(std::move(image), longSide);
}

RGBImage SourceDecode::full(const Path& file, std::int64_t capLongPx, WBMode wb)
{
    if (!ImageLoader::isRAW(file)) return ImageLoader::loadEncodedAsLinear(file);
    const bool isCapped = capLongPx > 0 && ImageLoader::rawDecodeMode() == ImageLoader::RawDecodeMode::master;
    return ImageLoader::loadRAWLinear(file, isCapped ? scaleTo(capLongPx, file, 1.0) : 1.0, false, wb);
}

std::optional<Size> SourceDecode::fullPixelSize(const Path& file)
{
    try {
        return ImageLoader::pictureSize(file, 0);
    } catch (const TamloError&) {
        return std::nullopt; // the decode's own size stands in
    }
}

} // namespace tamlo
