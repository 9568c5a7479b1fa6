#include "core/film/lens/optics.h"

#include "core/film/lens/optics_passes.h"
#include "core/film/light/source_light_passes.h"
#include "core/image/render_profiler.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace tamlo {
namespace {

Vec3f castGains(const OpticsParams& params)
{
    const Vec3d cast = params.cast.value_or(Vec3d{1.0, 1.0, 1.0});
    return {static_cast<float>(cast[0]), static_cast<float>(cast[1]), static_cast<float>(cast[2])};
}

/// The colour of the glass, and no light below 0.
RGBImage castAndCut(RGBImage image, const Vec3f& gains)
{
    if (gains == Vec3f{1.0f, 1.0f, 1.0f} && !has_negative(image)) return image;
    cast_clamp(image, gains);
    return image;
}

} // namespace

Optics::StopGains Optics::stopGains(double stop, const OpticsParams& params)
{
    if (!(stop > 1e-6)) return {};
    const ApertureResponse response = params.apertureResponse.value_or(ApertureResponse{});
    const double tau = std::max(response.vignetteTau.value_or(1.4), 0.1);
    const double residual = response.vignetteResidual.value_or(0.3);
    return {.vig = residual + (1.0 - residual) * std::exp(-stop / tau),
            .sa = std::exp2(-stop * response.saFalloff.value_or(1.1)),
            .swirl = std::exp2(-stop * response.swirlFalloff.value_or(0.55))};
}

RGBImage Optics::apply(RGBImage image, const LensProfile& lens, const Vec3f& inputMeans,
                       const Controls& controls)
{
    const RenderProfiler::Scope booked("lens", image.pixelCount());
    if (image.pixelCount() == 0) return image;
    const OpticsParams& params = lens.optics;
    const StopGains gains = stopGains(controls.stop, params);
    if (controls.distortion)
        image = distort(std::move(image), params.distortion.value_or(0.0), params.distortionK5.value_or(0.0));
    image = veil(std::move(image), params.veil.value_or(0.0), inputMeans);
    image = bloom(std::move(image), params, gains.sa);
    image = glow(std::move(image), params, gains.sa, controls.glowMult, controls.glowRadiusMult);
    image = fieldPSF(std::move(image), params, gains.swirl, gains.sa);
    image = lateralColour(std::move(image), params.ca.value_or(0.0));
    image = vignette(std::move(image), gains.vig * params.vignette.value_or(0.0),
                     params.vignettePower.value_or(2.5));
    image = soften(std::move(image), gains.sa * params.soften.value_or(0.0), params.softenMix.value_or(0.6));
    image = chromaSoft(std::move(image), params, gains.sa);
    return castAndCut(std::move(image), castGains(params));
}

float Optics::sample(const Plane& plane, double x, double y)
{
    const double px = std::clamp(x, 0.0, static_cast<double>(plane.width - 1));
    const double py = std::clamp(y, 0.0, static_cast<double>(plane.height - 1));
    const auto x0 = static_cast<std::int64_t>(px), y0 = static_cast<std::int64_t>(py);
    const std::int64_t x1 = std::min(x0 + 1, plane.width - 1), y1 = std::min(y0 + 1, plane.height - 1);
    const auto fx = static_cast<float>(px - static_cast<double>(x0));
    const auto fy = static_cast<float>(py - static_cast<double>(y0));
    const float top = plane.at(x0, y0) + (plane.at(x1, y0) - plane.at(x0, y0)) * fx;
    const float bottom = plane.at(x0, y1) + (plane.at(x1, y1) - plane.at(x0, y1)) * fx;
    return top + (bottom - top) * fy;
}

double Optics::percentile(std::span<const float> values, double p)
{
    if (values.empty()) return 0.0;
    std::vector<float> ordered(values.begin(), values.end());
    const double rank = std::clamp(p, 0.0, 100.0) * static_cast<double>(ordered.size() - 1) / 100.0;
    const auto low = static_cast<std::ptrdiff_t>(rank);
    std::nth_element(ordered.begin(), ordered.begin() + low, ordered.end());
    const double below = ordered[static_cast<std::size_t>(low)];
    if (low + 1 == static_cast<std::ptrdiff_t>(ordered.size())) return below;
    const double above = *std::min_element(ordered.begin() + low + 1, ordered.end());
    return below + (above - below) * (rank - static_cast<double>(low));
}

} // namespace tamlo
