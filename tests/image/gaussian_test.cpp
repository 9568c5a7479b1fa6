#include "core/image/gaussian.h"

#include "core/image/resample.h"
#include "tests/image/test_pictures.h"

#include <cmath>
#include <map>
#include <numeric>

namespace tamlo {
namespace {

using test::testImage;
using test::testPlane;

constexpr EdgeMode kModes[] = {EdgeMode::nearest, EdgeMode::wrap, EdgeMode::reflect, EdgeMode::constant};

TEST(Gaussian, ReflectIndexMirrorsAsOftenAsItTakes)
{
    const std::int64_t cases[][3] = {{-1, 4, 0}, {4, 4, 3}, {9, 4, 1}, {-5, 4, 3}, {-9, 4, 0}, {17, 1, 0}};
    for (const auto& [i, n, expected] : cases) EXPECT_EQ(reflectIndex(i, n), expected) << i << " in " << n;
}

TEST(Gaussian, KernelIsSymmetricNormalisedAndFalls)
{
    const std::vector<double> kernel = gaussianKernel1D(2.0, 8);
    ASSERT_EQ(kernel.size(), 17u);
    EXPECT_NEAR(std::accumulate(kernel.begin(), kernel.end(), 0.0), 1.0, 1e-15);
    EXPECT_EQ(kernel[0], kernel[16]);
    EXPECT_NEAR(kernel[10] / kernel[8], std::exp(-0.5), 1e-15); // one sigma from the centre
}

TEST(Gaussian, AgreesWithSciPy)
{
    const std::map<std::string, EdgeMode> modes{{"nearest", EdgeMode::nearest},
                                                {"wrap", EdgeMode::wrap},
                                                {"reflect", EdgeMode::reflect},
                                                {"constant", EdgeMode::constant}};
    const std::vector<test::Answer> answers = test::loadAnswers("gaussian.txt");
    ASSERT_EQ(answers.size(), 44u);
    for (const auto& [words, values] : answers) {
        const EdgeMode mode = modes.at(words[0]);
        const Plane plane = testPlane(std::stoll(words[1]), std::stoll(words[2]));
        const double sigmaY = std::stod(words[3]), sigmaX = std::stod(words[4]),
                     truncate = std::stod(words[5]);
        const Plane ours = sigmaY == sigmaX ? gaussianFilter(plane, sigmaY, mode, truncate)
                                            : gaussianFilter2(plane, sigmaY, sigmaX, mode);
        const std::string name = ::testing::PrintToString(words);
        EXPECT_LE(test::distance(ours, values), 1e-6) << name; // one unit in the last place at 14
        if (sigmaX == 0.0) {
            EXPECT_TRUE(test::sameBytes(ours, gaussianFilter1D(plane, sigmaY, FilterAxis::y, mode))) << name;
        } else if (sigmaY == 0.0) {
            EXPECT_TRUE(test::sameBytes(ours, gaussianFilter1D(plane, sigmaX, FilterAxis::x, mode))) << name;
        }
    }
}

TEST(Gaussian, TheInsideIsThatOfTheWhole)
{
    for (const auto& [sigmaY, sigmaX] : {std::pair{1.3, 4.0}, {6.0, 0.4}, {0.0, 2.0}, {9.0, 9.0}}) {
        const FilterPad pad{static_cast<std::int64_t>(4.0 * sigmaY + 0.5),
                            static_cast<std::int64_t>(4.0 * sigmaX + 0.5) + 1};
        for (const auto& [w, h] : {std::pair{1, 1}, {33, 7}, {64, 70}, {301, 45}}) {
            const Plane padded = testPlane(w + 2 * pad.x, h + 2 * pad.y);
            const Plane whole = gaussianFilter2(padded, sigmaY, sigmaX, EdgeMode::reflect);
            const Plane inside = gaussianInside(padded, sigmaY, sigmaX, pad);
            ASSERT_EQ(inside.size(), (Size{w, h}));
            for (std::int64_t y = 0; y < h; ++y)
                EXPECT_TRUE(std::equal(inside.row(y), inside.row(y) + w, whole.row(y + pad.y) + pad.x))
                    << sigmaY << " " << sigmaX << " " << w << " " << y;
        }
    }
}

TEST(Gaussian, LeavesTheImageAloneAtSigmaZero)
{
    const Plane plane = testPlane(9, 7);
    for (const double sigma : {0.0, 1e-16, -1.0}) {
        const Plane out = gaussianFilter(plane, sigma, EdgeMode::reflect);
        EXPECT_EQ(out.data.data(), plane.data.data()) << sigma; // not even copied
    }
    EXPECT_TRUE(gaussianFilter(Plane(0, 5), 2.0, EdgeMode::wrap).data.empty());
    EXPECT_TRUE(blur(RGBImage(3, 0), 50.0).data.empty());
}

TEST(Gaussian, FlatFieldStaysFlatButForTheConstantEdge)
{
    for (const EdgeMode mode : kModes) {
        const Plane out = gaussianFilter(Plane(40, 50, 0.18f), 2.5, mode);
        const bool dark = mode == EdgeMode::constant;
        EXPECT_NEAR(out.at(20, 25), 0.18f, 1e-7f);
        EXPECT_EQ(out.at(0, 25) < 0.17f, dark);
        EXPECT_EQ(out.at(20, 49) < 0.17f, dark);
    }
}

// Bands, blocks of rows, strips of columns and vector tails: every width around a vector, more rows than a
// block, more bands than one.
TEST(Gaussian, SameBytesForAnyWorkersInPlaceOrNotPlanarOrInterleaved)
{
    for (const auto& [w, h, sigma] :
         {std::tuple{1, 70'000, 1.0}, {300, 300, 3.0}, {33, 2'500, 6.0}, {257, 261, 20.0}})
        for (const EdgeMode mode : kModes) {
            const RGBImage image = testImage(w, h);
            test::expectSameForAnyWorkers([&] { return gaussianFilter(image, sigma, mode); });
            const RGBImage fresh = gaussianFilter(image, sigma, mode);
            RGBImage unique = image;
            unique.mutableData();
            const float* block = unique.data.data();
            unique = gaussianFilter(std::move(unique), sigma, mode);
            EXPECT_EQ(unique.data.data(), block);
            EXPECT_TRUE(test::sameBytes(fresh, unique));
            EXPECT_TRUE(test::sameBytes(image, testImage(w, h))); // the shared original is as it was
            for (int c = 0; c < 3; ++c)
                EXPECT_TRUE(test::sameBytes(fresh.plane(c), gaussianFilter(image.plane(c), sigma, mode)));
        }
    for (std::int64_t w = 1; w <= 70; ++w) {
        const RGBImage out = gaussianFilter(testImage(w, 3), 1.2, EdgeMode::reflect);
        EXPECT_TRUE(
            test::sameBytes(out.plane(1), gaussianFilter(testImage(w, 3).plane(1), 1.2, EdgeMode::reflect)))
            << w;
    }
}

TEST(Gaussian, BlurTurnsToTheReducedPlaneAboveTen)
{
    const Plane plane = testPlane(200, 120);
    EXPECT_TRUE(test::sameBytes(blurChannel(plane, 10.0), gaussianFilter(plane, 10.0, EdgeMode::nearest)));
    EXPECT_EQ(blurChannel(plane, -1.0).data.data(), plane.data.data());
    // The recipe by hand: 200 / (20 / 6) = 60, 120 / (20 / 6) = 36.
    Plane hand = pilResize(plane, 60, 36, Resampling::bilinear);
    hand = gaussianFilter(hand, 20.0 * 60.0 / 200.0, EdgeMode::nearest);
    hand = pilResize(hand, 200, 120, Resampling::bilinear);
    EXPECT_TRUE(test::sameBytes(blurChannel(plane, 20.0), hand));
    // Never below 16 samples a side.
    const Plane tiny = testPlane(20, 20);
    hand =
        gaussianFilter(pilResize(tiny, 16, 16, Resampling::bilinear), 500.0 * 16.0 / 20.0, EdgeMode::nearest);
    EXPECT_TRUE(test::sameBytes(blurChannel(tiny, 500.0), pilResize(hand, 20, 20, Resampling::bilinear)));
    const RGBImage image = testImage(200, 120);
    for (const double sigma : {10.0, 10.001, 31.0})
        EXPECT_TRUE(test::sameBytes(blur(image, sigma).plane(2), blurChannel(image.plane(2), sigma)))
            << sigma;
    EXPECT_FALSE(
        test::sameBytes(blurChannel(plane, 10.001), gaussianFilter(plane, 10.001, EdgeMode::nearest)));
}

} // namespace
} // namespace tamlo
