#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "core/process/press/screen_passes.cpp"
#include <hwy/foreach_target.h>

#include "core/process/press/screen_passes.h"

#include "core/image/vector_pixels-inl.h"
#include "core/process/press/am_screen.h"

HWY_BEFORE_NAMESPACE();
namespace tamlo {
namespace HWY_NAMESPACE {

/// cos(a + b) of a column's and a row's part.
template <class D>
HWY_INLINE hn::Vec<D> cosineOfSum(D d, const float* cosines, const float* sines, float rowCos, float rowSin)
{
    return hn::Sub(hn::Mul(hn::LoadU(d, cosines), hn::Set(d, rowCos)),
                   hn::Mul(hn::LoadU(d, sines), hn::Set(d, rowSin)));
}

/// ReproPrint::screenInk.
template <class D, class V>
HWY_INLINE V screenInkLanes(D d, V a, V w, const ScreenRow& row)
{
    const hn::RebindToSigned<D> di;
    const V two = hn::Set(d, 2.0f), one = hn::Set(d, 1.0f), half = hn::Set(d, 0.5f);
    const V at = hn::Clamp(hn::Mul(hn::Add(w, two), hn::Set(d, ReproPrint::kScreenPerHeight)), hn::Zero(d),
                           hn::Set(d, ReproPrint::kScreenLastIndex));
    const auto n = hn::ConvertTo(di, at);
    const V low = hn::GatherIndex(d, row.cdf, n), high = hn::GatherIndex(d, row.cdf + 1, n);
    const V under = hn::Add(low, hn::Mul(hn::Sub(at, hn::ConvertTo(d, n)), hn::Sub(high, low)));
    const V room = hn::Min(hn::Mul(two, a), hn::Mul(two, hn::Sub(one, a)));
    const V soft = hn::Max(hn::Min(hn::Set(d, row.edge), room), hn::Set(d, 0.0001f));
    const V share = hn::Add(hn::Div(hn::Sub(a, hn::Sub(one, under)), soft), half);
    return hn::IfThenElseZero(hn::Gt(a, hn::Zero(d)), clamp01(d, share));
}

/// Coverage of a drawn pixel: read as it is, or three quarters of a pixel and a quarter of its neighbour.
template <int kSide, class D>
HWY_INLINE hn::Vec<D> coverageAt(D d, const ScreenInk& ink, std::size_t drawnRow, std::size_t drawnColumn,
                                 std::int64_t x)
{
    const float* at = ink.coverage[drawnRow] + x + ink.shift[drawnColumn];
    const auto own = hn::LoadU(d, at);
    if constexpr (kSide == 1) return own;
    const auto other = hn::LoadU(d, at + ink.neighbour[drawnColumn]);
    return hn::Add(hn::Mul(own, hn::Set(d, 0.75f)), hn::Mul(other, hn::Set(d, 0.25f)));
}

/// The paper under all inks at one drawn pixel of each printed one.
template <int kSide, bool kScreened, class D>
HWY_INLINE Triple<hn::Vec<D>> inked(D d, const ScreenRow& row, std::size_t dy, std::size_t dx, std::int64_t x)
{
    using V = hn::Vec<D>;
    const V one = hn::Set(d, 1.0f);
    Triple<V> light{hn::Set(d, row.base[0]), hn::Set(d, row.base[1]), hn::Set(d, row.base[2])};
    for (const ScreenInk& ink : row.inks) {
        V a = coverageAt<kSide>(d, ink, dy, dx, x);
        if (hn::AllFalse(d, hn::Gt(a, hn::Zero(d)))) continue;
        if constexpr (kScreened) {
            const auto& table = ink.columns[dx];
            const ScreenTerms& t = ink.row[dy];
            const V w = hn::Add(cosineOfSum(d, table[0] + x, table[1] + x, t.cosU, t.sinU),
                                cosineOfSum(d, table[2] + x, table[3] + x, t.cosV, t.sinV));
            a = screenInkLanes(d, a, w, row);
        }
        light.r = hn::Mul(light.r, hn::Sub(one, hn::Mul(a, hn::Set(d, ink.stop[0]))));
        light.g = hn::Mul(light.g, hn::Sub(one, hn::Mul(a, hn::Set(d, ink.stop[1]))));
        light.b = hn::Mul(light.b, hn::Sub(one, hn::Mul(a, hn::Set(d, ink.stop[2]))));
    }
    return light;
}

template <int kSide, bool kScreened>
HWY_INLINE void printRow(float* to, std::int64_t width, const ScreenRow& row)
{
    const hn::ScalableTag<float> d;
    const auto share = hn::Set(d, 1.0f / static_cast<float>(kSide * kSide));
    for (std::int64_t x = 0; x < width; x += static_cast<std::int64_t>(hn::Lanes(d))) {
        auto light = inked<kSide, kScreened>(d, row, 0, 0, x);
        for (std::size_t i = 1; i < static_cast<std::size_t>(kSide * kSide); ++i) {
            const auto more = inked<kSide, kScreened>(d, row, i / kSide, i % kSide, x);
            light = {hn::Add(light.r, more.r), hn::Add(light.g, more.g), hn::Add(light.b, more.b)};
        }
        if constexpr (kSide > 1)
            light = {hn::Mul(light.r, share), hn::Mul(light.g, share), hn::Mul(light.b, share)};
        storeTriple(d, light, to + x * 3, static_cast<std::size_t>(width - x));
    }
}

void inkAmRow(float* to, std::int64_t width, const ScreenRow& row)
{
    if (!row.cdf) return printRow<1, false>(to, width, row);
    if (row.side == 1) return printRow<1, true>(to, width, row);
    printRow<kScreenSide, true>(to, width, row);
}

void blendRun(float* to, const float* a, float wa, const float* b, float wb, std::int64_t count)
{
    const hn::ScalableTag<float> d;
    eachRun(d, to, static_cast<std::size_t>(count), [&](std::size_t x, std::size_t n) HWY_ATTR {
        const auto first = hn::Mul(loadRun(d, a + x, n), hn::Set(d, wa));
        return hn::Add(first, hn::Mul(loadRun(d, b + x, n), hn::Set(d, wb)));
    });
}

} // namespace HWY_NAMESPACE
} // namespace tamlo
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tamlo {

HWY_EXPORT(inkAmRow);
HWY_EXPORT(blendRun);

void repro_ink_am(float* to, std::int64_t width, const ScreenRow& row) noexcept
{
    HWY_DYNAMIC_DISPATCH(inkAmRow)(to, width, row);
}

void blend_rows(float* to, const float* a, float wa, const float* b, float wb, std::int64_t count) noexcept
{
    HWY_DYNAMIC_DISPATCH(blendRun)(to, a, wa, b, wb, count);
}

} // namespace tamlo
#endif
