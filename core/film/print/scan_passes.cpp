#include "core/film/print/scan_passes.h"

#include "core/image/bands.h"

#include <algorithm>

namespace tamlo {
namespace {

/// f(sample, its index) on every sample in place.
template <typename F>
void eachSample(RGBImage& image, const F& f)
{
    float* v = image.mutableData();
    parallelBands(image.height, image.width * 3, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t i = start * image.width * 3; i < end * image.width * 3; ++i) v[i] = f(v[i], i);
    });
}

} // namespace

void unsharp(RGBImage& image, const RGBImage& blurred, float k)
{
    const float* soft = blurred.data.data();
    eachSample(image, [&](float v, std::int64_t i) { return (1.0f + k) * v - k * soft[i]; });
}

void scan_clip(RGBImage& image, float clip)
{
    eachSample(image, [&](float v, std::int64_t) {
        return std::clamp(v > clip ? clip + (v - clip) * 0.25f : v, 0.0f, 1.0f);
    });
}

} // namespace tamlo
