#include "core/film/light/source_light_passes.h"

#include "core/image/each_pixel.h"

#include <algorithm>

namespace tamlo {

void in_source(RGBImage& image, const SourceLight::SourceScale& scale)
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

} // namespace tamlo
