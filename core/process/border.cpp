#include "core/process/border.h"

#include "core/image/bands.h"
#include "core/image/render_profiler.h"

#include <algorithm>

namespace tamlo {
namespace {

void fill(float* to, std::int64_t pixels, const Vec3f& colour)
{
    for (std::int64_t i = 0; i < pixels; ++i) std::copy_n(colour.begin(), 3, to + i * 3);
}

} // namespace

RGBImage Finishing::addBorder(RGBImage image, std::int64_t marginPx, const Vec3f& colour)
{
    const RenderProfiler::Scope booked("border", image.pixelCount());
    if (marginPx <= 0) return image;
    RGBImage out(image.width + 2 * marginPx, image.height + 2 * marginPx);
    float* to = out.mutableData();
    parallelBands(out.height, out.width * 3, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t y = start; y < end; ++y) {
            float* row = to + y * out.width * 3;
            const std::int64_t source = y - marginPx;
            if (source < 0 || source >= image.height) {
                fill(row, out.width, colour);
                continue;
            }
            fill(row, marginPx, colour);
            std::copy_n(image.row(source), image.width * 3, row + marginPx * 3);
            fill(row + (marginPx + image.width) * 3, marginPx, colour);
        }
    });
    return out;
}

} // namespace tamlo
