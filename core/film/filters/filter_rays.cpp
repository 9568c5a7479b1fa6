#include "core/film/filters/filters.h"

#include "core/film/filters/filter_passes.h"
#include "core/film/filters/ray_kernel.h"
#include "core/image/chunks.h"
#include "core/image/fft_convolve.h"
#include "core/image/light_above.h"
#include "core/image/resample_bands.h"
#include "core/image/rounding.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

namespace tamlo {
namespace {

constexpr double kNothing = 1e-5;
constexpr double raySigmaProxyPx = 3.0; // the largest ray width that is worked out at full size
constexpr std::array<double, 3> LAMBDA_RGB{0.62, 0.55, 0.45}; // micrometres

struct RaysPlan {
    Size grid; // where the rays are drawn
    RayParams params{};
    std::array<Filters::RayShape, 3> shapes;
};

/// A grid on which a ray is raySigmaProxyPx wide: a wide ray has no fine detail.
Size rayGrid(Size size, double sigma)
{
    constexpr std::int64_t kMinSidePx = 16;
    if (sigma <= raySigmaProxyPx) return size;
    const auto side = [&](std::int64_t n) {
        return std::max(pyRound(static_cast<double>(n) / (sigma / raySigmaProxyPx)), kMinSidePx);
    };
    return {side(size.width), side(size.height)};
}

/// Lines through a source: each gives two rays. The count is held to what an eye could tell apart.
std::int64_t rayFamilies(const FilterProfile& profile)
{
    return std::clamp<std::int64_t>(profile.rays.value_or(4) / 2, 1, 180);
}

RaysPlan planRays(const FilterProfile& profile, double strength, double turnDeg, Size size)
{
    const double longSide = static_cast<double>(std::max(size.width, size.height));
    const double length = std::max(longSide * profile.lengthFrac.value_or(0.14), 3.0);
    const double sigma = std::max(longSide * profile.widthFrac.value_or(0.0015), 0.6);
    const double dispersion = profile.dispersion.value_or(1.0);
    const Vec3d tint = profile.tint.value_or(Vec3d{1.0, 1.0, 1.0});
    RaysPlan plan;
    plan.grid = rayGrid(size, sigma);
    const double gridLong = static_cast<double>(std::max(plan.grid.width, plan.grid.height));
    const double scale = sigma <= raySigmaProxyPx ? 1.0 : gridLong / longSide;
    plan.params.threshold = static_cast<float>(profile.threshold.value_or(0.8));
    for (std::size_t c = 0; c < 3; ++c) {
        const double s = strength * tint[c];
        const bool runs = s > kNothing;
        plan.params.strength[c] = runs ? static_cast<float>(s) : 0.0f;
        plan.params.floor[c] = runs ? 0.0f : std::numeric_limits<float>::lowest();
        const double spread = dispersion * (LAMBDA_RGB[c] / LAMBDA_RGB[1] - 1.0) + 1.0;
        // Light that goes farther than the frame is long leaves it: no kernel need be larger.
        const double lengthPx = std::min(scale * length * spread, 2.0 * gridLong);
        plan.shapes[c] = {lengthPx, rayFamilies(profile), turnDeg + profile.angle.value_or(0.0),
                          profile.decay.value_or(0.32), scale * sigma};
    }
    return plan;
}

} // namespace

float Filters::peak(const RGBImage& image)
{
    const auto peaks = inChunks(image.pixelCount() * 3, [&](std::int64_t start, std::int64_t end) {
        return peak_of(image.data.data() + start, end - start);
    });
    return *std::max_element(peaks.begin(), peaks.end());
}

RGBImage Filters::applyRays(RGBImage image, const FilterProfile& profile, double turnDeg)
{
    const double strength = profile.strength.value_or(0.3);
    if (image.pixelCount() == 0 || !(strength > kNothing)) return image;
    const RaysPlan plan = planRays(profile, strength, turnDeg, image.size());
    if (!(peak(image) > plan.params.threshold)) return image;

    const std::int64_t samples = image.width * 3;
    const RGBImage& seen = image;
    RGBImage light = reduceInBands<RGBImage>(image.size(), plan.grid, [&](std::int64_t y, float* to) {
        light_above(seen.row(y), samples, plan.params.threshold, to);
    });
    {
        FFTConvolve::Workspace workspace;
        for (std::size_t c = 0; c < 3; ++c)
            if (plan.params.strength[c] > 0.0f)
                FFTConvolve::sameChannel(light, static_cast<int>(c), *cachedRayKernel(plan.shapes[c]),
                                         workspace);
    }
    float* pixels = image.mutableData();
    const std::int64_t width = image.width;
    enlargeByRows<RGBImage>(light, image.size(), [&](std::int64_t y, const float* add) {
        ray_apply(pixels + y * samples, add, width, plan.params);
    });
    return image;
}

} // namespace tamlo
