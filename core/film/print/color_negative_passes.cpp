#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "core/film/print/color_negative_passes.cpp"
#include <hwy/foreach_target.h>

#include "core/film/print/color_negative_passes.h"

#include "core/film/emulsion/vector_curve-inl.h"
#include "core/film/print/vector_look-inl.h"
#include "core/image/bands.h"
#include "core/image/chunks.h"

#include <algorithm>

HWY_BEFORE_NAMESPACE();
namespace tamlo {
namespace HWY_NAMESPACE {

/// The layers' distances x from their grey anchors, after couplers and retained silver.
template <class D, class V>
HWY_INLINE Triple<V> interlayer(D d, const CurvesColorParams& params, Triple<V> x)
{
    const V third = hn::Set(d, 1.0f / 3.0f);
    const auto mean = [&](const Triple<V>& t)
                          HWY_ATTR { return hn::Mul(hn::Add(hn::Add(t.r, t.g), t.b), third); };
    const GPUCouplers& couplers = params.couplers;
    if (couplers.mode != GPUCouplers::Mode::none) {
        const V m = mean(x);
        const Triple<V> v{hn::Sub(x.r, m), hn::Sub(x.g, m), hn::Sub(x.b, m)};
        if (couplers.mode == GPUCouplers::Mode::scalar) {
            const V f = hn::Set(d, couplers.csF);
            x = {hn::Add(m, hn::Mul(f, v.r)), hn::Add(m, hn::Mul(f, v.g)), hn::Add(m, hn::Mul(f, v.b))};
        } else {
            const auto mixed = [&](const Vec3f& row) HWY_ATTR {
                const V dot =
                    hn::Add(hn::Add(hn::Mul(hn::Set(d, row[0]), v.r), hn::Mul(hn::Set(d, row[1]), v.g)),
                            hn::Mul(hn::Set(d, row[2]), v.b));
                return hn::Add(m, dot);
            };
            x = {mixed(couplers.a[0]), mixed(couplers.a[1]), mixed(couplers.a[2])};
        }
    }
    if (params.retainedSilver > 0.0f) {
        const V silver = hn::Mul(hn::Set(d, params.retainedSilver), mean(x));
        x = {hn::Add(x.r, silver), hn::Add(x.g, silver), hn::Add(x.b, silver)};
    }
    return x;
}

void curvesColorRun(float* pixels, std::size_t count, const CurvesColorParams& params, const float* uneven)
{
    const hn::ScalableTag<float> d;
    using V = hn::Vec<decltype(d)>;
    const auto layer = [&](V light, std::size_t c, V field) HWY_ATTR {
        V x = hn::Add(logExposure(d, light, params.evTerm), hn::Set(d, params.layerEv[c]));
        if (params.negate) x = hn::Neg(x);
        V above = densityAboveDmin(d, params.curves[c], x);
        if (uneven) {
            const V factor = hn::Add(hn::Set(d, 1.0f), hn::Mul(field, hn::Set(d, params.unevenWeights[c])));
            above = hn::Mul(above, factor);
        }
        const float anchor = params.curves[c].fDmin - params.curves[c].fD0;
        return hn::Add(above, hn::Set(d, anchor));
    };
    eachTriple(d, pixels, count, [&](Triple<V> light, std::size_t first, std::size_t n) HWY_ATTR {
        V field = hn::Zero(d);
        if (uneven) field = loadRun(d, uneven + first, n);
        const Triple<V> x = interlayer(
            d, params,
            Triple<V>{layer(light.r, 0, field), layer(light.g, 1, field), layer(light.b, 2, field)});
        return Triple<V>{hn::Add(x.r, hn::Set(d, params.curves[0].fD0)),
                         hn::Add(x.g, hn::Set(d, params.curves[1].fD0)),
                         hn::Add(x.b, hn::Set(d, params.curves[2].fD0))};
    });
}

void printColorRun(float* pixels, std::size_t count, const PrintColorParams& params)
{
    const hn::ScalableTag<float> d;
    using V = hn::Vec<decltype(d)>;
    eachTriple(d, pixels, count, [&](Triple<V> db, std::size_t, std::size_t) HWY_ATTR {
        Triple<V> c{positive(d, params.curve, db.r, params.printEvTerm, params.flareAdd[0]),
                    positive(d, params.curve, db.g, params.printEvTerm, params.flareAdd[1]),
                    positive(d, params.curve, db.b, params.printEvTerm, params.flareAdd[2])};
        c = look(d, params.look, c);
        const auto finished = [&](V v, float tone)
                                  HWY_ATTR { return clamp01(d, hn::Mul(v, hn::Set(d, tone))); };
        return Triple<V>{finished(c.r, params.tone[0]), finished(c.g, params.tone[1]),
                         finished(c.b, params.tone[2])};
    });
}

/// 10^v of a block, in place; count is a multiple of the widest vector.
void pow10Run(float* values, std::size_t count)
{
    const hn::ScalableTag<float> d;
    for (std::size_t i = 0; i < count; i += hn::Lanes(d))
        hn::StoreU(pow10(d, hn::LoadU(d, values + i)), d, values + i);
}

} // namespace HWY_NAMESPACE
} // namespace tamlo
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tamlo {

HWY_EXPORT(curvesColorRun);
HWY_EXPORT(printColorRun);
HWY_EXPORT(pow10Run);

void curves_color(RGBImage& image, const CurvesColorParams& params, const Plane* unevenField)
{
    float* data = image.mutableData();
    const std::int64_t width = image.width;
    const float* field = unevenField ? unevenField->data.data() : nullptr;
    parallelBands(image.height, width * 3, [&](std::int64_t start, std::int64_t end) {
        HWY_DYNAMIC_DISPATCH(curvesColorRun)
        (data + start * width * 3, static_cast<std::size_t>((end - start) * width), params,
         field ? field + start * width : nullptr);
    });
}

void print_color(RGBImage& db, const PrintColorParams& params)
{
    float* data = db.mutableData();
    const std::int64_t width = db.width;
    parallelBands(db.height, width * 3, [&](std::int64_t start, std::int64_t end) {
        HWY_DYNAMIC_DISPATCH(printColorRun)
        (data + start * width * 3, static_cast<std::size_t>((end - start) * width), params);
    });
}

void subtract_anchor(RGBImage& density, const Vec3f& d0)
{
    float* data = density.mutableData();
    const std::int64_t width = density.width;
    parallelBands(density.height, width * 3, [&](std::int64_t start, std::int64_t end) {
        for (float *p = data + start * width * 3, *last = data + end * width * 3; p != last; p += 3)
            for (std::size_t c = 0; c < 3; ++c) p[c] -= d0[c];
    });
}

double mean_paper_light(std::span<const float> density, Film::Channel channel, float d0, float printEvTerm)
{
    constexpr std::int64_t kBlock = 1024; // samples that stay in the first-level cache
    const std::int64_t n = static_cast<std::int64_t>(density.size()) / channel.stride;
    return meanInChunks(n, [&](std::int64_t start, std::int64_t end) {
        alignas(64) std::array<float, kBlock> block{};
        double sum = 0.0;
        for (std::int64_t first = start; first < end; first += kBlock) {
            const std::int64_t count = std::min(kBlock, end - first);
            const float* from = density.data() + first * channel.stride + channel.offset;
            for (std::int64_t k = 0; k < count; ++k, from += channel.stride)
                block[static_cast<std::size_t>(k)] = printEvTerm - (*from - d0);
            HWY_DYNAMIC_DISPATCH(pow10Run)(block.data(), block.size());
            for (std::int64_t k = 0; k < count; ++k) sum += block[static_cast<std::size_t>(k)];
        }
        return sum;
    });
}

} // namespace tamlo
#endif
