#include "core/image/zcolor.h"

#include <cmath>

#include <gtest/gtest.h>

namespace tamlo {
namespace {

TEST(ZColor, TransferFunctionsAreEachOthersInverse)
{
    for (int i = 0; i <= 1000; ++i) {
        const float v = static_cast<float>(i) / 1000.0f;
        EXPECT_NEAR(ZColor::linearToSRGB(ZColor::srgbToLinear(v)), v, 2e-5f) << v;
    }
    EXPECT_NEAR(ZColor::srgbToLinear(0.5f), 0.21404114f, 1e-6f);
    EXPECT_NEAR(ZColor::linearToSRGB(0.18f) * 255.0f, 117.64f, 0.01f);
    EXPECT_EQ(ZColor::linearToSRGB(-3.0f), 0.0f);
    EXPECT_NEAR(ZColor::linearToSRGB(2.0f), 1.0f, 1e-6f);
}

// Near 6504 K the locus passes close to the D65 white of sRGB, which is (1, 1, 1).
TEST(ZColor, WhiteOfDaylightIsNearNeutralAndOfTungstenRed)
{
    const Vec3d day = ZColor::kelvinToLinearSRGBWhite(6504.0);
    for (const double v : day) EXPECT_NEAR(v, 1.0, 0.05);
    const Vec3d lamp = ZColor::kelvinToLinearSRGBWhite(2856.0);
    EXPECT_GT(lamp[0], 1.5);
    EXPECT_LT(lamp[2], 0.35);
    EXPECT_EQ(ZColor::kelvinToLinearSRGBWhite(100.0), ZColor::kelvinToLinearSRGBWhite(1667.0));
    EXPECT_EQ(ZColor::kelvinToLinearSRGBWhite(1e6), ZColor::kelvinToLinearSRGBWhite(25'000.0));
    for (double k = 1667.0; k < 25'000.0; k *= 1.1) {
        // Luminance of every white is 1, but for the matrix's four decimals and the floor of each channel.
        const Vec3d w = ZColor::kelvinToLinearSRGBWhite(k);
        EXPECT_NEAR(0.2126 * w[0] + 0.7152 * w[1] + 0.0722 * w[2], 1.0, 0.02) << k;
    }
}

TEST(ZColor, WhiteBalanceGains)
{
    for (const double k : {2856.0, 3200.0, 5500.0, 6504.0})
        for (const float gain : ZColor::wbFilterGains(0.0, 0.0, k)) EXPECT_NEAR(gain, 1.0f, 2e-7f);
    for (const double mired : {-300.0, -40.0, 35.0, 200.0, 5000.0})
        for (const double tint : {-60.0, 0.0, 60.0}) {
            const Vec3f g = ZColor::wbFilterGains(mired, tint, 5500.0);
            EXPECT_NEAR(ZColor::lumaOf(g[0], g[1], g[2]), 1.0f, 1e-6f);
            const Vec3f plain = ZColor::wbFilterGains(mired, 0.0, 5500.0);
            EXPECT_NEAR((g[1] / g[0]) / (plain[1] / plain[0]), std::pow(10.0, -0.0006 * tint), 1e-5);
        }
    const Vec3f warm = ZColor::wbFilterGains(50.0, 0.0, 5500.0);
    EXPECT_GT(warm[0], 1.0f);
    EXPECT_LT(warm[2], 1.0f);
}

} // namespace
} // namespace tamlo
