#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "core/process/tricolor/plate_passes.cpp"
#include <hwy/foreach_target.h>

#include "core/process/tricolor/plate_passes.h"

#include "core/film/emulsion/vector_curve-inl.h"
#include "core/image/bands.h"
#include "core/image/bicubic_read.h"
#include "core/image/each_pixel.h"

#include <algorithm>

HWY_BEFORE_NAMESPACE();
namespace tamlo {
namespace HWY_NAMESPACE {

void positiveRun(float* values, std::size_t count, const PlatePositiveParams& p)
{
    const hn::ScalableTag<float> d;
    const auto argument = hn::Set(d, p.argument);
    eachRun(d, values, count, [&](std::size_t i, std::size_t n) HWY_ATTR {
        const auto x = hn::Sub(argument, loadRun(d, values + i, n));
        return pow10(d, hn::Neg(densityAboveDmin(d, p.positive, x)));
    });
}

} // namespace HWY_NAMESPACE
} // namespace tamlo
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tamlo {

HWY_EXPORT(positiveRun);

void plate_positive(Plane& density, const PlatePositiveParams& params)
{
    float* values = density.mutableData();
    const std::int64_t width = density.width;
    const PlateOpening& open = params.opening;
    const std::int64_t first = std::clamp<std::int64_t>(open.x0, 0, width);
    const std::int64_t last = std::clamp<std::int64_t>(open.x1, first, width);
    parallelBands(density.height, width, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t y = start; y < end; ++y) {
            float* row = values + y * width;
            const bool inside = y >= open.y0 && y < open.y1;
            if (!inside) {
                std::fill_n(row, width, 0.0f);
                continue;
            }
            std::fill(row, row + first, 0.0f);
            std::fill(row + last, row + width, 0.0f);
            HWY_DYNAMIC_DISPATCH(positiveRun)(row + first, static_cast<std::size_t>(last - first), params);
        }
    });
}

void plate_sample(RGBImage& out, int c, const Plane& plate, const Tricolor::RegistrationField* field)
{
    float* to = out.mutableData() + c;
    const std::int64_t width = plate.width;
    parallelBands(plate.height, width * 8, [&](std::int64_t start, std::int64_t end) {
        if (!field) {
            const float* from = plate.row(start);
            for (std::int64_t i = 0; i < (end - start) * width; ++i) to[(start * width + i) * 3] = from[i];
            return;
        }
        Tricolor::RegistrationField::Rows offsets(*field);
        for (std::int64_t y = start; y < end; ++y) {
            const auto [dx, dy] = offsets.row(y);
            for (std::int64_t x = 0; x < width; ++x)
                to[(y * width + x) * 3] =
                    readBicubic(plate, static_cast<float>(x) + dx[x], static_cast<float>(y) + dy[x]);
        }
    });
}

void plate_combine(RGBImage& image, const std::optional<std::array<Vec3f, 3>>& projection)
{
    const auto held = [](float v) { return std::clamp(v, 0.0f, 1.0f); };
    eachPixel(image, [&](float* p) {
        const Vec3f v{held(p[0]), held(p[1]), held(p[2])};
        for (std::size_t c = 0; c < 3; ++c) {
            const Vec3f m = projection ? (*projection)[c] : Vec3f{};
            p[c] = projection ? held(m[0] * v[0] + m[1] * v[1] + m[2] * v[2]) : v[c];
        }
    });
}

} // namespace tamlo
#endif
