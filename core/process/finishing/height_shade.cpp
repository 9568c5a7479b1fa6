#include "core/process/finishing/height_shade.h"

#include <cmath>

namespace tamlo::Finishing {
namespace {

constexpr float kDarkest = 0.6f, kBrightest = 1.4f;
constexpr float kDiagonal = 0.70710678f; // light from the upper left

} // namespace

ReferenceNorms referenceNorms(std::span<const double> offsets, double feature)
{
    double widest = 0.0;
    for (const double o : offsets) widest = std::max(widest, std::abs(o));
    constexpr double kFarthestPx = 1e6;
    const auto reach =
        static_cast<std::int64_t>(std::clamp(std::ceil(3.0 * feature + widest), 3.0, kFarthestPx));
    const auto profile = [&](std::int64_t i) {
        double p = 0.0;
        for (const double o : offsets) {
            const double t = (static_cast<double>(i) - o) / feature;
            p -= std::exp(-t * t);
        }
        return p;
    };
    ReferenceNorms norms;
    double before = profile(-reach), here = profile(-reach + 1);
    for (std::int64_t i = -reach + 1; i < reach; ++i) {
        const double after = profile(i + 1);
        norms.grad = std::max(norms.grad, std::abs(after - before) / 2.0);
        norms.lap = std::max(norms.lap, std::abs(after + before - 2.0 * here));
        before = here;
        here = after;
    }
    return norms;
}

std::optional<ShadeParams> planShade(double depth, double feature, std::span<const double> offsets)
{
    const ReferenceNorms norms = referenceNorms(offsets, feature);
    if (norms.grad <= 1e-9) return std::nullopt;
    ShadeParams params;
    params.dir = static_cast<float>(0.35 * depth / norms.grad);
    params.amb = norms.lap > 1e-9 ? static_cast<float>(depth / norms.lap) : 0.0f;
    return params;
}

void shade_row(float* row, std::int64_t x0, std::int64_t x1, const HeightRows& rows,
               const ShadeParams& params)
{
    const float rowStep = rows.onRim ? 1.0f : 0.5f;
    for (std::int64_t x = x0; x < x1; ++x) {
        const std::int64_t i = x - rows.firstX;
        const bool atSide = x == 0 || x == rows.sheetWidth - 1;
        const std::int64_t left = x == 0 ? i : i - 1, right = x == rows.sheetWidth - 1 ? i : i + 1;
        const float* here = rows.middle;
        const float gx = (here[right] - here[left]) * (atSide ? 1.0f : 0.5f);
        const float gy = (rows.below[i] - rows.above[i]) * rowStep;
        float l = 0.0f;
        if (!atSide && !rows.onRim)
            l = rows.above[i] + rows.below[i] + here[left] + here[right] - 4.0f * here[i];
        // A slope that faces the light, rising to the lower right, is brighter; a hollow is darker.
        const float k =
            std::clamp(1.0f + params.dir * (gx + gy) * kDiagonal - params.amb * l, kDarkest, kBrightest);
        for (int c = 0; c < 3; ++c) row[x * 3 + c] *= k;
    }
}

} // namespace tamlo::Finishing
