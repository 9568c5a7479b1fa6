// The field and the whole lens: geometry of the smear, identity, sizes, workers, vector targets.
#include "core/film/lens/optics.h"
#include "core/film/lens/optics_field.h"
#include "core/film/lens/optics_field_passes.h"
#include "core/image/gaussian.h"
#include "core/image/resample.h"
#include "core/profiles/catalogue/profile_store.h"
#include "tests/film/optics_pictures.h"

#include <hwy/targets.h>

#include <cmath>
#include <numbers>

namespace tamlo {
namespace {

const char* const kReferenceLenses[] = {"petzval1900", "pinhole", "modern_clean"};

OpticsParams swirl(double astigmatism, double power)
{
    OpticsParams lens;
    lens.astigmatism = astigmatism;
    lens.fieldPower = power;
    return lens;
}

/// Every effect at once.
LensProfile wholeLens()
{
    LensProfile lens = ProfileStore::shared().lens("petzval1900");
    lens.optics.glow = 0.2;
    lens.optics.glowRing = 0.4;
    lens.optics.glowChroma = Vec3d{1.2, 1.0, 0.8};
    lens.optics.glowFocusShift = 0.002;
    lens.optics.coma = 0.0016;
    lens.optics.chromaSoft = {3.0, 0.0, 4.0};
    return lens;
}

double meanDifference(const RGBImage& a, const RGBImage& b)
{
    double sum = 0.0;
    for (std::size_t i = 0; i < a.data.size(); ++i) sum += std::abs(double{a.data[i]} - b.data[i]);
    return sum / static_cast<double>(a.data.size());
}

/// A smooth scene with bright lamps, drawn at any size.
RGBImage scene(std::int64_t w, std::int64_t h)
{
    RGBImage image(w, h);
    float* p = image.mutableData();
    for (std::int64_t y = 0; y < h; ++y)
        for (std::int64_t x = 0; x < w; ++x, p += 3) {
            const double u = (static_cast<double>(x) + 0.5) / static_cast<double>(w);
            const double v = (static_cast<double>(y) + 0.5) / static_cast<double>(w);
            const double lamp = std::exp(-1500.0 * (std::pow(std::fmod(u * 5.0, 1.0) - 0.5, 2) / 25.0 +
                                                    std::pow(std::fmod(v * 5.0, 1.0) - 0.5, 2) / 25.0));
            for (int c = 0; c < 3; ++c)
                p[c] =
                    static_cast<float>(0.25 + 0.2 * std::sin(40.0 * u + 2.0 * c) * std::cos(33.0 * v) + lamp);
        }
    return image;
}

/// Sigma across and along the radius of a spot on the diagonal-free axis: (tangential, radial), spot removed.
std::pair<double, double> smearOf(const OpticsParams& lens, std::int64_t n, double share)
{
    constexpr double kSpot = 8.0;
    const double centre = 0.5 * static_cast<double>(n - 1), at = centre + share * std::hypot(centre, centre);
    const RGBImage out = Optics::fieldPSF(test::spotAt(n, n, at, centre, kSpot), lens, 1.0, 1.0);
    const auto m = test::moments(out.plane(0), at, centre, 100.0);
    const auto sigma = [&](double second) {
        return std::sqrt(std::max(second / m.sum - kSpot * kSpot, 0.0));
    };
    return {sigma(m.yy), sigma(m.xx)};
}

TEST(OpticsField, SmearsAlongTheTangentAndGrowsByItsPower)
{
    // 800 px: the largest sigma is 16 px, and the polar grid has a third of a pixel to spare.
    for (const double power : {1.0, 2.0}) {
        const OpticsParams lens = swirl(0.02, power);
        const auto [near, nearRadial] = smearOf(lens, 800, 0.42);
        const auto [far, farRadial] = smearOf(lens, 800, 0.6);
        EXPECT_NEAR(far, 16.0 * std::pow(0.6, power), 0.15 * far) << power;
        EXPECT_GT(far, near) << power;
        EXPECT_LT(farRadial, 0.35 * far) << power;
        EXPECT_LT(nearRadial, 0.45 * near + 0.5) << power;
    }
    OpticsParams coma;
    coma.coma = 0.02;
    const auto [tangential, radial] = smearOf(coma, 800, 0.6);
    EXPECT_GT(radial, 3.0 * tangential);
}

TEST(OpticsField, LeavesTheCentreWholeOnOddAndEvenSizes)
{
    for (const std::int64_t n : {399, 400}) {
        const RGBImage image = scene(n, n - 60);
        const RGBImage out = Optics::fieldPSF(image, swirl(0.03, 2.0), 1.0, 1.0);
        const std::int64_t cx = n / 2, cy = (n - 60) / 2;
        for (std::int64_t d = -2; d <= 2; ++d) EXPECT_EQ(out.pixel(cx + d, cy), image.pixel(cx + d, cy)) << n;
        EXPECT_GT(meanDifference(out, image), 1e-3);
        for (const float v : out.data) ASSERT_TRUE(std::isfinite(v));
    }
}

TEST(OpticsField, DisappearsBelowSixTenthsOfAPixel)
{
    const OpticsParams lens = swirl(0.001, 2.0);
    const RGBImage small = scene(590, 40), large = scene(610, 40);
    EXPECT_TRUE(test::sameBytes(Optics::fieldPSF(small, lens, 1.0, 1.0), small));
    EXPECT_FALSE(Optics::planField({590, 40}, lens, 1.0, 1.0));
    EXPECT_TRUE(Optics::planField({610, 40}, lens, 1.0, 1.0));
    EXPECT_FALSE(Optics::planField({610, 40}, lens, 0.5, 1.0));
}

TEST(OpticsField, PlanFollowsTheFormulas)
{
    OpticsParams lens = swirl(0.012, 2.0);
    lens.fieldCurvature = 0.0035;
    const auto plan = Optics::planField({6000, 4000}, lens, 1.0, 1.0);
    ASSERT_TRUE(plan);
    EXPECT_DOUBLE_EQ(plan->largestPx, 93.0);
    EXPECT_DOUBLE_EQ(plan->scale, 7.75);
    EXPECT_EQ(plan->proxy, (Size{774, 516}));
    const double radius = std::hypot(386.5, 257.5);
    EXPECT_DOUBLE_EQ(plan->radius, radius);
    EXPECT_EQ(plan->radii, 464);
    EXPECT_EQ(plan->angles, 4 * 730);
    const double middle = 4.5 / 6.0;
    EXPECT_NEAR(plan->rings[4].alongAngle,
                0.0155 * 774 * middle * middle * 2920 / (2 * std::numbers::pi * radius * middle), 1e-9);
    EXPECT_NEAR(plan->rings[4].alongRadius, 0.0035 * 774 * middle * middle * 464 / radius, 1e-9);
    // The work is the same at any larger size, and stays in reason for a mad profile.
    EXPECT_EQ(Optics::planField({24000, 16000}, lens, 1.0, 1.0)->angles, plan->angles);
    EXPECT_EQ(Optics::planField({300, 200}, swirl(1e9, 2.0), 1.0, 1.0)->proxy, (Size{24, 24}));
    const RGBImage mad = Optics::fieldPSF(scene(60, 40), swirl(1e9, 2.0), 1.0, 1.0);
    for (const float v : mad.data) ASSERT_TRUE(std::isfinite(v));
}

// The rings are worked on in blocks of rows; the twin blurs the whole polar image for each ring.
TEST(OpticsField, RingsEqualTheSlowTwin)
{
    const Plane polar = test::testPlane(120, 77);
    std::vector<SmearRing> rings;
    const double sigmas[][2] = {{0.0, 1.7}, {2.5, 0.0}, {31.0, 4.0}};
    Plane twin(120, 77);
    for (const auto& [angle, radius] : sigmas) {
        const auto half = [](double sigma) {
            if (sigma == 0.0) return std::vector<double>{1.0};
            const auto reach = static_cast<std::int64_t>(sigma * 4.0 + 0.5);
            const auto full = gaussianKernel1D(sigma, reach);
            return std::vector<double>(full.begin() + reach, full.end());
        };
        SmearRing ring{half(angle), half(radius), std::vector<float>(77)};
        Plane blurred = gaussianFilter1D(polar, angle, FilterAxis::x, EdgeMode::wrap);
        blurred = gaussianFilter1D(blurred, radius, FilterAxis::y, EdgeMode::nearest);
        const std::size_t j = rings.size();
        float* to = twin.mutableData();
        for (std::size_t y = 0; y < 77; ++y) {
            ring.weights[y] = y / 26 == j || y / 26 == j + 1 ? 0.25f * static_cast<float>(j + 1) : 0.0f;
            for (std::size_t x = 0; x < 120; ++x)
                to[y * 120 + x] += ring.weights[y] * blurred.data[y * 120 + x];
        }
        rings.push_back(std::move(ring));
    }
    test::expectSameForAnyWorkers([&] {
        Plane out(120, 77, 9.0f);
        smear_rings(polar, rings, out);
        EXPECT_TRUE(test::sameBytes(out, twin));
        return out;
    });
}

TEST(OpticsField, DetailHoldsTheSmearBack)
{
    OpticsParams lens = swirl(0.03, 2.0);
    const RGBImage image = scene(500, 400);
    const double all = meanDifference(Optics::fieldPSF(image, lens, 1.0, 1.0), image);
    lens.defocusBias = 0.55;
    const double held = meanDifference(Optics::fieldPSF(image, lens, 1.0, 1.0), image);
    EXPECT_LT(held, 0.8 * all);
    EXPECT_GT(held, 0.4 * all);
}

TEST(OpticsLens, AnEmptyLensGivesTheFrameBack)
{
    RGBImage image = scene(90, 60);
    const float* block = image.data.data();
    const RGBImage kept = image; // shared: a write would copy
    image = Optics::apply(std::move(image), {}, {1.0f, 1.0f, 1.0f}, {.stop = 2.0});
    EXPECT_EQ(image.data.data(), block);
    RGBImage negative = test::testImage(40, 31);
    const RGBImage cut = negative.map([](float v) { return std::max(v, 0.0f); });
    block = negative.data.data();
    negative = Optics::apply(std::move(negative), {}, {}, {});
    EXPECT_TRUE(test::sameBytes(negative, cut));
    EXPECT_EQ(negative.data.data(), block);
    EXPECT_EQ(Optics::apply(RGBImage(), wholeLens(), {}, {}).pixelCount(), 0);
}

TEST(OpticsLens, ControlsReachTheirEffects)
{
    const RGBImage image = scene(300, 200);
    LensProfile lens;
    lens.optics.distortion = 0.03;
    EXPECT_TRUE(test::sameBytes(Optics::apply(image, lens, {}, {.distortion = false}), image));
    EXPECT_GT(meanDifference(Optics::apply(image, lens, {}, {}), image), 1e-4);
    lens.optics = {};
    lens.optics.vignette = 0.8;
    lens.optics.cast = Vec3d{0.5, 1.0, 2.0};
    const Vec3f open = Optics::apply(image, lens, {}, {}).pixel(0, 0);
    const Vec3f closed = Optics::apply(image, lens, {}, {.stop = 3.0}).pixel(0, 0);
    EXPECT_GT(closed[1], 1.5f * open[1]);
    EXPECT_NEAR(open[2] / image.pixel(0, 0)[2], 4.0f * open[0] / image.pixel(0, 0)[0], 1e-4);
}

TEST(OpticsLens, LooksTheSameAtEverySize)
{
    const RGBImage large = scene(2048, 1366), middle = scene(1024, 683);
    for (const char* name : kReferenceLenses) {
        const LensProfile lens = ProfileStore::shared().lens(name);
        const RGBImage fromLarge =
            pilResize(Optics::apply(large, lens, large.channelMeans(), {}), middle.size(), Resampling::box);
        const RGBImage direct = Optics::apply(middle, lens, middle.channelMeans(), {});
        EXPECT_LT(meanDifference(fromLarge, direct), 0.005) << name;
        EXPECT_GT(meanDifference(direct, middle), 0.002) << name; // it does something to hold
    }
}

TEST(OpticsLens, GivesTheSameBytesForAnyWorkers)
{
    const RGBImage image = scene(211, 167);
    const LensProfile lens = wholeLens();
    test::expectSameForAnyWorkers([&] { return Optics::apply(image, lens, image.channelMeans(), {}); });
}

TEST(OpticsLens, EveryVectorTargetAgrees)
{
    const RGBImage image = scene(211, 167);
    const LensProfile lens = wholeLens();
    const RGBImage best = Optics::apply(image, lens, image.channelMeans(), {});
    for (const std::int64_t target : hwy::SupportedAndGeneratedTargets()) {
        hwy::SetSupportedTargetsForTest(target);
        const RGBImage flat = Optics::vignette(test::flat(37, 20, {1.0f, 1.0f, 1.0f}), 0.8, 1.8);
        const RGBImage out = Optics::apply(image, lens, image.channelMeans(), {});
        hwy::SetSupportedTargetsForTest(0);
        for (std::size_t i = 0; i < out.data.size(); ++i)
            ASSERT_NEAR(out.data[i], best.data[i], 2e-6) << hwy::TargetName(target);
        for (std::int64_t x = 0; x < 37; ++x) {
            const double dx = (static_cast<double>(x) - 18.0) / 18.5, dy = -7.5 / 10.0;
            const double r = std::sqrt(0.5 * (dx * dx + dy * dy));
            EXPECT_NEAR(flat.pixel(x, 2)[0], 1.0 - 0.8 * std::pow(r, 1.8), 2e-6) << hwy::TargetName(target);
        }
    }
}

TEST(OpticsLens, StandsOddFramesAndWildProfiles)
{
    LensProfile wild = wholeLens();
    wild.optics.ca = 30.0;
    wild.optics.distortion = -1e9;
    wild.optics.bloomSigma2 = 1e9;
    wild.optics.glowRadius = 1e9;
    wild.optics.vignettePower = -3.0;
    for (const Size size : {Size{1, 1}, Size{1, 70}, Size{500, 2}, Size{33, 33}})
        for (const LensProfile& lens : {wholeLens(), wild}) {
            const RGBImage out = Optics::apply(scene(size.width, size.height), lens, {0.3f, 0.3f, 0.3f}, {});
            EXPECT_EQ(out.size(), size);
            for (const float v : out.data) ASSERT_TRUE(std::isfinite(v) && v >= 0.0f) << size.width;
        }
}

} // namespace
} // namespace tamlo
