// The characteristic curve, log exposure, print and look on vectors of pixels: the formulas of HDCurve,
// Print and LookOp for the passes that vector code makes fast. Included once for each target.

#if defined(TAMLO_CORE_FILM_VECTOR_CURVE_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef TAMLO_CORE_FILM_VECTOR_CURVE_INL_H_
#undef TAMLO_CORE_FILM_VECTOR_CURVE_INL_H_
#else
#define TAMLO_CORE_FILM_VECTOR_CURVE_INL_H_
#endif

#include "core/film/hd_curve.h"
#include "core/film/look.h"
#include "core/image/zcolor.h"

#include <hwy/contrib/math/math-inl.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tamlo {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

/// Three channels of a run of pixels.
template <class V>
struct Triple {
    V r, g, b;
};

/// 10^v for v within ±30, beyond which it is held: the positives of this system lie far inside.
template <class D, class V>
HWY_INLINE V pow10(D d, V v)
{
    const V held = hn::Clamp(v, hn::Set(d, -30.0f), hn::Set(d, 30.0f));
    return hn::Exp(d, hn::Mul(held, hn::Set(d, 2.302585093f)));
}

/// max(v, 0), and 0 for NaN; no more than 1e30, where the logarithm still comes out right.
template <class D, class V>
HWY_INLINE V usableLight(D d, V v)
{
    return hn::Min(hn::IfThenElseZero(hn::Gt(v, hn::Zero(d)), v), hn::Set(d, 1e30f));
}

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

template <class D, class V>
HWY_INLINE V lumaOf(D d, const Triple<V>& c)
{
    return hn::Add(
        hn::Add(hn::Mul(hn::Set(d, ZColor::luma[0]), c.r), hn::Mul(hn::Set(d, ZColor::luma[1]), c.g)),
        hn::Mul(hn::Set(d, ZColor::luma[2]), c.b));
}

template <class D, class V>
HWY_INLINE V clamp01(D d, V v)
{
    return hn::Clamp(v, hn::Zero(d), hn::Set(d, 1.0f));
}

/// clamp(v, 0, 1)^fade, 0 for 0.
template <class D, class V>
HWY_INLINE V faded(D d, V v, float fade)
{
    const V held = clamp01(d, v);
    const V tiny = hn::Set(d, 1e-30f);
    const V power = hn::Exp(d, hn::Mul(hn::Log(d, hn::Max(held, tiny)), hn::Set(d, fade)));
    return hn::IfThenElseZero(hn::Gt(held, tiny), power);
}

template <class D, class V>
HWY_INLINE Triple<V> look(D d, const Film::LookOp& op, Triple<V> c)
{
    if (op.hasFade) c = {faded(d, c.r, op.fade[0]), faded(d, c.g, op.fade[1]), faded(d, c.b, op.fade[2])};
    if (op.hasTint) {
        const V n = hn::Sqrt(clamp01(d, lumaOf(d, c)));
        const V a = hn::Sub(hn::Set(d, 1.0f), n);
        const V a2 = hn::Mul(a, a), n2 = hn::Mul(n, n);
        const auto tinted = [&](V v, std::size_t i) HWY_ATTR {
            const V shadow = hn::Mul(hn::Set(d, op.shadowTint[i]), a2);
            const V highlight = hn::Mul(hn::Set(d, op.highlightTint[i]), n2);
            return hn::Mul(v, hn::Add(hn::Add(hn::Set(d, 1.0f), shadow), highlight));
        };
        c = {tinted(c.r, 0), tinted(c.g, 1), tinted(c.b, 2)};
    }
    if (op.hasSat) {
        const V y = lumaOf(d, c), factor = hn::Set(d, op.saturation);
        const auto spread = [&](V v) HWY_ATTR { return hn::Add(y, hn::Mul(hn::Sub(v, y), factor)); };
        c = {spread(c.r), spread(c.g), spread(c.b)};
    }
    if (op.hasGreenMute) {
        const V half = hn::Mul(hn::Set(d, 0.5f), hn::Add(c.r, c.b));
        const V excess = hn::Max(hn::Sub(c.g, half), hn::Zero(d));
        c.g = hn::Sub(c.g, hn::Mul(hn::Set(d, op.greenMute), excess));
        c.r = hn::Add(c.r, hn::Mul(hn::Set(d, op.greenMuteRed), excess));
    }
    return c;
}

/// The next `count` floats, at most a vector of them; lanes beyond are 0.
template <class D>
HWY_INLINE hn::Vec<D> loadRun(D d, const float* from, std::size_t count)
{
    if (count >= hn::Lanes(d)) return hn::LoadU(d, from);
    HWY_ALIGN float block[hn::MaxLanes(d)] = {};
    for (std::size_t k = 0; k < count; ++k) block[k] = from[k];
    return hn::Load(d, block);
}

/// The first `count` lanes, at most all of them, to memory.
template <class D, class V>
HWY_INLINE void storeRun(D d, V v, float* to, std::size_t count)
{
    if (count >= hn::Lanes(d)) return hn::StoreU(v, d, to);
    HWY_ALIGN float block[hn::MaxLanes(d)];
    hn::Store(v, d, block);
    for (std::size_t k = 0; k < count; ++k) to[k] = block[k];
}

/// op(Triple, first pixel's index, pixels in it) on `count` interleaved pixels in place. The last pixels of a
/// run go through the same vector code by way of a padded block, so that no result depends on where a run
/// ends.
template <class D, class Op>
HWY_INLINE void eachTriple(D d, float* pixels, std::size_t count, const Op& op)
{
    using V = hn::Vec<D>;
    const std::size_t lanes = hn::Lanes(d);
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes) {
        V r, g, b;
        hn::LoadInterleaved3(d, pixels + i * 3, r, g, b);
        const Triple<V> out = op(Triple<V>{r, g, b}, i, lanes);
        hn::StoreInterleaved3(out.r, out.g, out.b, d, pixels + i * 3);
    }
    if (const std::size_t rest = count - i; rest > 0) {
        HWY_ALIGN float block[3 * hn::MaxLanes(d)] = {};
        for (std::size_t k = 0; k < rest * 3; ++k) block[k] = pixels[i * 3 + k];
        V r, g, b;
        hn::LoadInterleaved3(d, block, r, g, b);
        const Triple<V> out = op(Triple<V>{r, g, b}, i, rest);
        hn::StoreInterleaved3(out.r, out.g, out.b, d, block);
        for (std::size_t k = 0; k < rest * 3; ++k) pixels[i * 3 + k] = block[k];
    }
}

} // namespace HWY_NAMESPACE
} // namespace tamlo
HWY_AFTER_NAMESPACE();

#endif
