#include "core/film/lens/optics.h"
#include "core/film/lens/optics_vignette_passes.h"
#include "core/image/bands.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace tamlo {

RGBImage Optics::vignette(RGBImage image, double strength, double power)
{
    if (image.pixelCount() == 0 || !(strength > 0.0)) return image;
    const auto w = static_cast<double>(image.width), h = static_cast<double>(image.height);
    const double diagonal = std::sqrt(0.5); // the corner of a square of half side 1 at r = 1
    const VignettePlan plan{
        static_cast<float>(0.5 * (w - 1.0)),    static_cast<float>(0.5 * (h - 1.0)),
        static_cast<float>(2.0 * diagonal / w), static_cast<float>(2.0 * diagonal / h),
        static_cast<float>(strength),           static_cast<float>(std::clamp(power, 0.0, 1e6))};
    float* pixels = image.mutableData();
    const std::int64_t width = image.width;
    parallelBands(image.height, width * 3, [&](std::int64_t start, std::int64_t end) {
        std::vector<float> falloff(static_cast<std::size_t>(width + kVignettePad));
        for (std::int64_t y = start; y < end; ++y)
            vignette_row(pixels + y * width * 3, y, width, plan, falloff.data());
    });
    return image;
}

} // namespace tamlo
