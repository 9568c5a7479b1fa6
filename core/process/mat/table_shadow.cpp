#include "core/process/mat/table_shadow.h"

#include "core/image/gaussian.h"
#include "core/image/resample.h"
#include "core/process/mat/table_passes.h"

#include <algorithm>
#include <cmath>

namespace tamlo::Table {
namespace {

/// Below this sigma a shadow keeps its edge.
constexpr double kSharpPx = 0.3;
constexpr double kFarthestPx = 16'777'216.0; // shifts must stay whole numbers

Plane blurred(Plane plane, double sigmaPx)
{
    return sigmaPx < kSharpPx ? plane : blurChannel(std::move(plane), sigmaPx);
}

/// One axis of blurChannel on the canvas.
class LineBlur {
public:
    LineBlur(Size canvas, double sigmaPx)
        : sigma_(sigmaPx < kSharpPx ? 0.0 : sigmaPx), isWide_(sigma_ > kDirectBlurSigmaPx)
    {
        if (isWide_) reduced_ = planReducedBlur(canvas, sigma_);
    }

    Plane across(Plane line) const { return along(std::move(line), reduced_.small.width); }
    Plane down(Plane line) const { return along(std::move(line), reduced_.small.height); }

private:
    Plane along(Plane line, std::int64_t reduced) const
    {
        if (!isWide_) return gaussianFilter1D(std::move(line), sigma_, FilterAxis::x, EdgeMode::nearest);
        const std::int64_t n = line.width;
        line = pilResize(line, reduced, 1, Resampling::bilinear);
        line = gaussianFilter1D(std::move(line), reduced_.sigmaPx, FilterAxis::x, EdgeMode::nearest);
        return pilResize(line, n, 1, Resampling::bilinear);
    }

    double sigma_;
    bool isWide_;
    ReducedBlur reduced_;
};

/// A line of n pixels, 1 over `length` of them from `first`, moved by shift.
Plane litLine(std::int64_t n, std::int64_t first, std::int64_t length, double shift)
{
    const auto whole = static_cast<std::int64_t>(std::floor(shift));
    const auto part = static_cast<float>(shift - static_cast<double>(whole));
    const auto lit = [&](std::int64_t i) {
        return i >= 0 && i < n && i >= first && i < first + length ? 1.0f : 0.0f;
    };
    Plane line(n, 1);
    float* out = line.mutableData();
    for (std::int64_t i = 0; i < n; ++i) out[i] = lit(i - whole) * (1.0f - part) + lit(i - whole - 1) * part;
    return line;
}

std::vector<float> values(const Plane& line)
{
    return {line.data.begin(), line.data.end()};
}

} // namespace

ShadowPlan shadowPlan(double thicknessPx, const Vec3d& light)
{
    const double horizontal = std::hypot(light[0], light[1]);
    const double length = std::min(thicknessPx, kFarthestPx) * horizontal / light[2];
    ShadowPlan plan;
    if (horizontal > 0.0) {
        plan.dy = -light[1] / horizontal * length;
        plan.dx = -light[0] / horizontal * length;
    }
    plan.sAo = thicknessPx;
    plan.sDir = 0.8 * thicknessPx;
    return plan;
}

ShiftPlan shiftPlan(double dy, double dx)
{
    ShiftPlan plan;
    plan.iy = static_cast<std::int64_t>(std::floor(dy));
    plan.ix = static_cast<std::int64_t>(std::floor(dx));
    const double fy = dy - std::floor(dy), fx = dx - std::floor(dx);
    plan.w00 = (1.0 - fy) * (1.0 - fx);
    plan.w01 = (1.0 - fy) * fx;
    plan.w10 = fy * (1.0 - fx);
    plan.w11 = fy * fx;
    return plan;
}

Plane dropShadow(const Plane& coverage, double thicknessPx, const Vec3d& light)
{
    const ShadowPlan plan = shadowPlan(thicknessPx, light);
    Plane cast = blurred(shifted(coverage, shiftPlan(plan.dy, plan.dx)), plan.sDir);
    combine_shadows(cast, blurred(coverage, plan.sAo));
    return cast;
}

RectShadow rectShadow(Size canvas, Size sheet, std::int64_t x, std::int64_t y, double thicknessPx,
                      const Vec3d& light)
{
    const ShadowPlan plan = shadowPlan(thicknessPx, light);
    const LineBlur ao(canvas, plan.sAo), dir(canvas, plan.sDir);
    RectShadow shadow;
    shadow.aoX = values(ao.across(litLine(canvas.width, x, sheet.width, 0.0)));
    shadow.aoY = values(ao.down(litLine(canvas.height, y, sheet.height, 0.0)));
    shadow.dirX = values(dir.across(litLine(canvas.width, x, sheet.width, plan.dx)));
    shadow.dirY = values(dir.down(litLine(canvas.height, y, sheet.height, plan.dy)));
    return shadow;
}

} // namespace tamlo::Table
