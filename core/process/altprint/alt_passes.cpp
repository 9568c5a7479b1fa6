#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "core/process/altprint/alt_passes.cpp"
#include <hwy/foreach_target.h>

#include "core/process/altprint/alt_passes.h"

#include "core/film/emulsion/vector_curve-inl.h"
#include "core/image/each_pixel.h"

HWY_BEFORE_NAMESPACE();
namespace tamlo {
namespace HWY_NAMESPACE {

/// op(V, first sample's index, samples in it) on a run in place.
template <class Op>
HWY_INLINE void eachRun(float* values, std::size_t count, const Op& op)
{
    const hn::ScalableTag<float> d;
    for (std::size_t i = 0; i < count; i += hn::Lanes(d))
        storeRun(d, op(loadRun(d, values + i, count - i), i, count - i), values + i, count - i);
}

void amountRun(float* values, std::size_t count, const HDCurve& curve, float d0, float printEvTerm)
{
    const hn::ScalableTag<float> d;
    const auto argument = hn::Set(d, printEvTerm + d0);
    const auto perSpan = hn::Set(d, 1.0f / std::max(static_cast<float>(curve.dmax - curve.dmin), 1e-6f));
    eachRun(values, count, [&](auto v, std::size_t, std::size_t) HWY_ATTR {
        const auto dp = printKnobs(d, curve, density(d, curve, hn::Sub(argument, v)));
        return clamp01(d, hn::Mul(hn::Sub(dp, hn::Set(d, curve.fDmin)), perSpan));
    });
}

void shapeRun(float* values, std::size_t count, float inkFloor, float plug)
{
    const hn::ScalableTag<float> d;
    const auto one = hn::Set(d, 1.0f);
    const auto floor = hn::Set(d, inkFloor), perRest = hn::Set(d, 1.0f / std::max(1.0f - inkFloor, 1e-6f));
    eachRun(values, count, [&](auto t, std::size_t, std::size_t) HWY_ATTR {
        if (inkFloor > 0.0f) t = clamp01(d, hn::Mul(hn::Sub(t, floor), perRest));
        if (plug > 0.0f) t = hn::Sub(one, pow01(d, hn::Sub(one, t), 1.0f + plug));
        return t;
    });
}

void pickupRun(float* values, std::size_t count, float pickup)
{
    const hn::ScalableTag<float> d;
    const auto one = hn::Set(d, 1.0f), q = hn::Set(d, 1.0f - pickup), per = hn::Set(d, 1.0f / pickup);
    eachRun(values, count, [&](auto t, std::size_t, std::size_t) HWY_ATTR {
        return hn::Mul(hn::Mul(t, hn::Sub(one, hn::Mul(q, t))), per);
    });
}

void clampRun(float* values, std::size_t count)
{
    const hn::ScalableTag<float> d;
    eachRun(values, count, [&](auto t, std::size_t, std::size_t) HWY_ATTR { return clamp01(d, t); });
}

void windowRun(float* values, const float* mask, std::size_t count, float band)
{
    const hn::ScalableTag<float> d;
    const auto full = hn::Set(d, band);
    eachRun(values, count, [&](auto t, std::size_t i, std::size_t n) HWY_ATTR {
        const auto m = loadRun(d, mask + i, n);
        return hn::Add(hn::Mul(t, m), hn::Mul(full, hn::Sub(hn::Set(d, 1.0f), m)));
    });
}

void colorizeRun(float* out, const float* amount, std::size_t count, const ColorizeParams& p)
{
    const hn::ScalableTag<float> d;
    using V = hn::Vec<decltype(d)>;
    eachTriple(d, out, count, [&](Triple<V>, std::size_t i, std::size_t n) HWY_ATTR {
        const V t = loadRun(d, amount + i, n);
        if (p.ink) {
            const V c = clamp01(d, hn::Mul(t, hn::Set(d, p.opacity))), bare = hn::Sub(hn::Set(d, 1.0f), c);
            const auto covered = [&](std::size_t k) HWY_ATTR {
                return hn::Add(hn::Mul(hn::Set(d, p.base[k]), bare), hn::Mul(hn::Set(d, p.rgb[k]), c));
            };
            return Triple<V>{covered(0), covered(1), covered(2)};
        }
        const auto filtered = [&](std::size_t k) HWY_ATTR {
            return hn::Mul(hn::Set(d, p.base[k]), pow10(d, hn::Mul(t, hn::Set(d, -p.density[k]))));
        };
        return Triple<V>{filtered(0), filtered(1), filtered(2)};
    });
}

void compositeRun(float* pixels, const float* mask, std::size_t count, const Vec3f& colour)
{
    const hn::ScalableTag<float> d;
    using V = hn::Vec<decltype(d)>;
    eachTriple(d, pixels, count, [&](Triple<V> c, std::size_t i, std::size_t n) HWY_ATTR {
        const V m = loadRun(d, mask + i, n), rest = hn::Sub(hn::Set(d, 1.0f), m);
        const auto mixed = [&](V v, std::size_t k) HWY_ATTR {
            return hn::Add(hn::Mul(v, m), hn::Mul(hn::Set(d, colour[k]), rest));
        };
        return Triple<V>{mixed(c.r, 0), mixed(c.g, 1), mixed(c.b, 2)};
    });
}

} // namespace HWY_NAMESPACE
} // namespace tamlo
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tamlo {

HWY_EXPORT(amountRun);
HWY_EXPORT(shapeRun);
HWY_EXPORT(pickupRun);
HWY_EXPORT(clampRun);
HWY_EXPORT(windowRun);
HWY_EXPORT(colorizeRun);
HWY_EXPORT(compositeRun);

void alt_amount(Plane& density, const HDCurve& curve, float d0, float printEvTerm)
{
    eachBand(density, [&](float* values, std::int64_t, std::size_t n) {
        HWY_DYNAMIC_DISPATCH(amountRun)(values, n, curve, d0, printEvTerm);
    });
}

void alt_shape(Plane& amount, float inkFloor, float plug)
{
    constexpr float kLeast = 1e-4f;
    const float floor = inkFloor > kLeast ? inkFloor : 0.0f, fill = plug > kLeast ? plug : 0.0f;
    if (floor == 0.0f && fill == 0.0f) return;
    eachBand(amount, [&](float* values, std::int64_t, std::size_t n) {
        HWY_DYNAMIC_DISPATCH(shapeRun)(values, n, floor, fill);
    });
}

void alt_pickup(Plane& amount, float pickup)
{
    eachBand(amount, [&](float* values, std::int64_t, std::size_t n) {
        HWY_DYNAMIC_DISPATCH(pickupRun)(values, n, pickup);
    });
}

void alt_clamp(Plane& amount)
{
    eachBand(amount, [](float* values, std::int64_t, std::size_t n) {
        HWY_DYNAMIC_DISPATCH(clampRun)(values, n);
    });
}

void alt_clamp(RGBImage& image)
{
    eachBand(image, [](float* values, std::int64_t, std::size_t pixels) {
        HWY_DYNAMIC_DISPATCH(clampRun)(values, pixels * 3);
    });
}

void alt_window(Plane& amount, const Plane& mask, float band)
{
    eachBand(amount, [&](float* values, std::int64_t first, std::size_t n) {
        HWY_DYNAMIC_DISPATCH(windowRun)(values, mask.data.data() + first, n, band);
    });
}

void alt_colorize(RGBImage& out, const Plane& amount, const ColorizeParams& params)
{
    eachBand(out, [&](float* pixels, std::int64_t first, std::size_t n) {
        HWY_DYNAMIC_DISPATCH(colorizeRun)(pixels, amount.data.data() + first, n, params);
    });
}

void composite_run(float* pixels, const float* mask, std::int64_t count, const Vec3f& colour) noexcept
{
    HWY_DYNAMIC_DISPATCH(compositeRun)(pixels, mask, static_cast<std::size_t>(count), colour);
}

void composite_mask(RGBImage& image, const Plane& mask, const Vec3f& colour)
{
    eachBand(image, [&](float* pixels, std::int64_t first, std::size_t n) {
        HWY_DYNAMIC_DISPATCH(compositeRun)(pixels, mask.data.data() + first, n, colour);
    });
}

} // namespace tamlo
#endif
