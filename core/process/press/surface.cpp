#include "core/process/press/surface.h"

#include "core/image/bands.h"
#include "core/process/noise/noise_fields.h"
#include "core/process/press/sheet_passes.h"
#include "core/profiles/options/seed_stream.h"

#include <algorithm>
#include <cmath>

namespace tamlo {
namespace {

constexpr std::uint32_t kLayer = 44;
constexpr double kFineShare = 0.35; // the finer of the field's two sigmas, of the cell
constexpr double kSteepness = 0.8;  // deviation of the slope ahead of the tanh
constexpr double kLeastAmount = 0.0001;
constexpr double kMostAmount = 100.0;

struct SurfacePlan {
    double amount = 0.0;
    double cellUm = 350.0;
    std::array<double, 2> light{-0.72, -0.7};
};

SurfacePlan planSurface(const SurfaceParams& surface, const RenderOptions& options)
{
    SurfacePlan plan;
    plan.amount = std::min(surface.amount.value_or(0.0) * options.printTexture, kMostAmount);
    if (surface.cellUm.value_or(0.0) > 0.0) plan.cellUm = *surface.cellUm;
    if (surface.light && surface.light->size() >= 2) plan.light = {(*surface.light)[0], (*surface.light)[1]};
    return plan;
}

/// Deviation of the slope, per micrometre and towards a light of length 1, of the unit difference of
/// Gaussians of variances a and b: the second moment of its spectrum over the zeroth.
double slopePerUm(double a, double b)
{
    const double second = 1.0 / (a * a) + 1.0 / (b * b) - 8.0 / ((a + b) * (a + b));
    const double zeroth = 1.0 / a + 1.0 / b - 4.0 / (a + b);
    return std::sqrt(0.5 * second / zeroth);
}

/// Light of the relief at every pixel. The slope is measured in its deviation on a sheet of no pixels, so
/// that a coarse render, which can't resolve the grain, shows less of it.
Plane litRelief(Size size, const SurfacePlan& plan, double pxUm, std::uint32_t seed)
{
    const double cell = std::max(plan.cellUm, 0.8 * pxUm);
    const NoiseField field = NoiseField::difference(size, kFineShare * cell, cell, pxUm, {seed, kLayer});
    const double a = kFineShare * plan.cellUm, b = plan.cellUm;
    const double length = std::hypot(plan.light[0], plan.light[1]);
    const double deviation = std::max(slopePerUm(a * a, b * b) * pxUm * length, 1e-12);
    const double factor = -kSteepness / deviation * field.scale() * differencePixelGain(a, b, pxUm);
    const SurfaceLight light{static_cast<float>(factor * plan.light[0]),
                             static_cast<float>(factor * plan.light[1])};
    Plane lit(size.width, size.height);
    float* to = lit.mutableData();
    parallelBands(size.height, size.width * 4, [&](std::int64_t start, std::int64_t end) {
        NoiseField::Rows rows(field);
        std::array<std::vector<float>, 3> ring;
        const auto held = [&](std::int64_t y) -> std::vector<float>& {
            return ring[static_cast<std::size_t>(y % 3)];
        };
        const auto read = [&](std::int64_t y) {
            const float* row = rows.row(y);
            held(y).assign(row, row + size.width);
        };
        for (std::int64_t y = std::max<std::int64_t>(start - 1, 0); y <= start; ++y) read(y);
        for (std::int64_t y = start; y < end; ++y) {
            const std::int64_t above = std::max<std::int64_t>(y - 1, 0),
                               below = std::min(y + 1, size.height - 1);
            if (below > y) read(below);
            const float apart = static_cast<float>(below - above);
            surface_lit(
                to + y * size.width,
                {held(above).data(), held(y).data(), held(below).data(), apart > 0.0f ? 1.0f / apart : 0.0f},
                size.width, light);
        }
    });
    return lit;
}

} // namespace

RGBImage ReproPrint::applySurface(RGBImage image, const PaperProfile& paper, const RenderOptions& options,
                                  double pxUm)
{
    if (!paper.surface) return image;
    const SurfacePlan plan = planSurface(*paper.surface, options);
    if (!(plan.amount > kLeastAmount)) return image;
    const auto seed =
        static_cast<std::uint32_t>(Seeds::streamRNG(options, Seeds::SeedStream::print).nextUInt64());
    const Plane lit = litRelief(image.size(), plan, std::max(pxUm, 1e-6), seed);
    const float mean = static_cast<float>(planeStats(lit).mean);
    float* pixels = image.mutableData();
    parallelBands(image.height, image.width * 3, [&](std::int64_t start, std::int64_t end) {
        surface_apply(pixels + start * image.width * 3, lit.row(start), (end - start) * image.width,
                      static_cast<float>(plan.amount), mean);
    });
    return image;
}

} // namespace tamlo
