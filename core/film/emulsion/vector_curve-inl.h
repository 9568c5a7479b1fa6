// Log exposure, the characteristic curve and the positive on vectors of pixels: the formulas of HDCurve for
// the passes that vector code makes fast. Included once for each target.

#if defined(TAMLO_CORE_FILM_EMULSION_VECTOR_CURVE_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef TAMLO_CORE_FILM_EMULSION_VECTOR_CURVE_INL_H_
#undef TAMLO_CORE_FILM_EMULSION_VECTOR_CURVE_INL_H_
#else
#define TAMLO_CORE_FILM_EMULSION_VECTOR_CURVE_INL_H_
#endif

#include "core/film/emulsion/hd_curve.h"
#include "core/image/vector_pixels-inl.h"
#include "core/image/zcolor.h"

#include <hwy/contrib/math/math-inl.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tamlo {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

template <class D, class V>
HWY_INLINE V logExposure(D d, V e, float evTerm)
{
    const V ratio = hn::Div(usableLight(d, e), hn::Set(d, ZColor::midGray));
    return hn::Add(hn::Log10(d, hn::Add(ratio, hn::Set(d, ZColor::eps))), hn::Set(d, evTerm));
}

/// Density over dmin: span × s^(1/nu) with s = 1 / (1 + e^-z), written as span × e^(-ln(1 + e^-z) / nu).
template <class D, class V>
HWY_INLINE V densityAboveDmin(D d, const HDCurve& curve, V x)
{
    const V z = hn::Mul(hn::Set(d, curve.fK), hn::Sub(x, hn::Set(d, curve.fM)));
    const V held = hn::Clamp(z, hn::Set(d, -60.0f), hn::Set(d, 60.0f));
    const V t = hn::Add(hn::Set(d, 1.0f), hn::Exp(d, hn::Neg(held)));
    return hn::Mul(hn::Set(d, curve.fSpan), hn::Exp(d, hn::Mul(hn::Log(d, t), hn::Set(d, -curve.fInvNu))));
}

template <class D, class V>
HWY_INLINE V density(D d, const HDCurve& curve, V x)
{
    return hn::Add(hn::Set(d, curve.fDmin), densityAboveDmin(d, curve, x));
}

/// The Black and White knobs.
template <class D, class V>
HWY_INLINE V printKnobs(D d, const HDCurve& curve, V dp)
{
    if (curve.black > 1e-6f) {
        const V u =
            hn::Max(hn::Div(hn::Sub(dp, hn::Set(d, curve.fD0)), hn::Set(d, curve.fShadowSpan)), hn::Zero(d));
        dp = hn::Sub(dp, hn::Mul(hn::Mul(hn::Set(d, curve.black), u), u));
    }
    if (curve.white > 1e-6f) {
        const V v =
            hn::Max(hn::Div(hn::Sub(hn::Set(d, curve.fD0), dp), hn::Set(d, curve.fLightSpan)), hn::Zero(d));
        dp = hn::Add(dp, hn::Mul(hn::Mul(hn::Set(d, curve.white), v), v));
    }
    return dp;
}

template <class D, class V>
HWY_INLINE V positive(D d, const HDCurve& curve, V db, float printEvTerm, float flareAdd)
{
    V u = hn::Sub(hn::Set(d, printEvTerm), db);
    if (flareAdd > 0.0f) u = hn::Log10(d, hn::Add(pow10(d, u), hn::Set(d, flareAdd)));
    const V dp = printKnobs(d, curve, density(d, curve, u));
    return pow10(d, hn::Sub(hn::Set(d, curve.fDmin), dp));
}

} // namespace HWY_NAMESPACE
} // namespace tamlo
HWY_AFTER_NAMESPACE();

#endif
