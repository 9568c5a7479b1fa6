#include "core/process/mat/mat.h"

#include "core/image/render_profiler.h"
#include "core/process/mat/canvas.h"

#include <algorithm>
#include <cmath>

namespace tamlo::Finishing {
namespace {

constexpr float kWashShare = 0.65f, kInkShare = 0.75f;
// The upper cut lies in shade and the lower catches the light; top, bottom, left, right.
constexpr std::array<double, 4> kBevelSides{0.86, 1.10, 0.95, 1.02};
// How much of the board's shadow a side of the opening gets.
constexpr std::array<double, 4> kShadowSides{1.0, 0.30, 0.55, 0.55};
constexpr double kShadow = 0.16;

void mix(Vec3f& v, const Vec3f& colour, float share)
{
    for (std::size_t c = 0; c < 3; ++c) v[c] = v[c] * (1.0f - share) + colour[c] * share;
}

Vec3f unit(Vec3f v)
{
    for (float& channel : v) channel = std::clamp(channel, 0.0f, 1.0f);
    return v;
}

/// Distance of a bevel's opening from the mat's own.
std::int64_t pushedOut(const MatPlan& plan, const MatPlan::Bevel& bevel)
{
    return plan.top - bevel.top;
}

/// Beyond this distance the board is plain.
std::int64_t boardReach(const MatPlan& plan)
{
    std::int64_t reach = plan.rev;
    for (const MatPlan::Bevel& bevel : plan.bevels)
        reach = std::max(reach, pushedOut(plan, bevel) + static_cast<std::int64_t>(bevel.bev));
    if (plan.style == "emboss") // five widths beyond the band's outer hump nothing is left of it
        reach = std::max(reach, static_cast<std::int64_t>(plan.embOff + 6.0 * plan.embWid));
    if (plan.style == "french") reach = std::max({reach, plan.lines.back().last, plan.sq.last});
    return std::clamp<std::int64_t>(reach, 0, std::max(plan.W, plan.H));
}

void cutBevel(Vec3f& v, const MatPlan& plan, const MatPlan::Bevel& bevel, MatSide side, std::int64_t d)
{
    const std::int64_t db = d - pushedOut(plan, bevel);
    if (db <= 0 || static_cast<double>(db) > std::floor(bevel.bev)) return;
    const double depth = 0.86 + 0.20 * std::clamp(static_cast<double>(db) / bevel.bev, 0.0, 1.0);
    const auto light = static_cast<float>(kBevelSides[side] * depth);
    mix(v, {plan.core[0] * light, plan.core[1] * light, plan.core[2] * light}, bevel.strength);
    v = unit(v);
}

/// A band pressed into the board.
void pressBand(Vec3f& v, const MatPlan& plan, std::int64_t d)
{
    if (2 * d <= plan.grip) return;
    const auto hump = [&](double at) {
        const double t = (static_cast<double>(d) - at) / plan.embWid;
        return std::exp(-t * t);
    };
    const double relief = 0.62 * hump(plan.embOff + plan.embWid) - hump(plan.embOff - plan.embWid);
    for (float& channel : v) channel *= static_cast<float>(1.0 + 0.085 * relief);
}

Vec3f boardAt(const MatPlan& plan, MatSide side, std::int64_t d)
{
    Vec3f v = plan.surf;
    if (d <= plan.rev) v = plan.rcol;
    for (const MatPlan::Bevel& bevel : plan.bevels) cutBevel(v, plan, bevel, side, d);
    if (plan.style == "emboss") pressBand(v, plan, d);
    if (plan.style == "french") {
        if (plan.wash.holds(d)) mix(v, plan.washCol, kWashShare);
        for (const PixelRange& line : plan.lines)
            if (line.holds(d)) mix(v, plan.ink, kInkShare);
    }
    return unit(v);
}

std::vector<float> shadeTable(const MatPlan& plan, std::size_t side)
{
    constexpr double kEnd = 6.5; // exp(-6.5^1.6) is below 1e-8
    const double longest = static_cast<double>(std::max(plan.W, plan.H));
    const auto size = static_cast<std::size_t>(std::min(std::ceil(kEnd * plan.shW), longest)) + 1;
    std::vector<float> table(size, 1.0f);
    for (std::size_t depth = 1; depth < size; ++depth) {
        const double fall = std::exp(-std::pow(static_cast<double>(depth) / plan.shW, 1.6));
        table[depth] = static_cast<float>(1.0 - kShadow * fall * kShadowSides[side]);
    }
    return table;
}

} // namespace

MatParams matParams(const MatPlan& plan)
{
    MatParams params;
    params.width = plan.W;
    params.height = plan.H;
    params.sheetX = params.sheetY = plan.m;
    params.top = plan.top;
    params.bot = plan.bot;
    params.left = plan.left;
    params.right = plan.right;
    params.surf = unit(plan.surf);
    const std::int64_t reach = boardReach(plan);
    for (const MatSide side : {kTop, kBottom, kLeft, kRight}) {
        params.board[side].resize(static_cast<std::size_t>(reach) + 1);
        for (std::int64_t d = 1; d <= reach; ++d)
            params.board[side][static_cast<std::size_t>(d)] = boardAt(plan, side, d);
        params.shade[side] = shadeTable(plan, side);
    }
    if (plan.style == "french") {
        params.squareFirst = plan.sq.first;
        params.squareLast = plan.sq.last;
        params.squareKeep = 1.0f - kInkShare;
        for (std::size_t c = 0; c < 3; ++c) params.square[c] = plan.ink[c] * kInkShare;
    }
    return params;
}

RGBImage applyMat(RGBImage image, const RenderOptions& options)
{
    const std::optional<MatPlan> plan = matPlan(image.size(), options);
    if (!plan) return image;
    checkCanvas({plan->W, plan->H});
    const RenderProfiler::Scope booked("mat", plan->W * plan->H);
    return mat_compose(image, matParams(*plan));
}

} // namespace tamlo::Finishing
