#include "core/film/filters/filters.h"

#include "core/film/light/source_light_passes.h"
#include "core/image/zcolor.h"

#include <algorithm>
#include <utility>

namespace tamlo {
namespace {

/// How the film sums R, G and B into its answer to grey.
Vec3d greyWeights(const FilmProfile& film)
{
    if (!film.isBW()) return {ZColor::luma[0], ZColor::luma[1], ZColor::luma[2]};
    Vec3d w = film.spectralWeights.value_or(Vec3d{0.3, 0.36, 0.34});
    const double sum = w[0] + w[1] + w[2];
    for (double& v : w) v /= sum;
    return w;
}

} // namespace

Vec3f Filters::cutGains(const FilterProfile& profile, double amount, const FilmProfile& film)
{
    Vec3d g = profile.gains.value_or(Vec3d{1.0, 1.0, 1.0});
    for (double& v : g) v = std::max(v, 1e-6);
    const Vec3d w = greyWeights(film);
    const double y = std::max(w[0] * g[0] + w[1] * g[1] + w[2] * g[2], 1e-9);
    const double a = std::clamp(amount, 0.0, 1.0);
    Vec3f gains{};
    for (std::size_t c = 0; c < 3; ++c) gains[c] = static_cast<float>(1.0 + (g[c] / y - 1.0) * a);
    return gains;
}

RGBImage Filters::applyCut(RGBImage image, const FilterProfile& profile, double amount,
                           const FilmProfile& film)
{
    const Vec3f gains = cutGains(profile, amount, film);
    if (gains != Vec3f{1.0f, 1.0f, 1.0f}) in_source(image, {.g = gains, .useG = true});
    return image;
}

} // namespace tamlo
