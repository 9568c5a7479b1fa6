#include "app/preview/reduced.h"

#include "core/image/bands.h"
#include "core/image/zcolor.h"
#include "core/pipeline/backend.h"

#include <algorithm>
#include <array>

namespace tamlo {

RGBImage linearOf(const ReadyImage& image)
{
    static const std::array<float, 256> table = [] {
        std::array<float, 256> values{};
        for (std::size_t i = 0; i < values.size(); ++i)
            values[i] = ZColor::srgbToLinear(static_cast<float>(i) / 255.0f);
        return values;
    }();
    RGBImage out(image.width, image.height);
    float* const to = out.mutableData();
    parallelBands(image.height, image.width, [&](std::int64_t start, std::int64_t end) {
        const std::uint8_t* from = image.rgba.data() + start * image.width * 4;
        for (std::int64_t i = start * image.width; i < end * image.width; ++i, from += 4)
            for (std::int64_t c = 0; c < 3; ++c) to[i * 3 + c] = table[from[c]];
    });
    return out;
}

ReadyImage reduced(const ReadyImage& image, std::int64_t longSide)
{
    if (std::max(image.width, image.height) <= longSide) return image;
    return ImageWriter::readyImage(resized(linearOf(image), longSide));
}

} // namespace tamlo
