#include "core/film/filters/filters.h"

#include "core/film/filters/filter_passes.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tamlo {
namespace {

GradParams planGrad(const FilterProfile& profile, double pos, double turnDeg, Size size)
{
    const double stops = profile.stops.value_or(1.0);
    const Vec3d density = profile.stopsRgb.value_or(Vec3d{stops, stops, stops});
    const double edge = profile.edgeFrac ? std::max(*profile.edgeFrac, 0.001) : 0.25;
    const double theta = (turnDeg + profile.angle.value_or(0.0)) * std::numbers::pi / 180.0;
    GradParams params{};
    params.centreX = static_cast<float>(static_cast<double>(size.width - 1) / 2.0);
    params.centreY = static_cast<float>(static_cast<double>(size.height - 1) / 2.0);
    params.half = static_cast<float>(static_cast<double>(std::max(size.width, size.height)) * 0.5);
    params.ca = static_cast<float>(std::cos(theta));
    params.sa = static_cast<float>(std::sin(theta));
    params.pos = static_cast<float>(pos);
    params.twoEdge = static_cast<float>(2.0 * edge);
    params.reverse = profile.grad == "reverse";
    params.far = static_cast<float>(profile.reverseFar.value_or(0.45));
    params.revSigma = static_cast<float>(std::max(edge * 3.0, 0.001));
    for (std::size_t c = 0; c < 3; ++c) params.stops[c] = static_cast<float>(density[c]);
    return params;
}

} // namespace

RGBImage Filters::applyGrad(RGBImage image, const FilterProfile& profile, double pos, double turnDeg)
{
    if (image.pixelCount() == 0) return image;
    in_grad(image, planGrad(profile, pos, turnDeg, image.size()));
    return image;
}

} // namespace tamlo
