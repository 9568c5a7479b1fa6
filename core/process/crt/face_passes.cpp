#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "core/process/crt/face_passes.cpp"
#include <hwy/foreach_target.h>

#include "core/process/crt/face_passes.h"

#include "core/image/bicubic_read.h"

#include <hwy/highway.h>

#include <algorithm>

HWY_BEFORE_NAMESPACE();
namespace tamlo {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

/// The places of a vector of pixels on the screen, in pixel numbers.
template <class V>
struct FacePlaces {
    V x, y;
};

template <class D>
HWY_INLINE FacePlaces<hn::Vec<D>> facePlaces(D d, const FaceRow& row, std::size_t first)
{
    const hn::RebindToSigned<D> di;
    const auto one = hn::Set(d, 1.0f), half = hn::Set(d, 0.5f), two = hn::Set(d, 2.0f);
    const auto w = hn::Set(d, static_cast<float>(row.planes[0].width));
    const auto h = hn::Set(d, static_cast<float>(row.planes[0].height));
    const auto x = hn::ConvertTo(d, hn::Iota(di, static_cast<std::int32_t>(first)));
    const auto xn = hn::Sub(hn::Mul(hn::Div(hn::Add(x, half), w), two), one);
    const auto r2 = hn::Add(hn::Mul(xn, xn), hn::Set(d, row.yn2));
    const auto f = hn::Mul(hn::Add(one, hn::Mul(hn::Set(d, row.k), r2)), hn::Set(d, row.per));
    const auto at = [&](auto n, auto side) HWY_ATTR {
        return hn::Sub(hn::Mul(hn::Mul(hn::Add(hn::Mul(n, f), one), half), side), half);
    };
    return {at(xn, w), at(hn::Set(d, row.yn), h)};
}

/// Weights of the four taps, as catmullRom gives them.
template <class D, class V>
HWY_INLINE void tapWeights(D d, V t, V* w)
{
    const auto times = [&](float k, V v) HWY_ATTR { return hn::Mul(hn::Set(d, k), v); };
    const V t2 = hn::Mul(t, t), t3 = hn::Mul(t2, t);
    w[0] = hn::Sub(hn::Add(times(-0.5f, t3), t2), times(0.5f, t));
    w[1] = hn::Add(hn::Sub(times(1.5f, t3), times(2.5f, t2)), hn::Set(d, 1.0f));
    w[2] = hn::Add(hn::Add(times(-1.5f, t3), times(2.0f, t2)), times(0.5f, t));
    w[3] = hn::Sub(times(0.5f, t3), times(0.5f, t2));
}

/// Pixels first ... first + lanes - 1 one at a time, whatever the places.
template <class D, class V>
void faceSlow(D d, const std::array<float*, 3>& to, const FaceRow& row, std::size_t first, std::size_t count,
              const FacePlaces<V>& places)
{
    HWY_ALIGN float x[hn::MaxLanes(d)], y[hn::MaxLanes(d)];
    hn::Store(places.x, d, x);
    hn::Store(places.y, d, y);
    for (std::size_t c = 0; c < row.planes.size(); ++c)
        for (std::size_t i = 0; i < count; ++i) to[c][first + i] = readBicubic(row.planes[c], x[i], y[i]);
}

/// Neighbours on the face read neighbours on the screen: the samples of a vector of pixels lie within two
/// vectors of a row and within five rows, and a permutation brings each to its pixel. Gives way, with false,
/// where they don't or where the frame's edge is near.
template <class D, class V>
HWY_INLINE bool faceFast(D d, const std::array<float*, 3>& to, const FaceRow& row, std::size_t first,
                         const FacePlaces<V>& places)
{
    const hn::RebindToSigned<D> di;
    const auto lanes = static_cast<std::int64_t>(hn::Lanes(d));
    const V fx = hn::Floor(places.x), fy = hn::Floor(places.y);
    const auto lowest = [&](V v)
                            HWY_ATTR { return static_cast<std::int64_t>(hn::GetLane(hn::MinOfLanes(d, v))); };
    const auto highest = [&](V v) HWY_ATTR {
        return static_cast<std::int64_t>(hn::GetLane(hn::MaxOfLanes(d, v)));
    };
    const std::int64_t left = lowest(fx) - 1, right = highest(fx) + 2, top = lowest(fy) - 1,
                       bottom = highest(fy) + 2;
    const Size size = row.planes[0].size();
    if (left < 0 || left + 2 * lanes > size.width || right - left >= 2 * lanes || bottom - top > 4)
        return false;

    V across[4], four[4], down[5];
    tapWeights(d, hn::Sub(places.x, fx), across);
    tapWeights(d, hn::Sub(places.y, fy), four);
    const auto later = hn::Gt(fy, hn::Set(d, static_cast<float>(top + 1)));
    down[0] = hn::IfThenZeroElse(later, four[0]);
    for (int j = 1; j < 4; ++j) down[j] = hn::IfThenElse(later, four[j - 1], four[j]);
    down[4] = hn::IfThenElseZero(later, four[3]);
    const auto place = hn::ConvertTo(di, hn::Sub(fx, hn::Set(d, static_cast<float>(left + 1))));
    const auto inOne = hn::Set(di, static_cast<std::int32_t>(lanes) - 1);
    using Taps = decltype(hn::IndicesFromVec(d, place));
    const auto tap = [&](int i) HWY_ATTR { return hn::Add(place, hn::Set(di, i)); };
    const auto index = [&](int i) HWY_ATTR { return hn::IndicesFromVec(d, hn::And(tap(i), inOne)); };
    const auto beyond = [&](int i) HWY_ATTR { return hn::RebindMask(d, hn::Gt(tap(i), inOne)); };
    const Taps taps[4] = {index(0), index(1), index(2), index(3)};
    using Beyond = decltype(beyond(0));
    const Beyond second[4] = {beyond(0), beyond(1), beyond(2), beyond(3)};
    for (std::size_t c = 0; c < row.planes.size(); ++c) {
        V sum[4] = {hn::Zero(d), hn::Zero(d), hn::Zero(d), hn::Zero(d)};
        for (std::int64_t r = top; r <= bottom; ++r) {
            const float* from = row.planes[c].row(std::clamp<std::int64_t>(r, 0, size.height - 1)) + left;
            const V a = hn::LoadU(d, from), b = hn::LoadU(d, from + lanes);
            for (int i = 0; i < 4; ++i) {
                const V at = hn::IfThenElse(second[i], hn::TableLookupLanes(b, taps[i]),
                                            hn::TableLookupLanes(a, taps[i]));
                sum[i] = hn::Add(sum[i], hn::Mul(down[r - top], at));
            }
        }
        for (int i = 0; i < 4; ++i) sum[i] = hn::Mul(sum[i], across[i]);
        hn::StoreU(hn::Add(hn::Add(sum[0], sum[1]), hn::Add(sum[2], sum[3])), d, to[c] + first);
    }
    return true;
}

void faceRow(const std::array<float*, 3>& to, const FaceRow& row)
{
    const hn::ScalableTag<float> d;
    const std::size_t lanes = hn::Lanes(d), width = static_cast<std::size_t>(row.planes[0].width);
    for (std::size_t x = 0; x < width; x += lanes) {
        // The last vector of a row ends with it.
        const std::size_t first = width >= lanes ? std::min(x, width - lanes) : 0;
        const auto places = facePlaces(d, row, first);
        if (!faceFast(d, to, row, first, places)) faceSlow(d, to, row, first, std::min(lanes, width), places);
    }
}

} // namespace HWY_NAMESPACE
} // namespace tamlo
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tamlo {

HWY_EXPORT(faceRow);

void face_row(std::array<float*, 3> to, const FaceRow& row) noexcept
{
    HWY_DYNAMIC_DISPATCH(faceRow)(to, row);
}

} // namespace tamlo
#endif
