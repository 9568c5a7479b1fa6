#include "core/film/source_light_passes.h"

#include "core/image/bands.h"
#include "core/image/zcolor.h"
#include "platform/worker_pool.h"

#include <algorithm>

namespace tamlo {
namespace {

/// f(pixel) on every pixel in place; the compiler vectorises the plain arithmetic of its callers.
template <typename F>
void eachPixel(RGBImage& image, const F& f)
{
    float* data = image.mutableData();
    const std::int64_t width = image.width;
    parallelBands(image.height, width * 3, [&](std::int64_t start, std::int64_t end) {
        for (float *p = data + start * width * 3, *last = data + end * width * 3; p != last; p += 3) f(p);
    });
}

} // namespace

void in_source(RGBImage& image, const Filters::SourceScale& scale)
{
    // Two multiplications and not one product of gains: the source gain alone must give the same floats with
    // and without a tint after it.
    if (scale.useK && scale.useG) {
        eachPixel(image, [&](float* p) {
            for (std::size_t c = 0; c < 3; ++c) p[c] = p[c] * scale.k * scale.g[c];
        });
    } else if (scale.useG) {
        eachPixel(image, [&](float* p) {
            for (std::size_t c = 0; c < 3; ++c) p[c] *= scale.g[c];
        });
    } else if (scale.useK) {
        eachPixel(image, [&](float* p) {
            for (std::size_t c = 0; c < 3; ++c) p[c] *= scale.k;
        });
    }
}

void cast_clamp(RGBImage& image, const Vec3f& gains)
{
    eachPixel(image, [&](float* p) {
        for (std::size_t c = 0; c < 3; ++c) p[c] = std::max(p[c] * gains[c], 0.0f);
    });
}

void sensitize(RGBImage& image, const std::array<Vec3f, 3>& matrix)
{
    eachPixel(image, [&](float* p) {
        const float r = p[0], g = p[1], b = p[2];
        for (std::size_t c = 0; c < 3; ++c) p[c] = matrix[c][0] * r + matrix[c][1] * g + matrix[c][2] * b;
    });
}

void false_color_ir(RGBImage& image, const Vec3f& weights, float chlorophyll)
{
    eachPixel(image, [&](float* p) {
        const float r = p[0], g = p[1], b = p[2];
        const float excess = std::max(g - std::max(r, b), 0.0f);
        p[0] = weights[0] * r + weights[1] * g + weights[2] * b + chlorophyll * excess;
        p[1] = r;
        p[2] = g;
    });
}

void luma_plane(Plane& out, const RGBImage& image)
{
    float* to = out.mutableData();
    parallelBands(image.height, image.width, [&](std::int64_t start, std::int64_t end) {
        const float* p = image.row(start);
        for (std::int64_t i = start * image.width; i < end * image.width; ++i, p += 3)
            to[i] = ZColor::lumaOf(p[0], p[1], p[2]);
    });
}

double luma_mean(const RGBImage& image)
{
    constexpr int kChunks = 64;
    const std::int64_t n = image.pixelCount();
    const std::int64_t chunk = (n + kChunks - 1) / kChunks;
    std::array<double, kChunks> sums{};
    platform::runConcurrently(kChunks, [&](int i) {
        const float* p = image.data.data() + i * chunk * 3;
        double sum = 0.0;
        for (std::int64_t k = i * chunk; k < std::min(n, (i + 1) * chunk); ++k, p += 3)
            sum += ZColor::lumaOf(p[0], p[1], p[2]);
        sums[static_cast<std::size_t>(i)] = sum;
    });
    double total = 0.0;
    for (const double sum : sums) total += sum;
    return total / static_cast<double>(std::max<std::int64_t>(n, 1));
}

} // namespace tamlo
