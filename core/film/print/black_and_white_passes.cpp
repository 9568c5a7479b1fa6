#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "core/film/print/black_and_white_passes.cpp"
#include <hwy/foreach_target.h>

#include "core/film/print/black_and_white_passes.h"

#include "core/film/emulsion/vector_curve-inl.h"
#include "core/image/bands.h"

HWY_BEFORE_NAMESPACE();
namespace tamlo {
namespace HWY_NAMESPACE {

void curveBWRun(float* samples, std::size_t count, const HDCurve& curve, float evTerm, bool negate)
{
    const hn::ScalableTag<float> d;
    for (std::size_t i = 0; i < count; i += hn::Lanes(d)) {
        auto x = logExposure(d, loadRun(d, samples + i, count - i), evTerm);
        if (negate) x = hn::Neg(x);
        storeRun(d, density(d, curve, x), samples + i, count - i);
    }
}

void printBWRun(float* out, const float* density, std::size_t count, const PrintBWParams& params)
{
    const hn::ScalableTag<float> d;
    using V = hn::Vec<decltype(d)>;
    const auto toned = [&](V v, float tone) HWY_ATTR { return clamp01(d, hn::Mul(v, hn::Set(d, tone))); };
    eachTriple(d, out, count, [&](Triple<V>, std::size_t first, std::size_t n) HWY_ATTR {
        const V db = hn::Sub(loadRun(d, density + first, n), hn::Set(d, params.d0));
        const V v = positive(d, params.curve, db, params.printEvTerm, params.flareAdd);
        return Triple<V>{toned(v, params.tone[0]), toned(v, params.tone[1]), toned(v, params.tone[2])};
    });
}

} // namespace HWY_NAMESPACE
} // namespace tamlo
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tamlo {

HWY_EXPORT(curveBWRun);
HWY_EXPORT(printBWRun);

void dot3(Plane& out, const RGBImage& image, const Vec3f& weights, const Vec3f& offsets)
{
    float* to = out.mutableData();
    parallelBands(image.height, image.width * 3, [&](std::int64_t start, std::int64_t end) {
        const float* p = image.row(start);
        for (std::int64_t i = start * image.width; i < end * image.width; ++i, p += 3)
            to[i] = weights[0] * (p[0] - offsets[0]) + weights[1] * (p[1] - offsets[1]) +
                    weights[2] * (p[2] - offsets[2]);
    });
}

void curve_bw(Plane& light, const HDCurve& curve, float evTerm, bool negate)
{
    float* samples = light.mutableData();
    parallelBands(light.height, light.width, [&](std::int64_t start, std::int64_t end) {
        HWY_DYNAMIC_DISPATCH(curveBWRun)
        (samples + start * light.width, static_cast<std::size_t>((end - start) * light.width), curve, evTerm,
         negate);
    });
}

void print_bw(RGBImage& out, const Plane& density, const PrintBWParams& params)
{
    float* to = out.mutableData();
    const std::int64_t width = density.width;
    parallelBands(density.height, width * 3, [&](std::int64_t start, std::int64_t end) {
        HWY_DYNAMIC_DISPATCH(printBWRun)
        (to + start * width * 3, density.row(start), static_cast<std::size_t>((end - start) * width), params);
    });
}

} // namespace tamlo
#endif
