#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "core/process/altprint/coat_passes.cpp"
#include <hwy/foreach_target.h>

#include "core/process/altprint/coat_passes.h"

#include "core/image/vector_pixels-inl.h"

HWY_BEFORE_NAMESPACE();
namespace tamlo {
namespace HWY_NAMESPACE {

template <class D>
HWY_INLINE hn::Vec<D> insideStroke(D d, const CoatRow& row, std::int64_t x, std::size_t n)
{
    const hn::RebindToSigned<D> di;
    const auto column = hn::ConvertTo(d, hn::Add(hn::Iota(di, 0), hn::Set(di, static_cast<std::int32_t>(x))));
    const auto y = hn::Set(d, row.y);
    const auto across =
        hn::Min(hn::Sub(y, loadRun(d, row.top + x, n)), hn::Sub(loadRun(d, row.bottom + x, n), y));
    const auto along = hn::Min(hn::Sub(column, hn::Set(d, row.left)), hn::Sub(hn::Set(d, row.right), column));
    return hn::Min(across, along);
}

void coatRun(float* amount, const CoatRow& row, std::int64_t first, std::int64_t end)
{
    constexpr float kThinning = 0.7f; // taste
    const hn::ScalableTag<float> d;
    const auto one = hn::Set(d, 1.0f), band = hn::Set(d, row.band), k = hn::Set(d, row.streakK);
    for (std::int64_t x = first; x < end; x += static_cast<std::int64_t>(hn::Lanes(d))) {
        const auto n = static_cast<std::size_t>(end - x);
        const auto depth = hn::Mul(insideStroke(d, row, x, n), hn::Set(d, row.perFade));
        const auto streak = hn::Add(loadRun(d, row.streakX + x, n), hn::Set(d, row.streakY));
        const auto layer = hn::Mul(band, pow01(d, depth, kThinning));
        storeRun(d, clamp01(d, hn::Mul(layer, hn::Add(one, hn::Mul(k, streak)))), amount + x, n);
    }
}

void maskRun(float* mask, const CoatRow& row, std::int64_t first, std::int64_t end)
{
    const hn::ScalableTag<float> d;
    for (std::int64_t x = first; x < end; x += static_cast<std::int64_t>(hn::Lanes(d))) {
        const auto n = static_cast<std::size_t>(end - x);
        const auto edge = hn::Mul(insideStroke(d, row, x, n), hn::Set(d, row.perMask));
        storeRun(d, clamp01(d, hn::Add(edge, hn::Set(d, 0.5f))), mask + x, n);
    }
}

} // namespace HWY_NAMESPACE
} // namespace tamlo
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tamlo {

HWY_EXPORT(coatRun);
HWY_EXPORT(maskRun);

void alt_coat(float* amount, const CoatRow& row, std::int64_t first, std::int64_t end) noexcept
{
    HWY_DYNAMIC_DISPATCH(coatRun)(amount, row, first, end);
}

void coat_mask(float* mask, const CoatRow& row, std::int64_t first, std::int64_t end) noexcept
{
    HWY_DYNAMIC_DISPATCH(maskRun)(mask, row, first, end);
}

} // namespace tamlo
#endif
