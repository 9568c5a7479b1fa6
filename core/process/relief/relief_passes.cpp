#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "core/process/relief/relief_passes.cpp"
#include <hwy/foreach_target.h>

#include "core/process/relief/relief_passes.h"

#include "core/image/vector_pixels-inl.h"

HWY_BEFORE_NAMESPACE();
namespace tamlo {
namespace HWY_NAMESPACE {

constexpr float kWeightPower = 0.7f; // thin layers stand up early: taste

void litRow(float* lit, const ReliefRows& rows, ReliefLight light)
{
    const hn::ScalableTag<float> d;
    const auto lanes = static_cast<std::int64_t>(hn::Lanes(d));
    const float* h = rows.here;
    const std::int64_t last = rows.width - 1;
    const auto at = [&](std::int64_t x) {
        const std::int64_t left = x > 0 ? x - 1 : 0, right = x < last ? x + 1 : last;
        const float span = right - left == 2 ? 0.5f : 1.0f;
        const float gx = (h[right] - h[left]) * span, gy = (rows.below[x] - rows.above[x]) * rows.down;
        return -(gx * light.x + gy * light.y);
    };
    const auto half = hn::Set(d, 0.5f), down = hn::Set(d, rows.down);
    const auto lx = hn::Set(d, -light.x), ly = hn::Set(d, -light.y);
    lit[0] = at(0);
    std::int64_t x = 1;
    for (; x + lanes <= last; x += lanes) {
        const auto gx = hn::Mul(hn::Sub(hn::LoadU(d, h + x + 1), hn::LoadU(d, h + x - 1)), half);
        const auto gy = hn::Mul(hn::Sub(hn::LoadU(d, rows.below + x), hn::LoadU(d, rows.above + x)), down);
        hn::StoreU(hn::Add(hn::Mul(gx, lx), hn::Mul(gy, ly)), d, lit + x);
    }
    for (; x <= last; ++x) lit[x] = at(x);
}

void weighRow(float* lit, float* weight, const float* amount, float invScale, std::int64_t width)
{
    const hn::ScalableTag<float> d;
    const auto n = static_cast<std::size_t>(width);
    for (std::size_t i = 0; i < n; i += hn::Lanes(d)) {
        const auto e = pow01(d, loadRun(d, amount + i, n - i), kWeightPower);
        const auto m = hn::Tanh(d, hn::Mul(loadRun(d, lit + i, n - i), hn::Set(d, invScale)));
        storeRun(d, e, weight + i, n - i);
        storeRun(d, hn::Mul(m, e), lit + i, n - i);
    }
}

void reliefRow(float* pixels, const float* lit, const float* amount, const ReliefShade& shade,
               std::int64_t width)
{
    const hn::ScalableTag<float> d;
    using V = hn::Vec<decltype(d)>;
    const V one = hn::Set(d, 1.0f);
    eachTriple(
        d, pixels, static_cast<std::size_t>(width), [&](Triple<V> c, std::size_t i, std::size_t n) HWY_ATTR {
            const V v = clamp01(d, loadRun(d, amount + i, n));
            V factor = one;
            if (shade.gain > 0.0f) {
                const V m = hn::Tanh(d, hn::Mul(loadRun(d, lit + i, n), hn::Set(d, shade.invScale)));
                const V light = hn::Mul(hn::Sub(m, hn::Set(d, shade.bias)), pow01(d, v, kWeightPower));
                factor = hn::Add(one, hn::Mul(hn::Set(d, shade.gain), light));
            }
            const V sheen = hn::Mul(hn::Set(d, shade.sheen), hn::Mul(v, v));
            const auto shaded = [&](V x) HWY_ATTR { return clamp01(d, hn::Add(hn::Mul(x, factor), sheen)); };
            return Triple<V>{shaded(c.r), shaded(c.g), shaded(c.b)};
        });
}

} // namespace HWY_NAMESPACE
} // namespace tamlo
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tamlo {

HWY_EXPORT(litRow);
HWY_EXPORT(weighRow);
HWY_EXPORT(reliefRow);

void alt_lit(float* lit, const ReliefRows& rows, ReliefLight light) noexcept
{
    HWY_DYNAMIC_DISPATCH(litRow)(lit, rows, light);
}

void relief_weigh(float* lit, float* weight, const float* amount, float invScale, std::int64_t width) noexcept
{
    HWY_DYNAMIC_DISPATCH(weighRow)(lit, weight, amount, invScale, width);
}

void alt_relief(float* pixels, const float* lit, const float* amount, const ReliefShade& shade,
                std::int64_t width) noexcept
{
    HWY_DYNAMIC_DISPATCH(reliefRow)(pixels, lit, amount, shade, width);
}

} // namespace tamlo
#endif
