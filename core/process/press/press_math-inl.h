// Dot gain on vectors, for the passes of the presses. Included once for each target.

#if defined(TAMLO_CORE_PROCESS_PRESS_PRESS_MATH_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef TAMLO_CORE_PROCESS_PRESS_PRESS_MATH_INL_H_
#undef TAMLO_CORE_PROCESS_PRESS_PRESS_MATH_INL_H_
#else
#define TAMLO_CORE_PROCESS_PRESS_PRESS_MATH_INL_H_
#endif

#include "core/image/vector_pixels-inl.h"
#include "core/process/press/separation.h"

HWY_BEFORE_NAMESPACE();
namespace tamlo {
namespace HWY_NAMESPACE {

/// ReproPrint::dotGain.
template <class D, class V>
HWY_INLINE V gainGiven(D d, ReproPrint::GainCurve curve, V a0)
{
    const V one = hn::Set(d, 1.0f), four = hn::Set(d, 4.0f);
    const auto parabola = [&](V a) HWY_ATTR { return hn::Mul(hn::Mul(four, a), hn::Sub(one, a)); };
    const V a = clamp01(d, hn::Sub(a0, hn::Mul(hn::Set(d, curve.comp * curve.gain), parabola(a0))));
    return clamp01(d, hn::Add(a, hn::Mul(hn::Set(d, curve.gain), parabola(a))));
}

/// ReproPrint::dotGainInv.
template <class D, class V>
HWY_INLINE V gainTaken(D d, ReproPrint::GainCurve curve, V a)
{
    const V held = clamp01(d, a);
    if (curve.gain <= 0.0f) return held;
    const V zero = hn::Zero(d);
    const float b = 1.0f + 4.0f * curve.gain;
    const V rootB =
        hn::Sqrt(hn::Max(hn::Sub(hn::Set(d, b * b), hn::Mul(hn::Set(d, 16.0f * curve.gain), held)), zero));
    const V a1 = hn::Div(hn::Add(held, held), hn::Add(hn::Set(d, b), rootB));
    const float cg = curve.comp * curve.gain;
    if (cg <= 1e-6f) return clamp01(d, a1);
    const float e = 1.0f - 4.0f * cg;
    const V rootE = hn::Sqrt(hn::Max(hn::Add(hn::Set(d, e * e), hn::Mul(hn::Set(d, 16.0f * cg), a1)), zero));
    const V below = hn::Max(hn::Add(hn::Set(d, e), rootE), hn::Set(d, 1e-6f));
    return clamp01(d, hn::Div(hn::Add(a1, a1), below));
}

} // namespace HWY_NAMESPACE
} // namespace tamlo
HWY_AFTER_NAMESPACE();

#endif
