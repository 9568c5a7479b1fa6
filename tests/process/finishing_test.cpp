// Pressed marks: their light, their place, and the strips they are pressed in against heights of the whole
// sheet.
#include "core/image/gaussian.h"
#include "core/process/finishing/finish_sheet.h"
#include "core/process/finishing/sheet_finish.h"
#include "core/process/finishing/sheet_marks_passes.h"
#include "core/process/mat/mat_plan.h"
#include "tests/support/pictures.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

namespace tamlo::test {
namespace {

using namespace Finishing;

/// A sheet with margins of sideMm, at ppmm pixels a millimetre.
RenderOptions sheetOptions(double ppmm, double sideMm)
{
    RenderOptions options;
    options.printPxUm = 1000.0 / ppmm;
    options.borderPx = sideMm * ppmm;
    return options;
}

RGBImage evenSheet(std::int64_t w, std::int64_t h)
{
    return RGBImage(w, h, Vec3f{0.5f, 0.5f, 0.5f});
}

struct Light {
    double darkest = 2.0, brightest = 0.0, mean = 0.0;
};

Light lightOf(const RGBImage& image)
{
    Light light;
    for (std::int64_t i = 0; i < image.pixelCount(); ++i) {
        const double k = static_cast<double>(image.data[static_cast<std::size_t>(i) * 3]) / 0.5;
        light.darkest = std::min(light.darkest, k);
        light.brightest = std::max(light.brightest, k);
        light.mean += k / static_cast<double>(image.pixelCount());
    }
    return light;
}

/// The shading as it is told, from a height at every pixel of the sheet.
void shadeWhole(RGBImage& image, const std::function<double(std::int64_t, std::int64_t)>& height,
                double depth, double feature, const std::vector<double>& offsets)
{
    const ReferenceNorms norms = referenceNorms(offsets, feature);
    const std::int64_t w = image.width, h = image.height;
    float* data = image.mutableData();
    for (std::int64_t y = 0; y < h; ++y)
        for (std::int64_t x = 0; x < w; ++x) {
            const auto slope = [](double a, double here, double b, bool first, bool last) {
                return first ? b - here : last ? here - a : (b - a) / 2.0;
            };
            const bool rim = x == 0 || y == 0 || x == w - 1 || y == h - 1;
            const double here = height(x, y);
            const double l = height(x - 1, y), r = height(x + 1, y), u = height(x, y - 1),
                         d = height(x, y + 1);
            const double g = (slope(l, here, r, x == 0, x == w - 1) + slope(u, here, d, y == 0, y == h - 1)) *
                             std::sqrt(0.5);
            const double lap = rim ? 0.0 : l + r + u + d - 4.0 * here;
            const double k = 1.0 + 0.35 * depth / norms.grad * g - depth / norms.lap * lap;
            for (int c = 0; c < 3; ++c)
                data[(y * w + x) * 3 + c] *= static_cast<float>(std::clamp(k, 0.6, 1.4));
        }
}

double roundedBox(double qx, double qy, double r)
{
    return std::hypot(std::max(qx, 0.0), std::max(qy, 0.0)) + std::min(std::max(qx, qy), 0.0) - r;
}

/// A box whose corner is tighter than its groove is wide: smooth where roundedBox has creases.
double easedBox(double qx, double qy, double r, double ease)
{
    const auto above = [&](double q) { return 0.5 * (q + std::hypot(q, ease)); };
    const double in = std::pow(std::pow(above(-qx), -4.0) + std::pow(above(-qy), -4.0), -0.25);
    return std::hypot(above(qx), above(qy)) - in - r;
}

double grooves(double x, double y, const SheetPlan::Line& line)
{
    double height = 0.0;
    for (const SheetPlan::LineStep& g : line.geo) {
        const auto groove = [&](double d) { height -= std::exp(-(d / line.lw) * (d / line.lw)); };
        if (line.tb) {
            const double seg = std::max(std::abs(x - g.cx) - g.half, 0.0);
            groove(std::hypot(seg, y - g.top));
            groove(std::hypot(seg, y - g.bot));
        } else {
            const double qx = std::abs(x - g.cx) - g.bx, qy = std::abs(y - g.cy) - g.by;
            const bool eased = g.r < 3.0f * line.lw && std::min(qx, qy) > -6.0 * line.lw;
            groove(eased ? easedBox(qx, qy, g.r, 0.5 * line.lw) : roundedBox(qx, qy, g.r));
        }
    }
    return height;
}

double stampRelief(double x, double y, const SheetPlan::Stamp& s)
{
    const double frame = roundedBox(std::abs(x - s.cx) - s.hx, std::abs(y - s.cy) - s.hy, s.r) / s.lw;
    const double dot = (std::hypot(x - s.gx, y - s.gy0) - s.gr) / s.lw;
    const double v = std::exp(-frame * frame) + 0.5 * (1.0 - std::tanh(dot)) + 0.9 * std::exp(-dot * dot);
    return 1.4 * std::tanh(v / 1.4);
}

TEST(Finishing, NormsAreThoseOfAGaussianGroove)
{
    // exp(-t²): steepest sqrt(2 / e), most curved 2 at the bottom.
    const double one[] = {0.0};
    const ReferenceNorms norms = referenceNorms(one, 50.0);
    EXPECT_NEAR(norms.grad, std::sqrt(2.0 / M_E) / 50.0, 1e-5);
    EXPECT_NEAR(norms.lap, 2.0 / 2500.0, 1e-6);
    EXPECT_FALSE(planShade(0.1, 1e12, one).has_value()) << "too wide to have a slope";
}

TEST(Finishing, MarksShowAsMuchAtEveryScale)
{
    for (const double ppmm : {2.0, 5.0, 10.0, 20.0, 40.0}) {
        SCOPED_TRACE(ppmm);
        const auto px = [&](double mm) { return static_cast<std::int64_t>(mm * ppmm); };
        RenderOptions options = sheetOptions(ppmm, 15.0);
        const auto pressed = [&] {
            RGBImage sheet = evenSheet(px(80.0), px(70.0));
            applySheetFinish(sheet, options);
            return lightOf(sheet);
        };
        options.embossLine = "single";
        const Light line = pressed();
        EXPECT_NEAR(line.darkest, 0.875, 0.025);
        EXPECT_NEAR(line.brightest, 1.105, 0.025);
        EXPECT_NEAR(line.mean, 1.0, 1e-5);
        options.embossLine = "double";
        EXPECT_NEAR(pressed().brightest, 1.137, 0.015) << "the crease of its inner corners grows no more";
        options.embossLine.reset();
        options.blindStamp = true;
        const Light stamp = pressed();
        EXPECT_NEAR(stamp.brightest, 1.155, 0.02) << "its crease grows no more";
        EXPECT_NEAR(stamp.mean, 1.0, 3e-4);
        options.stampText = "ATELIER";
        options.stampSize = "xl";
        const SheetPlan plan = sheetPlan(px(80.0), px(70.0), options);
        RGBImage sheet = evenSheet(px(80.0), px(70.0));
        const double one[] = {0.0};
        press_text(sheet, *plan.text, *planShade(stampTextDepth, plan.text->feature, one), 0.0f);
        const Light type = lightOf(sheet);
        const double coarse = ppmm < 5.0 ? 0.03 : 0.0; // letters of a few pixels
        EXPECT_NEAR(type.darkest, 0.90, 0.04 + coarse);
        EXPECT_NEAR(type.brightest, 1.105, 0.035 + coarse);
        EXPECT_NEAR(type.mean, 1.0, 3e-4);
    }
}

TEST(Finishing, LightComesFromTheUpperLeft)
{
    const SheetRect all{0, 0, 81, 81};
    const auto dome = [](std::int64_t y, std::int64_t x0, std::int64_t x1, float* out) {
        for (std::int64_t x = x0; x < x1; ++x)
            *out++ = static_cast<float>(std::exp(-(std::pow(x - 40.0, 2) + std::pow(y - 40.0, 2)) / 200.0));
    };
    RGBImage sheet = evenSheet(81, 81);
    const double one[] = {0.0};
    height_shade(sheet, all, *planShade(0.16, 14.0, one), dome);
    EXPECT_GT(sheet.pixel(33, 33)[0], sheet.pixel(47, 47)[0] * 1.05f) << "raised";
    EXPECT_NEAR(sheet.pixel(33, 47)[0], sheet.pixel(47, 33)[0], 1e-6f);
}

TEST(Finishing, StripsPressWhatTheWholeSheetWould)
{
    struct Case {
        const char* line;
        double ppmm, sideMm;
        Size size;
    };
    for (const Case& c : {Case{"double", 4.0, 16.0, {300, 260}}, Case{"single", 2.2, 10.0, {180, 150}},
                          Case{"double_tb", 5.0, 12.0, {280, 241}}, Case{"single_tb", 1.0, 6.0, {70, 60}},
                          Case{"double", 3.0, 6.5, {61, 50}}}) {
        SCOPED_TRACE(testing::Message() << c.line << " at " << c.ppmm);
        RenderOptions options = sheetOptions(c.ppmm, c.sideMm);
        options.embossLine = c.line;
        options.blindStamp = true;
        options.stampText = "Ag";
        const SheetPlan plan = sheetPlan(c.size.width, c.size.height, options);
        ASSERT_TRUE(plan.line && plan.stamp && plan.text);
        RGBImage fast = evenSheet(c.size.width, c.size.height), slow = fast;
        applySheetFinish(fast, options);

        Plane reserve(c.size.width, c.size.height);
        for (const SheetRect& r : plan.reserve)
            for (std::int64_t y = r.y0; y < r.y1; ++y)
                std::fill(reserve.mutableData() + y * reserve.width + r.x0,
                          reserve.mutableData() + y * reserve.width + r.x1, 1.0f);
        reserve = gaussianFilter(std::move(reserve), plan.reserveSigma, EdgeMode::nearest);
        const auto clear = [&](std::int64_t x, std::int64_t y) {
            const bool on = x >= 0 && y >= 0 && x < reserve.width && y < reserve.height;
            return on ? 1.0 - static_cast<double>(reserve.at(x, y)) : 0.0;
        };
        shadeWhole(slow,
                   [&](auto x, auto y) {
                       return grooves(static_cast<double>(x), static_cast<double>(y), *plan.line) *
                              clear(x, y);
                   },
                   lineDepth, plan.line->lw, {plan.line->steps.begin(), plan.line->steps.end()});
        shadeWhole(slow,
                   [&](auto x, auto y) {
                       return stampRelief(static_cast<double>(x), static_cast<double>(y), *plan.stamp);
                   },
                   stampDepth, plan.stamp->lw, {0.0});
        const SheetPlan::Text& text = *plan.text;
        const auto mask = [&](std::int64_t x, std::int64_t y) {
            const std::int64_t i = x - text.x0, j = y - text.y0;
            const bool on = i >= 0 && j >= 0 && i < text.tile.w && j < text.tile.h;
            return on ? static_cast<double>(text.tile.mask.at(i, j)) : 0.0;
        };
        shadeWhole(slow, [&](auto x, auto y) { return -mask(x, y); }, stampTextDepth, text.feature, {0.0});
        for (std::int64_t i = 0; i < slow.pixelCount(); ++i)
            for (int k = 0; k < 3; ++k)
                slow.mutableData()[i * 3 + k] *=
                    static_cast<float>(1.0 - stampTextTint * mask(i % slow.width, i / slow.width));
        EXPECT_LT(worstDifference(fast.data, slow.data), 2e-5f);
        expectSameForAnyWorkers([&] {
            RGBImage sheet = evenSheet(c.size.width, c.size.height);
            applySheetFinish(sheet, options);
            return sheet;
        });
    }
}

TEST(Finishing, MarksKnowTheirPlace)
{
    RenderOptions options = sheetOptions(10.0, 16.0);
    options.embossLine = "double";
    options.blindStamp = true;
    options.stampText = "Studio";
    SheetPlan plan = sheetPlan(1000, 800, options);
    EXPECT_NEAR(plan.stamp->cy, 799.0 - 80.0, 1e-3) << "the middle of the bottom band";
    EXPECT_NEAR(plan.line->geo[1].top - plan.line->geo[0].top, 16.0, 1e-3) << "1.6 mm apart";
    EXPECT_NEAR(plan.line->geo[0].r - plan.line->geo[1].r, 16.0, 1e-3) << "concentric";
    ASSERT_EQ(plan.reserve.size(), 2u);
    const double left = plan.stamp->cx - 45.0;
    const double right = static_cast<double>(plan.text->x0 + plan.text->tile.w - plan.text->tile.pad);
    EXPECT_NEAR((left + right) / 2.0, 500.0, 1.0) << "the group is centred";

    options.borderPx = 50.0;
    plan = sheetPlan(1000, 800, options);
    EXPECT_FALSE(plan.line) << "5 mm are no room for a line";
    EXPECT_NEAR(plan.stamp->cy, 799.0 - 80.0, 1e-3) << "8 mm above the edge";
    options.borderPx = 60.0;
    EXPECT_TRUE(sheetPlan(1000, 800, options).line);
    options.plateInsetPx = 55.0;
    EXPECT_FALSE(sheetPlan(1000, 800, options).line) << "the plate mark's own margin counts";

    options.stampSize = "xl";
    EXPECT_NEAR(stampTextCapMm(options, 6.0), 3.0, 1e-12);
    EXPECT_NEAR(stampTextCapMm(options, 0.0), 5.0, 1e-12);
    options.stampSize = "huge";
    EXPECT_NEAR(stampTextCapMm(options, 40.0), 2.6, 1e-12);
    const TextTile tile = rasterize("i", 8, 0.6, {500, 500});
    EXPECT_EQ(tile.h - 2 * tile.pad, 14);
    EXPECT_EQ(tile.w - 2 * tile.pad, 7) << "2.2 pixels of letter, rounded up, and 4";
}

TEST(Finishing, DecidesWhatIsPressedAndWhatLiesOnTheTable)
{
    RenderOptions options = sheetOptions(10.0, 2.0);
    options.mat = "classic";
    options.blindStamp = true;
    options.plateInsetPx = 9.0;
    options.table = "oak";
    Pipeline::FinishPlan plan = Pipeline::finishPlan(options, 0.3, false);
    EXPECT_TRUE(plan.matFirst) << "2 mm are no room to press into";
    EXPECT_EQ(plan.embossOpts.borderPx, 600.0);
    EXPECT_EQ(plan.embossOpts.borderPxBottom, 672.0);
    EXPECT_EQ(plan.embossOpts.plateInsetPx, 0.0);
    EXPECT_EQ(plan.table->kind, "grey");
    EXPECT_EQ(plan.table->thicknessMm, 1.6) << "the board lies on it";
    EXPECT_FALSE(plan.table->useMask);
    options.borderPx = 40.0;
    EXPECT_FALSE(Pipeline::finishPlan(options, 0.3, false).matFirst);
    EXPECT_FALSE(Pipeline::finishPlan(options, 0.3, true).table);
    options.mat = "none";
    plan = Pipeline::finishPlan(options, 0.3, false);
    EXPECT_EQ(plan.table->thicknessMm, 0.3);
    EXPECT_TRUE(plan.table->useMask);

    // The table's dice change the table alone.
    options.tableWidthCm = 0.4;
    const auto finished = [&](std::int64_t rolled) {
        options.seedVariants = SeedVariants{{"table", rolled}};
        return Pipeline::finishSheet(evenSheet(200, 150), options, 0.25, std::nullopt, false);
    };
    const RGBImage once = finished(0), again = finished(1);
    EXPECT_NE(once.pixel(0, 0), again.pixel(0, 0));
    EXPECT_EQ(once.pixel(100, 150), again.pixel(100, 150));
}

/// Means of blocks of `side` pixels in the green channel.
Plane blockMeans(const RGBImage& image, std::int64_t side)
{
    Plane means(image.width / side, image.height / side);
    float* to = means.mutableData();
    for (std::int64_t y = 0; y < means.height * side; ++y)
        for (std::int64_t x = 0; x < means.width * side; ++x)
            to[(y / side) * means.width + x / side] += image.pixel(x, y)[1] / static_cast<float>(side * side);
    return means;
}

// A preview and a file three times its size, seen from the same distance.
TEST(Finishing, APreviewShowsTheFile)
{
    for (const char* table : {"grey", "linen"}) {
        const auto finished = [&](double ppmm) {
            RenderOptions options = sheetOptions(ppmm, 12.0);
            options.embossLine = "double";
            options.blindStamp = true;
            options.stampText = "Atelier";
            options.mat = "double";
            options.matWidthCm = 2.0;
            options.matBottomWeight = 1.2;
            options.table = table;
            options.tableWidthCm = 1.5;
            const auto px = [&](double mm) { return static_cast<std::int64_t>(mm * ppmm); };
            return Pipeline::finishSheet(evenSheet(px(100.0), px(80.0)), options, 0.25, std::nullopt, false);
        };
        const RGBImage preview = finished(4.0), file = finished(12.0);
        ASSERT_EQ(file.size(), (Size{preview.width * 3, preview.height * 3}));
        const Plane small = blockMeans(preview, 8), large = blockMeans(file, 24);
        double mean = 0.0;
        for (std::size_t i = 0; i < small.data.size(); ++i)
            mean += std::abs(static_cast<double>(small.data[i] - large.data[i])) /
                    static_cast<double>(small.count());
        EXPECT_LT(mean, 0.004) << table;
    }
}

// A type too soft to be drawn pixel by pixel: in light the same as one a hair less soft.
TEST(Finishing, CoarseTypeIsAsSmoothAsFine)
{
    const auto curvature = [](const Plane& mask) {
        double most = 0.0;
        for (std::int64_t y = 1; y + 1 < mask.height; ++y)
            for (std::int64_t x = 1; x + 1 < mask.width; ++x)
                most = std::max(most, std::abs(4.0 * mask.at(x, y) - mask.at(x - 1, y) - mask.at(x + 1, y) -
                                               mask.at(x, y - 1) - mask.at(x, y + 1)));
        return most;
    };
    const TextTile fine = rasterize("Ag", 400, 47.9, {2000, 2000});
    const TextTile coarse = rasterize("Ag", 400, 48.0, {2000, 2000});
    ASSERT_EQ(fine.h, coarse.h);
    double worst = 0.0;
    for (std::int64_t y = 0; y < fine.mask.height; ++y)
        for (std::int64_t x = 0; x < fine.mask.width; ++x)
            worst = std::max(worst, std::abs(static_cast<double>(fine.mask.at(x, y) - coarse.mask.at(x, y))));
    EXPECT_LT(worst, 0.004);
    EXPECT_NEAR(curvature(coarse.mask) / curvature(fine.mask), 1.0, 0.05);
}

TEST(Finishing, BoundsWhatNoSheetCanHold)
{
    std::string endless;
    for (int i = 0; i < 10'000; ++i) endless += "Ж";
    const std::string texts[] = {endless,
                                 "\U0001F600\U0001F468\u200D\U0001F469",
                                 "\u05E9\u05DC\u05D5\u05DD",
                                 std::string("\0\x07\n\t", 4),
                                 "\u202E\u2066",
                                 "\xff\xc0"};
    const Size sizes[] = {{1, 1}, {30'000, 1}, {1, 3000}, {300, 200}};
    for (const std::string& text : texts)
        for (const Size size : sizes)
            for (const double ppmm : {0.001, 6.0, 100.0}) {
                if (ppmm > 6.0 && &text != &texts[0]) continue;
                RenderOptions options = sheetOptions(ppmm, ppmm > 6.0 ? 0.0 : 20.0);
                options.embossLine = "double";
                options.blindStamp = true;
                options.stampText = text;
                options.stampSize = "xl";
                RGBImage sheet = evenSheet(size.width, size.height);
                applySheetFinish(sheet, options);
                const Light light = lightOf(sheet);
                EXPECT_GE(light.darkest, 0.6 * 0.6 * 0.6 * 0.84 - 1e-4) << size.width << " " << ppmm;
                EXPECT_LE(light.brightest, 1.4 * 1.4 * 1.4 + 1e-4);
            }
}

} // namespace
} // namespace tamlo::test
