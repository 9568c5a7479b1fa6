#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "core/process/noise/noise_passes.cpp"
#include <hwy/foreach_target.h>

#include "core/process/noise/noise_passes.h"

#include "core/image/vector_noise-inl.h"
#include "core/image/vector_pixels-inl.h"

HWY_BEFORE_NAMESPACE();
namespace tamlo {
namespace HWY_NAMESPACE {

void noiseRow(float* to, std::span<const std::uint32_t> columns, std::int64_t y, std::uint32_t layer)
{
    const hn::ScalableTag<float> d;
    const hn::RebindToUnsigned<decltype(d)> du;
    const std::uint32_t row = static_cast<std::uint32_t>(y) * 0x85EBCA77u + layer * 0xC2B2AE3Du;
    eachRun(d, to, columns.size(), [&](std::size_t i, std::size_t n) HWY_ATTR {
        const auto b = hashLanes(du, hn::Add(loadRun(du, columns.data() + i, n), hn::Set(du, row)));
        return normalLanes(d, b, hashLanes(du, hn::Xor(b, hn::Set(du, 0x27D4EB2Fu))));
    });
}

RunSums fieldSums(const float* run, std::int64_t count, float shift)
{
    const hn::CappedTag<double, 8> d;
    const hn::Rebind<float, decltype(d)> df;
    const auto lanes = static_cast<std::int64_t>(hn::Lanes(d));
    const auto s = hn::Set(d, shift);
    auto sum = hn::Zero(d), squares = hn::Zero(d);
    std::int64_t i = 0;
    for (; i + lanes <= count; i += lanes) {
        const auto v = hn::Sub(hn::PromoteTo(d, hn::LoadU(df, run + i)), s);
        sum = hn::Add(sum, v);
        squares = hn::Add(squares, hn::Mul(v, v));
    }
    RunSums sums{hn::GetLane(hn::SumOfLanes(d, sum)), hn::GetLane(hn::SumOfLanes(d, squares))};
    for (; i < count; ++i) {
        const double v = static_cast<double>(run[i]) - shift;
        sums.sum += v;
        sums.squares += v * v;
    }
    return sums;
}

void subtractRun(float* to, const float* a, const float* b, std::int64_t count)
{
    const hn::ScalableTag<float> d;
    eachRun(d, to, static_cast<std::size_t>(count), [&](std::size_t i, std::size_t n) HWY_ATTR {
        return hn::Sub(loadRun(d, a + i, n), loadRun(d, b + i, n));
    });
}

void latticeRow(float* to, const float* nodes, const std::int32_t* first, const float* share,
                std::int64_t count)
{
    const hn::ScalableTag<float> d;
    const hn::RebindToSigned<decltype(d)> di;
    const auto lanes = static_cast<std::int64_t>(hn::Lanes(d));
    std::int64_t i = 0;
    for (; i + lanes <= count; i += lanes) {
        const auto at = hn::LoadU(di, first + i);
        auto left = hn::Zero(d), right = left;
        if (first[i + lanes - 1] - first[i] < lanes && lanes < kNodesBeyond) {
            // Pixels finer than the nodes: one vector of nodes has all that the run reads.
            const auto beside = hn::IndicesFromVec(d, hn::Sub(at, hn::Set(di, first[i])));
            left = hn::TableLookupLanes(hn::LoadU(d, nodes + first[i]), beside);
            right = hn::TableLookupLanes(hn::LoadU(d, nodes + first[i] + 1), beside);
        } else {
            left = hn::GatherIndex(d, nodes, at);
            right = hn::GatherIndex(d, nodes + 1, at);
        }
        hn::StoreU(hn::Add(left, hn::Mul(hn::Sub(right, left), hn::LoadU(d, share + i))), d, to + i);
    }
    for (; i < count; ++i) {
        const float left = nodes[first[i]];
        to[i] = left + (nodes[first[i] + 1] - left) * share[i];
    }
}

void scaleRun(float* values, float factor, std::int64_t count)
{
    const hn::ScalableTag<float> d;
    const auto f = hn::Set(d, factor);
    eachRun(d, values, static_cast<std::size_t>(count),
            [&](std::size_t i, std::size_t n) HWY_ATTR { return hn::Mul(loadRun(d, values + i, n), f); });
}

} // namespace HWY_NAMESPACE
} // namespace tamlo
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
#include "core/image/position_hash.h"

namespace tamlo {

HWY_EXPORT(noiseRow);
HWY_EXPORT(fieldSums);
HWY_EXPORT(subtractRun);
HWY_EXPORT(latticeRow);
HWY_EXPORT(scaleRun);

void noise_columns(std::span<std::uint32_t> columns, std::uint32_t seed, std::int64_t first) noexcept
{
    const auto from = static_cast<std::uint32_t>(first);
    for (std::size_t x = 0; x < columns.size(); ++x)
        columns[x] = hash32((from + static_cast<std::uint32_t>(x)) * 0x9E3779B1u + seed * 0x2545F491u);
}

void virtual_noise(float* to, std::span<const std::uint32_t> columns, std::int64_t y,
                   std::uint32_t layer) noexcept
{
    HWY_DYNAMIC_DISPATCH(noiseRow)(to, columns, y, layer);
}

RunSums field_sums(const float* run, std::int64_t count, float shift) noexcept
{
    return HWY_DYNAMIC_DISPATCH(fieldSums)(run, count, shift);
}

void subtract_run(float* to, const float* a, const float* b, std::int64_t count) noexcept
{
    HWY_DYNAMIC_DISPATCH(subtractRun)(to, a, b, count);
}

void lattice_row(float* to, const float* nodes, const std::int32_t* first, const float* share,
                 std::int64_t count) noexcept
{
    HWY_DYNAMIC_DISPATCH(latticeRow)(to, nodes, first, share, count);
}

void scale_run(float* values, float factor, std::int64_t count) noexcept
{
    HWY_DYNAMIC_DISPATCH(scaleRun)(values, factor, count);
}

} // namespace tamlo
#endif
