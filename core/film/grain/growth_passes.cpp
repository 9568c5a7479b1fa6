#include "core/film/grain/growth_passes.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "core/film/grain/growth_passes.cpp"
#include <hwy/foreach_target.h>

#include "core/film/grain/growth_geometry.h"
#include "core/film/grain/growth_math-inl.h"

#include <algorithm>

HWY_BEFORE_NAMESPACE();
namespace tamlo {
namespace HWY_NAMESPACE {

using D = hn::CappedTag<float, 16>;
using DU = hn::RebindToUnsigned<D>;
using DI = hn::RebindToSigned<D>;
using V = hn::Vec<D>;
using VU = hn::Vec<DU>;

constexpr std::uint32_t kRadiusSalt = 0x5B1, kAngleSalt = 0x5B2, kCountSalt = 0x9E1, kPixelSalt = 777;

HWY_INLINE std::int64_t lanes()
{
    return static_cast<std::int64_t>(hn::Lanes(D()));
}

/// growth_hash along a run.
class RowHash {
public:
    RowHash(const GrowthRun& run, std::uint32_t seed, std::uint32_t salt)
        : columns_(run.columnHash),
          row_((static_cast<std::uint32_t>(run.y) * 0x85EBCA6Bu) ^ (seed * 0xC2B2AE35u) ^
               (salt * 0x27D4EB2Fu))
    {}
    HWY_INLINE VU at(std::int64_t i) const
    {
        const DU d;
        return hashLanes(d, hn::Xor(hn::LoadU(d, columns_ + i), hn::Set(d, row_)));
    }
    HWY_INLINE V unit(std::int64_t i) const { return unitLanes(D(), at(i)); }

private:
    const std::uint32_t* columns_;
    std::uint32_t row_;
};

/// value(index) of four vectors from i on.
template <class Op>
HWY_INLINE Quad<V> quadAt(std::int64_t i, const Op& value)
{
    const std::int64_t n = lanes();
    return {value(i), value(i + n), value(i + 2 * n), value(i + 3 * n)};
}

/// clamp(v, 0, most), and 0 for NaN.
HWY_INLINE V heldTo(V v, float most)
{
    const D d;
    return hn::Min(hn::IfThenElseZero(hn::Gt(v, hn::Zero(d)), v), hn::Set(d, most));
}

HWY_INLINE V opticalDepth(const GrowthMuParams& p, V density)
{
    const D d;
    const V held = heldTo(hn::Sub(density, hn::Set(d, p.dmin)), p.span);
    return hn::Add(hn::Mul(held, hn::Set(d, Grain::ln10f)), hn::Set(d, Grain::growthFogMu));
}

HWY_INLINE V exp10Neg(V density)
{
    const D d;
    return hn::Exp(d, hn::Mul(density, hn::Set(d, -Grain::ln10f)));
}

void growthNoise(const GrowthRun& run, std::uint32_t seed, float* HWY_RESTRICT out)
{
    const D d;
    const RowHash radius(run, seed, kRadiusSalt), angle(run, seed, kAngleSalt);
    for (std::int64_t i = 0; i < run.count; i += lanes())
        hn::StoreU(normalLanes(d, radius.at(i), angle.at(i)), d, out + i);
}

#undef TAMLO_GROWTH_WIDE
#if HWY_ARCH_X86 && HWY_MAX_BYTES == 64
/// Vectors as wide as a cache line, with lanes that can be taken from two of them at once.
#define TAMLO_GROWTH_WIDE 1
HWY_INLINE V lanesOfTwo(V low, V high, hn::Vec<DI> lane)
{
    return V{_mm512_permutex2var_ps(low.raw, lane.raw, high.raw)};
}
#else
#define TAMLO_GROWTH_WIDE 0
#endif

/// Four vectors of sums along a row, and the weighted pairs that join them.
struct RowSums {
    V a0, a1, a2, a3;

    HWY_INLINE void join(V lo0, V lo1, V lo2, V lo3, const float* hi, V w)
    {
        const D d;
        const std::int64_t n = lanes();
        a0 = hn::Add(a0, hn::Mul(hn::Add(lo0, hn::LoadU(d, hi)), w));
        a1 = hn::Add(a1, hn::Mul(hn::Add(lo1, hn::LoadU(d, hi + n)), w));
        a2 = hn::Add(a2, hn::Mul(hn::Add(lo2, hn::LoadU(d, hi + 2 * n)), w));
        a3 = hn::Add(a3, hn::Mul(hn::Add(lo3, hn::LoadU(d, hi + 3 * n)), w));
    }
};

/// The pairs about `at`, the lower sample of each read like the upper one.
HWY_INLINE void joinLoaded(RowSums& sums, const float* at, std::span<const float> w)
{
    const D d;
    const std::int64_t n = lanes();
    for (std::int64_t j = static_cast<std::int64_t>(w.size()) - 1; j >= 1; --j) {
        const float* lo = at - j;
        sums.join(hn::LoadU(d, lo), hn::LoadU(d, lo + n), hn::LoadU(d, lo + 2 * n), hn::LoadU(d, lo + 3 * n),
                  at + j, hn::Set(d, w[static_cast<std::size_t>(j)]));
    }
}

#if TAMLO_GROWTH_WIDE
/// The same where nearly every read off a vector's border costs two: the lower samples move through five
/// vectors in hand, lane by lane.
HWY_INLINE void joinShifted(RowSums& sums, const float* at, std::span<const float> w)
{
    const D d;
    const DI di;
    const std::int64_t n = lanes(), radius = static_cast<std::int64_t>(w.size()) - 1;
    for (std::int64_t from = 0; from < radius; from += n) {
        const float* lo = at - radius + from;
        const V x0 = hn::LoadU(d, lo), x1 = hn::LoadU(d, lo + n), x2 = hn::LoadU(d, lo + 2 * n),
                x3 = hn::LoadU(d, lo + 3 * n), x4 = hn::LoadU(d, lo + 4 * n);
        for (std::int64_t shift = 0; shift < std::min(n, radius - from); ++shift) {
            const std::int64_t j = radius - from - shift;
            const auto lane = hn::Iota(di, static_cast<std::int32_t>(shift));
            sums.join(lanesOfTwo(x0, x1, lane), lanesOfTwo(x1, x2, lane), lanesOfTwo(x2, x3, lane),
                      lanesOfTwo(x3, x4, lane), at + j, hn::Set(d, w[static_cast<std::size_t>(j)]));
        }
    }
}
#endif

/// All pairs of a kernel.
HWY_INLINE void joinPairs(RowSums& sums, const float* at, std::span<const float> w)
{
#if TAMLO_GROWTH_WIDE
    constexpr std::size_t kShiftedFrom = 9; // a smaller kernel's fifth vector would end beyond the row
    if (w.size() >= kShiftedFrom) return joinShifted(sums, at, w);
#endif
    joinLoaded(sums, at, w);
}

// The centre first, then the pairs from the outside in.
void growthBlurH(const float* HWY_RESTRICT centre, std::span<const float> w, std::int64_t count,
                 float* HWY_RESTRICT out)
{
    const D d;
    const std::int64_t n = lanes();
    for (std::int64_t i = 0; i < count; i += 4 * n) {
        const float* at = centre + i;
        const V w0 = hn::Set(d, w[0]);
        RowSums sums{hn::Mul(hn::LoadU(d, at), w0), hn::Mul(hn::LoadU(d, at + n), w0),
                     hn::Mul(hn::LoadU(d, at + 2 * n), w0), hn::Mul(hn::LoadU(d, at + 3 * n), w0)};
        joinPairs(sums, at, w);
        hn::StoreU(sums.a0, d, out + i);
        hn::StoreU(sums.a1, d, out + i + n);
        hn::StoreU(sums.a2, d, out + i + 2 * n);
        hn::StoreU(sums.a3, d, out + i + 3 * n);
    }
}

// Four rows at a time: a step inwards needs one new row above and one below, the others move over.
void growthBlurV(const float* const* rows, std::span<const float> w, std::int64_t count,
                 std::span<float* const, kGrowthRows> out)
{
    const D d;
    const std::int64_t radius = static_cast<std::int64_t>(w.size()) - 1;
    for (std::int64_t x = 0; x < count; x += lanes()) {
        const auto row = [&](std::int64_t i) HWY_ATTR { return hn::LoadU(d, rows[i] + x); };
        const V w0 = hn::Set(d, w[0]);
        V a0 = hn::Mul(row(0), w0), a1 = hn::Mul(row(1), w0), a2 = hn::Mul(row(2), w0),
          a3 = hn::Mul(row(3), w0);
        V up0 = row(-radius), up1 = row(1 - radius), up2 = row(2 - radius);
        V down1 = row(1 + radius), down2 = row(2 + radius), down3 = row(3 + radius);
        for (std::int64_t j = radius; j >= 1; --j) {
            const V wj = hn::Set(d, w[static_cast<std::size_t>(j)]);
            const V up3 = row(3 - j), down0 = row(j);
            a0 = hn::Add(a0, hn::Mul(hn::Add(up0, down0), wj));
            a1 = hn::Add(a1, hn::Mul(hn::Add(up1, down1), wj));
            a2 = hn::Add(a2, hn::Mul(hn::Add(up2, down2), wj));
            a3 = hn::Add(a3, hn::Mul(hn::Add(up3, down3), wj));
            up0 = up1, up1 = up2, up2 = up3;
            down3 = down2, down2 = down1, down1 = down0;
        }
        hn::StoreU(a0, d, out[0] + x);
        hn::StoreU(a1, d, out[1] + x);
        hn::StoreU(a2, d, out[2] + x);
        hn::StoreU(a3, d, out[3] + x);
    }
}

void growthMu(const GrowthMuParams& params, float* pixels, std::int64_t count)
{
    const D d;
    for (std::int64_t i = 0; i < count; i += lanes())
        hn::StoreU(opticalDepth(params, hn::LoadU(d, pixels + i)), d, pixels + i);
}

void growthStretch(const float* HWY_RESTRICT pixels, const GrowthColumns& columns, std::int64_t count,
                   float* HWY_RESTRICT out)
{
    const D d;
    const DI di;
    for (std::int64_t i = 0; i < count; i += lanes()) {
        const V a = hn::GatherIndex(d, pixels, hn::LoadU(di, columns.first + i));
        const V b = hn::GatherIndex(d, pixels, hn::LoadU(di, columns.second + i));
        const V weight = hn::LoadU(d, columns.weight + i);
        hn::StoreU(hn::Add(a, hn::Mul(hn::Sub(b, a), weight)), d, out + i);
    }
}

/// The stretched rows at a site row.
HWY_INLINE V groundAt(const GrowthGround& ground, std::int64_t i)
{
    const D d;
    const V a = hn::LoadU(d, ground.upper + i), b = hn::LoadU(d, ground.lower + i);
    return hn::Add(a, hn::Mul(hn::Sub(b, a), hn::Set(d, ground.weight)));
}

/// Log-normal of mean 1: the local crystal density under the clump field.
HWY_INLINE V clumping(const GrowthGround& ground, float cs, std::int64_t i)
{
    const D d;
    const V g = hn::LoadU(d, ground.clump + i);
    return hn::Exp(d, hn::Sub(hn::Mul(g, hn::Set(d, cs)), hn::Set(d, cs * cs * 0.5f)));
}

/// finish(index, counts) on the Poisson counts of a run, four vectors at a time; lam(index) is the mean at a
/// vector of sites.
template <class Mean, class Finish>
HWY_INLINE void eachCount(const GrowthRun& run, std::uint32_t seed, const Mean& lam, const Finish& finish)
{
    const D d;
    const RowHash hash(run, seed, kCountSalt);
    const std::int64_t step = 4 * lanes();
    PoissonRun<D> poisson;
    for (std::int64_t start = 0; start < run.count; start += PoissonRun<D>::kMost) {
        const std::int64_t end = std::min<std::int64_t>(start + PoissonRun<D>::kMost, run.count);
        for (std::int64_t i = start; i < end; i += step) {
            const Quad<V> u = quadAt(i, [&](std::int64_t at) HWY_ATTR { return hash.unit(at); });
            poisson.draw(u, quadAt(i, lam));
        }
        const float* counts = poisson.finish();
        for (std::int64_t i = start; i < end; i += lanes()) finish(i, hn::LoadU(d, counts + i - start));
    }
}

/// exp(k n) for whole n from 0 on: those below 32 are known ahead where two vectors hold them.
class LightThrough {
public:
    explicit LightThrough(V k)
        : k_(k),
          low_(hn::Exp(D(), hn::Mul(k, hn::Iota(D(), 0)))),
          high_(hn::Exp(D(), hn::Mul(k, hn::Iota(D(), static_cast<float>(lanes())))))
    {}
    HWY_INLINE V operator()(V crystals) const
    {
        const D d;
#if TAMLO_GROWTH_WIDE
        const V most = hn::Set(d, static_cast<float>(2 * lanes() - 1));
        if (hn::AllTrue(d, hn::Le(crystals, most)))
            return lanesOfTwo(low_, high_, hn::ConvertTo(DI(), crystals));
#endif
        return hn::Exp(d, hn::Mul(k_, crystals));
    }

private:
    V k_, low_, high_;
};

void growthSites(const GrowthRun& run, const GrowthGround& ground, const GrowthSilverParams& params,
                 float* HWY_RESTRICT sums)
{
    const D d;
    const V q = hn::Set(d, params.q);
    const LightThrough lightThrough(hn::Set(d, -params.k));
    const auto lam = [&](std::int64_t i) HWY_ATTR {
        return hn::Mul(hn::Mul(q, groundAt(ground, i)), clumping(ground, params.cs, i));
    };
    eachCount(run, params.seed, lam, [&](std::int64_t i, V crystals) HWY_ATTR {
        hn::StoreU(hn::Add(hn::LoadU(d, sums + i), lightThrough(crystals)), d, sums + i);
    });
}

void growthDye(const GrowthRun& run, const GrowthGround& ground, const GrowthDyeParams& params, float* out)
{
    const D d;
    const V delta = hn::Set(d, params.delta), perDelta = hn::Set(d, 1.0f / std::max(params.delta, 1e-4f));
    const auto lam = [&](std::int64_t i) HWY_ATTR {
        const V density = heldTo(hn::Sub(groundAt(ground, i), hn::Set(d, params.dmin)), params.span);
        return hn::Mul(hn::Mul(density, perDelta), clumping(ground, params.cs, i));
    };
    eachCount(run, params.seed, lam,
              [&](std::int64_t i, V clouds) HWY_ATTR { hn::StoreU(hn::Mul(delta, clouds), d, out + i); });
}

void growthDyeReduce(const float* HWY_RESTRICT density, std::int64_t count, float* HWY_RESTRICT sums)
{
    const D d;
    for (std::int64_t i = 0; i < count; i += lanes()) {
        const V light = exp10Neg(hn::LoadU(d, density + i));
        hn::StoreU(hn::Add(hn::LoadU(d, sums + i), light), d, sums + i);
    }
}

void growthAggBW(const GrowthRun& run, const GrowthAggBWParams& p, const float* HWY_RESTRICT density,
                 float* HWY_RESTRICT out)
{
    const D d;
    const RowHash hash(run, p.seed, kPixelSalt);
    for (std::int64_t i = 0; i < run.count; i += lanes()) {
        const V lam = hn::Mul(hn::Set(d, -p.q), opticalDepth(p.mu, hn::LoadU(d, density + i)));
        const V lam1 = hn::Mul(lam, hn::Set(d, p.a1)), lam2 = hn::Mul(lam, hn::Set(d, p.a2));
        V m1 = hn::Zero(d), m1sq = m1, m2s = m1;
        for (std::size_t j = 0; j < p.mods.size(); ++j) {
            const V mod = hn::Set(d, p.mods[j]), weight = hn::Set(d, p.weights[j]);
            const V e1 = hn::Exp(d, hn::Mul(lam1, mod));
            const V weighted = hn::Mul(weight, e1);
            m1 = hn::Add(m1, weighted);
            m1sq = hn::Add(m1sq, hn::Mul(weighted, e1));
            m2s = hn::Add(m2s, hn::Mul(weight, hn::Exp(d, hn::Mul(lam2, mod))));
        }
        const V zero = hn::Zero(d);
        const V sites = hn::Mul(hn::Max(hn::Sub(m2s, m1sq), zero), hn::Set(d, p.siteShare));
        const V clumps = hn::Mul(hn::Max(hn::Sub(m1sq, hn::Mul(m1, m1)), zero), hn::Set(d, p.clumpShare));
        const V z = quantileVector(d, hash.unit(i));
        const V light = hn::Add(m1, hn::Mul(z, hn::Sqrt(hn::Add(sites, clumps))));
        hn::StoreU(hn::Clamp(light, hn::Set(d, 1e-6f), hn::Set(d, 1.0f)), d, out + i);
    }
}

void growthAggColor(const GrowthRun& run, const GrowthAggColorParams& p, const float* HWY_RESTRICT density,
                    float* HWY_RESTRICT out)
{
    const D d;
    const RowHash hash(run, p.seed, kPixelSalt);
    for (std::int64_t i = 0; i < run.count; i += lanes()) {
        const V net = heldTo(hn::Sub(hn::LoadU(d, density + i), hn::Set(d, p.dmin)), p.span);
        V m1 = hn::Zero(d);
        for (std::size_t j = 0; j < p.nodes.size(); ++j)
            m1 = hn::Add(m1,
                         hn::Mul(hn::Set(d, p.weights[j]), exp10Neg(hn::Mul(net, hn::Set(d, p.nodes[j])))));
        const V v = hn::Add(hn::Mul(hn::Set(d, p.cloudVariance), net),
                            hn::Mul(hn::Set(d, p.clumpVariance), hn::Mul(net, net)));
        const V shift = hn::Mul(hn::Set(d, 0.5f * Grain::ln10f), v);
        const V effective = hn::Sub(shift, hn::Log10(d, hn::Max(m1, hn::Set(d, 1e-30f))));
        const V z = quantileVector(d, hash.unit(i));
        const V drawn = hn::Add(effective, hn::Mul(z, hn::Sqrt(hn::Max(v, hn::Zero(d)))));
        hn::StoreU(exp10Neg(hn::Max(drawn, hn::Zero(d))), d, out + i);
    }
}

void growthDensity(const GrowthDensityParams& p, std::span<const float> transmission, float* out,
                   std::int64_t stride)
{
    const D d;
    const std::size_t n = hn::Lanes(d);
    for (std::size_t i = 0; i < transmission.size(); i += n) {
        const std::size_t count = std::min(n, transmission.size() - i);
        HWY_ALIGN float block[16] = {};
        std::copy_n(transmission.data() + i, count, block);
        const V light = hn::Max(hn::Load(d, block), hn::Set(d, p.floorT));
        hn::Store(hn::Sub(hn::Set(d, p.dmin), hn::Log10(d, light)), d, block);
        float* to = out + static_cast<std::int64_t>(i) * stride;
        for (std::size_t k = 0; k < count; ++k) to[static_cast<std::int64_t>(k) * stride] = block[k];
    }
}

} // namespace HWY_NAMESPACE
} // namespace tamlo
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tamlo {

HWY_EXPORT(growthNoise);
HWY_EXPORT(growthBlurH);
HWY_EXPORT(growthBlurV);
HWY_EXPORT(growthMu);
HWY_EXPORT(growthStretch);
HWY_EXPORT(growthSites);
HWY_EXPORT(growthDye);
HWY_EXPORT(growthDyeReduce);
HWY_EXPORT(growthAggBW);
HWY_EXPORT(growthAggColor);
HWY_EXPORT(growthDensity);

void growth_noise(const GrowthRun& run, std::uint32_t seed, float* out) noexcept
{
    HWY_DYNAMIC_DISPATCH(growthNoise)(run, seed, out);
}

void growth_blur_h(const float* centre, std::span<const float> w, std::int64_t count, float* out) noexcept
{
    HWY_DYNAMIC_DISPATCH(growthBlurH)(centre, w, count, out);
}

void growth_blur_v(const float* const* rows, std::span<const float> w, std::int64_t count,
                   std::span<float* const, kGrowthRows> out) noexcept
{
    HWY_DYNAMIC_DISPATCH(growthBlurV)(rows, w, count, out);
}

void growth_mu(const GrowthMuParams& params, float* pixels, std::int64_t count) noexcept
{
    HWY_DYNAMIC_DISPATCH(growthMu)(params, pixels, count);
}

void growth_stretch(const float* pixels, const GrowthColumns& columns, std::int64_t count,
                    float* out) noexcept
{
    HWY_DYNAMIC_DISPATCH(growthStretch)(pixels, columns, count, out);
}

void growth_sites(const GrowthRun& run, const GrowthGround& ground, const GrowthSilverParams& params,
                  float* sums) noexcept
{
    HWY_DYNAMIC_DISPATCH(growthSites)(run, ground, params, sums);
}

void growth_dye(const GrowthRun& run, const GrowthGround& ground, const GrowthDyeParams& params,
                float* out) noexcept
{
    HWY_DYNAMIC_DISPATCH(growthDye)(run, ground, params, out);
}

void growth_dye_reduce(const float* density, std::int64_t count, float* sums) noexcept
{
    HWY_DYNAMIC_DISPATCH(growthDyeReduce)(density, count, sums);
}

void growth_pixel_means(const float* sums, std::int64_t scale, std::int64_t pixels, float* out) noexcept
{
    const float share = 1.0f / (static_cast<float>(scale) * static_cast<float>(scale));
    for (std::int64_t i = 0; i < pixels; ++i) {
        double sum = 0.0;
        for (std::int64_t s = 0; s < scale; ++s) sum += static_cast<double>(sums[i * scale + s]);
        out[i] = static_cast<float>(sum) * share;
    }
}

void growth_agg_bw(const GrowthRun& run, const GrowthAggBWParams& params, const float* density,
                   float* out) noexcept
{
    HWY_DYNAMIC_DISPATCH(growthAggBW)(run, params, density, out);
}

void growth_agg_color(const GrowthRun& run, const GrowthAggColorParams& params, const float* density,
                      float* out) noexcept
{
    HWY_DYNAMIC_DISPATCH(growthAggColor)(run, params, density, out);
}

void growth_density(const GrowthDensityParams& params, std::span<const float> transmission, float* out,
                    std::int64_t stride) noexcept
{
    HWY_DYNAMIC_DISPATCH(growthDensity)(params, transmission, out, stride);
}

} // namespace tamlo
#endif
