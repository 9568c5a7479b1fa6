#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "core/process/press/separation_passes.cpp"
#include <hwy/foreach_target.h>

#include "core/process/press/separation_passes.h"

#include "core/process/press/press_math-inl.h"

#include <algorithm>

HWY_BEFORE_NAMESPACE();
namespace tamlo {
namespace HWY_NAMESPACE {

using ReproPrint::kBlack;
using ReproPrint::Separation;

/// Vectors that go through the solver side by side: each step waits for a division, and alone would leave the
/// core idle.
constexpr int kSide = 4;

/// One channel, or one ink, of kSide vectors.
template <class V>
struct Block {
    V v[kSide];
};

/// A separation's constants as the vector code wants them.
struct SolverTerms {
    float stop[4][3]; // 1 - rel: what a solid takes of each channel
    float inverse[3]; // 1 / stop of each colour ink in its own channel
};

HWY_INLINE SolverTerms solverTerms(const Separation& s)
{
    SolverTerms t{};
    for (std::size_t ink = 0; ink < 4; ++ink)
        for (std::size_t c = 0; c < 3; ++c) t.stop[ink][c] = 1.0f - s.rel[ink][c];
    for (std::size_t c = 0; c < 3; ++c) t.inverse[c] = 1.0f / t.stop[c][c];
    return t;
}

template <class D, class V>
HWY_INLINE V through(D d, V a, float stop)
{
    return hn::Sub(hn::Set(d, 1.0f), hn::Mul(a, hn::Set(d, stop)));
}

/// (1 - light) / stop, held within coverages.
template <class D, class V>
HWY_INLINE V coverageOf(D d, V light, float inverse)
{
    return clamp01(d, hn::Mul(hn::Sub(hn::Set(d, 1.0f), light), hn::Set(d, inverse)));
}

template <class D, class V>
HWY_INLINE void solveCMY(D d, const SolverTerms& t, const Block<V> (&u)[3], Block<V> (&a)[4], int rounds)
{
    const V least = hn::Set(d, 1e-6f);
    for (int round = 0; round < rounds; ++round)
        for (std::size_t c = 0; c < 3; ++c) {
            const std::size_t p = c == 0 ? 1 : 0, q = c == 2 ? 1 : 2;
            for (int i = 0; i < kSide; ++i) {
                const V others =
                    hn::Mul(through(d, a[p].v[i], t.stop[p][c]), through(d, a[q].v[i], t.stop[q][c]));
                a[c].v[i] = coverageOf(d, hn::Div(u[c].v[i], hn::Max(others, least)), t.inverse[c]);
            }
        }
}

template <class D, class V>
HWY_INLINE void fourInks(D d, const Separation& s, const SolverTerms& t, Block<V> (&u)[3], Block<V> (&a)[4])
{
    const V least = hn::Set(d, 0.0001f), one = hn::Set(d, 1.0f);
    for (std::size_t c = 0; c < 3; ++c)
        for (int i = 0; i < kSide; ++i) {
            u[c].v[i] = hn::Clamp(u[c].v[i], least, one);
            a[c].v[i] = coverageOf(d, u[c].v[i], t.inverse[c]);
        }
    solveCMY(d, t, u, a, s.iters);
    for (int i = 0; i < kSide; ++i) {
        const V grey = hn::Min(hn::Min(a[0].v[i], a[1].v[i]), a[2].v[i]);
        a[kBlack].v[i] = clamp01(d, hn::Mul(hn::Set(d, s.gcr), grey));
        for (std::size_t c = 0; c < 3; ++c) {
            const V kap = hn::Max(through(d, a[kBlack].v[i], t.stop[kBlack][c]), hn::Set(d, 1e-6f));
            u[c].v[i] = hn::Clamp(hn::Div(u[c].v[i], kap), least, one);
        }
    }
    solveCMY(d, t, u, a, s.iters - 1 > 2 ? s.iters - 1 : 2);
}

/// The colours scaled to the room that black leaves of the total ink.
template <class D, class V>
HWY_INLINE void limitInk(D d, float tac, V (&a)[4])
{
    const V room = hn::Max(hn::Sub(hn::Set(d, tac), a[kBlack]), hn::Zero(d));
    const V colours = hn::Add(hn::Add(a[0], a[1]), a[2]);
    const auto over = hn::Gt(colours, room);
    if (hn::AllFalse(d, over)) return;
    const V factor =
        hn::IfThenElse(over, hn::Div(room, hn::Max(colours, hn::Set(d, 1e-6f))), hn::Set(d, 1.0f));
    for (std::size_t c = 0; c < 3; ++c) a[c] = hn::Mul(a[c], factor);
}

/// Separates kSide vectors of pixels, read by load(vector) and written by store(ink, vector, lanes).
template <class D, class Load, class Store>
HWY_INLINE void separateBlock(D d, const Separation& s, const SolverTerms& t, const Load& load,
                              const Store& store)
{
    using V = hn::Vec<D>;
    Block<V> u[3], a[4];
    for (int i = 0; i < kSide; ++i) {
        const Triple<V> light = load(i);
        u[0].v[i] = light.r;
        u[1].v[i] = light.g;
        u[2].v[i] = light.b;
    }
    fourInks(d, s, t, u, a);
    for (int i = 0; i < kSide; ++i) {
        V inks[4];
        for (std::size_t ink = 0; ink < 4; ++ink) inks[ink] = gainTaken(d, s.curve, a[ink].v[i]);
        limitInk(d, s.tac, inks);
        for (std::size_t ink = 0; ink < 4; ++ink)
            store(ink, i, s.printed ? gainGiven(d, s.curve, inks[ink]) : inks[ink]);
    }
}

void separateRun(const float* positive, CoverageRow to, std::int64_t count, const Separation& s)
{
    const hn::ScalableTag<float> d;
    using V = hn::Vec<decltype(d)>;
    const auto lanes = static_cast<std::int64_t>(hn::Lanes(d));
    const SolverTerms t = solverTerms(s);
    for (std::int64_t x = 0; x < count; x += kSide * lanes) {
        // The last block's further vectors may lie past the row's end, where there are no pixels.
        const auto at = [&](int i) HWY_ATTR { return std::min(x + i * lanes, count); };
        const auto left = [&](int i) HWY_ATTR { return static_cast<std::size_t>(count - at(i)); };
        const auto load = [&](int i) HWY_ATTR { return loadTriple(d, positive + at(i) * 3, left(i)); };
        const auto store = [&](std::size_t ink, int i, V v)
                               HWY_ATTR { storeRun(d, v, to[ink] + at(i), left(i)); };
        separateBlock(d, s, t, load, store);
    }
}

void separateBlackRun(const float* positive, float* to, std::int64_t count, const Separation& s)
{
    const hn::ScalableTag<float> d;
    using V = hn::Vec<decltype(d)>;
    const float stop = 1.0f - (s.rel[kBlack][0] + s.rel[kBlack][1] + s.rel[kBlack][2]) / 3.0f;
    eachRun(d, to, static_cast<std::size_t>(count), [&](std::size_t x, std::size_t n) HWY_ATTR {
        const V red = loadTriple(d, positive + x * 3, n).r;
        const V u = hn::Clamp(red, hn::Set(d, 0.0001f), hn::Set(d, 1.0f));
        const V k = gainTaken(d, s.curve, coverageOf(d, u, 1.0f / stop));
        return s.printed ? gainGiven(d, s.curve, k) : k;
    });
}

} // namespace HWY_NAMESPACE
} // namespace tamlo
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tamlo {

HWY_EXPORT(separateRun);
HWY_EXPORT(separateBlackRun);

void repro_separate(const float* positive, CoverageRow to, std::int64_t count,
                    const ReproPrint::Separation& separation) noexcept
{
    if (separation.blackOnly)
        return HWY_DYNAMIC_DISPATCH(separateBlackRun)(positive, to[ReproPrint::kBlack], count, separation);
    HWY_DYNAMIC_DISPATCH(separateRun)(positive, to, count, separation);
}

} // namespace tamlo
#endif
