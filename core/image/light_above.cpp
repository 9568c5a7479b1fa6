#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "core/image/light_above.cpp"
#include <hwy/foreach_target.h>

#include "core/image/light_above.h"
#include "core/image/vector_pixels-inl.h"

#include <algorithm>

HWY_BEFORE_NAMESPACE();
namespace tamlo {
namespace HWY_NAMESPACE {

void lightAboveRun(const float* light, std::size_t count, float threshold, float* out)
{
    const hn::ScalableTag<float> d;
    eachRun(d, out, count, [&](std::size_t i, std::size_t n) HWY_ATTR {
        return usableLight(d, hn::Sub(loadRun(d, light + i, n), hn::Set(d, threshold)));
    });
}

void lightAboveLumaRun(const float* pixels, std::size_t count, float threshold, float* out)
{
    const hn::ScalableTag<float> d;
    using V = hn::Vec<decltype(d)>;
    eachRun(d, out, count, [&](std::size_t i, std::size_t n) HWY_ATTR {
        Triple<V> c;
        if (n == hn::Lanes(d)) {
            hn::LoadInterleaved3(d, pixels + i * 3, c.r, c.g, c.b);
        } else {
            HWY_ALIGN float block[3 * hn::MaxLanes(d)] = {};
            std::copy_n(pixels + i * 3, n * 3, block);
            hn::LoadInterleaved3(d, block, c.r, c.g, c.b);
        }
        return usableLight(d, hn::Sub(lumaOf(d, c), hn::Set(d, threshold)));
    });
}

} // namespace HWY_NAMESPACE
} // namespace tamlo
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tamlo {

HWY_EXPORT(lightAboveRun);
HWY_EXPORT(lightAboveLumaRun);

void light_above(const float* light, std::int64_t count, float threshold, float* out) noexcept
{
    HWY_DYNAMIC_DISPATCH(lightAboveRun)(light, static_cast<std::size_t>(count), threshold, out);
}

void light_above_luma(const float* pixels, std::int64_t count, float threshold, float* out) noexcept
{
    HWY_DYNAMIC_DISPATCH(lightAboveLumaRun)(pixels, static_cast<std::size_t>(count), threshold, out);
}

} // namespace tamlo
#endif
