// The look of a print on vectors of pixels: the formula of LookOp for the passes that vector code makes fast.
// Included once for each target.

#if defined(TAMLO_CORE_FILM_PRINT_VECTOR_LOOK_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef TAMLO_CORE_FILM_PRINT_VECTOR_LOOK_INL_H_
#undef TAMLO_CORE_FILM_PRINT_VECTOR_LOOK_INL_H_
#else
#define TAMLO_CORE_FILM_PRINT_VECTOR_LOOK_INL_H_
#endif

#include "core/film/print/look.h"
#include "core/image/vector_pixels-inl.h"

#include <hwy/contrib/math/math-inl.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tamlo {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

template <class D, class V>
HWY_INLINE Triple<V> look(D d, const Film::LookOp& op, Triple<V> c)
{
    if (op.hasFade) c = {pow01(d, c.r, op.fade[0]), pow01(d, c.g, op.fade[1]), pow01(d, c.b, op.fade[2])};
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

} // namespace HWY_NAMESPACE
} // namespace tamlo
HWY_AFTER_NAMESPACE();

#endif
