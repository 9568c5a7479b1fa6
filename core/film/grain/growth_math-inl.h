// The draws of growth grain on vectors: inverse normal and Poisson count of a run of sites. The scalar forms
// are in growth_random.h; hashes and normals on vectors are in vector_noise-inl.h. Included once for each
// target.

#if defined(TAMLO_CORE_FILM_GRAIN_GROWTH_MATH_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef TAMLO_CORE_FILM_GRAIN_GROWTH_MATH_INL_H_
#undef TAMLO_CORE_FILM_GRAIN_GROWTH_MATH_INL_H_
#else
#define TAMLO_CORE_FILM_GRAIN_GROWTH_MATH_INL_H_
#endif

#include "core/image/growth_random.h"
#include "core/image/vector_noise-inl.h"

#include <cstddef>
#include <cstdint>

#include <hwy/contrib/math/math-inl.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tamlo {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

/// Horner's rule, highest power first.
template <class D, class V, std::size_t N>
HWY_INLINE V horner(D d, V x, const std::array<float, N>& table)
{
    V sum = hn::Set(d, table[0]);
    for (std::size_t i = 1; i < N; ++i) sum = hn::Add(hn::Mul(sum, x), hn::Set(d, table[i]));
    return sum;
}

/// The middle of Grain::normalQuantile: q is p - 1/2.
template <class D, class V>
HWY_INLINE V quantileMiddle(D d, V q)
{
    using T = Grain::QuantileTable;
    const V r = hn::Mul(q, q);
    const V den = hn::Add(hn::Mul(horner(d, r, T::b), r), hn::Set(d, 1.0f));
    return hn::Div(hn::Mul(horner(d, r, T::a), q), den);
}

/// Its tails, for p on either side of 1/2.
template <class D, class V>
HWY_INLINE V quantileTail(D d, V p)
{
    using T = Grain::QuantileTable;
    const V one = hn::Set(d, 1.0f);
    const V nearer = hn::Min(p, hn::Sub(one, p));
    const V t = hn::Sqrt(hn::Mul(hn::Set(d, -2.0f), hn::Log(d, nearer)));
    const V den = hn::Add(hn::Mul(horner(d, t, T::d), t), one);
    const V magnitude = hn::Div(horner(d, t, T::c), den);
    return hn::IfThenElse(hn::Lt(p, hn::Set(d, 0.5f)), magnitude, hn::Neg(magnitude));
}

/// p within the reach of the quantile.
template <class D, class V>
HWY_INLINE V quantileHeld(D d, V u)
{
    using T = Grain::QuantileTable;
    return hn::Clamp(u, hn::Set(d, T::least), hn::Set(d, 1.0f - T::least));
}

template <class D, class V>
HWY_INLINE hn::Mask<D> quantileInTail(D d, V p)
{
    return hn::Lt(hn::Min(p, hn::Sub(hn::Set(d, 1.0f), p)), hn::Set(d, Grain::QuantileTable::tail));
}

/// Grain::normalQuantile on a vector.
template <class D, class V>
HWY_INLINE V quantileVector(D d, V u)
{
    const V p = quantileHeld(d, u);
    const V z = quantileMiddle(d, hn::Sub(p, hn::Set(d, 0.5f)));
    const auto inTail = quantileInTail(d, p);
    return hn::AllFalse(d, inTail) ? z : hn::IfThenElse(inTail, quantileTail(d, p), z);
}

/// The normal form of a Poisson count: lam + sqrt(lam) z to the nearest integer, halves up, at least 0.
template <class D, class V>
HWY_INLINE V poissonRounded(D d, V lam, V z)
{
    const V drawn = hn::Max(hn::Add(lam, hn::Mul(hn::Sqrt(lam), z)), hn::Zero(d));
    const V whole = hn::Floor(drawn);
    const auto up = hn::Ge(hn::Sub(drawn, whole), hn::Set(d, 0.5f));
    return hn::Add(whole, hn::IfThenElseZero(up, hn::Set(d, 1.0f)));
}

/// Four vectors that go through a formula side by side.
template <class T>
struct Quad {
    T a, b, c, d;
};
template <class Op, class... T>
HWY_INLINE auto eachOf(const Op& op, const Quad<T>&... q)
{
    return Quad<decltype(op(q.a...))>{op(q.a...), op(q.b...), op(q.c...), op(q.d...)};
}
template <class D>
HWY_INLINE Quad<hn::Vec<D>> loadQuad(D d, const float* from)
{
    const std::size_t n = hn::Lanes(d);
    return {hn::LoadU(d, from), hn::LoadU(d, from + n), hn::LoadU(d, from + 2 * n),
            hn::LoadU(d, from + 3 * n)};
}
template <class D>
HWY_INLINE void storeQuad(D d, const Quad<hn::Vec<D>>& q, float* to)
{
    const std::size_t n = hn::Lanes(d);
    hn::StoreU(q.a, d, to);
    hn::StoreU(q.b, d, to + n);
    hn::StoreU(q.c, d, to + 2 * n);
    hn::StoreU(q.d, d, to + 3 * n);
}

/// Poisson counts of a run of sites (Grain::poisson on vectors). Draws in the tails of the normal form are
/// rare and dear, so they are set aside and finished together. The inversion takes four vectors at a time and
/// stops once every lane has its count.
template <class D>
class PoissonRun {
public:
    using V = hn::Vec<D>;
    static constexpr std::size_t kMost = 1024; ///< sites of a run

    /// Draws the next four vectors; counts are complete after finish().
    HWY_INLINE void draw(const Quad<V>& u, const Quad<V>& lam)
    {
        const D d;
        const auto held = eachOf(
            [d](V v) HWY_ATTR { return hn::Clamp(v, hn::Set(d, 1e-9f), hn::Set(d, Grain::kPoissonMost)); },
            lam);
        const auto small =
            eachOf([d](V v) HWY_ATTR { return hn::Lt(v, hn::Set(d, Grain::kPoissonNormalFrom)); }, held);
        const bool anySmall = !hn::AllFalse(d, hn::Or(hn::Or(small.a, small.b), hn::Or(small.c, small.d)));
        const bool allSmall = hn::AllTrue(d, hn::And(hn::And(small.a, small.b), hn::And(small.c, small.d)));
        Quad<V> count = eachOf([d](V) HWY_ATTR { return hn::Zero(d); }, u);
        if (anySmall) count = inverted(u, held, small);
        if (!allSmall) {
            const std::size_t n = hn::Lanes(d);
            count.a = normal(u.a, held.a, small.a, count.a, filled_);
            count.b = normal(u.b, held.b, small.b, count.b, filled_ + n);
            count.c = normal(u.c, held.c, small.c, count.c, filled_ + 2 * n);
            count.d = normal(u.d, held.d, small.d, count.d, filled_ + 3 * n);
        }
        storeQuad(d, count, counts_ + filled_);
        filled_ += 4 * hn::Lanes(d);
    }

    /// Completes the tails. Returns the counts; the run starts anew.
    HWY_INLINE const float* finish()
    {
        const D d;
        const std::size_t n = hn::Lanes(d);
        hn::StoreU(hn::Set(d, 0.5f), d,
                   tailU_ + tails_); // what lies behind the last one is drawn and dropped
        hn::StoreU(hn::Set(d, 1.0f), d, tailLam_ + tails_);
        for (std::size_t i = 0; i < tails_; i += n) {
            const V z = quantileTail(d, quantileHeld(d, hn::LoadU(d, tailU_ + i)));
            hn::StoreU(poissonRounded(d, hn::LoadU(d, tailLam_ + i), z), d, tailLam_ + i);
        }
        for (std::size_t i = 0; i < tails_; ++i) counts_[tailAt_[i]] = tailLam_[i];
        filled_ = tails_ = 0;
        return counts_;
    }

private:
    using DI = hn::RebindToSigned<D>;
    using M = hn::Mask<D>;

    HWY_INLINE Quad<V> inverted(const Quad<V>& u, const Quad<V>& lam, const Quad<M>& small) const
    {
        const D d;
        const V one = hn::Set(d, 1.0f);
        // Lanes of the normal form start at 1, past which no u lies.
        Quad<V> p = eachOf([=](V v, M m) HWY_ATTR { return hn::IfThenElse(m, hn::Exp(d, hn::Neg(v)), one); },
                           lam, small);
        Quad<V> cumulated = p;
        Quad<V> count = eachOf([d](V) HWY_ATTR { return hn::Zero(d); }, u);
        const auto isOpen = [&] HWY_ATTR {
            return eachOf([](V v, V c) HWY_ATTR { return hn::Gt(v, c); }, u, cumulated);
        };
        const auto step = [&](const Quad<M>& open, float inverse) HWY_ATTR {
            count =
                eachOf([=](V n, M m) HWY_ATTR { return hn::IfThenElse(m, hn::Add(n, one), n); }, count, open);
            const V share = hn::Set(d, inverse);
            p = eachOf([=](V v, V l) HWY_ATTR { return hn::Mul(v, hn::Mul(l, share)); }, p, lam);
            cumulated = eachOf([](V c, V v) HWY_ATTR { return hn::Add(c, v); }, cumulated, p);
        };
        // A count that is complete stays so: to ask after every second step is enough.
        static_assert(Grain::invK.size() % 2 == 0);
        for (std::size_t k = 0; k < Grain::invK.size(); k += 2) {
            const Quad<M> open = isOpen();
            if (hn::AllFalse(d, hn::Or(hn::Or(open.a, open.b), hn::Or(open.c, open.d)))) break;
            step(open, Grain::invK[k]);
            step(isOpen(), Grain::invK[k + 1]);
        }
        return count;
    }

    HWY_INLINE V normal(V u, V lam, M small, V count, std::size_t at)
    {
        const D d;
        const DI di;
        const V p = quantileHeld(d, u);
        const auto tail = hn::AndNot(small, quantileInTail(d, p));
        if (!hn::AllFalse(d, tail)) {
            const auto where = hn::Iota(di, static_cast<std::int32_t>(at));
            hn::StoreU(hn::Compress(u, tail), d, tailU_ + tails_);
            hn::StoreU(hn::Compress(lam, tail), d, tailLam_ + tails_);
            hn::StoreU(hn::Compress(where, hn::RebindMask(di, tail)), di, tailAt_ + tails_);
            tails_ += hn::CountTrue(d, tail);
        }
        const V z = quantileMiddle(d, hn::Sub(p, hn::Set(d, 0.5f)));
        return hn::IfThenElse(small, count, poissonRounded(d, lam, z));
    }

    float counts_[kMost];
    float tailU_[kMost + hn::MaxLanes(D())], tailLam_[kMost + hn::MaxLanes(D())];
    std::int32_t tailAt_[kMost + hn::MaxLanes(D())];
    std::size_t filled_ = 0, tails_ = 0;
};

} // namespace HWY_NAMESPACE
} // namespace tamlo
HWY_AFTER_NAMESPACE();

#endif
