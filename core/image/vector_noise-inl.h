// Position-hashed noise on vectors of 32-bit lanes: hash32, growth_unit and the Box-Muller step of
// core/image/position_hash.h for the passes that vector code makes fast. Included once for each target.

#if defined(TAMLO_CORE_IMAGE_VECTOR_NOISE_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef TAMLO_CORE_IMAGE_VECTOR_NOISE_INL_H_
#undef TAMLO_CORE_IMAGE_VECTOR_NOISE_INL_H_
#else
#define TAMLO_CORE_IMAGE_VECTOR_NOISE_INL_H_
#endif

#include <hwy/contrib/math/math-inl.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tamlo {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

/// The same bits as the scalar hash32.
template <class DU, class VU>
HWY_INLINE VU hashLanes(DU du, VU x)
{
    x = hn::Xor(x, hn::ShiftRight<16>(x));
    x = hn::Mul(x, hn::Set(du, 0x7FEB352Du));
    x = hn::Xor(x, hn::ShiftRight<15>(x));
    x = hn::Mul(x, hn::Set(du, 0x846CA68Bu));
    return hn::Xor(x, hn::ShiftRight<16>(x));
}

/// growth_unit: a uniform in (0, 1] from the upper 24 bits of a hash; the same bits as the scalar form.
template <class D, class VU>
HWY_INLINE hn::Vec<D> unitLanes(D d, VU h)
{
    const hn::RebindToSigned<D> di;
    const hn::Vec<D> cell = hn::ConvertTo(d, hn::BitCast(di, hn::ShiftRight<8>(h)));
    return hn::Mul(hn::Add(cell, hn::Set(d, 0.5f)), hn::Set(d, 0x1p-24f));
}

/// cos(2π u) for u in 0...1, as sin(2π v) with v = |u - 1/2| - 1/4 within ±1/4, by the Taylor series to the
/// eleventh power: off by less than 1e-7.
template <class D, class V>
HWY_INLINE V cosTurns(D d, V u)
{
    const V v = hn::Sub(hn::Abs(hn::Sub(u, hn::Set(d, 0.5f))), hn::Set(d, 0.25f));
    const V x = hn::Mul(v, hn::Set(d, 6.2831853071795864769f));
    const V x2 = hn::Mul(x, x);
    V sum = hn::Set(d, -2.5052108e-8f); // -1 / 11!
    sum = hn::Add(hn::Mul(sum, x2), hn::Set(d, 2.7557319e-6f));
    sum = hn::Add(hn::Mul(sum, x2), hn::Set(d, -1.9841270e-4f));
    sum = hn::Add(hn::Mul(sum, x2), hn::Set(d, 8.3333333e-3f));
    sum = hn::Add(hn::Mul(sum, x2), hn::Set(d, -1.6666667e-1f));
    return hn::Add(hn::Mul(hn::Mul(sum, x2), x), x);
}

/// hashNormal: a standard normal from two hashes. The logarithm of a uniform near 1 may come out a hair above
/// 0, which the root must not see.
template <class D, class VU>
HWY_INLINE hn::Vec<D> normalLanes(D d, VU radiusHash, VU angleHash)
{
    const hn::Vec<D> square = hn::Mul(hn::Set(d, -2.0f), hn::Log(d, unitLanes(d, radiusHash)));
    const hn::Vec<D> radius = hn::Sqrt(hn::Max(square, hn::Zero(d)));
    return hn::Mul(radius, cosTurns(d, unitLanes(d, angleHash)));
}

} // namespace HWY_NAMESPACE
} // namespace tamlo
HWY_AFTER_NAMESPACE();

#endif
