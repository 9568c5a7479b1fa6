#include "core/process/relief/relief.h"

#include "core/image/bands.h"
#include "core/image/gaussian.h"
#include "core/image/render_profiler.h"
#include "core/process/noise/noise_passes.h"
#include "core/process/relief/relief_passes.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

namespace tamlo {
namespace {

struct ReliefPlan {
    double gain = 0.0;
    double sheen = 0.0;
    double sigmaPx = 0.0;
    double slopeFloor = 0.0;
    ReliefLight light; // times sigmaPx, which puts the slope on a physical length
};

/// Absent where nothing stands up.
std::optional<ReliefPlan> planRelief(const PaperProfile& paper, const RenderOptions& options)
{
    constexpr double kLightX = -0.72, kLightY = -0.7; // from the upper left: taste
    constexpr double kLeastSigmaPx = 0.6, kMost = 1e6;
    if (!paper.relief) return std::nullopt;
    const PaperRelief& relief = *paper.relief;
    const double mult = options.relief.value_or(1.0);
    ReliefPlan plan;
    plan.gain = std::min(relief.amount.value_or(0.0) * mult, kMost);
    plan.sheen = std::min(relief.sheen.value_or(0.0) * mult, kMost);
    if (!(plan.gain > 1e-4)) plan.gain = 0.0;
    if (!(plan.sheen > 1e-5)) plan.sheen = 0.0;
    if (plan.gain == 0.0 && plan.sheen == 0.0) return std::nullopt;
    plan.sigmaPx =
        std::max(relief.smoothMm.value_or(0.15) * 1000.0 / std::max(options.printPxUm, 1e-6), kLeastSigmaPx);
    plan.slopeFloor = relief.slopeFloor.value_or(0.012);
    const std::vector<double> light = relief.light.value_or(std::vector<double>{kLightX, kLightY});
    plan.light.x = static_cast<float>((light.empty() ? kLightX : light[0]) * plan.sigmaPx);
    plan.light.y = static_cast<float>((light.size() < 2 ? kLightY : light[1]) * plan.sigmaPx);
    return plan;
}

ReliefRows rowsAround(const Plane& height, std::int64_t y)
{
    const std::int64_t above = std::max<std::int64_t>(y - 1, 0), below = std::min(y + 1, height.height - 1);
    return {height.row(above), height.row(y), height.row(below), below - above == 2 ? 0.5f : 1.0f,
            height.width};
}

/// Sums of two quantities over the picture, row by row in row order.
template <typename RowSums>
RunSums sumRows(Size size, RowSums&& rowSums)
{
    std::vector<RunSums> rows(static_cast<std::size_t>(size.height));
    parallelBands(size.height, size.width * 4, [&](std::int64_t start, std::int64_t end) {
        std::vector<float> lit(static_cast<std::size_t>(size.width)), weight(lit.size());
        for (std::int64_t y = start; y < end; ++y)
            rows[static_cast<std::size_t>(y)] = rowSums(y, lit.data(), weight.data());
    });
    RunSums total;
    for (const RunSums& row : rows) {
        total.sum += row.sum;
        total.squares += row.squares;
    }
    return total;
}

double litDeviation(const Plane& height, ReliefLight light)
{
    const RunSums total = sumRows(height.size(), [&](std::int64_t y, float* lit, float*) {
        alt_lit(lit, rowsAround(height, y), light);
        return field_sums(lit, height.width, 0.0f);
    });
    const double n = static_cast<double>(height.count());
    const double mean = total.sum / n;
    return std::sqrt(std::max(total.squares / n - mean * mean, 0.0));
}

/// Mean of the modulation under the pigment's weight: what the shading must not add.
double meanLight(const Plane& height, const Plane& amount, ReliefLight light, float invScale)
{
    const RunSums total = sumRows(height.size(), [&](std::int64_t y, float* lit, float* weight) {
        alt_lit(lit, rowsAround(height, y), light);
        relief_weigh(lit, weight, amount.row(y), invScale, height.width);
        return RunSums{field_sums(lit, height.width, 0.0f).sum, field_sums(weight, height.width, 0.0f).sum};
    });
    constexpr double kNoPigment = 1e-6;
    return total.squares > kNoPigment ? total.sum / total.squares : 0.0;
}

} // namespace

RGBImage AltPrint::applyRelief(RGBImage image, const Plane& amount, const PaperProfile& paper,
                               const RenderOptions& options)
{
    const auto plan = planRelief(paper, options);
    if (!plan || image.pixelCount() == 0) return image;
    const RenderProfiler::Scope booked("relief", image.pixelCount());

    Plane height;
    ReliefShade shade;
    shade.sheen = static_cast<float>(plan->sheen);
    if (plan->gain > 0.0) {
        constexpr double kDeviations = 3.0; // where the modulation begins to level off
        height = blurChannel(amount, plan->sigmaPx);
        const double scale = std::max(kDeviations * litDeviation(height, plan->light), plan->slopeFloor);
        shade.gain = static_cast<float>(plan->gain);
        shade.invScale = static_cast<float>(1.0 / std::max(scale, 1e-12));
        shade.bias = static_cast<float>(meanLight(height, amount, plan->light, shade.invScale));
    }
    float* pixels = image.mutableData();
    const std::int64_t width = image.width;
    parallelBands(image.height, width * 3, [&](std::int64_t start, std::int64_t end) {
        std::vector<float> lit(static_cast<std::size_t>(width));
        for (std::int64_t y = start; y < end; ++y) {
            if (shade.gain > 0.0f) alt_lit(lit.data(), rowsAround(height, y), plan->light);
            alt_relief(pixels + y * width * 3, lit.data(), amount.row(y), shade, width);
        }
    });
    return image;
}

} // namespace tamlo
