#include "core/io/image_loader.h"

namespace tamlo::ImageLoader {

namespace {

/// The scale at which a RAW frame is developed for a cap on its long side; 1 without one.
double rawScale(const std::filesystem::path& path, std::int64_t capLongPx)
{
    if (capLongPx < 1) return 1.0;
    const std::optional<std::int64_t> native = rawNativeLong(path);
    return native && capLongPx < *native ? static_cast<double>(capLongPx) / static_cast<double>(*native)
                                         : 1.0;
}

} // namespace

RGBImage loadLinear(const std::filesystem::path& path, WBMode wbMode, SourceExposure::Mode srcExposure,
                    std::int64_t capLongPx, const Reading& reading)
{
    if (!isRAW(path)) return loadEncodedAsLinear(path, reading);
    RGBImage image = loadRAWLinear(path, rawScale(path, capLongPx), false, wbMode);
    const double gain = SourceExposure::gain(image, srcExposure);
    return SourceExposure::apply(gain, std::move(image));
}

Size pictureSize(const std::filesystem::path& path, std::int64_t capLongPx)
{
    if (!isRAW(path)) return encodedSize(path);
    const RAWDecode decode = decodeRAW(path, rawScale(path, capLongPx), false, WBMode::film);
    return {decode.width(), decode.height()};
}

} // namespace tamlo::ImageLoader
