#include "core/film/emulsion/halation.h"

#include "core/film/emulsion/emulsion_passes.h"
#include "core/image/blur_bands.h"
#include "core/image/light_above.h"
#include "core/image/render_profiler.h"

#include <algorithm>
#include <utility>

namespace tamlo {
namespace {

struct HalationPlan {
    double sigmaPx = 0.0;
    float threshold = 0.0f;
    Vec3f gains{};       // strength × mult × tint
    float layerGain = 0; // the same without the tint
};

/// Absent when the film returns no light.
std::optional<HalationPlan> planHalation(const std::optional<HalationParams>& params, double pxUm,
                                         double mult)
{
    constexpr Vec3d kTint{1.0, 0.3, 0.08};
    constexpr double kMaxStrength = 1e6; // 32-bit floats carry it without overflow
    if (!params) return std::nullopt;
    const double strength = std::min(params->strength.value_or(0.0) * mult, kMaxStrength);
    if (!(strength > 1e-5)) return std::nullopt;
    HalationPlan plan;
    plan.sigmaPx = std::max(params->radiusUm.value_or(200.0) / std::max(pxUm, 1e-6), 1.0);
    plan.threshold = static_cast<float>(params->threshold.value_or(0.8));
    plan.layerGain = static_cast<float>(strength);
    const Vec3d tint = params->tint.value_or(kTint);
    for (std::size_t c = 0; c < 3; ++c)
        plan.gains[c] = static_cast<float>(std::clamp(strength * tint[c], -kMaxStrength, kMaxStrength));
    return plan;
}

/// The sharp ring from the back of a glass base (glassMm above 0), fed by the same light above the threshold.
/// It comes with the plates; until then no glass returns light of its own.
template <typename Image>
Image addGlassHalo(Image image, const HalationParams&)
{
    return image;
}

RGBImage addGlow(RGBImage image, const HalationPlan& plan, const SourceRow& source)
{
    float* pixels = image.mutableData();
    const std::int64_t width = image.width;
    blurInBands(image.size(), 1, plan.sigmaPx, source, [&](std::int64_t y, const float* glow) {
        halation_add_color(pixels + y * width * 3, glow, width, plan.gains);
    });
    return image;
}

} // namespace

RGBImage Film::applyHalation(RGBImage image, const Plane& source, const std::optional<HalationParams>& params,
                             double pxUm, double mult)
{
    const auto plan = planHalation(params, pxUm, mult);
    if (!plan) return image;
    image = addGlow(std::move(image), *plan, [&](std::int64_t y, float* to) {
        light_above(source.row(y), source.width, plan->threshold, to);
    });
    return addGlassHalo(std::move(image), *params);
}

RGBImage Film::applyHalation(RGBImage image, const std::optional<HalationParams>& params, double pxUm,
                             double mult)
{
    const RenderProfiler::Scope booked("halation", image.pixelCount());
    const auto plan = planHalation(params, pxUm, mult);
    if (!plan) return image;
    const float* pixels = image.mutableData();
    const std::int64_t width = image.width;
    image = addGlow(std::move(image), *plan, [&](std::int64_t y, float* to) {
        light_above_luma(pixels + y * width * 3, width, plan->threshold, to);
    });
    return addGlassHalo(std::move(image), *params);
}

Plane Film::applyHalation(Plane image, const std::optional<HalationParams>& params, double pxUm, double mult)
{
    const RenderProfiler::Scope booked("halation", image.width * image.height);
    const auto plan = planHalation(params, pxUm, mult);
    if (!plan) return image;
    float* light = image.mutableData();
    const std::int64_t width = image.width;
    blurInBands(
        image.size(), 1, plan->sigmaPx,
        [&](std::int64_t y, float* to) { light_above(light + y * width, width, plan->threshold, to); },
        [&](std::int64_t y, const float* glow) {
            halation_add(light + y * width, glow, width, plan->layerGain);
        });
    return addGlassHalo(std::move(image), *params);
}

} // namespace tamlo
