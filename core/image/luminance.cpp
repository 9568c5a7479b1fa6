#include "core/image/luminance.h"

#include "core/image/bands.h"
#include "core/image/chunks.h"
#include "core/image/zcolor.h"

namespace tamlo {

Plane lumaPlane(const RGBImage& image)
{
    Plane out(image.width, image.height);
    luma_plane(out, image);
    return out;
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
    return meanInChunks(image.pixelCount(), [&](std::int64_t start, std::int64_t end) {
        const float* p = image.data.data() + start * 3;
        double sum = 0.0;
        for (std::int64_t k = start; k < end; ++k, p += 3) sum += ZColor::lumaOf(p[0], p[1], p[2]);
        return sum;
    });
}

} // namespace tamlo
