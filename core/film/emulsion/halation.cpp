#include "core/film/emulsion/halation.h"

#include "core/film/emulsion/emulsion_passes.h"
#include "core/image/bands.h"
#include "core/image/blur_bands.h"
#include "core/image/light_above.h"
#include "core/image/render_profiler.h"
#include "core/process/plates/glass_ring.h"

#include <algorithm>
#include <utility>
#include <vector>

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

/// The ring from the back of a glass base, of the light that `source` gives.
std::optional<Glass::Halo> glassHalo(Size size, const HalationParams& params, double pxUm,
                                     const SourceRow& source)
{
    const double tMm = params.glassMm.value_or(0.0);
    return tMm > 0.0 ? Glass::Halo::of(size, pxUm, tMm, source) : std::nullopt;
}

/// Gives each row of the ring to `add`.
template <typename Add>
void eachRingRow(const std::optional<Glass::Halo>& ring, Size size, Add&& add)
{
    if (!ring) return;
    parallelBands(size.height, size.width * 2, [&](std::int64_t start, std::int64_t end) {
        std::vector<float> row(static_cast<std::size_t>(size.width));
        for (std::int64_t y = start; y < end; ++y) {
            ring->row(y, row.data());
            add(y, row.data());
        }
    });
}

RGBImage addGlow(RGBImage image, const HalationPlan& plan, const std::optional<Glass::Halo>& ring,
                 const SourceRow& source)
{
    float* pixels = image.mutableData();
    const std::int64_t width = image.width;
    const auto add = [&](std::int64_t y, const float* glow) {
        halation_add_color(pixels + y * width * 3, glow, width, plan.gains);
    };
    blurInBands(image.size(), 1, plan.sigmaPx, source, add);
    eachRingRow(ring, image.size(), add);
    return image;
}

} // namespace

RGBImage Film::applyHalation(RGBImage image, const Plane& source, const std::optional<HalationParams>& params,
                             double pxUm, double mult)
{
    const auto plan = planHalation(params, pxUm, mult);
    if (!plan) return image;
    const auto above = [&](std::int64_t y, float* to) {
        light_above(source.row(y), source.width, plan->threshold, to);
    };
    const auto ring = glassHalo(image.size(), *params, pxUm, above);
    return addGlow(std::move(image), *plan, ring, above);
}

RGBImage Film::applyHalation(RGBImage image, const std::optional<HalationParams>& params, double pxUm,
                             double mult)
{
    const RenderProfiler::Scope booked("halation", image.pixelCount());
    const auto plan = planHalation(params, pxUm, mult);
    if (!plan) return image;
    const float* pixels = image.mutableData();
    const std::int64_t width = image.width;
    const auto above = [&](std::int64_t y, float* to) {
        light_above_luma(pixels + y * width * 3, width, plan->threshold, to);
    };
    const auto ring = glassHalo(image.size(), *params, pxUm, above);
    return addGlow(std::move(image), *plan, ring, above);
}

Plane Film::applyHalation(Plane image, const std::optional<HalationParams>& params, double pxUm, double mult)
{
    const RenderProfiler::Scope booked("halation", image.width * image.height);
    const auto plan = planHalation(params, pxUm, mult);
    if (!plan) return image;
    const Size size = image.size();
    float* light = image.mutableData();
    const auto above = [&](std::int64_t y, float* to) {
        light_above(light + y * size.width, size.width, plan->threshold, to);
    };
    const auto add = [&](std::int64_t y, const float* glow) {
        halation_add(light + y * size.width, glow, size.width, plan->layerGain);
    };
    const auto ring = glassHalo(size, *params, pxUm, above);
    blurInBands(size, 1, plan->sigmaPx, above, add);
    eachRingRow(ring, size, add);
    return image;
}

} // namespace tamlo
