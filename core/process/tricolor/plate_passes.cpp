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

/// Weights of the four taps, as catmullRom gives them.
template <class D, class V>
HWY_INLINE void tapWeights(D d, V t, V* w)
{
    const auto c = [&](float v) HWY_ATTR { return hn::Set(d, v); };
    const V t2 = hn::Mul(t, t), t3 = hn::Mul(t2, t), half = hn::Mul(c(0.5f), t);
    w[0] = hn::Sub(hn::Add(hn::Mul(c(-0.5f), t3), t2), half);
    w[1] = hn::Add(hn::Sub(hn::Mul(c(1.5f), t3), hn::Mul(c(2.5f), t2)), c(1.0f));
    w[2] = hn::Add(hn::Add(hn::Mul(c(-1.5f), t3), hn::Mul(c(2.0f), t2)), half);
    w[3] = hn::Sub(hn::Mul(c(0.5f), t3), hn::Mul(c(0.5f), t2));
}

/// One row of a plate read at (x + dx, y + dy), each sample as readBicubic reads it. The plate has fewer than
/// 2^31 samples.
void sampleRun(float* out, const Plane& plate, std::int64_t y, const float* dx, const float* dy)
{
    const hn::ScalableTag<float> d;
    const hn::RebindToSigned<decltype(d)> di;
    using V = hn::Vec<decltype(d)>;
    using VI = hn::Vec<decltype(di)>;
    const auto lastX = static_cast<std::int32_t>(plate.width - 1),
               lastY = static_cast<std::int32_t>(plate.height - 1);
    const V before = hn::Set(d, -4.0f);
    // Where a read begins, and its weights along an axis.
    const auto tap = [&](V at, std::int32_t last, V* weights) HWY_ATTR {
        const V most = hn::Set(d, static_cast<float>(last) + 4.0f);
        const V held = hn::IfThenElse(hn::Gt(at, before), hn::Min(at, most), before);
        const V below = hn::Floor(held);
        tapWeights(d, hn::Sub(held, below), weights);
        return hn::Sub(hn::ConvertTo(di, below), hn::Set(di, 1));
    };
    const auto index = [&](VI first, std::int32_t i, std::int32_t last) HWY_ATTR {
        return hn::Clamp(hn::Add(first, hn::Set(di, i)), hn::Zero(di), hn::Set(di, last));
    };
    eachRun(d, out, static_cast<std::size_t>(plate.width), [&](std::size_t i, std::size_t n) HWY_ATTR {
        const V x = hn::ConvertTo(d, hn::Iota(di, static_cast<std::int32_t>(i)));
        V across[4], down[4];
        const VI column = tap(hn::Add(x, loadRun(d, dx + i, n)), lastX, across);
        const VI row = tap(hn::Add(hn::Set(d, static_cast<float>(y)), loadRun(d, dy + i, n)), lastY, down);
        const VI columns[4] = {index(column, 0, lastX), index(column, 1, lastX), index(column, 2, lastX),
                               index(column, 3, lastX)};
        V sums[4] = {hn::Zero(d), hn::Zero(d), hn::Zero(d), hn::Zero(d)};
        for (std::int32_t j = 0; j < 4; ++j) {
            const VI line = hn::Mul(index(row, j, lastY), hn::Set(di, lastX + 1));
            for (std::size_t k = 0; k < 4; ++k) {
                const V sample = hn::GatherIndex(d, plate.row(0), hn::Add(line, columns[k]));
                sums[k] = hn::Add(sums[k], hn::Mul(down[j], sample));
            }
        }
        for (std::size_t k = 0; k < 4; ++k) sums[k] = hn::Mul(sums[k], across[k]);
        return hn::Add(hn::Add(sums[0], sums[1]), hn::Add(sums[2], sums[3]));
    });
}

} // namespace HWY_NAMESPACE
} // namespace tamlo
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
#include <limits>
#include <vector>

namespace tamlo {

HWY_EXPORT(positiveRun);
HWY_EXPORT(sampleRun);

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
        const bool isCounted = plate.count() < std::numeric_limits<std::int32_t>::max();
        std::vector<float> line(static_cast<std::size_t>(isCounted ? width : 0));
        for (std::int64_t y = start; y < end; ++y) {
            const auto [dx, dy] = offsets.row(y);
            if (isCounted) {
                HWY_DYNAMIC_DISPATCH(sampleRun)(line.data(), plate, y, dx, dy);
                for (std::int64_t x = 0; x < width; ++x)
                    to[(y * width + x) * 3] = line[static_cast<std::size_t>(x)];
                continue;
            }
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
