#include "core/process/mat/mat_plan.h"

#include "core/image/rounding.h"

#include <algorithm>
#include <cmath>

namespace tamlo::Finishing {
namespace {

struct NamedColor {
    std::string_view name;
    Vec3f rgb;
};

// Linear RGB; taste, after museum boards under daylight.
constexpr std::array<NamedColor, 4> matColors{{{"white", {0.8626f, 0.8317f, 0.7678f}},
                                               {"cream", {0.8073f, 0.7162f, 0.5462f}},
                                               {"grey", {0.3918f, 0.3711f, 0.3327f}},
                                               {"black", {0.0151f, 0.0130f, 0.0110f}}}};
constexpr std::array<NamedColor, 2> coreColors{
    {{"white", {0.9136f, 0.8794f, 0.8073f}}, {"cream", {0.8626f, 0.7678f, 0.5771f}}}};

/// No board is wider, whatever the scale: sizes must stay whole numbers.
constexpr double kWidestPx = 16'777'216.0;

constexpr double kUsualWidthMm = 60.0;

template <typename Colors>
Vec3f colorOf(const Colors& colors, const OptText& name, std::string_view fallback)
{
    const auto named = [&](std::string_view wanted) {
        return std::find_if(colors.begin(), colors.end(), [&](const auto& c) { return c.name == wanted; });
    };
    const auto found = named(name.value_or(""));
    return found != colors.end() ? found->rgb : named(fallback)->rgb;
}

std::int64_t roundedPx(double px)
{
    return roundAway(std::clamp(px, 0.0, kWidestPx));
}

double pxPerMm(const RenderOptions& options)
{
    return 1000.0 / std::max(options.printPxUm, 1e-6);
}

bool hasFour(const OptList& list)
{
    return list && list->size() == 4;
}

double bevelPx(double mm, double ppmm)
{
    constexpr double kThinnestPx = 1.4; // narrower than this a bevel would vanish between rows
    return std::max(mm * ppmm, kThinnestPx);
}

/// The boards of the opening: the upper one stands back by the reveal.
void placeBevels(MatPlan& plan, const RenderOptions& options, double ppmm)
{
    constexpr double kInnerBevelMm = 0.55;
    const auto pushedOut = [&](std::int64_t by, double bev, float strength) {
        plan.bevels.push_back({plan.top - by, plan.bot + by, plan.left - by, plan.right + by, bev, strength});
    };
    if (plan.style != "double") return pushedOut(0, bevelPx(options.matBevelMm, ppmm), 1.0f);
    plan.rev = std::max<std::int64_t>(roundedPx(options.matRevealMm * ppmm), 2);
    plan.rcol = colorOf(matColors, options.matRevealColor, "black");
    pushedOut(plan.rev, bevelPx(options.matBevelMm, ppmm), 1.0f);
    pushedOut(0, bevelPx(kInnerBevelMm, ppmm), 0.8f);
}

/// The wash band and the ruled lines of a French mat; taste, after framers' manuals.
void ruleFrench(MatPlan& plan, double ppmm)
{
    constexpr std::array<double, 4> kLinesMm{5.0, 7.0, 15.0, 17.5};
    plan.wash = openRange(7.0 * ppmm, 15.0 * ppmm);
    const double half = std::max(0.28 * ppmm, 0.8);
    for (std::size_t i = 0; i < kLinesMm.size(); ++i)
        plan.lines[i] = openRange(kLinesMm[i] * ppmm - half, kLinesMm[i] * ppmm + half);
    const double q = std::max(1.2 * ppmm, 2.0);
    plan.sq = openRange(kLinesMm.back() * ppmm - q, kLinesMm.back() * ppmm + q);
    constexpr Vec3f kWashTint{0.985f, 0.965f, 0.905f};
    for (std::size_t c = 0; c < 3; ++c) {
        plan.ink[c] = plan.surf[c] * 0.42f;
        plan.washCol[c] = plan.surf[c] * kWashTint[c];
    }
}

} // namespace

bool wantsMat(const RenderOptions& options)
{
    return options.mat && !options.mat->empty() && *options.mat != "none";
}

MatMargins matMargins(const RenderOptions& options)
{
    const double widthMm = options.matWidthCm > 0.0 ? options.matWidthCm * 10.0 : kUsualWidthMm;
    MatMargins margins;
    margins.m = std::max<std::int64_t>(roundedPx(widthMm * pxPerMm(options)), 4);
    margins.mb = roundedPx(options.matBottomWeight * static_cast<double>(margins.m));
    return margins;
}

PixelRange openRange(double lo, double hi)
{
    return {static_cast<std::int64_t>(std::floor(std::min(lo, kWidestPx))) + 1,
            static_cast<std::int64_t>(std::ceil(std::min(hi, kWidestPx))) - 1};
}

std::array<std::int64_t, 4> matGrips(double ppmm, std::int64_t grip, const OptList& frameWhite,
                                     const OptList& fixed, const OptList& lap)
{
    constexpr double kOverlapMm = 0.8; // board beyond a clear strip
    constexpr double kShortMm = 0.3;   // and short of the picture
    const auto overlap = static_cast<double>(std::max<std::int64_t>(roundedPx(kOverlapMm * ppmm), 1));
    std::array<std::int64_t, 4> grips{};
    for (std::size_t side = 0; side < 4; ++side) {
        double g = static_cast<double>(grip);
        if (hasFour(fixed)) {
            g = std::rint((*fixed)[side]);
        } else {
            const double clear = hasFour(frameWhite) ? (*frameWhite)[side] : 0.0;
            if (hasFour(frameWhite)) g = std::max(std::ceil(clear) + overlap, g);
            if (hasFour(lap)) {
                const double last = (*lap)[side] - std::max(kShortMm * ppmm, 1.0);
                g = clear + 0.5 < last ? std::min(last, std::max(clear, g))
                                       : std::rint(((*lap)[side] + clear) / 2.0);
            }
        }
        grips[side] = static_cast<std::int64_t>(std::clamp(g, 1.0, kWidestPx));
    }
    return grips;
}

std::optional<MatPlan> matPlan(Size sheet, const RenderOptions& options)
{
    if (!wantsMat(options)) return std::nullopt;
    const double ppmm = pxPerMm(options);
    MatPlan plan;
    plan.style = *options.mat;
    plan.m = matMargins(options).m;
    plan.mb = matMargins(options).mb;
    plan.W = sheet.width + 2 * plan.m;
    plan.H = sheet.height + plan.m + plan.mb;
    plan.grip = std::max<std::int64_t>(roundedPx(options.matGripMm * ppmm), 1);
    const auto grips =
        matGrips(ppmm, plan.grip, options.frameWhitePx, options.matGripsPx, options.picInsetPx);
    plan.top = plan.m + grips[kTop];
    plan.bot = plan.m + sheet.height - 1 - grips[kBottom];
    plan.left = plan.m + grips[kLeft];
    plan.right = plan.m + sheet.width - 1 - grips[kRight];
    plan.surf = colorOf(matColors, options.matColor, "white");
    plan.core = colorOf(coreColors, options.matCore, "white");
    placeBevels(plan, options, ppmm);
    plan.shW = std::max(2.2 * ppmm, 1.5);
    plan.embOff = 9.0 * ppmm;
    plan.embWid = std::max(1.1 * ppmm, 1.0);
    ruleFrench(plan, ppmm);
    return plan;
}

} // namespace tamlo::Finishing
