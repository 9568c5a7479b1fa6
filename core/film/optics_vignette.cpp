#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "core/film/optics_vignette.cpp"
#include <hwy/foreach_target.h>

#include "core/film/optics.h"
#include "core/film/optics_passes.h"
#include "core/image/bands.h"

#include <hwy/contrib/math/math-inl.h>
#include <hwy/highway.h>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

HWY_BEFORE_NAMESPACE();
namespace tamlo::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

using D = hn::CappedTag<float, kVignettePad>;

/// Fills `falloff` to whole vectors: r^power = e^(ln(r²) power / 2), with 0^0 = 1.
void vignetteFalloff(std::int64_t y, std::int64_t width, const VignettePlan& plan, float* falloff)
{
    const D d;
    const float dy = (static_cast<float>(y) - plan.cy) * plan.scaleY;
    const auto dy2 = hn::Set(d, dy * dy), one = hn::Set(d, 1.0f), least = hn::Set(d, 1e-30f);
    const auto halfPower = hn::Set(d, 0.5f * plan.power), strength = hn::Set(d, plan.strength);
    const auto atCentre = hn::Set(d, plan.power > 0.0f ? 0.0f : 1.0f);
    const auto lanes = static_cast<std::int64_t>(hn::Lanes(d));
    for (std::int64_t x = 0; x < width; x += lanes) {
        const auto place = hn::Iota(d, static_cast<float>(x));
        const auto dx = hn::Mul(hn::Sub(place, hn::Set(d, plan.cx)), hn::Set(d, plan.scaleX));
        const auto r2 = hn::Min(hn::Add(hn::Mul(dx, dx), dy2), one);
        const auto held = hn::Max(hn::Mul(hn::Log(d, hn::Max(r2, least)), halfPower), hn::Set(d, -80.0f));
        const auto share = hn::IfThenElse(hn::Gt(r2, least), hn::Exp(d, held), atCentre);
        hn::StoreU(hn::Sub(one, hn::Mul(strength, share)), d, falloff + x);
    }
}

} // namespace tamlo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tamlo {

HWY_EXPORT(vignetteFalloff);

void vignette_row(float* row, std::int64_t y, std::int64_t width, const VignettePlan& plan, float* falloff)
{
    HWY_DYNAMIC_DISPATCH(vignetteFalloff)(y, width, plan, falloff);
    for (std::int64_t x = 0; x < width; ++x)
        for (int c = 0; c < 3; ++c) row[x * 3 + c] *= falloff[x];
}

RGBImage Optics::vignette(RGBImage image, double strength, double power)
{
    if (image.pixelCount() == 0 || !(strength > 0.0)) return image;
    const auto w = static_cast<double>(image.width), h = static_cast<double>(image.height);
    const double diagonal = std::sqrt(0.5); // the corner of a square of half side 1 at r = 1
    const VignettePlan plan{
        static_cast<float>(0.5 * (w - 1.0)),    static_cast<float>(0.5 * (h - 1.0)),
        static_cast<float>(2.0 * diagonal / w), static_cast<float>(2.0 * diagonal / h),
        static_cast<float>(strength),           static_cast<float>(std::clamp(power, 0.0, 1e6))};
    float* pixels = image.mutableData();
    const std::int64_t width = image.width;
    parallelBands(image.height, width * 3, [&](std::int64_t start, std::int64_t end) {
        std::vector<float> falloff(static_cast<std::size_t>(width + kVignettePad));
        for (std::int64_t y = start; y < end; ++y)
            vignette_row(pixels + y * width * 3, y, width, plan, falloff.data());
    });
    return image;
}

} // namespace tamlo
#endif
