// Growth grain against its slow twin, and its promises of sameness: any workers, any cut of the lattice, one
// negative at two pitches.
#include "tests/film/growth_twin.h"
#include "tests/support/pictures.h"

#include <limits>

#include <gtest/gtest.h>
#include <hwy/targets.h>

namespace tamlo {
namespace {

using test::GrainFilm;
using test::grainFilms;

/// Densities from below dmin to above dmax, with steps and slopes.
RGBImage testDensity(const GrainFilm& film, std::int64_t width, std::int64_t height)
{
    RGBImage image(width, height);
    float* p = image.mutableData();
    test::Lcg random(3);
    for (std::int64_t i = 0; i < image.pixelCount(); ++i)
        for (std::size_t c = 0; c < 3; ++c) {
            const double span = film.dmaxs[c] - film.dmins[c];
            const double along = static_cast<double>(i % width) / static_cast<double>(width);
            p[i * 3 + static_cast<std::int64_t>(c)] =
                static_cast<float>(film.dmins[c] + span * (1.1 * along - 0.05) + 0.1 * random.next());
        }
    return image;
}

Grain::GrowthFrame frameOf(const GrainFilm& film, double formatLongUm, Grain::GrowthZone zone)
{
    Grain::GrowthFrame frame;
    frame.grain = film.grain;
    frame.formatLongUm = formatLongUm;
    frame.seed = 4'000'000'001u;
    frame.zone = zone;
    return frame;
}

Plane layerOf(const GrainFilm& film, const RGBImage& density, std::size_t c, const Grain::GrowthFrame& frame)
{
    if (film.silver) return Grain::growthBW(density.plane(0), film.dmins[0], film.dmaxs[0], frame);
    return Grain::growthColor(density, film.dmins, film.dmaxs, frame).plane(static_cast<int>(c));
}

/// At most one pixel in a thousand may differ by more than 1e-4, where a count fell on its edge; the mean by
/// 2e-5.
void expectTwins(const Plane& fast, const Plane& slow, const std::string& what)
{
    ASSERT_EQ(fast.size(), slow.size());
    std::int64_t apart = 0;
    for (std::int64_t i = 0; i < fast.count(); ++i)
        apart += !(std::abs(fast.data.data()[i] - slow.data.data()[i]) <= 1e-4f);
    EXPECT_LE(apart * 1000, fast.count()) << what;
    EXPECT_NEAR(fast.mean(), slow.mean(), 2e-5) << what;
    EXPECT_GT(slow.std(), 0.05) << what;
}

TEST(GrowthTwin, FullAndAggregateAreTheSlowModel)
{
    struct Case {
        std::int64_t width, height;
        double pxUm, sizeMult;
    };
    // One site a pixel, three, seven; a wide and a tall frame; clumps and clouds wider and narrower.
    const Case cases[]{{70, 45, 2.0, 1.0}, {37, 60, 5.5, 1.0}, {20, 14, 14.0, 0.3}, {33, 18, 4.0, 2.5}};
    for (const GrainFilm& film : grainFilms())
        for (const Case& at : cases) {
            const RGBImage density = testDensity(film, at.width, at.height);
            for (const auto zone : {Grain::GrowthZone::full, Grain::GrowthZone::aggregate}) {
                Grain::GrowthFrame frame =
                    frameOf(film, at.pxUm * static_cast<double>(std::max(at.width, at.height)), zone);
                frame.sizeMult = at.sizeMult;
                const std::size_t c = film.silver ? 0 : 2;
                const test::Twin twin = test::twinOf(film, density.plane(static_cast<int>(c)), c, frame);
                const bool full = zone == Grain::GrowthZone::full;
                const Plane slow = full ? twin.full() : twin.aggregate();
                for (const std::int64_t target : hwy::SupportedAndGeneratedTargets()) {
                    hwy::SetSupportedTargetsForTest(target);
                    expectTwins(layerOf(film, density, c, frame), slow,
                                std::string(film.name) + (full ? " full " : " aggregate ") +
                                    std::to_string(at.pxUm) + " on " + hwy::TargetName(target));
                }
                hwy::SetSupportedTargetsForTest(0);
            }
        }
}

TEST(GrowthTwin, DrawsAreTheScalarForms)
{
    // Every uniform the hash can give, coarsely, against a definition of the quantile by its inverse.
    for (int i = 0; i <= 4096; ++i) {
        const float p = static_cast<float>(i) / 4096.0f;
        const double held = std::clamp<double>(p, 1e-7, 1.0 - 1e-7);
        EXPECT_NEAR(0.5 * std::erfc(-Grain::normalQuantile(p) / std::sqrt(2.0)), held, 2e-5) << p;
    }
    for (const double x : {-0.9999998, -0.7, -0.2, 0.0, 0.4, 0.500001, 0.99, 0.9999998})
        EXPECT_NEAR(std::erf(Grain::erfinvD(x)), x, 1e-14);
    EXPECT_EQ(Grain::erfinvD(1.0), std::numeric_limits<double>::infinity());
    EXPECT_EQ(Grain::erfinvD(-2.0), -std::numeric_limits<double>::infinity());

    // Poisson counts: the distribution by summing its terms, below 8; the edge itself is the normal form.
    for (const float lam : {0.0f, 0.05f, 1.0f, 4.0f, 7.99f}) {
        double term = std::exp(-static_cast<double>(lam)), cumulated = term;
        int count = 0;
        for (float u = 0.001f; u < 1.0f; u += 0.013f) {
            while (u > cumulated && count < 16) cumulated += term *= static_cast<double>(lam) / ++count;
            EXPECT_EQ(Grain::poisson(u, lam), static_cast<float>(count)) << lam << " " << u;
        }
    }
    EXPECT_EQ(Grain::poisson(0.5f, 8.0f), 8.0f);
    EXPECT_EQ(Grain::poisson(1.0f, 7.9f), 16.0f); // the inversion counts no further
    EXPECT_EQ(Grain::poisson(1.0f, 8.0f), std::round(8.0f + std::sqrt(8.0f) * Grain::normalQuantile(1.0f)));
}

TEST(GrowthSameness, WorkersAndCutsOfTheLatticeDoNotShow)
{
    for (const GrainFilm& film : grainFilms()) {
        const RGBImage density = testDensity(film, 90, 71);
        for (const auto zone : {Grain::GrowthZone::full, Grain::GrowthZone::aggregate}) {
            Grain::GrowthFrame frame = frameOf(film, 5.5 * 90, zone);
            frame.tiling = {64, 4000};
            test::expectSameForAnyWorkers([&] { return layerOf(film, density, 1, frame); });
            const Plane reference = layerOf(film, density, 1, frame);
            for (const GrowthTiling& tiling :
                 {GrowthTiling{}, GrowthTiling{1, 1}, GrowthTiling{100, 2000}, GrowthTiling{37, 100'000}}) {
                frame.tiling = tiling;
                EXPECT_TRUE(test::sameBytes(reference.data, layerOf(film, density, 1, frame).data))
                    << film.name << " strips of " << tiling.stripSites << ", bands of " << tiling.bandSites;
            }
        }
    }
}

// One site a pixel and four, on one lattice: the coarse pixels are the means of the fine ones.
TEST(GrowthSameness, TwoPitchesOnOneLatticeAreOneNegative)
{
    GrowthLatticePlan plan;
    planClumps(plan, 4.2);
    plan.cloud = growthKernel(1.3);
    plan.layer = GrowthDyeParams{0.2f, 2.0f, 99u, 0.1f, 0.05f};
    const auto light = [&](std::int64_t scale) {
        const Plane density(160 / scale, 96 / scale, 1.3f);
        plan.scale = scale;
        Plane out(density.width, density.height);
        growthTransmission({density.data.data(), 1, density.size()}, plan, {}, out);
        return out;
    };
    const Plane fine = light(1), coarse = light(4);
    for (std::int64_t i = 0; i < coarse.count(); ++i) {
        double sum = 0.0;
        for (std::int64_t j = 0; j < 16; ++j)
            sum += fine.at(i % coarse.width * 4 + j % 4, i / coarse.width * 4 + j / 4);
        ASSERT_NEAR(coarse.data.data()[i], sum / 16.0, 1e-6);
    }
}

TEST(GrowthEdges, OddFramesAndNumbersGiveFiniteDensities)
{
    const std::optional<double> absent;
    struct Numbers {
        std::optional<double> sizeUm, amount;
        double ampMult, sizeMult;
    };
    const Numbers table[]{{absent, absent, 1, 1},
                          {0.0, absent, 1, 0},
                          {1e9, absent, 1, 1e9},
                          {absent, 1e9, 1e9, 1},
                          {absent, 0.0, 1, 1}};
    for (const Size size : {Size{16, 16}, Size{40, 1}, Size{1, 9}, Size{1, 1}})
        for (const Numbers& numbers : table)
            for (const auto zone :
                 {Grain::GrowthZone::automatic, Grain::GrowthZone::full, Grain::GrowthZone::aggregate}) {
                Grain::GrowthFrame frame;
                frame.grain.sizeUm = numbers.sizeUm;
                frame.grain.amount = numbers.amount;
                frame.ampMult = numbers.ampMult;
                frame.sizeMult = numbers.sizeMult;
                frame.zone = zone;
                frame.formatLongUm = 4.0 * static_cast<double>(std::max(size.width, size.height));
                const Plane silver = Grain::growthBW(Plane(size.width, size.height, 1.0f), 0.2, 2.2, frame);
                const RGBImage dye = Grain::growthColor(RGBImage(size.width, size.height, {1.0f, 0.1f, 9.0f}),
                                                        {0.2, 0.2, 0.2}, {2.2, 2.2, 2.2}, frame);
                for (const float v : silver.data) ASSERT_TRUE(v >= 0.2f && v <= 2.2001f) << v;
                for (const float v : dye.data) {
                    const bool off = numbers.amount == 0.0;
                    ASSERT_TRUE(off || (v >= 0.1999f && v <= 2.2001f)) << v;
                }
            }
}

TEST(GrowthEdges, HugePixelsNanAndNoGrain)
{
    const GrainFilm& film = grainFilms()[1];
    Grain::GrowthFrame frame = frameOf(film, 36'000.0, Grain::GrowthZone::full);
    // A row of pixels a millimetre wide: hundreds of thousands of sites in each.
    const Plane row = Grain::growthBW(Plane(36, 1, 1.28f), 0.28, 2.45, frame);
    EXPECT_NEAR(row.mean(), 1.28 + 0.0217, 0.004);
    EXPECT_LT(row.std(), 0.01);
    // A lattice longer than half a metre is not built, whatever the zone.
    frame.formatLongUm = 1e12;
    EXPECT_NEAR(Grain::growthBW(Plane(16, 16, 1.28f), 0.28, 2.45, frame).mean(), 1.28 + 0.0217, 0.004);

    frame.formatLongUm = 64.0;
    Plane holes(16, 16, 1.28f);
    holes.mutableData()[40] = std::numeric_limits<float>::quiet_NaN();
    holes.mutableData()[90] = -std::numeric_limits<float>::infinity();
    holes.mutableData()[91] = 1e30f;
    for (const auto zone : {Grain::GrowthZone::full, Grain::GrowthZone::aggregate}) {
        frame.zone = zone;
        for (const float v : Grain::growthBW(holes, 0.28, 2.45, frame).data)
            ASSERT_TRUE(v >= 0.27f && v < 2.46f);
    }

    // Nothing to lay: no amount, no frame size, or, in the automatic zone, pixels in which it would not show.
    const Plane flat(16, 16, 1.28f);
    const auto unchanged = [&](const Grain::GrowthFrame& f) {
        return test::sameBytes(flat.data, Grain::growthBW(flat, 0.28, 2.45, f).data);
    };
    frame.zone = Grain::GrowthZone::automatic;
    frame.formatLongUm = 0.0;
    EXPECT_TRUE(unchanged(frame));
    frame.formatLongUm = 36'000.0;
    EXPECT_TRUE(unchanged(frame));
    frame.zone = Grain::GrowthZone::aggregate;
    EXPECT_FALSE(unchanged(frame));
    frame.ampMult = 0.0;
    EXPECT_TRUE(unchanged(frame));
}

} // namespace
} // namespace tamlo
