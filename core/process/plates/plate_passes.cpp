#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "core/process/plates/plate_passes.cpp"
#include <hwy/foreach_target.h>

#include "core/image/bands.h"
#include "core/image/vector_pixels-inl.h"
#include "core/process/plates/plate_passes.h"

#include <algorithm>

HWY_BEFORE_NAMESPACE();
namespace tamlo {
namespace HWY_NAMESPACE {

void gridRow(float* to, std::size_t count, const float* line, const std::int32_t* first,
             const float* fraction)
{
    const hn::ScalableTag<float> d;
    const hn::RebindToSigned<decltype(d)> di;
    const std::size_t lanes = hn::Lanes(d);
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes) {
        const auto at = hn::LoadU(di, first + i);
        const auto a = hn::GatherIndex(d, line, at), b = hn::GatherIndex(d, line + 1, at);
        hn::StoreU(hn::Add(a, hn::Mul(hn::Sub(b, a), hn::LoadU(d, fraction + i))), d, to + i);
    }
    for (; i < count; ++i) {
        const float a = line[first[i]], b = line[first[i] + 1];
        to[i] = a + (b - a) * fraction[i];
    }
}

void pourRow(float* thick, std::size_t count, const PourRow& row, const float* wander)
{
    const hn::ScalableTag<float> d;
    const auto set = [&](float v) HWY_ATTR { return hn::Set(d, v); };
    eachRun(d, thick, count, [&](std::size_t i, std::size_t n) HWY_ATTR {
        const auto x = hn::Add(set(static_cast<float>(i)), hn::Iota(d, 0));
        auto value = hn::Add(set(row.level), hn::Mul(set(row.levelStep), x));
        if (row.crescent != 0.0f) {
            const auto v = hn::Add(set(row.across), hn::Mul(set(row.acrossStep), x));
            const auto r = hn::Sqrt(hn::Add(set(row.downSquared), hn::Mul(v, v)));
            const auto z = hn::Div(hn::Sub(r, set(PourRow::kCrescentAt)), set(PourRow::kCrescentWidth));
            const auto bump = hn::Exp(d, hn::Neg(hn::Mul(z, z)));
            value = hn::Mul(value, hn::Add(set(1.0f), hn::Mul(set(row.crescent), bump)));
        }
        return hn::Max(hn::Add(value, loadRun(d, wander + i, n)), hn::Zero(d));
    });
}

void multiplyRow(float* light, std::size_t count, const float* thick)
{
    const hn::ScalableTag<float> d;
    eachRun(d, light, count, [&](std::size_t i, std::size_t n) HWY_ATTR {
        return hn::Mul(loadRun(d, light + i, n), loadRun(d, thick + i, n));
    });
}

void veilRow(float* density, std::size_t count, const VeilRow& row, const float* field, const float* thick)
{
    const hn::ScalableTag<float> d;
    const auto set = [&](float v) HWY_ATTR { return hn::Set(d, v); };
    const float width = static_cast<float>(count);
    eachRun(d, density, count, [&](std::size_t i, std::size_t n) HWY_ATTR {
        const auto x = hn::Add(set(static_cast<float>(i) + 0.5f), hn::Iota(d, 0));
        const auto edge = hn::Min(set(row.edgePx), hn::Min(x, hn::Sub(set(width), x)));
        const auto u = clamp01(d, hn::Sub(set(1.0f), hn::Mul(edge, set(row.perReach))));
        const auto w = hn::Mul(hn::Mul(u, u), hn::Sub(set(3.0f), hn::Mul(set(2.0f), u)));
        const auto sum =
            hn::Add(hn::Add(set(1.0f), loadRun(d, field + i, n)), hn::Mul(set(VeilRow::kEdgeGain), w));
        const auto veil =
            hn::Mul(hn::Mul(set(row.veil), hn::Max(sum, hn::Zero(d))), loadRun(d, thick + i, n));
        return hn::Add(loadRun(d, density + i, n), veil);
    });
}

void plateViewRun(float* out, const float* density, std::size_t count, const PlateViewParams32& params)
{
    const hn::ScalableTag<float> d;
    using V = hn::Vec<decltype(d)>;
    const auto set = [&](float v) HWY_ATTR { return hn::Set(d, v); };
    const auto coloured = [&](V t, std::size_t c) HWY_ATTR {
        const V v = hn::Add(set(params.base[c]), hn::Mul(set(params.silver[c] - params.base[c]), t));
        return hn::Max(hn::Mul(v, set(params.gain)), hn::Zero(d));
    };
    eachTriple(d, out, count, [&](Triple<V>, std::size_t first, std::size_t n) HWY_ATTR {
        const V net = hn::Max(hn::Sub(loadRun(d, density + first, n), set(params.dmin)), hn::Zero(d));
        const V t =
            hn::Mul(hn::Sub(set(1.0f), pow10(d, hn::Mul(set(-params.scatter), net))), set(params.norm));
        return Triple<V>{coloured(t, 0), coloured(t, 1), coloured(t, 2)};
    });
}

} // namespace HWY_NAMESPACE
} // namespace tamlo
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tamlo {

HWY_EXPORT(gridRow);
HWY_EXPORT(pourRow);
HWY_EXPORT(multiplyRow);
HWY_EXPORT(veilRow);
HWY_EXPORT(plateViewRun);

void grid_row(std::span<float> to, const float* line, std::span<const std::int32_t> first,
              std::span<const float> fraction) noexcept
{
    HWY_DYNAMIC_DISPATCH(gridRow)(to.data(), to.size(), line, first.data(), fraction.data());
}

void pour_thick(std::span<float> thick, const PourRow& row, const float* wander) noexcept
{
    HWY_DYNAMIC_DISPATCH(pourRow)(thick.data(), thick.size(), row, wander);
}

void multiply_row(std::span<float> light, const float* thick) noexcept
{
    HWY_DYNAMIC_DISPATCH(multiplyRow)(light.data(), light.size(), thick);
}

void plate_veil(std::span<float> density, const VeilRow& row, const float* field, const float* thick) noexcept
{
    HWY_DYNAMIC_DISPATCH(veilRow)(density.data(), density.size(), row, field, thick);
}

void plate_view(RGBImage& out, const Plane& density, const PlateViewParams32& params)
{
    float* to = out.mutableData();
    const std::int64_t width = density.width;
    parallelBands(density.height, width * 3, [&](std::int64_t start, std::int64_t end) {
        HWY_DYNAMIC_DISPATCH(plateViewRun)
        (to + start * width * 3, density.row(start), static_cast<std::size_t>((end - start) * width), params);
    });
}

} // namespace tamlo
#endif
