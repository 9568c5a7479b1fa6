// The mat: its sizes, its grips, and the composed board against a slow twin that decides every pixel by
// itself.
#include "core/image/tamlo_error.h"
#include "core/process/mat/canvas.h"
#include "core/process/mat/mat.h"
#include "tests/support/pictures.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tamlo::test {
namespace {

using namespace Finishing;

RenderOptions matOptions(const char* style, double printPxUm)
{
    RenderOptions options;
    options.mat = style;
    options.printPxUm = printPxUm;
    options.matColor = "cream";
    options.matCore = "white";
    options.matRevealColor = "grey";
    return options;
}

using Triple = std::array<double, 3>;

Triple mixed(Triple v, const Vec3f& colour, double k)
{
    for (std::size_t c = 0; c < 3; ++c) v[c] = v[c] * (1.0 - k) + static_cast<double>(colour[c]) * k;
    return v;
}

/// The signed distances of a pixel outside an opening: top, bottom, left, right.
std::array<double, 4> outside(std::int64_t x, std::int64_t y, const MatPlan::Bevel& o)
{
    return {static_cast<double>(o.top - y), static_cast<double>(y - o.bot), static_cast<double>(o.left - x),
            static_cast<double>(x - o.right)};
}

/// One pixel of a matted sheet, decided from the opening alone.
Triple slowPixel(const RGBImage& sheet, const MatPlan& p, std::int64_t x, std::int64_t y)
{
    const auto sides = outside(x, y, {p.top, p.bot, p.left, p.right, 0.0, 0.0f});
    const double dy = std::max(sides[0], sides[1]), dx = std::max(sides[2], sides[3]), d = std::max(dy, dx);
    Triple v = mixed({}, p.surf, 1.0);
    if (d <= 0.0) v = mixed({}, sheet.pixel(x - p.m, y - p.m), 1.0);
    if (p.style == "double" && d > 0.0 && d <= static_cast<double>(p.rev)) v = mixed({}, p.rcol, 1.0);
    for (const MatPlan::Bevel& bevel : p.bevels) {
        const auto from = outside(x, y, bevel);
        const auto nearest = std::max_element(from.begin(), from.end());
        const double db = *nearest;
        if (db <= 0.0 || db > std::floor(bevel.bev)) continue;
        const double side =
            std::array{0.86, 1.10, 0.95, 1.02}[static_cast<std::size_t>(nearest - from.begin())];
        Vec3f col = p.core;
        for (float& c : col) c *= static_cast<float>(side * (0.86 + 0.20 * db / bevel.bev));
        v = mixed(v, col, bevel.strength);
        for (double& c : v) c = std::clamp(c, 0.0, 1.0);
    }
    if (d < 0.0) {
        const auto nearest = std::max_element(sides.begin(), sides.end()) - sides.begin();
        const double weight = std::array{1.0, 0.30, 0.55, 0.55}[static_cast<std::size_t>(nearest)];
        for (double& c : v) c *= 1.0 - 0.16 * std::exp(-std::pow(-d / p.shW, 1.6)) * weight;
    }
    if (p.style == "emboss" && d > static_cast<double>(p.grip) / 2.0) {
        const auto hump = [&](double t) { return std::exp(-(t / p.embWid) * (t / p.embWid)); };
        const double a = -hump(d - p.embOff + p.embWid), b = 0.62 * hump(d - p.embOff - p.embWid);
        for (double& c : v) c *= 1.0 + 0.085 * (a + b);
    }
    if (p.style == "french") {
        const auto in = [](double t, const PixelRange& r) {
            return t >= static_cast<double>(r.first) && t <= static_cast<double>(r.last);
        };
        if (in(d, p.wash)) v = mixed(v, p.washCol, 0.65);
        for (const PixelRange& line : p.lines)
            if (in(d, line)) v = mixed(v, p.ink, 0.75);
        if (in(dy, p.sq) && in(dx, p.sq)) v = mixed(v, p.ink, 0.75);
    }
    for (double& c : v) c = std::clamp(c, 0.0, 1.0);
    return v;
}

TEST(Mat, HasItsSizeInMillimetres)
{
    RenderOptions options = matOptions("classic", 100.0);
    EXPECT_EQ(matMargins(options).m, 600);
    EXPECT_EQ(matMargins(options).mb, 672);
    options.matWidthCm = 0.0;
    EXPECT_EQ(matMargins(options).m, 600) << "no width is the usual one";
    options.printPxUm = 1e9;
    EXPECT_EQ(matMargins(options).m, 4);
    options.printPxUm = 0.0;
    EXPECT_LE(matMargins(options).m, 1 << 24) << "whatever the scale";
    EXPECT_FALSE(matPlan({9, 9}, RenderOptions{}).has_value());

    const PixelRange range = openRange(2.0, 5.5);
    EXPECT_EQ(range.first, 3);
    EXPECT_EQ(range.last, 5);
    options = matOptions("double", 1000.0);
    options.matRevealMm = 0.5;
    const auto plan = matPlan({20, 20}, options);
    EXPECT_EQ(plan->rev, 2) << "a reveal is never less";
    EXPECT_EQ(plan->bevels[0].top, plan->top - 2);
    EXPECT_EQ(plan->W, 20 + 120);
    EXPECT_EQ(plan->H, 20 + 60 + 67);
}

TEST(Mat, RefusesACanvasThatNoMachineHolds)
{
    EXPECT_NO_THROW(checkCanvas({32'768, 32'768}));
    EXPECT_THROW(checkCanvas({32'769, 32'768}), TamloError);
    EXPECT_THROW(checkCanvas({std::int64_t{1} << 40, std::int64_t{1} << 40}), TamloError) << "no overflow";
    RenderOptions options = matOptions("classic", 0.5);
    try {
        applyMat(RGBImage(30, 20), options);
        FAIL() << "240 030 pixels square";
    } catch (const TamloError& error) {
        EXPECT_NE(std::string(error.what()).find("240030"), std::string::npos) << error.what();
    }
}

TEST(Mat, GripsCoverClearStripsAndKeepOffThePicture)
{
    using Grips = std::array<std::int64_t, 4>;
    const OptList none, three = std::vector<double>{9, 9, 9};
    const OptList strips = std::vector<double>{50.0, 10.2, 0.0, 100.0};
    const OptList lap = std::vector<double>{100.0, 100.0, 20.0, 101.0};
    EXPECT_EQ(matGrips(10.0, 40, none, none, none), (Grips{40, 40, 40, 40}));
    EXPECT_EQ(matGrips(10.0, 40, strips, none, none), (Grips{58, 40, 40, 108})) << "0.8 mm to spare";
    EXPECT_EQ(matGrips(10.0, 40, none, none, lap), (Grips{40, 40, 17, 40})) << "0.3 mm short of the picture";
    EXPECT_EQ(matGrips(10.0, 40, strips, none, lap), (Grips{58, 40, 17, 100})) << "midway where it is tight";
    const OptList fixed = std::vector<double>{7.5, 0.2, 3.0, 4.0};
    EXPECT_EQ(matGrips(10.0, 40, strips, fixed, lap), (Grips{8, 1, 3, 4}));
    EXPECT_EQ(matGrips(10.0, 40, none, three, three), (Grips{40, 40, 40, 40})) << "three values are none";
}

TEST(Mat, IsWhatEveryPixelDecidesByItself)
{
    for (const char* style : {"classic", "double", "emboss", "french", "no such mat"})
        for (const auto& [size, printPxUm] : {std::pair{Size{61, 40}, 800.0},
                                              {Size{90, 70}, 301.7},
                                              {Size{1, 1}, 5000.0},
                                              {Size{3, 30}, 1000.0}}) {
            SCOPED_TRACE(testing::Message() << style << " " << size.width << " x " << size.height);
            RenderOptions options = matOptions(style, printPxUm);
            options.matWidthCm = 3.0;
            options.matRevealMm = 3.0;
            options.frameWhitePx = std::vector<double>{0.0, 2.0, 5.0, 1.0};
            const RGBImage sheet = noisePicture(size.width, size.height, 3, 6.0f);
            const MatPlan plan = *matPlan(size, options);
            const RGBImage matted = applyMat(sheet, options);
            ASSERT_EQ(matted.size(), (Size{plan.W, plan.H}));
            double worst = 0.0;
            for (std::int64_t y = 0; y < plan.H; ++y)
                for (std::int64_t x = 0; x < plan.W; ++x) {
                    const Triple slow = slowPixel(sheet, plan, x, y);
                    for (std::size_t c = 0; c < 3; ++c)
                        worst =
                            std::max(worst, std::abs(slow[c] - static_cast<double>(matted.pixel(x, y)[c])));
                }
            EXPECT_LT(worst, 1e-6);
        }
}

TEST(Mat, LightComesFromAbove)
{
    const RenderOptions options = matOptions("classic", 100.0);
    const RGBImage even(300, 200, Vec3f{0.5f, 0.5f, 0.5f});
    const MatPlan plan = *matPlan(even.size(), options);
    const RGBImage matted = applyMat(even, options);
    const std::int64_t x = plan.W / 2, y = (plan.top + plan.bot) / 2;
    EXPECT_EQ(matted.pixel(x, plan.top)[0], 0.5f) << "the opening's first row is the print";
    EXPECT_LT(matted.pixel(x, plan.top - 1)[0], 0.9f * matted.pixel(x, plan.bot + 1)[0]);
    EXPECT_LT(matted.pixel(plan.left - 1, y)[0], matted.pixel(plan.right + 1, y)[0]);
    // Each face ends at the corner's diagonal: beside it above is the upper face, below it the left one.
    EXPECT_EQ(matted.pixel(plan.left - 3, plan.top - 4)[0], matted.pixel(x, plan.top - 4)[0]);
    EXPECT_EQ(matted.pixel(plan.left - 4, plan.top - 3)[0], matted.pixel(plan.left - 4, y)[0]);
    const auto shadow = [&](std::int64_t px, std::int64_t py) {
        return 1.0f - matted.pixel(px, py)[0] / 0.5f;
    };
    EXPECT_NEAR(shadow(x, plan.top + 1), 0.16f, 0.002f);
    EXPECT_NEAR(shadow(x, plan.bot - 1), 0.048f, 0.001f);
    EXPECT_NEAR(shadow(plan.left + 1, y), 0.088f, 0.001f);
    EXPECT_LT(shadow(x, y), 0.002f) << "four and a half reaches away";
    expectSameForAnyWorkers([&] { return applyMat(even, options); });
}

} // namespace
} // namespace tamlo::test
