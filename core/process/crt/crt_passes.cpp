#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "core/process/crt/crt_passes.cpp"
#include <hwy/foreach_target.h>

#include "core/process/crt/crt_passes.h"

#include "core/image/vector_pixels-inl.h"
#include "core/process/crt/video_signal.h"

#include <algorithm>

HWY_BEFORE_NAMESPACE();
namespace tamlo {
namespace HWY_NAMESPACE {

constexpr float kVideoGamma = 2.2f;

float dotRun(const float* a, const float* b, std::size_t count)
{
    const hn::ScalableTag<float> d;
    auto sum = hn::Zero(d);
    for (std::size_t i = 0; i < count; i += hn::Lanes(d))
        sum = hn::Add(sum, hn::Mul(loadRun(d, a + i, count - i), loadRun(d, b + i, count - i)));
    return hn::GetLane(hn::SumOfLanes(d, sum));
}

void addRun(float* to, const float* from, float weight, std::size_t count)
{
    const hn::ScalableTag<float> d;
    const auto w = hn::Set(d, weight);
    eachRun(d, to, count, [&](std::size_t i, std::size_t n) HWY_ATTR {
        return hn::Add(loadRun(d, to + i, n), hn::Mul(w, loadRun(d, from + i, n)));
    });
}

void spreadNodes(float* to, std::size_t count, const NodeSpread& s)
{
    const hn::CappedTag<float, spreadBlock> d;
    const auto step = static_cast<std::size_t>(s.step), taps = static_cast<std::size_t>(2 * s.reach + 1);
    const auto stride = static_cast<std::size_t>(s.stride);
    for (std::size_t start = 0, j = 0; start < count; start += step, ++j) {
        const float* nodes = s.nodes.data() + j;
        // What a run writes beyond its own pixels, the next one writes over.
        for (std::size_t i = 0; i < step; i += hn::Lanes(d)) {
            const float* weights = s.weights.data() + i;
            auto sum = hn::Zero(d);
            for (std::size_t m = 0; m < taps; ++m)
                sum = hn::Add(sum, hn::Mul(hn::Set(d, nodes[m]), hn::LoadU(d, weights + m * stride)));
            hn::StoreU(sum, d, to + start + i);
        }
    }
}

void mixRun(float* to, float rest, const float* by, float part, std::size_t count)
{
    const hn::ScalableTag<float> d;
    const auto r = hn::Set(d, rest), p = hn::Set(d, part);
    eachRun(d, to, count, [&](std::size_t i, std::size_t n) HWY_ATTR {
        return hn::Add(hn::Mul(r, loadRun(d, to + i, n)), hn::Mul(p, loadRun(d, by + i, n)));
    });
}

void multiplyRun(float* to, const float* by, float factor, std::size_t count)
{
    const hn::ScalableTag<float> d;
    const auto f = hn::Set(d, factor);
    eachRun(d, to, count, [&](std::size_t i, std::size_t n) HWY_ATTR {
        return hn::Mul(loadRun(d, to + i, n), hn::Mul(f, loadRun(d, by + i, n)));
    });
}

template <class D, class V>
HWY_INLINE V weighed(D d, const Triple<V>& c, const std::array<double, 3>& w)
{
    const auto set = [&](std::size_t i) HWY_ATTR { return hn::Set(d, static_cast<float>(w[i])); };
    return hn::Add(hn::Add(hn::Mul(set(0), c.r), hn::Mul(set(1), c.g)), hn::Mul(set(2), c.b));
}

void encodeRun(const float* pixels, const std::array<float*, 3>& rows, std::size_t count)
{
    const hn::ScalableTag<float> d;
    for (std::size_t i = 0; i < count; i += hn::Lanes(d)) {
        const std::size_t n = count - i;
        const auto light = loadTriple(d, pixels + i * 3, n);
        const auto encoded = [&](auto v) HWY_ATTR { return pow01(d, v, 1.0f / kVideoGamma); };
        const Triple<hn::Vec<decltype(d)>> rgb{encoded(light.r), encoded(light.g), encoded(light.b)};
        for (std::size_t c = 0; c < 3; ++c) storeRun(d, weighed(d, rgb, CRTScreen::yuv[c]), rows[c] + i, n);
    }
}

void decodeRun(const std::array<float*, 3>& rows, const std::array<Vec3f, 3>& inverse, std::size_t count)
{
    const hn::ScalableTag<float> d;
    for (std::size_t i = 0; i < count; i += hn::Lanes(d)) {
        const std::size_t n = count - i;
        const auto y = loadRun(d, rows[0] + i, n), u = loadRun(d, rows[1] + i, n),
                   v = loadRun(d, rows[2] + i, n);
        for (std::size_t c = 0; c < 3; ++c) {
            const Vec3f& w = inverse[c];
            const auto sum = hn::Add(hn::Add(hn::Mul(hn::Set(d, w[0]), y), hn::Mul(hn::Set(d, w[1]), u)),
                                     hn::Mul(hn::Set(d, w[2]), v));
            storeRun(d, pow01(d, sum, kVideoGamma), rows[c] + i, n);
        }
    }
}

void decodeMonoRun(float* row, std::size_t count)
{
    const hn::ScalableTag<float> d;
    eachRun(d, row, count, [&](std::size_t i, std::size_t n) HWY_ATTR {
        return pow01(d, loadRun(d, row + i, n), kVideoGamma);
    });
}

/// Of the four dots round a place the nearest, the first found among equals; its colour and the cover of a
/// disc with an edge of 0.6 pixels.
void deltaRun(float* colour, float* cover, std::size_t count, const DeltaRow& row)
{
    const hn::ScalableTag<float> d;
    const auto zero = hn::Zero(d), one = hn::Set(d, 1.0f), half = hn::Set(d, 0.5f);
    const auto across = hn::Set(d, row.across), three = hn::Set(d, 3.0f), third = hn::Set(d, 1.0f / 3.0f);
    for (std::size_t i = 0; i < count; i += hn::Lanes(d)) {
        const std::size_t n = count - i;
        const auto b = hn::Sub(loadRun(d, row.fraction.data() + i, n), hn::Set(d, row.shift));
        const auto fb = hn::Floor(b);
        const auto fu = hn::Sub(b, fb);
        auto nearest = hn::Set(d, 1e30f);
        auto which = zero;
        for (const float du : {0.0f, 1.0f})
            for (const float dv : {0.0f, 1.0f}) {
                const auto ex = hn::Mul(
                    across, hn::Add(hn::Sub(fu, hn::Set(d, du)), hn::Mul(half, hn::Set(d, row.fy - dv))));
                const float eyOne = dv == 0.0f ? row.aboveY : row.belowY;
                const auto dist2 = hn::Add(hn::Mul(ex, ex), hn::Set(d, eyOne * eyOne));
                const auto closer = hn::Lt(dist2, nearest);
                nearest = hn::IfThenElse(closer, dist2, nearest);
                which = hn::IfThenElse(closer, hn::Set(d, du - dv), which);
            }
        // 3 more keeps what is divided by 3 positive; half a unit keeps the floor off the whole numbers.
        const auto number = hn::Add(hn::Add(loadRun(d, row.colour.data() + i, n), fb),
                                    hn::Add(which, hn::Set(d, row.rowColour + 3.0f)));
        const auto turns = hn::Floor(hn::Mul(hn::Add(number, half), third));
        storeRun(d, hn::Sub(number, hn::Mul(turns, three)), colour + i, n);
        const auto inside =
            hn::Mul(hn::Sub(hn::Set(d, row.radius), hn::Sqrt(nearest)), hn::Set(d, 1.0f / 0.6f));
        storeRun(d, hn::Clamp(hn::Add(inside, half), zero, one), cover + i, n);
    }
}

void deltaLight(float* row, const float* colour, const float* cover, std::size_t count, float c, float rest,
                float lit, float factor)
{
    const hn::ScalableTag<float> d;
    eachRun(d, row, count, [&](std::size_t i, std::size_t n) HWY_ATTR {
        const auto own = hn::Eq(loadRun(d, colour + i, n), hn::Set(d, c));
        const auto dot = hn::IfThenElseZero(own, hn::Mul(loadRun(d, cover + i, n), hn::Set(d, lit)));
        return hn::Mul(loadRun(d, row + i, n), hn::Mul(hn::Set(d, factor), hn::Add(hn::Set(d, rest), dot)));
    });
}

void interleaveRun(float* pixels, const std::array<const float*, 3>& rows, std::size_t count)
{
    const hn::ScalableTag<float> d;
    for (std::size_t i = 0; i < count; i += hn::Lanes(d)) {
        const std::size_t n = count - i;
        const Triple<hn::Vec<decltype(d)>> rgb{loadRun(d, rows[0] + i, n), loadRun(d, rows[1] + i, n),
                                               loadRun(d, rows[2] + i, n)};
        storeTriple(d, rgb, pixels + i * 3, n);
    }
}

void finishRun(float* pixels, std::size_t count, const ToneParams& p)
{
    const hn::ScalableTag<float> d;
    const hn::RebindToSigned<decltype(d)> di;
    using V = hn::Vec<decltype(d)>;
    const auto last = hn::Set(di, static_cast<std::int32_t>(p.lut.size()) - 1);
    const auto toned = [&](V from, float colour) HWY_ATTR {
        const auto held = hn::Clamp(from, hn::Zero(d), hn::Set(d, 4.0f));
        const auto v = hn::Mul(held, hn::Set(d, 256.0f));
        const auto i0 = hn::Min(hn::ConvertTo(di, v), last);
        const auto i1 = hn::Min(hn::Add(i0, hn::Set(di, 1)), last);
        const auto part = hn::Sub(v, hn::ConvertTo(d, i0));
        const auto a = hn::GatherIndex(d, p.lut.data(), i0), b = hn::GatherIndex(d, p.lut.data(), i1);
        const auto out = hn::Add(hn::Mul(a, hn::Sub(hn::Set(d, 1.0f), part)), hn::Mul(b, part));
        return clamp01(d, hn::Mul(out, hn::Set(d, colour)));
    };
    eachTriple(d, pixels, count, [&](Triple<V> c, std::size_t, std::size_t) HWY_ATTR {
        return Triple<V>{toned(c.r, p.colour[0]), toned(c.g, p.colour[1]), toned(c.b, p.colour[2])};
    });
}

} // namespace HWY_NAMESPACE
} // namespace tamlo
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tamlo {

HWY_EXPORT(dotRun);
HWY_EXPORT(addRun);
HWY_EXPORT(spreadNodes);
HWY_EXPORT(mixRun);
HWY_EXPORT(multiplyRun);
HWY_EXPORT(encodeRun);
HWY_EXPORT(decodeRun);
HWY_EXPORT(decodeMonoRun);
HWY_EXPORT(deltaRun);
HWY_EXPORT(deltaLight);
HWY_EXPORT(interleaveRun);
HWY_EXPORT(finishRun);

float dot_run(const float* a, const float* b, std::int64_t count) noexcept
{
    return HWY_DYNAMIC_DISPATCH(dotRun)(a, b, static_cast<std::size_t>(count));
}

void add_run(float* to, const float* from, float weight, std::int64_t count) noexcept
{
    HWY_DYNAMIC_DISPATCH(addRun)(to, from, weight, static_cast<std::size_t>(count));
}

void spread_nodes(float* to, std::int64_t count, const NodeSpread& spread) noexcept
{
    HWY_DYNAMIC_DISPATCH(spreadNodes)(to, static_cast<std::size_t>(count), spread);
}

void mix_run(float* to, float rest, const float* by, float part, std::int64_t count) noexcept
{
    HWY_DYNAMIC_DISPATCH(mixRun)(to, rest, by, part, static_cast<std::size_t>(count));
}

void multiply_run(float* to, const float* by, float factor, std::int64_t count) noexcept
{
    HWY_DYNAMIC_DISPATCH(multiplyRun)(to, by, factor, static_cast<std::size_t>(count));
}

void crt_encode(const float* pixels, std::array<float*, 3> rows, std::int64_t count) noexcept
{
    HWY_DYNAMIC_DISPATCH(encodeRun)(pixels, rows, static_cast<std::size_t>(count));
}

void crt_decode(std::array<float*, 3> rows, const std::array<Vec3f, 3>& inverse, std::int64_t count) noexcept
{
    HWY_DYNAMIC_DISPATCH(decodeRun)(rows, inverse, static_cast<std::size_t>(count));
}

void crt_decode_mono(float* row, std::int64_t count) noexcept
{
    HWY_DYNAMIC_DISPATCH(decodeMonoRun)(row, static_cast<std::size_t>(count));
}

void delta_row(float* colour, float* cover, std::int64_t count, const DeltaRow& row) noexcept
{
    HWY_DYNAMIC_DISPATCH(deltaRun)(colour, cover, static_cast<std::size_t>(count), row);
}

std::array<double, 3> delta_sums(const float* colour, const float* cover, std::int64_t count) noexcept
{
    std::array<double, 3> sums{};
    for (std::int64_t i = 0; i < count; ++i)
        sums[static_cast<std::size_t>(colour[i])] += static_cast<double>(cover[i]);
    return sums;
}

void delta_light(float* row, const float* colour, const float* cover, std::int64_t count, float c, float rest,
                 float lit, float factor) noexcept
{
    HWY_DYNAMIC_DISPATCH(deltaLight)
    (row, colour, cover, static_cast<std::size_t>(count), c, rest, lit, factor);
}

void crt_interleave(float* pixels, std::array<const float*, 3> rows, std::int64_t count) noexcept
{
    HWY_DYNAMIC_DISPATCH(interleaveRun)(pixels, rows, static_cast<std::size_t>(count));
}

void crt_finish(float* pixels, std::int64_t count, const ToneParams& params) noexcept
{
    HWY_DYNAMIC_DISPATCH(finishRun)(pixels, static_cast<std::size_t>(count), params);
}

} // namespace tamlo
#endif
