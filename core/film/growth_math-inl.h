// The draws of growth grain on vectors: hash, normal, inverse normal and Poisson count of a run of sites. The
// scalar forms are in core/image/position_hash.h and growth_random.h. Included once for each target.

#if defined(TAMLO_CORE_FILM_GROWTH_MATH_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef TAMLO_CORE_FILM_GROWTH_MATH_INL_H_
#undef TAMLO_CORE_FILM_GROWTH_MATH_INL_H_
#else
#define TAMLO_CORE_FILM_GROWTH_MATH_INL_H_
#endif

#include "core/film/growth_random.h"

#include <cstddef>
#include <cstdint>

#include <hwy/contrib/math/math-inl.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tamlo {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

/// hash32 on a vector.
template <class DU, class VU>
HWY_INLINE VU hashVector(DU d, VU x)
{
    x = hn::Xor(x, hn::ShiftRight<16>(x));
    x = hn::Mul(x, hn::Set(d, 0x7FEB352Du));
    x = hn::Xor(x, hn::ShiftRight<15>(x));
    x = hn::Mul(x, hn::Set(d, 0x846CA68Bu));
    return hn::Xor(x, hn::ShiftRight<16>(x));
}

/// growth_unit on a vector: the upper 24 bits as a uniform in (0, 1].
template <class D, class VU>
HWY_INLINE hn::Vec<D> unitVector(D d, VU hash)
{
    const hn::RebindToSigned<D> di;
    const auto upper = hn::ConvertTo(d, hn::BitCast(di, hn::ShiftRight<8>(hash)));
    return hn::Mul(hn::Add(upper, hn::Set(d, 0.5f)), hn::Set(d, 0x1p-24f));
}

/// cos(2 pi u) for u in 0...1: a half turn is folded onto sin(2 pi x) with x in -1/4...1/4, an odd
/// polynomial. fit: least squares over 2,000 Chebyshev points; worst error 2.1e-7.
template <class D, class V>
HWY_INLINE V cosTurn(D d, V u)
{
    const V x = hn::Sub(hn::Abs(hn::Sub(u, hn::Set(d, 0.5f))), hn::Set(d, 0.25f));
    const V x2 = hn::Mul(x, x);
    V p = hn::Set(d, 39.5358137f);
    p = hn::MulAdd(p, x2, hn::Set(d, -76.5496568f));
    p = hn::MulAdd(p, x2, hn::Set(d, 81.6009982f));
    p = hn::MulAdd(p, x2, hn::Set(d, -41.3416549f));
    p = hn::MulAdd(p, x2, hn::Set(d, 6.28318516f));
    return hn::Mul(p, x);
}

/// Box-Muller on two vectors of hashes.
template <class D, class VU>
HWY_INLINE hn::Vec<D> normalVector(D d, VU radiusHash, VU angleHash)
{
    const auto radius = hn::Sqrt(hn::Mul(hn::Set(d, -2.0f), hn::Log(d, unitVector(d, radiusHash))));
    return hn::Mul(radius, cosTurn(d, unitVector(d, angleHash)));
}

/// Horner's rule, highest power first.
template <class D, class V, std::size_t N>
HWY_INLINE V horner(D d, V x, const std::array<float, N>& table)
{
    V sum = hn::Set(d, table[0]);
    for (std::size_t i = 1; i < N; ++i) sum = hn::Add(hn::Mul(sum, x), hn::Set(d, table[i]));
    return sum;
}

/// Grain::normalQuantile on a vector.
template <class D, class V>
HWY_INLINE V quantileVector(D d, V u)
{
    using T = Grain::QuantileTable;
    const V one = hn::Set(d, 1.0f), half = hn::Set(d, 0.5f);
    const V p = hn::Clamp(u, hn::Set(d, T::least), hn::Set(d, 1.0f - T::least));
    const V q = hn::Sub(p, half), r = hn::Mul(q, q);
    const V den = hn::Add(hn::Mul(horner(d, r, T::b), r), one);
    V z = hn::Div(hn::Mul(horner(d, r, T::a), q), den);

    const V pTail = hn::Min(p, hn::Sub(one, p));
    const auto inTail = hn::Lt(pTail, hn::Set(d, T::tail));
    if (!hn::AllFalse(d, inTail)) {
        const V t = hn::Sqrt(hn::Mul(hn::Set(d, -2.0f), hn::Log(d, pTail)));
        const V tailDen = hn::Add(hn::Mul(horner(d, t, T::d), t), one);
        const V magnitude = hn::Div(horner(d, t, T::c), tailDen);
        z = hn::IfThenElse(inTail, hn::IfThenElse(hn::Lt(p, half), magnitude, hn::Neg(magnitude)), z);
    }
    return z;
}

/// To the nearest integer, halves up; for values of 0 or more.
template <class D, class V>
HWY_INLINE V roundHalfUp(D d, V v)
{
    const V whole = hn::Floor(v);
    const auto up = hn::Ge(hn::Sub(v, whole), hn::Set(d, 0.5f));
    return hn::Add(whole, hn::IfThenElseZero(up, hn::Set(d, 1.0f)));
}

/// Grain::poisson on a vector. The inversion stops once every lane has its count.
template <class D, class V>
HWY_INLINE V poissonVector(D d, V u, V lam)
{
    const V one = hn::Set(d, 1.0f);
    const V lamS = hn::Clamp(lam, hn::Set(d, 1e-9f), hn::Set(d, Grain::kPoissonMost));
    const auto small = hn::Lt(lamS, hn::Set(d, Grain::kPoissonNormalFrom));
    V count = hn::Zero(d);
    if (!hn::AllTrue(d, small)) {
        const V drawn = hn::Add(lamS, hn::Mul(hn::Sqrt(lamS), quantileVector(d, u)));
        count = hn::IfThenZeroElse(small, roundHalfUp(d, hn::Max(drawn, hn::Zero(d))));
    }
    if (!hn::AllFalse(d, small)) {
        V p =
            hn::IfThenElse(small, hn::Exp(d, hn::Neg(lamS)), one); // other lanes are past their count at once
        V cumulated = p;
        for (const float inverse : Grain::invK) {
            const auto open = hn::Gt(u, cumulated);
            if (hn::AllFalse(d, open)) break;
            count = hn::Add(count, hn::IfThenElseZero(open, one));
            p = hn::Mul(p, hn::Mul(lamS, hn::Set(d, inverse)));
            cumulated = hn::Add(cumulated, p);
        }
    }
    return count;
}

} // namespace HWY_NAMESPACE
} // namespace tamlo
HWY_AFTER_NAMESPACE();

#endif
