// f(pixel) on every pixel of an image in place, in row bands. The compiler vectorises the plain arithmetic of
// its callers.
#pragma once

#include "core/image/bands.h"
#include "core/image/rgb_image.h"

namespace tamlo {

/// f takes the address of a pixel's three samples and may change them; it sees no other pixel.
template <typename F>
void eachPixel(RGBImage& image, const F& f)
{
    float* data = image.mutableData();
    const std::int64_t width = image.width;
    parallelBands(image.height, width * 3, [&](std::int64_t start, std::int64_t end) {
        for (float *p = data + start * width * 3, *last = data + end * width * 3; p != last; p += 3) f(p);
    });
}

} // namespace tamlo
