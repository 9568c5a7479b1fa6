// What measures a press: waves of known frequency, and the catalogue's presses by their rulings, tones and
// ink.
#include "core/profiles/catalogue/profile_store.h"
#include "core/sensitometry/press_measure.h"
#include "core/sensitometry/wave_finder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace tamlo::test {
namespace {

using namespace Sensitometry;

TEST(WaveFinder, FindsAWaveBetweenTheBinsOfAPicture)
{
    for (const auto& [fx, fy] : {std::pair{0.0713, 0.0311}, {0.2, -0.1234}, {0.0, 0.0557}, {0.31, 0.0}}) {
        Plane picture(256, 192);
        float* to = picture.mutableData();
        for (std::int64_t y = 0; y < picture.height; ++y)
            for (std::int64_t x = 0; x < picture.width; ++x) {
                const double turns = fx * static_cast<double>(x) + fy * static_cast<double>(y);
                to[y * picture.width + x] =
                    0.5f + 0.2f * static_cast<float>(std::cos(2.0 * std::numbers::pi * turns + 0.7));
            }
        const std::optional<Wave> wave = strongestWave(picture);
        ASSERT_TRUE(wave);
        const double sign = wave->fx * fx + wave->fy * fy < 0.0 ? -1.0 : 1.0; // a wave and its mirror
        EXPECT_NEAR(sign * wave->fx, fx, 2e-4);
        EXPECT_NEAR(sign * wave->fy, fy, 2e-4);
        EXPECT_NEAR(wave->share, 1.0, 0.02);
    }
    EXPECT_FALSE(strongestWave(Plane(64, 64, 0.3f)));
}

TEST(PressMeasure, ReadsScreensFromWhatTheyPrint)
{
    const ProfileStore& store = ProfileStore::shared();
    struct Case {
        const char* paper;
        double lpi;
        double ink; // total of the plates' limit, as it prints with the gain of the press
    };
    constexpr double kAngles[] = {15.0, 75.0, 0.0, 45.0};
    for (const Case& c : std::initializer_list<Case>{{"offset_newsprint", 85.0, 2.35},
                                                     {"offset_coated", 150.0, 3.41},
                                                     {"offset_book", 200.0, 3.50}}) {
        SCOPED_TRACE(c.paper);
        const std::optional<PressReport> press = measurePress(store.paper(c.paper), {});
        ASSERT_TRUE(press && press->totalInk);
        ASSERT_EQ(press->inks.size(), 4u);
        for (std::size_t ink = 0; ink < 4; ++ink) {
            ASSERT_TRUE(press->inks[ink].ruling);
            EXPECT_NEAR(press->inks[ink].ruling->lpi, c.lpi, 0.003 * c.lpi);
            EXPECT_NEAR(press->inks[ink].ruling->angleDeg, kAngles[ink], 0.1);
            for (std::size_t i = 0; i < kAskedTones.size(); ++i)
                EXPECT_NEAR(press->inks[ink].tone[i], kAskedTones[i], 0.006) << ink;
        }
        EXPECT_NEAR(*press->totalInk, c.ink, 0.03);
    }
    const std::optional<PressReport> jet = measurePress(store.paper("inkjet_photo"), {});
    ASSERT_TRUE(jet);
    EXPECT_FALSE(jet->inks.front().ruling) << "blue noise repeats nowhere";
    EXPECT_FALSE(measurePress(store.paper("bw_neutral"), {}));
    EXPECT_LT(measurePress(store.paper("offset_coated"), {})->paperDensity,
              measurePress(store.paper("offset_newsprint"), {})->paperDensity);
}

} // namespace
} // namespace tamlo::test
