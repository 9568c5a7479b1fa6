// Each effect of the lens alone, against what it claims.
#include "core/film/lens/optics.h"
#include "core/film/lens/optics_field.h"
#include "core/image/gaussian.h"
#include "core/image/resample.h"
#include "tests/film/optics_pictures.h"

#include <cmath>
#include <numbers>

namespace tamlo {
namespace {

using test::centroid;
using test::flat;
using test::spotAt;

TEST(OpticsStop, GainsFollowTheFormula)
{
    const auto closed = Optics::stopGains(1.0, {});
    EXPECT_NEAR(closed.vig, 0.3 + 0.7 * std::exp(-1.0 / 1.4), 1e-12);
    EXPECT_NEAR(closed.sa, 0.4665, 5e-5);
    EXPECT_NEAR(closed.swirl, 0.6830, 5e-5);
    OpticsParams lens;
    lens.apertureResponse = ApertureResponse{0.01, 0.5, 2.0, 0.0}; // tau is held at 0.1
    const auto own = Optics::stopGains(0.3, lens);
    EXPECT_NEAR(own.vig, 0.5 + 0.5 * std::exp(-3.0), 1e-12);
    EXPECT_NEAR(own.sa, std::exp2(-0.6), 1e-12);
    EXPECT_EQ(own.swirl, 1.0);
    for (const double stop : {0.0, 1e-6, -1.0}) EXPECT_EQ(Optics::stopGains(stop, lens).sa, 1.0);
}

TEST(OpticsSample, IsBilinearAndHeldInside)
{
    const Plane plane(2, 2, std::vector<float>{0.0f, 1.0f, 2.0f, 5.0f});
    EXPECT_FLOAT_EQ(Optics::sample(plane, 0.25, 0.5), 0.5f * 0.25f + 0.5f * 2.75f);
    EXPECT_EQ(Optics::sample(plane, -3.0, 9.0), 2.0f);
    EXPECT_EQ(Optics::sample(plane, 7.0, 0.0), 1.0f);
}

TEST(OpticsPercentile, IsLinearBetweenOrderStatistics)
{
    const std::vector<float> values{4.0f, 1.0f, 3.0f, 2.0f};
    EXPECT_DOUBLE_EQ(Optics::percentile(values, 0.0), 1.0);
    EXPECT_DOUBLE_EQ(Optics::percentile(values, 100.0), 4.0);
    EXPECT_DOUBLE_EQ(Optics::percentile(values, 50.0), 2.5);
    EXPECT_DOUBLE_EQ(Optics::percentile(values, 88.0), 1.0 + 0.88 * 3.0);
    EXPECT_EQ(Optics::percentile({}, 50.0), 0.0);
}

// A dot of the output at p shows the light of p (1 + k3 r² + k5 r⁴), so a dot put there lands on p.
TEST(OpticsDistort, MovesDotsByThePolynomial)
{
    constexpr std::int64_t kW = 301, kH = 200;
    const double cx = 150.0, cy = 99.5, norm = std::hypot(cx, cy);
    for (const auto& [k3, k5] : {std::pair{0.03, 0.0}, std::pair{-0.004, 0.008}, std::pair{0.02, -0.08}})
        for (const auto& [x, y] : {std::pair{60.0, 40.0}, std::pair{240.0, 150.0}, std::pair{150.0, 99.5}}) {
            const double dx = (x - cx) / norm, dy = (y - cy) / norm, r2 = dx * dx + dy * dy;
            const double g = 1.0 + k3 * r2 + k5 * r2 * r2;
            const RGBImage dot = spotAt(kW, kH, cx + dx * g * norm, cy + dy * g * norm, 2.5);
            const auto [sx, sy] = centroid(Optics::distort(dot, k3, k5).plane(1), x, y, 14);
            EXPECT_NEAR(sx, x, 0.05) << k3 << " " << k5;
            EXPECT_NEAR(sy, y, 0.05) << k3 << " " << k5;
        }
}

// The frame is warped in place: a slow twin reads from an untouched copy, also where the polynomial folds the
// frame over itself and reads far outside.
TEST(OpticsDistort, EqualsTheSlowTwin)
{
    for (const auto& [w, h] : {std::pair{97, 210}, std::pair{1, 1}, std::pair{3, 1}, std::pair{2, 140}})
        for (const auto& [k3, k5] : {std::pair{-0.9, 0.3}, std::pair{0.4, 0.0}, std::pair{-7.0, 5.0}}) {
            const RGBImage image = test::testImage(w, h);
            const RGBImage warped = Optics::distort(image, k3, k5);
            const double cx = 0.5 * (w - 1), cy = 0.5 * (h - 1), norm = std::max(std::hypot(cx, cy), 0.5);
            double worst = 0.0;
            for (int c = 0; c < 3; ++c) {
                const Plane from = image.plane(c), to = warped.plane(c);
                for (std::int64_t y = 0; y < h; ++y)
                    for (std::int64_t x = 0; x < w; ++x) {
                        const double dx = (static_cast<double>(x) - cx) / norm;
                        const double dy = (static_cast<double>(y) - cy) / norm;
                        const double r2 = dx * dx + dy * dy, g = 1.0 + k3 * r2 + k5 * r2 * r2;
                        const float slow = Optics::sample(from, cx + dx * g * norm, cy + dy * g * norm);
                        worst = std::max(worst, std::abs(static_cast<double>(slow) - to.at(x, y)));
                    }
            }
            EXPECT_LT(worst, 0.01) << w << " x " << h << " k3 " << k3; // samples reach 100, without order
        }
}

TEST(OpticsLateralColour, ShiftsByAShareOfThePixelAtAnySize)
{
    for (const std::int64_t n : {101, 401}) {
        const double centre = 0.5 * static_cast<double>(n - 1), at = 0.9 * static_cast<double>(n - 1);
        constexpr double kCa = 0.0012;
        const RGBImage out = Optics::lateralColour(spotAt(n, n, at, at, 2.0), kCa);
        const double moved = (at - centre) * kCa;
        const auto red = centroid(out.plane(0), at, at, 10), green = centroid(out.plane(1), at, at, 10);
        const auto blue = centroid(out.plane(2), at, at, 10);
        EXPECT_NEAR(red.first - green.first, moved, 0.003) << n;
        EXPECT_NEAR(red.second - green.second, moved, 0.003) << n;
        EXPECT_NEAR(blue.first - green.first, -moved, 0.003) << n;
    }
    const RGBImage image = test::testImage(40, 150);
    const RGBImage strong = Optics::lateralColour(image, 0.4), wild = Optics::lateralColour(image, 50.0);
    EXPECT_TRUE(test::sameBytes(strong.plane(1), image.plane(1)));
    const double x = 19.5 + (3.0 - 19.5) / 1.4, y = 74.5 + (20.0 - 74.5) / 1.4;
    EXPECT_NEAR(strong.plane(0).at(3, 20), Optics::sample(image.plane(0), x, y), 1e-3);
    EXPECT_NEAR(strong.plane(2).at(30, 70), Optics::sample(image.plane(2), 19.5 + 10.5 / 0.6, 67.0), 1e-3);
    EXPECT_EQ(wild.size(), image.size());
}

TEST(OpticsVeil, AddsTheStatedShareOfTheMean)
{
    const RGBImage out = Optics::veil(flat(40, 30, {0.2f, 0.4f, 0.8f}), 0.05, {0.2f, 0.4f, 0.8f});
    for (int c = 0; c < 3; ++c)
        EXPECT_NEAR(out.pixel(7, 9)[c], flat(1, 1, {0.2f, 0.4f, 0.8f}).pixel(0, 0)[c] * 1.05f, 1e-6);
    const RGBImage even = Optics::veil(RGBImage(40, 30), 0.1, {1.0f, 0.0f, 0.5f});
    EXPECT_NEAR(even.pixel(0, 0)[0], 0.035, 1e-7);
    EXPECT_EQ(even.pixel(0, 0)[1], 0.0f);
}

TEST(OpticsBloom, ComesOnlyFromLightAboveTheThreshold)
{
    OpticsParams lens;
    lens.bloom = 0.4;
    lens.bloomTint = Vec3d{1.0, 0.5, 0.0};
    const RGBImage dim = flat(64, 48, {0.75f, 0.7f, 0.1f});
    EXPECT_TRUE(test::sameBytes(Optics::bloom(dim, lens, 1.0), dim));
    const RGBImage bright = flat(64, 48, {1.75f, 1.75f, 1.75f});
    EXPECT_TRUE(test::sameBytes(Optics::bloom(bright, lens, 0.0), bright));
    const Vec3f lit = Optics::bloom(bright, lens, 0.5).pixel(3, 40);
    EXPECT_NEAR(lit[0], 1.75 + 0.2, 1e-5);
    EXPECT_NEAR(lit[1], 1.75 + 0.1, 1e-5);
    EXPECT_EQ(lit[2], 1.75f);
}

// Both radii, in either order, against the blurs of the imaging foundation.
TEST(OpticsBloom, MixesTheTwoRadii)
{
    for (const auto& [s1, s2] : {std::pair{0.01, 0.05}, std::pair{0.15, 0.02}, std::pair{0.0, 0.004}}) {
        OpticsParams lens;
        lens.bloom = 1.0;
        lens.bloomThreshold = 0.5;
        lens.bloomSigma1 = s1;
        lens.bloomSigma2 = s2;
        lens.bloomHaloMix = 0.3;
        const RGBImage image = test::testImage(200, 90);
        const RGBImage high = image.map([](float v) { return std::max(v - 0.5f, 0.0f); });
        const RGBImage narrow = blur(high, s1 * 200.0), wide = blur(high, s2 * 200.0);
        const RGBImage out = Optics::bloom(image, lens, 1.0);
        double worst = 0.0;
        for (std::size_t i = 0; i < out.data.size(); ++i)
            worst = std::max(worst, std::abs(double{out.data[i]} - image.data[i] - 0.7 * narrow.data[i] -
                                             0.3 * wide.data[i]));
        EXPECT_LT(worst, 1e-4) << s1;
    }
}

TEST(OpticsGlow, KeepsAFlatFieldAndHasItsRing)
{
    OpticsParams lens;
    lens.glow = 0.4;
    for (const double ring : {0.0, 0.55, 1.0}) {
        lens.glowRing = ring;
        const RGBImage out = Optics::glow(flat(150, 100, {0.3f, 0.5f, 0.7f}), lens, 1.0, 1.0, 2.0);
        for (int c = 0; c < 3; ++c) EXPECT_NEAR(out.pixel(20, 50)[c], 0.3 + 0.2 * c, 2e-5) << ring;
    }
    // Right beside a point the halo without its core is darker than further out.
    lens.glowRadius = 0.05;
    lens.glowRing = 0.9;
    const Plane halo = Optics::glow(spotAt(301, 301, 150, 150, 1.0), lens, 1.0, 1.0, 1.0).plane(1);
    EXPECT_LT(halo.at(156, 150), halo.at(171, 150));
    lens.glowRing = 0.0;
    const Plane plain = Optics::glow(spotAt(301, 301, 150, 150, 1.0), lens, 1.0, 1.0, 1.0).plane(1);
    EXPECT_GT(plain.at(156, 150), plain.at(171, 150));
}

TEST(OpticsGlow, BlursEachChannelByItsOwnRadius)
{
    OpticsParams lens;
    lens.glow = 0.4;
    lens.glowRadius = 0.04;
    lens.glowChroma = Vec3d{2.0, 1.0, 0.5};
    lens.glowRing = 0.3;
    const RGBImage image = test::testImage(160, 120);
    const RGBImage out = Optics::glow(image, lens, 0.5, 1.5, 1.0);
    for (int c = 0; c < 3; ++c) {
        const double sigma = 0.04 * 160.0 * (*lens.glowChroma)[static_cast<std::size_t>(c)];
        const Plane from = image.plane(c), to = out.plane(c);
        const Plane outer = blurChannel(from, sigma), core = blurChannel(from, 0.42 * sigma);
        for (std::size_t i = 0; i < to.data.size(); i += 37)
            EXPECT_NEAR(to.data[i], 0.7 * from.data[i] + 0.3 * (outer.data[i] - 0.3 * core.data[i]) / 0.7,
                        1e-3);
    }
    lens.glowFocusShift = 0.05;
    const RGBImage shifted = blur(out, 0.3 * 0.05 * 160.0);
    EXPECT_TRUE(test::sameBytes(Optics::glow(image, lens, 0.5, 1.5, 1.0), shifted));
    EXPECT_TRUE(test::sameBytes(Optics::glow(image, lens, 0.5, 0.0, 1.0), image));
}

TEST(OpticsVignette, ReachesItsStrengthInTheCornerOfAnyAspect)
{
    for (const auto& [w, h] : {std::pair{3001, 3}, std::pair{401, 301}, std::pair{300, 900}, std::pair{1, 1}})
        for (const double power : {1.2, 2.0, 2.5, 0.0}) {
            const RGBImage out = Optics::vignette(flat(w, h, {1.0f, 2.0f, 0.5f}), 0.6, power);
            for (const auto& [x, y] :
                 {std::pair{0, 0}, std::pair{w - 1, 0}, std::pair{w / 2, h / 2}, std::pair{w / 3, h / 5}}) {
                const double dx = (x - 0.5 * (w - 1)) / (0.5 * w), dy = (y - 0.5 * (h - 1)) / (0.5 * h);
                const double r = std::min(std::sqrt(dx * dx + dy * dy) * 0.70710678118654752, 1.0);
                const double left = 1.0 - 0.6 * std::pow(r, power);
                EXPECT_NEAR(out.pixel(x, y)[0], left, 2e-6) << w << " x " << h << " power " << power;
                EXPECT_NEAR(out.pixel(x, y)[1], 2.0 * left, 4e-6);
            }
        }
}

TEST(OpticsSoften, MixesTheBlur)
{
    const RGBImage image = test::testImage(250, 120);
    const RGBImage soft = blur(image, 8.0 / 1000.0 * 250.0), out = Optics::soften(image, 8.0, 0.4);
    for (std::size_t i = 0; i < out.data.size(); i += 41)
        EXPECT_NEAR(out.data[i], 0.6 * image.data[i] + 0.4 * soft.data[i], 1e-4);
    EXPECT_TRUE(test::sameBytes(Optics::soften(image, 8.0, 1.0), soft));
    EXPECT_TRUE(test::sameBytes(Optics::soften(image, 0.01, 1.0), blur(image, 0.3)));
}

TEST(OpticsChromaSoft, BlursChannelsApart)
{
    OpticsParams lens;
    lens.chromaSoft = {1.0, 30.0, 70.0}; // below the least sigma, direct, reduced
    const RGBImage image = test::testImage(250, 120);
    const RGBImage out = Optics::chromaSoft(image, lens, 1.0);
    EXPECT_TRUE(test::sameBytes(out.plane(0), image.plane(0)));
    EXPECT_TRUE(test::sameBytes(out.plane(1), blurChannel(image.plane(1), 7.5)));
    EXPECT_TRUE(test::sameBytes(out.plane(2), blurChannel(image.plane(2), 17.5)));
    lens.chromaSoft = {30.0, 30.0};
    EXPECT_TRUE(test::sameBytes(Optics::chromaSoft(image, lens, 1.0), image));
}

} // namespace
} // namespace tamlo
