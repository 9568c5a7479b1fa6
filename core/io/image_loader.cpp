#include "core/io/image_loader.h"

#include "core/film/source_light.h"

namespace tamlo::ImageLoader {

RGBImage loadLinear(const std::filesystem::path& path, WBMode wbMode, SourceExposure::Mode srcExposure,
                    std::int64_t capLongPx)
{
    if (!isRAW(path)) return loadEncodedAsLinear(path);
    double scale = 1.0;
    if (capLongPx >= 1) {
        const std::optional<std::int64_t> native = rawNativeLong(path);
        if (native && capLongPx < *native)
            scale = static_cast<double>(capLongPx) / static_cast<double>(*native);
    }
    RGBImage image = loadRAWLinear(path, scale, false, wbMode);
    const double gain = SourceExposure::gain(image, srcExposure);
    return SourceExposure::apply(gain, std::move(image));
}

} // namespace tamlo::ImageLoader
