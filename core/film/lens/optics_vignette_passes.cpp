#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "core/film/lens/optics_vignette_passes.cpp"
#include <hwy/foreach_target.h>

#include "core/film/lens/optics_vignette_passes.h"

#include <hwy/contrib/math/math-inl.h>
#include <hwy/highway.h>

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

} // namespace tamlo
#endif
