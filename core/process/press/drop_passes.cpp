#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "core/process/press/drop_passes.cpp"
#include <hwy/foreach_target.h>

#include "core/process/press/drop_passes.h"

#include "core/process/press/press_math-inl.h"

HWY_BEFORE_NAMESPACE();
namespace tamlo {
namespace HWY_NAMESPACE {

/// columns is readable a vector past count.
void inkFmRun(float* to, std::int64_t count, const DropRow& row)
{
    const hn::ScalableTag<float> d;
    const hn::RebindToSigned<decltype(d)> di;
    const auto one = hn::Set(d, 1.0f);
    for (std::int64_t x = 0; x < count; x += static_cast<std::int64_t>(hn::Lanes(d))) {
        const auto left = static_cast<std::size_t>(count - x);
        const auto k = row.band ? loadRun(d, row.band + x, left) : hn::Set(d, row.rowBand);
        auto a = gainGiven(d, row.curve, clamp01(d, hn::Mul(loadRun(d, row.coverage + x, left), k)));
        if (row.thresholds) {
            const auto level = hn::GatherIndex(d, row.thresholds, hn::LoadU(di, row.columns + x));
            a = hn::IfThenElseZero(hn::Ge(a, level), one);
        }
        storeRun(d, a, to + x, left);
    }
}

void softenRowRun(float* to, const float* from, std::int64_t count, std::span<const float> w)
{
    const hn::ScalableTag<float> d;
    for (std::int64_t x = 0; x < count; x += static_cast<std::int64_t>(hn::Lanes(d))) {
        const auto left = static_cast<std::size_t>(count - x);
        auto sum = hn::Mul(loadRun(d, from + x, left), hn::Set(d, w[0]));
        for (std::int64_t j = static_cast<std::int64_t>(w.size()) - 1; j >= 1; --j) {
            const auto pair = hn::Add(loadRun(d, from + x - j, left), loadRun(d, from + x + j, left));
            sum = hn::Add(sum, hn::Mul(pair, hn::Set(d, w[static_cast<std::size_t>(j)])));
        }
        storeRun(d, sum, to + x, left);
    }
}

void softenColumnRun(float* to, const float* const* rows, std::int64_t count, std::span<const float> w)
{
    const hn::ScalableTag<float> d;
    const auto radius = static_cast<std::int64_t>(w.size()) - 1;
    for (std::int64_t x = 0; x < count; x += static_cast<std::int64_t>(hn::Lanes(d))) {
        const auto left = static_cast<std::size_t>(count - x);
        auto sum = hn::Mul(loadRun(d, rows[radius] + x, left), hn::Set(d, w[0]));
        for (std::int64_t j = radius; j >= 1; --j) {
            const auto pair =
                hn::Add(loadRun(d, rows[radius - j] + x, left), loadRun(d, rows[radius + j] + x, left));
            sum = hn::Add(sum, hn::Mul(pair, hn::Set(d, w[static_cast<std::size_t>(j)])));
        }
        storeRun(d, sum, to + x, left);
    }
}

void layInkRun(float* pixels, const float* ink, std::int64_t count, const Vec3f& stop)
{
    const hn::ScalableTag<float> d;
    const auto one = hn::Set(d, 1.0f);
    eachTriple(d, pixels, static_cast<std::size_t>(count),
               [&](const auto& under, std::size_t x, std::size_t n) HWY_ATTR {
                   const auto a = loadRun(d, ink + x, n);
                   const auto through = [&](float share)
                                            HWY_ATTR { return hn::Sub(one, hn::Mul(a, hn::Set(d, share))); };
                   return Triple<decltype(a)>{hn::Mul(under.r, through(stop[0])),
                                              hn::Mul(under.g, through(stop[1])),
                                              hn::Mul(under.b, through(stop[2]))};
               });
}

} // namespace HWY_NAMESPACE
} // namespace tamlo
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tamlo {

HWY_EXPORT(inkFmRun);
HWY_EXPORT(softenRowRun);
HWY_EXPORT(softenColumnRun);
HWY_EXPORT(layInkRun);

void repro_ink_fm(float* to, std::int64_t count, const DropRow& row) noexcept
{
    HWY_DYNAMIC_DISPATCH(inkFmRun)(to, count, row);
}

void soften_row(float* to, const float* from, std::int64_t count, std::span<const float> w) noexcept
{
    HWY_DYNAMIC_DISPATCH(softenRowRun)(to, from, count, w);
}

void soften_column(float* to, const float* const* rows, std::int64_t count, std::span<const float> w) noexcept
{
    HWY_DYNAMIC_DISPATCH(softenColumnRun)(to, rows, count, w);
}

void lay_ink(float* pixels, const float* ink, std::int64_t count, const Vec3f& stop) noexcept
{
    HWY_DYNAMIC_DISPATCH(layInkRun)(pixels, ink, count, stop);
}

} // namespace tamlo
#endif
