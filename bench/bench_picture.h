// The picture that benches of passes work on: values without order, in 0...1.
#pragma once

#include "core/image/bands.h"
#include "core/image/rgb_image.h"

namespace tamlo::bench {

inline RGBImage benchPicture(std::int64_t w, std::int64_t h)
{
    RGBImage image(w, h);
    float* values = image.mutableData();
    parallelBands(h, w, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t i = start * w * 3; i < end * w * 3; ++i)
            values[i] = static_cast<float>((i * 2'654'435'761) & 0xFFFF) / 65'536.0f;
    });
    return image;
}

} // namespace tamlo::bench
