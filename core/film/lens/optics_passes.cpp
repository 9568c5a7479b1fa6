#include "core/film/lens/optics_passes.h"

#include "core/image/bands.h"
#include "core/image/interpolation.h"

#include <algorithm>
#include <atomic>

namespace tamlo {
namespace {

template <typename F>
bool anySample(const RGBImage& image, const F& isMet)
{
    std::atomic<bool> found{false};
    const std::int64_t samples = image.width * 3;
    parallelBands(image.height, samples, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t y = start; y < end && !found.load(std::memory_order_relaxed); ++y) {
            const float* p = image.row(y);
            int met = 0;
            for (std::int64_t i = 0; i < samples; ++i) met |= isMet(p[i]) ? 1 : 0;
            if (met) found.store(true, std::memory_order_relaxed);
        }
    });
    return found.load();
}

/// The whole pixel at or below a displacement, which std::floor would give at several times the cost.
inline std::int32_t wholeBelow(float v)
{
    const auto i = static_cast<std::int32_t>(v);
    return static_cast<float>(i) > v ? i - 1 : i;
}

} // namespace

bool has_negative(const RGBImage& image)
{
    return anySample(image, [](float v) { return v < 0.0f; });
}

bool has_above(const RGBImage& image, float threshold)
{
    return anySample(image, [=](float v) { return v > threshold; });
}

void distort_row(const RGBImage& from, std::int64_t y, const DistortPlan& plan, float* to)
{
    // The displacement is split, not the place, so that a far pixel keeps the full precision of its share.
    const float* pixels = from.data.data();
    const std::int64_t right = from.width - 1, bottom = from.height - 1;
    const float dy = static_cast<float>(y) - plan.cy;
    for (std::int64_t x = 0; x <= right; ++x, to += 3) {
        const float dx = static_cast<float>(x) - plan.cx;
        const float r2 = (dx * dx + dy * dy) * plan.invNorm2;
        const float g = r2 * (plan.k3 + plan.k5 * r2);
        const float sx = dx * g, sy = dy * g;
        const std::int32_t ix = wholeBelow(sx), iy = wholeBelow(sy);
        const float fx = sx - static_cast<float>(ix), fy = sy - static_cast<float>(iy);
        const std::int64_t x0 = std::clamp<std::int64_t>(x + ix, 0, right) * 3;
        const std::int64_t x1 = std::clamp<std::int64_t>(x + ix + 1, 0, right) * 3;
        const float* top = pixels + std::clamp<std::int64_t>(y + iy, 0, bottom) * from.width * 3;
        const float* low = pixels + std::clamp<std::int64_t>(y + iy + 1, 0, bottom) * from.width * 3;
        for (int c = 0; c < 3; ++c)
            to[c] = lerp(lerp(top[x0 + c], top[x1 + c], fx), lerp(low[x0 + c], low[x1 + c], fx), fy);
    }
}

void ca_row(const RGBImage& from, std::int64_t y, const LateralPlan& plan, float* to)
{
    const auto i = static_cast<std::size_t>(y);
    const ScaledTap red = plan.redY[i], blue = plan.blueY[i];
    const float *redTop = from.row(red.first), *redLow = from.row(red.second);
    const float *blueTop = from.row(blue.first), *blueLow = from.row(blue.second);
    const float* green = from.row(y);
    const auto fetch = [](const float* top, const float* low, const ScaledTap& tap, float share, int c) {
        const std::int64_t a = std::int64_t{tap.first} * 3 + c, b = std::int64_t{tap.second} * 3 + c;
        return lerp(lerp(top[a], top[b], tap.share), lerp(low[a], low[b], tap.share), share);
    };
    for (std::int64_t x = 0; x < from.width; ++x, to += 3) {
        const auto column = static_cast<std::size_t>(x);
        to[0] = fetch(redTop, redLow, plan.redX[column], red.share, 0);
        to[1] = green[x * 3 + 1];
        to[2] = fetch(blueTop, blueLow, plan.blueX[column], blue.share, 2);
    }
}

void veil_row(float* row, const float* blurred, std::int64_t pixels, const VeilPlan& plan)
{
    for (std::int64_t x = 0; x < pixels * 3; x += 3)
        for (std::int64_t c = 0; c < 3; ++c)
            row[x + c] = row[x + c] + plan.spread * blurred[x + c] + plan.even[static_cast<std::size_t>(c)];
}

void bloom_row(float* row, const float* narrow, const float* wide, std::int64_t pixels, const BloomMix& mix)
{
    for (std::int64_t x = 0; x < pixels * 3; x += 3)
        for (std::int64_t c = 0; c < 3; ++c)
            row[x + c] += mix.gains[static_cast<std::size_t>(c)] *
                          (mix.narrow * narrow[x + c] + mix.wide * wide[x + c]);
}

void glow_row(const StridedRow& row, const float* outer, const float* core, float share, float ring)
{
    const float kept = 1.0f - share, rest = 1.0f - ring;
    const auto mix = [&](auto stride) {
        float* p = row.first;
        if (core)
            for (std::int64_t i = 0; i < row.samples; ++i)
                p[i * stride] = kept * p[i * stride] + share * ((outer[i] - ring * core[i]) / rest);
        else
            for (std::int64_t i = 0; i < row.samples; ++i)
                p[i * stride] = kept * p[i * stride] + share * outer[i];
    };
    if (row.stride == 1)
        mix(std::integral_constant<std::int64_t, 1>{});
    else
        mix(std::integral_constant<std::int64_t, 3>{});
}

} // namespace tamlo
