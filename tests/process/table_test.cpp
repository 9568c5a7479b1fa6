// The table: shadows by their geometry, one pattern at every scale, and a sheet with and without a mask.
#include "core/image/tamlo_error.h"
#include "core/process/mat/sheet_light.h"
#include "core/process/mat/table.h"
#include "core/process/mat/table_shadow.h"
#include "core/process/mat/table_surface.h"
#include "core/process/noise/noise_fields.h"
#include "tests/support/pictures.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>

namespace tamlo::test {
namespace {

using namespace Table;

Plane surfacePlane(const char* kind, Size canvas, double ppmm)
{
    GrainRNG rng(7);
    const Surface surface(kind, canvas, ppmm, rng);
    Plane values(canvas.width, canvas.height);
    for (std::int64_t y = 0; y < canvas.height; ++y)
        std::copy_n(Surface::Rows(surface).run(y, 0, canvas.width), canvas.width,
                    values.mutableData() + y * canvas.width);
    return values;
}

double correlation(const Plane& a, const Plane& b)
{
    const double ma = a.mean(), mb = b.mean();
    double sum = 0.0;
    for (std::size_t i = 0; i < a.data.size(); ++i) sum += (a.data[i] - ma) * (b.data[i] - mb);
    return sum / static_cast<double>(a.count()) / (a.std() * b.std());
}

TEST(Table, KnowsItsSurfaces)
{
    EXPECT_EQ(kind(std::nullopt), "none");
    EXPECT_EQ(kind("oak"), "grey");
    EXPECT_EQ(kind("walnut"), "grey");
    EXPECT_EQ(kind("linen"), "linen");
    try {
        base("marble");
        FAIL() << "there is no marble";
    } catch (const TamloError& error) {
        EXPECT_NE(std::string(error.what()).find("Стола «marble» нет. Есть: none, white, grey, black, linen"),
                  std::string::npos)
            << error.what();
    }
    EXPECT_EQ(marginPx(0.0, 60.0), 2);
    EXPECT_EQ(marginPx(3.0, 100.0), 300);
}

TEST(TableShadow, FallsToTheLowerRight)
{
    const ShadowPlan plan = shadowPlan(100.0, CardRelief::light);
    EXPECT_NEAR(std::hypot(plan.dx, plan.dy), 58.3, 0.05) << "of the thickness";
    EXPECT_GT(plan.dy, plan.dx);
    EXPECT_GT(plan.dx, 0.0);

    const ShiftPlan shift = shiftPlan(2.25, -1.5);
    EXPECT_EQ(shift.iy, 2);
    EXPECT_EQ(shift.ix, -2);
    EXPECT_NEAR(shift.w00 + shift.w01 + shift.w10 + shift.w11, 1.0, 1e-15);
    EXPECT_NEAR(shift.w11, 0.125, 1e-15);

    const Plane under = dropShadow(Plane(80, 60, 1.0f), 1.0, CardRelief::light);
    EXPECT_NEAR(under.at(40, 30), 1.0 - 0.65 * 0.5, 1e-6);
}

/// The product form against the blurred planes, for blurs that are sharp, direct and reduced.
TEST(TableShadow, OfARectangleIsAProductOfLines)
{
    const Size canvas{150, 131}, sheet{70, 60};
    for (const double thickness : {0.2, 3.7, 35.0}) {
        Plane coverage(canvas.width, canvas.height);
        for (std::int64_t y = 36; y < 96; ++y)
            std::fill_n(coverage.mutableData() + y * canvas.width + 40, sheet.width, 1.0f);
        const Plane planes = dropShadow(coverage, thickness, CardRelief::light);
        const RectShadow lines = rectShadow(canvas, sheet, 40, 36, thickness, CardRelief::light);
        double worst = 0.0;
        for (std::int64_t y = 0; y < canvas.height; ++y)
            for (std::int64_t x = 0; x < canvas.width; ++x) {
                const auto i = static_cast<std::size_t>(x), j = static_cast<std::size_t>(y);
                const double both =
                    (1.0 - 0.35 * lines.aoX[i] * lines.aoY[j]) * (1.0 - 0.5 * lines.dirX[i] * lines.dirY[j]);
                worst = std::max(worst, std::abs(1.0 - both - static_cast<double>(planes.at(x, y))));
            }
        EXPECT_LT(worst, 2e-6) << thickness;
    }
}

TEST(Table, ShowsOnePatternAtEveryScale)
{
    const Plane coarse = surfacePlane("grey", {400, 300}, 5.0);
    const Plane fine = surfacePlane("grey", {800, 600}, 10.0);
    Plane reduced(400, 300);
    for (std::int64_t y = 0; y < 300; ++y)
        for (std::int64_t x = 0; x < 400; ++x)
            reduced.mutableData()[y * 400 + x] = (fine.at(2 * x, 2 * y) + fine.at(2 * x + 1, 2 * y) +
                                                  fine.at(2 * x, 2 * y + 1) + fine.at(2 * x + 1, 2 * y + 1)) /
                                                 4.0f;
    EXPECT_GT(correlation(coarse, reduced), 0.95);
    EXPECT_NEAR(fine.mean(), 1.0, 0.003);
    for (const Plane* plane : {&coarse, &fine}) {
        EXPECT_GT(plane->std(), 0.75 * 0.0139);
        EXPECT_LT(plane->std(), 1.05 * 0.0139);
    }
    // Nodes are counted in millimetres, and bounded where a canvas is metres of them.
    EXPECT_EQ(gridDims({400, 300}, 5.0).fine, (Size{601, 451}));
    EXPECT_EQ(gridDims({400, 300}, 5.0).slow, (Size{21, 16}));
    for (const Size canvas : {Size{5, 5}, Size{30'004, 5}}) {
        const GridDims dims = gridDims(canvas, 1e-4);
        EXPECT_LE(dims.fine.width * dims.fine.height, 110'000'000);
        EXPECT_GE(dims.fine.height, 8);
    }
    const auto taps = zoomAxis(3, 5);
    EXPECT_EQ(taps[1].first, 0);
    EXPECT_EQ(taps[1].fraction, 0.5f);
    EXPECT_EQ(taps[4].first, 2);
    EXPECT_EQ(taps[4].second, 2) << "nothing is read beyond the last node";
    EXPECT_EQ(zoomAxis(8, 1)[0].first, 0);
}

TEST(Linen, IsWovenAndKeepsItsThreads)
{
    // At 20 pixels a millimetre the weave stands at its pitch; at 333 µm a pixel it is nearly gone.
    GrainRNG fineRng(7), coarseRng(7);
    const Linen fine = planLinen({4000, 3000}, 20.0, fineRng);
    const Linen coarse = planLinen({600, 450}, 3.0, coarseRng);
    double own = 0.0, swing = 0.0;
    for (std::size_t i = 0; i < 4000; ++i)
        own += fine.cosX[i] * std::cos(2.0 * M_PI * (static_cast<double>(i) + 0.5) / 8.0) / 2000.0;
    EXPECT_NEAR(own, std::sin(M_PI / 8.0) / (M_PI / 8.0), 1e-4)
        << "a cosine of 0.4 mm, averaged over a pixel";
    for (const float v : coarse.cosX) swing = std::max(swing, std::abs(static_cast<double>(v)));
    EXPECT_LT(swing, 0.2);
    // The same slubs at the same millimetres: the fine factors reduced are the coarse ones.
    for (std::size_t i = 0; i < 600; ++i) {
        const std::size_t at = i * 4000 / 600 + 3;
        EXPECT_NEAR(coarse.colF[i], fine.colF[at], 0.03) << i;
    }
    EXPECT_GT(*std::max_element(fine.colF.begin(), fine.colF.end()), 1.04f);
    const Plane values = surfacePlane("linen", {300, 200}, 20.0);
    EXPECT_NEAR(values.mean(), 1.0, 0.03);
}

TEST(Linen, CountsByPoisson)
{
    GrainRNG rng(11);
    EXPECT_EQ(Pipeline::poisson(0.0, rng), 0);
    EXPECT_EQ(Pipeline::poisson(-3.0, rng), 0);
    EXPECT_EQ(rng.nextUInt64(), GrainRNG(11).nextUInt64()) << "no draw for nothing";
    for (const double mean : {0.5, 7.5}) {
        double sum = 0.0, squares = 0.0;
        for (int i = 0; i < 20'000; ++i) {
            const auto k = static_cast<double>(Pipeline::poisson(mean, rng));
            sum += k / 20'000.0;
            squares += k * k / 20'000.0;
        }
        EXPECT_NEAR(sum, mean, 0.08);
        EXPECT_NEAR(squares - sum * sum, mean, 0.3) << "the variance is the mean";
    }
    EXPECT_LE(Pipeline::poisson(1e300, rng), 9999);
}

TEST(Table, LiesUnderASheetOrACard)
{
    const RGBImage sheet = noisePicture(60, 40, 5, 2.0f);
    const Lying lying{1.0, 500.0, 2.0};
    const auto lay = [&](const char* kind, const std::optional<Plane>& mask) {
        GrainRNG rng(3);
        return Table::apply(sheet, kind, lying, mask, rng);
    };
    for (const char* kind : {"white", "grey", "black", "linen"}) {
        const RGBImage laid = lay(kind, std::nullopt);
        ASSERT_EQ(laid.size(), (Size{100, 80}));
        EXPECT_LT(worstDifference(laid.data, lay(kind, Plane(60, 40, 1.0f)).data), 2e-6f) << "a full mask";
        EXPECT_EQ(laid.pixel(20, 20), sheet.pixel(0, 0));
        EXPECT_EQ(laid.pixel(79, 59), sheet.pixel(59, 39));
        const Vec3f albedo = base(kind), corner = laid.pixel(0, 0);
        EXPECT_NEAR(corner[1] / albedo[1], 1.0f, 0.2f);
        EXPECT_LT(laid.pixel(50, 61)[1], laid.pixel(50, 18)[1]) << "more shadow below than above";
    }
    Plane cut(60, 40, 1.0f);
    cut.mutableData()[0] = 0.0f;
    const RGBImage card = lay("white", cut);
    EXPECT_NE(card.pixel(20, 20), sheet.pixel(0, 0)) << "the surface shows through a cut corner";
    EXPECT_EQ(card.pixel(21, 20), sheet.pixel(1, 0));
    expectSameForAnyWorkers([&] { return lay("linen", std::nullopt); });
    expectSameForAnyWorkers([&] { return lay("grey", cut); });
}

} // namespace
} // namespace tamlo::test
