// Folding a symmetric kernel over samples, four vectors at a time, so that the loads of one hide the sums of
// the others. Included once for each target.

#if defined(TAMLO_CORE_IMAGE_VECTOR_FOLD_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef TAMLO_CORE_IMAGE_VECTOR_FOLD_INL_H_
#undef TAMLO_CORE_IMAGE_VECTOR_FOLD_INL_H_
#else
#define TAMLO_CORE_IMAGE_VECTOR_FOLD_INL_H_
#endif

#include <hwy/highway.h>

#include <cstddef>

HWY_BEFORE_NAMESPACE();
namespace tamlo {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

/// The half kernel w[0...radius] folded over the samples that lower(j) and upper(j) find j steps from the
/// centre; store(k, V) takes the k-th vector. The centre comes first, then the pairs from the outside in.
template <class D, class Lower, class Upper, class Store>
HWY_INLINE void foldFour(D d, const hn::TFromD<D>* w, std::size_t radius, const Lower& lower,
                         const Upper& upper, const Store& store)
{
    using V = hn::Vec<D>;
    const std::size_t n = hn::Lanes(d);
    const auto* centre = lower(0);
    const V w0 = hn::Set(d, w[0]);
    V a0 = hn::Mul(hn::LoadU(d, centre), w0);
    V a1 = hn::Mul(hn::LoadU(d, centre + n), w0);
    V a2 = hn::Mul(hn::LoadU(d, centre + 2 * n), w0);
    V a3 = hn::Mul(hn::LoadU(d, centre + 3 * n), w0);
    for (std::size_t j = radius; j >= 1; --j) {
        const V wj = hn::Set(d, w[j]);
        const auto* lo = lower(j);
        const auto* hi = upper(j);
        a0 = hn::Add(a0, hn::Mul(hn::Add(hn::LoadU(d, lo), hn::LoadU(d, hi)), wj));
        a1 = hn::Add(a1, hn::Mul(hn::Add(hn::LoadU(d, lo + n), hn::LoadU(d, hi + n)), wj));
        a2 = hn::Add(a2, hn::Mul(hn::Add(hn::LoadU(d, lo + 2 * n), hn::LoadU(d, hi + 2 * n)), wj));
        a3 = hn::Add(a3, hn::Mul(hn::Add(hn::LoadU(d, lo + 3 * n), hn::LoadU(d, hi + 3 * n)), wj));
    }
    store(0, a0);
    store(1, a1);
    store(2, a2);
    store(3, a3);
}

} // namespace HWY_NAMESPACE
} // namespace tamlo
HWY_AFTER_NAMESPACE();

#endif
