#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "core/film/print/slide_passes.cpp"
#include <hwy/foreach_target.h>

#include "core/film/print/slide_passes.h"

#include "core/film/emulsion/vector_curve-inl.h"
#include "core/film/print/vector_look-inl.h"
#include "core/image/each_pixel.h"

#include <cmath>

HWY_BEFORE_NAMESPACE();
namespace tamlo {
namespace HWY_NAMESPACE {

/// f on each of the three.
template <class V, class F>
HWY_INLINE Triple<V> each(const Triple<V>& c, const F& f)
{
    return {f(c.r), f(c.g), f(c.b)};
}

template <class D, class V>
HWY_INLINE V meanOf(D d, const Triple<V>& c)
{
    return hn::Mul(hn::Add(hn::Add(c.r, c.g), c.b), hn::Set(d, 1.0f / 3.0f));
}

void positiveOutRun(float* pixels, std::size_t count, float reference, const Film::LookOp& op)
{
    const hn::ScalableTag<float> d;
    using V = hn::Vec<decltype(d)>;
    eachTriple(d, pixels, count, [&](Triple<V> c, std::size_t, std::size_t) HWY_ATTR {
        c = each(c, [&](V v) HWY_ATTR { return pow10(d, hn::Sub(hn::Set(d, reference), v)); });
        return each(look(d, op, c), [&](V v) HWY_ATTR { return clamp01(d, v); });
    });
}

void slidePrintRun(float* pixels, std::size_t count, const SlidePrintParams& params)
{
    const hn::ScalableTag<float> d;
    using V = hn::Vec<decltype(d)>;
    const V u0 = hn::Set(d, std::log10(ZColor::midGray) + params.printEvTerm);
    eachTriple(d, pixels, count, [&](Triple<V> c, std::size_t, std::size_t) HWY_ATTR {
        c = each(c, [&](V v) HWY_ATTR {
            const V u = hn::Sub(u0, hn::Log10(d, hn::Max(usableLight(d, v), hn::Set(d, 1e-6f))));
            return printKnobs(d, params.curve, density(d, params.curve, u));
        });
        if (params.dyePurity != 1.0f) {
            const V mean = meanOf(d, c);
            c = each(c, [&](V v) HWY_ATTR {
                return hn::Add(mean, hn::Mul(hn::Sub(v, mean), hn::Set(d, params.dyePurity)));
            });
        }
        const auto out = [&](V v, float tone) HWY_ATTR {
            const V light = pow10(d, hn::Sub(hn::Set(d, params.curve.fDmin), v));
            return clamp01(d, hn::Mul(light, hn::Set(d, tone)));
        };
        return Triple<V>{out(c.r, params.tone[0]), out(c.g, params.tone[1]), out(c.b, params.tone[2])};
    });
}

/// Scan software's knobs on one channel, in density.
template <class D, class V>
HWY_INLINE V scanKnobs(D d, const HDCurve& tone, V v)
{
    const V deepest = hn::Set(d, static_cast<float>(tone.dmax));
    const V density = hn::Clamp(hn::Neg(hn::Log10(d, hn::Max(v, hn::Set(d, 1e-6f)))), hn::Zero(d), deepest);
    return pow10(d, hn::Neg(printKnobs(d, tone, density)));
}

void scanPositiveRun(float* pixels, std::size_t count, const Film::ScanPositive& params, const HDCurve& tone)
{
    const hn::ScalableTag<float> d;
    using V = hn::Vec<decltype(d)>;
    eachTriple(d, pixels, count, [&](Triple<V> c, std::size_t, std::size_t) HWY_ATTR {
        if (params.flare > 1e-6f) {
            const V flare = hn::Set(d, params.flare), whole = hn::Set(d, 1.0f + params.flare);
            c = each(c, [&](V v) HWY_ATTR { return hn::Div(hn::Add(v, flare), whole); });
        }
        if (params.floor) {
            // By the neutral of the whole pixel, so that deep shadows keep their colour to the very black.
            const V m = meanOf(d, c);
            const V above = hn::Max(hn::Sub(m, hn::Set(d, *params.floor)), hn::Zero(d));
            const V share = hn::Div(above, hn::Max(m, hn::Set(d, 1e-9f)));
            const V factor = hn::Div(share, hn::Set(d, 1.0f - *params.floor));
            c = each(c, [&](V v) HWY_ATTR { return hn::Mul(v, factor); });
        }
        if (std::abs(params.evMultiplier - 1.0f) > 1e-6f)
            c = each(c, [&](V v) HWY_ATTR { return hn::Mul(v, hn::Set(d, params.evMultiplier)); });
        if (std::abs(params.gamma - 1.0f) > 1e-6f)
            c = each(c, [&](V v) HWY_ATTR { return pow01(d, v, params.gamma); });
        if (params.black > 1e-6f || params.white > 1e-6f)
            c = each(c, [&](V v) HWY_ATTR { return scanKnobs(d, tone, v); });
        return each(c, [&](V v) HWY_ATTR { return clamp01(d, v); });
    });
}

} // namespace HWY_NAMESPACE
} // namespace tamlo
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tamlo {

HWY_EXPORT(positiveOutRun);
HWY_EXPORT(slidePrintRun);
HWY_EXPORT(scanPositiveRun);

void positive_out(RGBImage& density, float reference, const Film::LookOp& look)
{
    eachBand(density, [&](float* pixels, std::int64_t, std::size_t count) {
        HWY_DYNAMIC_DISPATCH(positiveOutRun)(pixels, count, reference, look);
    });
}

void slide_print(RGBImage& transmission, const SlidePrintParams& params)
{
    eachBand(transmission, [&](float* pixels, std::int64_t, std::size_t count) {
        HWY_DYNAMIC_DISPATCH(slidePrintRun)(pixels, count, params);
    });
}

void scan_positive(RGBImage& image, const Film::ScanPositive& params)
{
    const HDCurve tone = Film::scanToneCurve(params.black, params.white, params.dcap);
    eachBand(image, [&](float* pixels, std::int64_t, std::size_t count) {
        HWY_DYNAMIC_DISPATCH(scanPositiveRun)(pixels, count, params, tone);
    });
}

} // namespace tamlo
#endif
