#include "core/image/resample.h"

#include "core/image/rounding.h"
#include "tests/image/test_pictures.h"

#include <map>
#include <numeric>

namespace tamlo {
namespace {

constexpr Resampling kFilters[] = {Resampling::bilinear, Resampling::lanczos, Resampling::box,
                                   Resampling::bicubic};

TEST(Resample, AgreesWithPillow)
{
    const std::map<std::string, Resampling> filters{{"bilinear", Resampling::bilinear},
                                                    {"lanczos", Resampling::lanczos},
                                                    {"box", Resampling::box},
                                                    {"bicubic", Resampling::bicubic}};
    const std::vector<test::Answer> answers = test::loadAnswers("resample.txt");
    ASSERT_EQ(answers.size(), 40u);
    for (const auto& [words, values] : answers) {
        const Plane plane = test::testPlane(std::stoll(words[1]), std::stoll(words[2]));
        const Plane ours = pilResize(plane, std::stoll(words[3]), std::stoll(words[4]), filters.at(words[0]));
        EXPECT_EQ(test::distance(ours, values), 0.0) << ::testing::PrintToString(words);
    }
}

TEST(Resample, Coefficients)
{
    EXPECT_EQ(ResampleCoeffs(400, 100, Resampling::lanczos).ksize, 25); // support 3 × 4
    EXPECT_EQ(ResampleCoeffs(10, 1000, Resampling::bicubic).ksize, 5);  // enlarging: the filter's own support
    for (const Resampling filter : kFilters)
        for (const auto& [in, out] : {std::pair{37, 11}, {11, 37}, {5, 5}, {1, 9}, {9, 1}}) {
            const ResampleCoeffs c(in, out, filter);
            for (std::size_t i = 0; i < c.n.size(); ++i) {
                EXPECT_GE(c.xmin[i], 0);
                EXPECT_LE(c.xmin[i] + c.n[i], in);
                EXPECT_LE(c.n[i], c.ksize);
                const double* w = c.k.data() + static_cast<std::int64_t>(i) * c.ksize;
                EXPECT_NEAR(std::accumulate(w, w + c.n[i], 0.0), 1.0, 1e-14);
            }
        }
}

TEST(Resample, SameSizeIsTheSamePicture)
{
    const RGBImage image = test::testImage(5, 4);
    EXPECT_EQ(pilResize(image, 5, 4, Resampling::lanczos).data.data(), image.data.data());
}

TEST(Resample, FlatFieldStaysFlatAndBoxHalvesToTheMean)
{
    for (const Resampling filter : kFilters)
        for (const Size size : {Size{7, 5}, Size{64, 41}, Size{1, 1}}) {
            const Plane out = pilResize(Plane(20, 30, 0.18f), size, filter);
            for (const float v : out.data) EXPECT_NEAR(v, 0.18f, 1e-7f);
        }
    const Plane plane = test::testPlane(8, 6);
    const Plane half = pilResize(plane, 4, 6, Resampling::box);
    EXPECT_EQ(half.at(2, 3), (plane.at(4, 3) + plane.at(5, 3)) / 2.0f);
}

TEST(Resample, SameBytesForAnyWorkersPlanarOrInterleaved)
{
    for (const auto& [w, h, ow, oh] :
         {std::tuple{700, 500, 351, 249}, {120, 90, 801, 603}, {1000, 700, 1000, 300}, {900, 400, 700, 400}})
        for (const Resampling filter : kFilters) {
            const RGBImage image = test::testImage(w, h);
            const Size size{ow, oh};
            test::expectSameForAnyWorkers([&] { return pilResize(image, size, filter); });
            test::expectSameForAnyWorkers([&] { return pilResize(image.plane(1), size, filter); });
            const RGBImage out = pilResize(image, size, filter);
            for (int c = 0; c < 3; ++c)
                EXPECT_TRUE(test::sameBytes(out.plane(c), pilResize(image.plane(c), size, filter)));
        }
    for (std::int64_t w = 1; w <= 40; ++w) { // vector tails of the columns pass
        const RGBImage out = pilResize(test::testImage(w, 9), w, 4, Resampling::lanczos);
        EXPECT_TRUE(test::sameBytes(out.plane(2),
                                    pilResize(test::testImage(w, 9).plane(2), w, 4, Resampling::lanczos)))
            << w;
    }
}

TEST(Resample, IntoATargetLeavesWhoeverSharesItAlone)
{
    const Plane plane = test::testPlane(12, 10);
    Plane target(5, 5, 1.0f);
    const float* block = target.data.data();
    pilResizeInto(plane, target, Resampling::bicubic);
    EXPECT_EQ(target.data.data(), block);
    EXPECT_TRUE(test::sameBytes(target, pilResize(plane, 5, 5, Resampling::bicubic)));
    Plane shared(5, 5, 1.0f);
    const Plane other = shared;
    pilResizeInto(plane, shared, Resampling::bicubic);
    EXPECT_EQ(other.at(2, 2), 1.0f);
    EXPECT_TRUE(test::sameBytes(shared, target));
}

TEST(Rounding, TiesGoToEvenOrAwayFromZero)
{
    const double values[] = {2.5, 3.5, -0.5, -1.5, 2.4999999, -2.5};
    const std::int64_t even[] = {2, 4, 0, -2, 2, -2}, away[] = {3, 4, -1, -2, 2, -3};
    for (std::size_t i = 0; i < 6; ++i) {
        EXPECT_EQ(pyRound(values[i]), even[i]);
        EXPECT_EQ(roundAway(values[i]), away[i]);
    }
}

} // namespace
} // namespace tamlo
