// What the passes of the presses share on vectors of pixels: dot gain, the threshold of a screen, and runs
// that end within a vector. Included once for each target.

#if defined(TAMLO_CORE_PROCESS_PRESS_PRESS_MATH_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef TAMLO_CORE_PROCESS_PRESS_PRESS_MATH_INL_H_
#undef TAMLO_CORE_PROCESS_PRESS_PRESS_MATH_INL_H_
#else
#define TAMLO_CORE_PROCESS_PRESS_PRESS_MATH_INL_H_
#endif

#include "core/process/press/separation.h"

#include <cstdint>

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tamlo {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

template <class D, class V>
HWY_INLINE V clampUnit(D d, V v)
{
    return hn::Clamp(v, hn::Zero(d), hn::Set(d, 1.0f));
}

/// The next samples, at most a vector of them; lanes beyond are 0. The last samples of a run go through the
/// same vector code by way of a padded block.
template <class D>
HWY_INLINE hn::Vec<D> loadUpTo(D d, const float* from, std::int64_t count)
{
    if (count >= static_cast<std::int64_t>(hn::Lanes(d))) return hn::LoadU(d, from);
    HWY_ALIGN float block[hn::MaxLanes(d)] = {};
    for (std::int64_t k = 0; k < count; ++k) block[k] = from[k];
    return hn::Load(d, block);
}

template <class D, class V>
HWY_INLINE void storeUpTo(D d, V v, float* to, std::int64_t count)
{
    if (count >= static_cast<std::int64_t>(hn::Lanes(d))) return hn::StoreU(v, d, to);
    HWY_ALIGN float block[hn::MaxLanes(d)];
    hn::Store(v, d, block);
    for (std::int64_t k = 0; k < count; ++k) to[k] = block[k];
}

/// The same of interleaved pixels.
template <class D, class V>
HWY_INLINE void loadTriple(D d, const float* from, std::int64_t pixels, V& r, V& g, V& b)
{
    if (pixels >= static_cast<std::int64_t>(hn::Lanes(d))) return hn::LoadInterleaved3(d, from, r, g, b);
    HWY_ALIGN float block[3 * hn::MaxLanes(d)] = {};
    for (std::int64_t k = 0; k < pixels * 3; ++k) block[k] = from[k];
    hn::LoadInterleaved3(d, block, r, g, b);
}

template <class D, class V>
HWY_INLINE void storeTriple(D d, V r, V g, V b, float* to, std::int64_t pixels)
{
    if (pixels >= static_cast<std::int64_t>(hn::Lanes(d))) return hn::StoreInterleaved3(r, g, b, d, to);
    HWY_ALIGN float block[3 * hn::MaxLanes(d)];
    hn::StoreInterleaved3(r, g, b, d, block);
    for (std::int64_t k = 0; k < pixels * 3; ++k) to[k] = block[k];
}

/// ReproPrint::dotGain.
template <class D, class V>
HWY_INLINE V gainGiven(D d, ReproPrint::GainCurve curve, V a0)
{
    const V one = hn::Set(d, 1.0f), four = hn::Set(d, 4.0f);
    const auto parabola = [&](V a) HWY_ATTR { return hn::Mul(hn::Mul(four, a), hn::Sub(one, a)); };
    const V a = clampUnit(d, hn::Sub(a0, hn::Mul(hn::Set(d, curve.comp * curve.gain), parabola(a0))));
    return clampUnit(d, hn::Add(a, hn::Mul(hn::Set(d, curve.gain), parabola(a))));
}

/// ReproPrint::dotGainInv.
template <class D, class V>
HWY_INLINE V gainTaken(D d, ReproPrint::GainCurve curve, V a)
{
    const V held = clampUnit(d, a);
    if (curve.gain <= 0.0f) return held;
    const V zero = hn::Zero(d);
    const float b = 1.0f + 4.0f * curve.gain;
    const V rootB =
        hn::Sqrt(hn::Max(hn::Sub(hn::Set(d, b * b), hn::Mul(hn::Set(d, 16.0f * curve.gain), held)), zero));
    const V a1 = hn::Div(hn::Add(held, held), hn::Add(hn::Set(d, b), rootB));
    const float cg = curve.comp * curve.gain;
    if (cg <= 1e-6f) return clampUnit(d, a1);
    const float e = 1.0f - 4.0f * cg;
    const V rootE = hn::Sqrt(hn::Max(hn::Add(hn::Set(d, e * e), hn::Mul(hn::Set(d, 16.0f * cg), a1)), zero));
    const V below = hn::Max(hn::Add(hn::Set(d, e), rootE), hn::Set(d, 1e-6f));
    return clampUnit(d, hn::Div(hn::Add(a1, a1), below));
}

} // namespace HWY_NAMESPACE
} // namespace tamlo
HWY_AFTER_NAMESPACE();

#endif
