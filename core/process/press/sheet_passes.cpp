#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "core/process/press/sheet_passes.cpp"
#include <hwy/foreach_target.h>

#include "core/process/press/sheet_passes.h"

#include "core/image/vector_pixels-inl.h"

HWY_BEFORE_NAMESPACE();
namespace tamlo {
namespace HWY_NAMESPACE {

/// The pixels × gain, held within 0...1.
template <class D, class V>
HWY_INLINE Triple<V> gained(D d, const Triple<V>& c, V gain)
{
    return {clamp01(d, hn::Mul(c.r, gain)), clamp01(d, hn::Mul(c.g, gain)), clamp01(d, hn::Mul(c.b, gain))};
}

void mottleRun(float* pixels, const float* fine, const float* wide, std::int64_t count, const MottleRow& row)
{
    const hn::ScalableTag<float> d;
    using V = hn::Vec<decltype(d)>;
    const V one = hn::Set(d, 1.0f);
    const V perBase = hn::Set(d, 1.0f / (row.baseMean * 3.0f));
    const V fineFactor = hn::Set(d, row.fineFactor), wideFactor = hn::Set(d, row.wideFactor);
    const V amount = hn::Set(d, row.amount);
    eachTriple(d, pixels, static_cast<std::size_t>(count),
               [&](const Triple<V>& c, std::size_t x, std::size_t n) HWY_ATTR {
                   const V ink = clamp01(d, hn::Sub(one, hn::Mul(hn::Add(hn::Add(c.r, c.g), c.b), perBase)));
                   const V field = hn::Add(hn::Mul(loadRun(d, fine + x, n), fineFactor),
                                           hn::Mul(loadRun(d, wide + x, n), wideFactor));
                   const V gain = hn::Add(one, hn::Mul(hn::Mul(amount, field), hn::Sqrt(ink)));
                   return gained(d, c, gain);
               });
}

/// tanh by way of e^-2|v|, which neither grows nor cancels.
template <class D, class V>
HWY_INLINE V tanhLanes(D d, V v)
{
    const V e = hn::Exp(d, hn::Mul(hn::Set(d, -2.0f), hn::Min(hn::Abs(v), hn::Set(d, 20.0f))));
    const V one = hn::Set(d, 1.0f);
    return hn::CopySign(hn::Div(hn::Sub(one, e), hn::Add(one, e)), v);
}

float surfaceEdge(const SurfaceRow& f, SurfaceLight light, std::int64_t left, std::int64_t right,
                  std::int64_t x)
{
    const float across =
        right > left ? (f.row[right] - f.row[left]) / static_cast<float>(right - left) : 0.0f;
    const float down = (f.below[x] - f.above[x]) * f.acrossRows;
    return across * light.x + down * light.y;
}

void surfaceLitRun(float* to, const SurfaceRow& f, std::int64_t width, SurfaceLight light)
{
    const hn::ScalableTag<float> d;
    const auto half = hn::Set(d, 0.5f), rows = hn::Set(d, f.acrossRows);
    const auto lx = hn::Set(d, light.x), ly = hn::Set(d, light.y);
    for (std::int64_t x = 1; x + 1 < width; x += static_cast<std::int64_t>(hn::Lanes(d))) {
        const auto left = static_cast<std::size_t>(width - 1 - x);
        const auto across =
            hn::Mul(hn::Sub(loadRun(d, f.row + x + 1, left), loadRun(d, f.row + x - 1, left)), half);
        const auto down =
            hn::Mul(hn::Sub(loadRun(d, f.below + x, left), loadRun(d, f.above + x, left)), rows);
        storeRun(d, hn::Add(hn::Mul(across, lx), hn::Mul(down, ly)), to + x, left);
    }
    to[0] = surfaceEdge(f, light, 0, width > 1 ? 1 : 0, 0);
    to[width - 1] = surfaceEdge(f, light, width > 1 ? width - 2 : 0, width - 1, width - 1);
    eachRun(d, to, static_cast<std::size_t>(width),
            [&](std::size_t x, std::size_t n) HWY_ATTR { return tanhLanes(d, loadRun(d, to + x, n)); });
}

void surfaceApplyRun(float* pixels, const float* lit, std::int64_t count, float amount, float mean)
{
    const hn::ScalableTag<float> d;
    using V = hn::Vec<decltype(d)>;
    const V one = hn::Set(d, 1.0f);
    eachTriple(d, pixels, static_cast<std::size_t>(count),
               [&](const Triple<V>& c, std::size_t x, std::size_t n) HWY_ATTR {
                   const V over = hn::Sub(loadRun(d, lit + x, n), hn::Set(d, mean));
                   return gained(d, c, hn::Add(one, hn::Mul(hn::Set(d, amount), over)));
               });
}

} // namespace HWY_NAMESPACE
} // namespace tamlo
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tamlo {

HWY_EXPORT(mottleRun);
HWY_EXPORT(surfaceLitRun);
HWY_EXPORT(surfaceApplyRun);

void repro_mottle(float* pixels, const float* fine, const float* wide, std::int64_t count,
                  const MottleRow& row) noexcept
{
    HWY_DYNAMIC_DISPATCH(mottleRun)(pixels, fine, wide, count, row);
}

void surface_lit(float* to, const SurfaceRow& field, std::int64_t width, SurfaceLight light) noexcept
{
    HWY_DYNAMIC_DISPATCH(surfaceLitRun)(to, field, width, light);
}

void surface_apply(float* pixels, const float* lit, std::int64_t count, float amount, float mean) noexcept
{
    HWY_DYNAMIC_DISPATCH(surfaceApplyRun)(pixels, lit, count, amount, mean);
}

} // namespace tamlo
#endif
