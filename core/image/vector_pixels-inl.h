// Runs of samples and of interleaved pixels on vectors: loading, storing and the luminance of three channels,
// for the passes that vector code makes fast. Included once for each target.

#if defined(TAMLO_CORE_IMAGE_VECTOR_PIXELS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef TAMLO_CORE_IMAGE_VECTOR_PIXELS_INL_H_
#undef TAMLO_CORE_IMAGE_VECTOR_PIXELS_INL_H_
#else
#define TAMLO_CORE_IMAGE_VECTOR_PIXELS_INL_H_
#endif

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

/// clamp(v, 0, 1)^power, 0 for 0.
template <class D, class V>
HWY_INLINE V pow01(D d, V v, float power)
{
    const V held = clamp01(d, v);
    const V tiny = hn::Set(d, 1e-30f);
    const V raised = hn::Exp(d, hn::Mul(hn::Log(d, hn::Max(held, tiny)), hn::Set(d, power)));
    return hn::IfThenElseZero(hn::Gt(held, tiny), raised);
}

/// The next `count` values, at most a vector of them; lanes beyond are 0.
template <class D>
HWY_INLINE hn::Vec<D> loadRun(D d, const hn::TFromD<D>* from, std::size_t count)
{
    if (count >= hn::Lanes(d)) return hn::LoadU(d, from);
    HWY_ALIGN hn::TFromD<D> block[hn::MaxLanes(d)] = {};
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

/// The next `count` interleaved pixels, at most a vector of them; lanes beyond are 0.
template <class D>
HWY_INLINE Triple<hn::Vec<D>> loadTriple(D d, const float* from, std::size_t count)
{
    Triple<hn::Vec<D>> out;
    HWY_ALIGN float block[3 * hn::MaxLanes(d)] = {};
    if (count < hn::Lanes(d)) {
        for (std::size_t k = 0; k < count * 3; ++k) block[k] = from[k];
        from = block;
    }
    hn::LoadInterleaved3(d, from, out.r, out.g, out.b);
    return out;
}

/// The first `count` lanes, at most all of them, to interleaved pixels.
template <class D, class V>
HWY_INLINE void storeTriple(D d, const Triple<V>& v, float* to, std::size_t count)
{
    if (count >= hn::Lanes(d)) return hn::StoreInterleaved3(v.r, v.g, v.b, d, to);
    HWY_ALIGN float block[3 * hn::MaxLanes(d)];
    hn::StoreInterleaved3(v.r, v.g, v.b, d, block);
    for (std::size_t k = 0; k < count * 3; ++k) to[k] = block[k];
}

/// op(index, samples) gives a vector of outputs for out[0...count); the last ones by way of a padded block.
template <class D, class Op>
HWY_INLINE void eachRun(D d, float* out, std::size_t count, const Op& op)
{
    const std::size_t lanes = hn::Lanes(d);
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes) hn::StoreU(op(i, lanes), d, out + i);
    if (i == count) return;
    HWY_ALIGN float block[hn::MaxLanes(d)];
    hn::Store(op(i, count - i), d, block);
    for (std::size_t k = 0; i + k < count; ++k) out[i + k] = block[k];
}

/// op(Triple, first pixel's index, pixels in it) on `count` interleaved pixels in place. The last pixels of a
/// run go through the same vector code by way of a padded block, so that no result depends on where a run
/// ends.
template <class D, class Op>
HWY_INLINE void eachTriple(D d, float* pixels, std::size_t count, const Op& op)
{
    const std::size_t lanes = hn::Lanes(d);
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes)
        storeTriple(d, op(loadTriple(d, pixels + i * 3, lanes), i, lanes), pixels + i * 3, lanes);
    if (const std::size_t rest = count - i; rest > 0)
        storeTriple(d, op(loadTriple(d, pixels + i * 3, rest), i, rest), pixels + i * 3, rest);
}

} // namespace HWY_NAMESPACE
} // namespace tamlo
HWY_AFTER_NAMESPACE();

#endif
