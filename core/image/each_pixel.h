// Work on every pixel of an image or a plane in place, in row bands: by bands, for callers with vector code
// of their own, and pixel by pixel, where the compiler vectorises the plain arithmetic of its callers.
#pragma once

#include "core/image/bands.h"
#include "core/image/rgb_image.h"

namespace tamlo {

/// work(first sample, index of its pixel, pixels) on bands of whole rows.
template <typename Work>
void eachBand(RGBImage& image, const Work& work)
{
    float* data = image.mutableData();
    const std::int64_t width = image.width;
    parallelBands(image.height, width * 3, [&](std::int64_t start, std::int64_t end) {
        work(data + start * width * 3, start * width, static_cast<std::size_t>((end - start) * width));
    });
}

template <typename Work>
void eachBand(Plane& plane, const Work& work)
{
    float* data = plane.mutableData();
    const std::int64_t width = plane.width;
    parallelBands(plane.height, width, [&](std::int64_t start, std::int64_t end) {
        work(data + start * width, start * width, static_cast<std::size_t>((end - start) * width));
    });
}

/// f takes the address of a pixel's three samples and may change them; it sees no other pixel.
template <typename F>
void eachPixel(RGBImage& image, const F& f)
{
    eachBand(image, [&](float* p, std::int64_t, std::size_t pixels) {
        for (const float* last = p + pixels * 3; p != last; p += 3) f(p);
    });
}

} // namespace tamlo
