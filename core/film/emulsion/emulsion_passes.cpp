#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "core/film/emulsion/emulsion_passes.cpp"
#include <hwy/foreach_target.h>

#include "core/film/emulsion/emulsion_passes.h"

#include "core/image/vector_pixels-inl.h"

#include <algorithm>

HWY_BEFORE_NAMESPACE();
namespace tamlo {
namespace HWY_NAMESPACE {

void halationAddRun(float* light, const float* glow, std::size_t count, float gain)
{
    const hn::ScalableTag<float> d;
    eachRun(d, light, count, [&](std::size_t i, std::size_t n) HWY_ATTR {
        return hn::Add(loadRun(d, light + i, n), hn::Mul(hn::Set(d, gain), loadRun(d, glow + i, n)));
    });
}

void halationAddColorRun(float* pixels, const float* glow, std::size_t count, const Vec3f& gains)
{
    const hn::ScalableTag<float> d;
    using V = hn::Vec<decltype(d)>;
    eachTriple(d, pixels, count, [&](Triple<V> c, std::size_t first, std::size_t n) HWY_ATTR {
        const V b = loadRun(d, glow + first, n);
        return Triple<V>{hn::Add(c.r, hn::Mul(hn::Set(d, gains[0]), b)),
                         hn::Add(c.g, hn::Mul(hn::Set(d, gains[1]), b)),
                         hn::Add(c.b, hn::Mul(hn::Set(d, gains[2]), b))};
    });
}

/// tanh as (1 - t) / (1 + t) with t = e^(-2 |x|), off by less than 2e-7: it is added to densities near 1.
template <class D, class V>
HWY_INLINE V hyperbolicTangent(D d, V x)
{
    const V one = hn::Set(d, 1.0f);
    const V held = hn::Min(hn::Abs(x), hn::Set(d, 20.0f));
    const V t = hn::Exp(d, hn::Mul(held, hn::Set(d, -2.0f)));
    return hn::CopySign(hn::Div(hn::Sub(one, t), hn::Add(one, t)), x);
}

void adjacencyRun(float* density, const float* blurred, std::size_t count, const AdjacencyParams& params)
{
    const hn::ScalableTag<float> d;
    using V = hn::Vec<decltype(d)>;
    eachRun(d, density, count, [&](std::size_t i, std::size_t n) HWY_ATTR {
        const V here = loadRun(d, density + i, n);
        V effect = hn::Sub(here, loadRun(d, blurred + i, n));
        if (params.invSat != 0.0f) effect = hyperbolicTangent(d, hn::Mul(effect, hn::Set(d, params.invSat)));
        return hn::Add(here, hn::Mul(hn::Set(d, params.gain), effect));
    });
}

} // namespace HWY_NAMESPACE
} // namespace tamlo
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tamlo {

HWY_EXPORT(halationAddRun);
HWY_EXPORT(halationAddColorRun);
HWY_EXPORT(adjacencyRun);

void halation_add(float* light, const float* glow, std::int64_t count, float gain) noexcept
{
    HWY_DYNAMIC_DISPATCH(halationAddRun)(light, glow, static_cast<std::size_t>(count), gain);
}

void halation_add_color(float* pixels, const float* glow, std::int64_t count, const Vec3f& gains) noexcept
{
    HWY_DYNAMIC_DISPATCH(halationAddColorRun)(pixels, glow, static_cast<std::size_t>(count), gains);
}

void adjacency_row(float* density, const float* blurred, std::int64_t count,
                   const AdjacencyParams& params) noexcept
{
    HWY_DYNAMIC_DISPATCH(adjacencyRun)(density, blurred, static_cast<std::size_t>(count), params);
}

} // namespace tamlo
#endif
