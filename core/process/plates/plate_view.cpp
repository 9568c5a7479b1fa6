#include "core/process/plates/plate_view.h"

#include "core/process/plates/grid_field.h"
#include "core/process/plates/plate_passes.h"

#include <algorithm>
#include <cmath>

namespace tamlo::Plate {
namespace {

constexpr double kPositiveEv = -1.5;
constexpr double kScatter = 0.3;
constexpr double kLeast = 1e-6, kMostLight = 1e6, kMostScatter = 1e3;

Vec3f heldLight(const Vec3d& light)
{
    Vec3f out;
    for (std::size_t c = 0; c < 3; ++c)
        out[c] = static_cast<float>(std::clamp(light[c], -kMostLight, kMostLight));
    return out;
}

PlateViewParams viewOf(const PaperProfile& paper)
{
    return paper.plateView.value_or(PlateViewParams{});
}

} // namespace

double positiveEv(const PaperProfile& paper)
{
    return numberOf(viewOf(paper).positiveEv, kPositiveEv, -100.0, 100.0);
}

Vec3d silverColor(const std::optional<Vec3d>& tint, const PaperProfile& paper)
{
    Vec3d silver = viewOf(paper).silver.value_or(Vec3d{1.0, 1.0, 1.0});
    if (tint)
        for (std::size_t c = 0; c < 3; ++c) silver[c] *= (*tint)[c];
    return silver;
}

DevelopedFilm withoutGlassOnOpaque(DevelopedFilm film, const PaperProfile& paper)
{
    if (paper.substrate == "opaque" && film.film.halation) film.film.halation->glassMm.reset();
    return film;
}

RGBImage viewPlate(const Plane& density, const PaperProfile& paper, const RenderOptions& options,
                   const Range& range, const std::optional<Vec3d>& silverTint)
{
    const PlateViewParams view = viewOf(paper);
    const double k = numberOf(view.scatter, kScatter, 0.0, kMostScatter);
    const double span = std::max(range.dmaxRef - range.dmin, kLeast);
    PlateViewParams32 params;
    params.dmin = static_cast<float>(range.dmin);
    params.scatter = static_cast<float>(k);
    params.norm = static_cast<float>(1.0 / std::max(1.0 - std::pow(10.0, -k * span), kLeast));
    params.base = heldLight(view.base.value_or(Vec3d{}));
    params.silver = heldLight(silverColor(silverTint, paper));
    params.gain = static_cast<float>(std::exp2(std::clamp(-options.printEv, -60.0, 60.0)));
    RGBImage out(density.width, density.height);
    plate_view(out, density, params);
    return out;
}

} // namespace tamlo::Plate
