#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "core/process/gum/gum_passes.cpp"
#include <hwy/foreach_target.h>

#include "core/process/gum/gum_passes.h"

#include "core/image/bands.h"
#include "core/image/vector_pixels-inl.h"

#include <algorithm>

HWY_BEFORE_NAMESPACE();
namespace tamlo {
namespace HWY_NAMESPACE {

void accumRun(float* density, float* sum, const float* amount, std::size_t count, const Vec3f& pigment)
{
    const hn::ScalableTag<float> d;
    using V = hn::Vec<decltype(d)>;
    eachTriple(d, density, count, [&](Triple<V> c, std::size_t i, std::size_t n) HWY_ATTR {
        const V t = loadRun(d, amount + i, n);
        storeRun(d, hn::Add(loadRun(d, sum + i, n), t), sum + i, n);
        const auto added = [&](V v, std::size_t k)
                               HWY_ATTR { return hn::Add(v, hn::Mul(t, hn::Set(d, pigment[k]))); };
        return Triple<V>{added(c.r, 0), added(c.g, 1), added(c.b, 2)};
    });
}

void finishRun(float* density, float* sum, std::size_t count, const Vec3f& base, float perLayer)
{
    const hn::ScalableTag<float> d;
    using V = hn::Vec<decltype(d)>;
    eachTriple(d, density, count, [&](Triple<V> c, std::size_t i, std::size_t n) HWY_ATTR {
        storeRun(d, clamp01(d, hn::Mul(loadRun(d, sum + i, n), hn::Set(d, perLayer))), sum + i, n);
        const auto seen = [&](V v, std::size_t k)
                              HWY_ATTR { return hn::Mul(hn::Set(d, base[k]), pow10(d, hn::Neg(v))); };
        return Triple<V>{seen(c.r, 0), seen(c.g, 1), seen(c.b, 2)};
    });
}

} // namespace HWY_NAMESPACE
} // namespace tamlo
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tamlo {

HWY_EXPORT(accumRun);
HWY_EXPORT(finishRun);

void plane_shift_edge(Plane& out, const Plane& plane, std::int64_t dy, std::int64_t dx)
{
    float* to = out.mutableData();
    const std::int64_t w = plane.width, h = plane.height;
    // Columns first...end - 1 have their source inside the plane.
    const std::int64_t first = std::clamp<std::int64_t>(dx, 0, w),
                       end = std::clamp<std::int64_t>(w + dx, 0, w);
    parallelBands(h, w, [&](std::int64_t start, std::int64_t stop) {
        for (std::int64_t y = start; y < stop; ++y) {
            const float* from = plane.row(std::clamp<std::int64_t>(y - dy, 0, h - 1));
            float* row = to + y * w;
            std::fill(row, row + first, from[0]);
            std::copy(from + (first - dx), from + (std::max(first, end) - dx), row + first);
            std::fill(row + std::max(first, end), row + w, from[w - 1]);
        }
    });
}

void gum_accum(RGBImage& density, Plane& sum, const Plane& amount, const Vec3f& pigment)
{
    float *pixels = density.mutableData(), *sums = sum.mutableData();
    const std::int64_t width = density.width;
    parallelBands(density.height, width * 3, [&](std::int64_t start, std::int64_t end) {
        HWY_DYNAMIC_DISPATCH(accumRun)
        (pixels + start * width * 3, sums + start * width, amount.row(start),
         static_cast<std::size_t>((end - start) * width), pigment);
    });
}

void gum_finish(RGBImage& density, Plane& sum, const Vec3f& base, float perLayer)
{
    float *pixels = density.mutableData(), *sums = sum.mutableData();
    const std::int64_t width = density.width;
    parallelBands(density.height, width * 3, [&](std::int64_t start, std::int64_t end) {
        HWY_DYNAMIC_DISPATCH(finishRun)
        (pixels + start * width * 3, sums + start * width, static_cast<std::size_t>((end - start) * width),
         base, perLayer);
    });
}

} // namespace tamlo
#endif
