#include "core/image/zcolor.h"

#include <cmath>
#include <utility>

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

/// CIE 1960 u, v of a colour in linear sRGB. Source of the matrix: IEC 61966-2-1.
std::pair<double, double> uvOf(const Vec3d& rgb)
{
    const double x = 0.4124 * rgb[0] + 0.3576 * rgb[1] + 0.1805 * rgb[2];
    const double y = 0.2126 * rgb[0] + 0.7152 * rgb[1] + 0.0722 * rgb[2];
    const double z = 0.0193 * rgb[0] + 0.1192 * rgb[1] + 0.9505 * rgb[2];
    const double sum = x + 15.0 * y + 3.0 * z;
    return {4.0 * x / sum, 6.0 * y / sum};
}

// The black body's path as it is published: A. R. Robertson, "Computation of correlated color temperature and
// distribution temperature", J. Opt. Soc. Am. 58 (1968), and illuminant A of CIE 15.
TEST(ZColor, WhitesLieOnThePublishedPathOfABlackBody)
{
    const struct {
        double mired, u, v;
    } published[] = {{50, 0.18388, 0.27709},          {80, 0.18740, 0.28668},  {100, 0.19032, 0.29326},
                     {125, 0.19462, 0.30141},         {150, 0.19962, 0.30921}, {175, 0.20525, 0.31647},
                     {200, 0.21142, 0.32312},         {250, 0.22511, 0.33439}, {300, 0.24010, 0.34308},
                     {350, 0.25591, 0.34951},         {400, 0.27218, 0.35407}, {450, 0.28863, 0.35714},
                     {1e6 / 2856.0, 0.25597, 0.34954}};
    for (const auto& point : published) {
        const auto [u, v] = uvOf(ZColor::kelvinToLinearSRGBWhite(1e6 / point.mired));
        // A just noticeable difference of white is about 0.001 here.
        EXPECT_NEAR(u, point.u, 0.0007) << point.mired;
        EXPECT_NEAR(v, point.v, 0.0007) << point.mired;
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
