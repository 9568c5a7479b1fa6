#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "core/process/instant/surface_passes.cpp"
#include <hwy/foreach_target.h>

#include "core/process/instant/surface_passes.h"

#include "core/film/print/vector_look-inl.h"
#include "core/image/vector_noise-inl.h"

HWY_BEFORE_NAMESPACE();
namespace tamlo {
namespace HWY_NAMESPACE {

/// a × b + c in two roundings, the same on every machine.
template <class V>
HWY_INLINE V scaled(V a, V b, V c)
{
    return hn::Add(hn::Mul(a, b), c);
}

/// body(first pixel, pixels) for the whole of a row.
template <class D, class Body>
HWY_INLINE void eachStep(D d, std::int64_t width, const Body& body)
{
    const auto n = static_cast<std::size_t>(width);
    for (std::size_t i = 0; i < n; i += hn::Lanes(d)) body(i, std::min(n - i, hn::Lanes(d)));
}

/// How far a density has come from d0 over the span, 0...1.
template <class D, class V>
HWY_INLINE V ramp(D d, V density, float d0, float span)
{
    return clamp01(d, hn::Mul(hn::Sub(density, hn::Set(d, d0)), hn::Set(d, 1.0f / span)));
}

template <class D, class V>
HWY_INLINE V fromFloor(D d, V share, float floor)
{
    return scaled(share, hn::Set(d, 1.0f - floor), hn::Set(d, floor));
}

template <class D>
HWY_INLINE hn::Vec<D> meanDensity(D d, const DensityRow& row, std::size_t i, std::size_t n)
{
    auto sum = loadRun(d, row.layers[0] + i, n);
    if (row.count == 1) return sum;
    sum = hn::Add(sum, hn::Add(loadRun(d, row.layers[1] + i, n), loadRun(d, row.layers[2] + i, n)));
    return hn::Mul(sum, hn::Set(d, 1.0f / 3.0f));
}

template <class D, class V>
HWY_INLINE void addTo(D d, float* to, V v, std::size_t n)
{
    storeRun(d, hn::Add(loadRun(d, to, n), v), to, n);
}

void rowApply(float* density, const float* row, float gain, std::int64_t width)
{
    const hn::ScalableTag<float> d;
    const auto g = hn::Set(d, gain);
    eachStep(d, width, [&](std::size_t i, std::size_t n) HWY_ATTR {
        addTo(d, density + i, hn::Mul(loadRun(d, row + i, n), g), n);
    });
}

void splitLayers(const DensityRow& density, const float* pixels)
{
    const hn::ScalableTag<float> d;
    const auto width = static_cast<std::size_t>(density.width);
    std::size_t i = 0;
    for (; i + hn::Lanes(d) <= width; i += hn::Lanes(d)) {
        hn::Vec<decltype(d)> r, g, b;
        hn::LoadInterleaved3(d, pixels + i * 3, r, g, b);
        hn::StoreU(r, d, density.layers[0] + i);
        hn::StoreU(g, d, density.layers[1] + i);
        hn::StoreU(b, d, density.layers[2] + i);
    }
    for (; i < width; ++i)
        for (std::size_t c = 0; c < 3; ++c) density.layers[c][i] = pixels[i * 3 + c];
}

void fineRow(float* to, const float* from, std::int64_t width, const FineTaps& taps)
{
    const hn::ScalableTag<float> d;
    const auto t0 = hn::Set(d, taps[0]), t1 = hn::Set(d, taps[1]), t2 = hn::Set(d, taps[2]);
    eachStep(d, width, [&](std::size_t i, std::size_t n) HWY_ATTR {
        const auto at = [&](std::size_t k) HWY_ATTR { return loadRun(d, from + i + k, n); };
        const auto sum = scaled(hn::Add(at(0), at(4)), t2, hn::Mul(hn::Add(at(1), at(3)), t1));
        storeRun(d, scaled(at(2), t0, sum), to + i, n);
    });
}

void fineApply(float* density, const std::array<const float*, 5>& rows, std::int64_t width,
               const FineTaps& taps, float gain)
{
    const hn::ScalableTag<float> d;
    const auto t0 = hn::Set(d, taps[0] * gain), t1 = hn::Set(d, taps[1] * gain),
               t2 = hn::Set(d, taps[2] * gain);
    eachStep(d, width, [&](std::size_t i, std::size_t n) HWY_ATTR {
        const auto at = [&](std::size_t k) HWY_ATTR { return loadRun(d, rows[k] + i, n); };
        const auto sum = scaled(hn::Add(at(0), at(4)), t2, hn::Mul(hn::Add(at(1), at(3)), t1));
        addTo(d, density + i, scaled(at(2), t0, sum), n);
    });
}

void peelChatter(const DensityRow& density, const ChatterRow& row, const ChatterParams32& p)
{
    constexpr float kCeiling = 2.5f;             // deviations that the mixed field bends towards
    constexpr float kOwn = 0.45f;                // of a layer's own paste field
    constexpr float kCommon = 0.75f;             // of the paste that all layers share
    constexpr float kLeast = 0.1f, kMost = 2.2f; // of the clumps
    const hn::ScalableTag<float> d;
    using V = hn::Vec<decltype(d)>;
    const V one = hn::Set(d, 1.0f);
    eachStep(d, density.width, [&](std::size_t i, std::size_t n) HWY_ATTR {
        const V dm = meanDensity(d, density, i, n);
        const V td = ramp(d, dm, p.d0, p.dSpan);
        V mix = hn::Mul(hn::Mul(loadRun(d, row.fine + i, n), hn::Set(d, p.fineGain)),
                        fromFloor(d, td, p.fineFloor));
        if (row.coarse) {
            const V coarse = hn::Mul(loadRun(d, row.coarse + i, n), hn::Set(d, p.coarseGain));
            mix = scaled(coarse, fromFloor(d, td, p.coarseFloor), mix);
        }
        mix = hn::Mul(hn::Tanh(d, hn::Mul(mix, hn::Set(d, 1.0f / kCeiling))), hn::Set(d, kCeiling));
        const V clumps = scaled(loadRun(d, row.clumps + i, n), hn::Set(d, p.clumpGain), one);
        const V envelope = hn::Clamp(clumps, hn::Set(d, kLeast), hn::Set(d, kMost));
        const V base =
            hn::Mul(hn::Mul(hn::Set(d, p.strength), envelope), hn::Mul(loadRun(d, row.ends + i, n), mix));
        const auto paste = [&](std::size_t k) HWY_ATTR {
            return hn::Mul(loadRun(d, row.paste[k] + i, n), hn::Set(d, p.pasteGain[k]));
        };
        V common = hn::Zero(d);
        if (row.paste[0]) common = hn::Mul(paste(0), hn::Set(d, kCommon));
        if (density.count == 1) return addTo(d, density.layers[0] + i, hn::Add(base, common), n);
        const V t = ramp(d, dm, p.colourD0, p.colourSpan);
        const V share[3] = {scaled(t, hn::Set(d, p.rSpan), hn::Set(d, p.r0)), one,
                            scaled(t, hn::Set(d, p.bSpan), hn::Set(d, p.b0))};
        for (std::size_t c = 0; c < 3; ++c) {
            V add = scaled(base, share[c], common);
            if (row.paste[c + 1]) add = scaled(paste(c + 1), hn::Set(d, kOwn), add);
            addTo(d, density.layers[c] + i, add, n);
        }
    });
}

template <class V>
HWY_INLINE V fraction(V turns)
{
    return hn::Sub(turns, hn::Floor(turns));
}

void silkLatticeF(float* to, const LatticeRow& row, std::int64_t width, const LatticeParams32& p)
{
    const hn::ScalableTag<float> d;
    using V = hn::Vec<decltype(d)>;
    eachStep(d, width, [&](std::size_t i, std::size_t n) HWY_ATTR {
        const auto phase = [&](const float* base, const float* wander, float by) HWY_ATTR {
            return fraction(scaled(loadRun(d, wander + i, n), hn::Set(d, by), loadRun(d, base + i, n)));
        };
        const V u = phase(row.u, row.wanderU, p.wanderU), v = phase(row.v, row.wanderV, p.wanderV);
        const V dots = hn::Mul(hn::Mul(cosTurns(d, u), cosTurns(d, v)), hn::Set(d, p.dot));
        const V grooves = hn::Mul(cosTurns(d, fraction(hn::Add(v, v))), hn::Set(d, p.groove));
        const V depth = scaled(loadRun(d, row.depth + i, n), hn::Set(d, p.depth), hn::Set(d, 1.0f));
        storeRun(d, hn::Mul(hn::Add(dots, grooves), depth), to + i, n);
    });
}

void silkApply(const DensityRow& density, const float* lattice, const LatticeGain& gain)
{
    const hn::ScalableTag<float> d;
    eachStep(d, density.width, [&](std::size_t i, std::size_t n) HWY_ATTR {
        const auto td = ramp(d, meanDensity(d, density, i, n), gain.d0, gain.dSpan);
        const auto unit = hn::Mul(loadRun(d, lattice + i, n), hn::Set(d, gain.scale));
        const auto f = hn::Mul(unit, hn::Set(d, gain.amp));
        const auto add = hn::Mul(f, fromFloor(d, td, gain.floor));
        for (int c = 0; c < density.count; ++c)
            addTo(d, density.layers[static_cast<std::size_t>(c)] + i, add, n);
    });
}

template <class D, class V>
HWY_INLINE Triple<V> shown(D d, const Film::LookOp& op, const Triple<V>& light)
{
    const Triple<V> c = look(d, op, light);
    return {clamp01(d, c.r), clamp01(d, c.g), clamp01(d, c.b)};
}

void instantPositive(float* out, const DensityRow& density, float reference, const Film::LookOp& op)
{
    const hn::ScalableTag<float> d;
    using V = hn::Vec<decltype(d)>;
    const V ref = hn::Set(d, reference);
    eachTriple(d, out, static_cast<std::size_t>(density.width),
               [&](Triple<V>, std::size_t i, std::size_t n) HWY_ATTR {
                   const auto light = [&](std::size_t c) HWY_ATTR {
                       return pow10(d, hn::Sub(ref, loadRun(d, density.layers[c] + i, n)));
                   };
                   return shown(d, op, Triple<V>{light(0), light(1), light(2)});
               });
}

void monoPositive(float* out, const float* density, const float* field, std::int64_t width,
                  const SilverParams32& p, const Film::LookOp& op)
{
    const hn::ScalableTag<float> d;
    using V = hn::Vec<decltype(d)>;
    const V one = hn::Set(d, 1.0f), half = hn::Set(d, 0.5f);
    eachTriple(
        d, out, static_cast<std::size_t>(width), [&](Triple<V>, std::size_t i, std::size_t n) HWY_ATTR {
            const V depth = loadRun(d, density + i, n);
            const V v = pow10(d, hn::Sub(hn::Set(d, p.reference), depth));
            V k = hn::Zero(d);
            if (field) {
                const V f = hn::Mul(loadRun(d, field + i, n), hn::Set(d, p.toningScale));
                const V t = clamp01(d, scaled(f, half, half));
                const V thin = hn::Sub(one, ramp(d, depth, p.dmin, p.span));
                const V w = scaled(thin, hn::Set(d, p.densityBias), hn::Set(d, 1.0f - p.densityBias));
                k = hn::Mul(hn::Mul(t, w), hn::Set(d, p.toning));
            }
            const auto channel = [&](std::size_t c) HWY_ATTR {
                return hn::Mul(hn::Mul(v, hn::Set(d, p.tone[c])), scaled(k, hn::Set(d, p.warm[c]), one));
            };
            return shown(d, op, Triple<V>{channel(0), channel(1), channel(2)});
        });
}

} // namespace HWY_NAMESPACE
} // namespace tamlo
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tamlo {

HWY_EXPORT(rowApply);
HWY_EXPORT(splitLayers);
HWY_EXPORT(fineRow);
HWY_EXPORT(fineApply);
HWY_EXPORT(peelChatter);
HWY_EXPORT(silkLatticeF);
HWY_EXPORT(silkApply);
HWY_EXPORT(instantPositive);
HWY_EXPORT(monoPositive);

void row_apply(float* density, const float* row, float gain, std::int64_t width) noexcept
{
    HWY_DYNAMIC_DISPATCH(rowApply)(density, row, gain, width);
}

void split_layers(const DensityRow& density, const float* pixels) noexcept
{
    HWY_DYNAMIC_DISPATCH(splitLayers)(density, pixels);
}

void fine_row(float* to, const float* from, std::int64_t width, const FineTaps& taps) noexcept
{
    HWY_DYNAMIC_DISPATCH(fineRow)(to, from, width, taps);
}

void fine_apply(float* density, const std::array<const float*, 5>& rows, std::int64_t width,
                const FineTaps& taps, float gain) noexcept
{
    HWY_DYNAMIC_DISPATCH(fineApply)(density, rows, width, taps, gain);
}

void peel_chatter(const DensityRow& density, const ChatterRow& row, const ChatterParams32& params) noexcept
{
    HWY_DYNAMIC_DISPATCH(peelChatter)(density, row, params);
}

void silk_lattice_f(float* to, const LatticeRow& row, std::int64_t width,
                    const LatticeParams32& params) noexcept
{
    HWY_DYNAMIC_DISPATCH(silkLatticeF)(to, row, width, params);
}

void silk_apply(const DensityRow& density, const float* lattice, const LatticeGain& gain) noexcept
{
    HWY_DYNAMIC_DISPATCH(silkApply)(density, lattice, gain);
}

void instant_positive(float* out, const DensityRow& density, float reference,
                      const Film::LookOp& look) noexcept
{
    HWY_DYNAMIC_DISPATCH(instantPositive)(out, density, reference, look);
}

void mono_positive(float* out, const float* density, const float* toningField, std::int64_t width,
                   const SilverParams32& params, const Film::LookOp& look) noexcept
{
    HWY_DYNAMIC_DISPATCH(monoPositive)(out, density, toningField, width, params, look);
}

} // namespace tamlo
#endif
