// Noise fields against the scalar hash, the closed forms of filtered white noise, and plain sums.
#include "core/image/position_hash.h"
#include "core/image/resample.h"
#include "core/process/noise/noise_fields.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tamlo {
namespace {

constexpr NoiseKey kKey{0x51AC1234, 20};

double correlation(const Plane& a, const Plane& b)
{
    const double ma = a.mean(), mb = b.mean();
    double ab = 0.0, aa = 0.0, bb = 0.0;
    for (std::size_t i = 0; i < a.data.size(); ++i) {
        ab += (a.data[i] - ma) * (b.data[i] - mb);
        aa += (a.data[i] - ma) * (a.data[i] - ma);
        bb += (b.data[i] - mb) * (b.data[i] - mb);
    }
    return ab / std::sqrt(aa * bb);
}

/// Correlation of a field with itself, lag pixels along the rows.
double lagged(const Plane& field, std::int64_t lag)
{
    double sum = 0.0, squares = 0.0;
    for (std::int64_t y = 0; y < field.height; ++y)
        for (std::int64_t x = 0; x + lag < field.width; ++x) {
            sum += static_cast<double>(field.at(x, y)) * field.at(x + lag, y);
            squares += static_cast<double>(field.at(x, y)) * field.at(x, y);
        }
    return sum / squares;
}

TEST(NoiseFields, DrawsTheScalarHashAtEveryPixel)
{
    for (const std::int64_t width : {1, 7, 15, 16, 17, 33}) {
        const Plane noise = noisePlane({width, 5}, kKey);
        for (std::int64_t y = 0; y < 5; ++y)
            for (std::int64_t x = 0; x < width; ++x)
                ASSERT_NEAR(noise.at(x, y),
                            gaussNoise(static_cast<std::int32_t>(x), static_cast<std::int32_t>(y), kKey.seed,
                                       kKey.layer),
                            2e-6)
                    << width << ": " << x << ", " << y;
    }
}

TEST(NoiseFields, NormalisesToUnitDeviationAndLeavesTheMean)
{
    Plane plane(90, 70);
    float* values = plane.mutableData();
    for (std::int64_t i = 0; i < plane.count(); ++i)
        values[i] = 1000.0f + 0.25f * static_cast<float>((i * 7919) % 64);
    const double ratio = plane.mean() / plane.std();
    const Plane unit = normalizePlane(plane);
    EXPECT_NEAR(unit.std(), 1.0, 1e-5);
    EXPECT_NEAR(unit.mean() / ratio, 1.0, 1e-6);

    const Plane even(20, 20, 0.3f);
    EXPECT_EQ(normalizePlane(even).at(7, 7), 0.3f);
}

TEST(NoiseFields, FilteredNoiseHasItsKnownCorrelation)
{
    // White noise under a Gaussian of sigma s is correlated by exp(-lag² / 4s²); a difference of two by the
    // same of three Gaussians.
    const Plane field = altField({700, 500}, 4.0, kKey);
    EXPECT_NEAR(field.std(), 1.0, 1e-5);
    for (const std::int64_t lag : {2, 4, 8})
        EXPECT_NEAR(lagged(field, lag), std::exp(-static_cast<double>(lag * lag) / 64.0), 0.04) << lag;

    const double a = 2.0, b = 5.0;
    const auto term = [](double variance, double lag) {
        return std::exp(-lag * lag / (2.0 * variance)) / variance;
    };
    const auto expected = [&](double lag) {
        const auto at = [&](double d) {
            return term(2 * a * a, d) + term(2 * b * b, d) - 2.0 * term(a * a + b * b, d);
        };
        return at(lag) / at(0.0);
    };
    const Plane difference = altDoG({700, 500}, a, b, kKey);
    for (const std::int64_t lag : {2, 5, 9})
        EXPECT_NEAR(lagged(difference, lag), expected(static_cast<double>(lag)), 0.04) << lag;

    // Drawn on a coarser grid, the same but for that grid's bilinear reading.
    const Plane coarse = altDoG({1400, 1000}, 4.0, 10.0, kKey);
    EXPECT_NEAR(coarse.std(), 1.0, 1e-5);
    EXPECT_NEAR(lagged(coarse, 10), expected(5.0), 0.03);
}

TEST(NoiseFields, LieInTheSameMillimetresAtEverySize)
{
    struct Case {
        double aUm;
        std::optional<double> bUm;
    };
    for (const Case& c : {Case{6000.0, {}}, Case{1300.0, {}}, Case{6050.0, 10450.0}, Case{700.0, 1960.0}}) {
        const auto field = [&](Size size, double pxUm) {
            return c.bUm ? NoiseField::difference(size, c.aUm, *c.bUm, pxUm, kKey)
                         : NoiseField::gaussian(size, c.aUm, pxUm, kKey);
        };
        const NoiseField coarse = field({400, 300}, 200.0), fine = field({800, 600}, 100.0);
        ASSERT_TRUE(coarse.onLattice());
        EXPECT_GT(correlation(coarse.plane(), pilResize(fine.plane(), 400, 300, Resampling::box)), 0.999)
            << c.aUm;
        EXPECT_NEAR(coarse.plane().std(), 1.0, 1e-5) << c.aUm;
    }
}

TEST(NoiseFields, LatticeAndPixelsAgreeWhereTheyMeet)
{
    // Just above and just below the switch the structure is the same in size, if not in its grain.
    const auto width = [](double sigmaUm) {
        return lagged(NoiseField::gaussian({600, 400}, sigmaUm, 100.0, kKey).plane(), 6);
    };
    EXPECT_FALSE(NoiseField::gaussian({600, 400}, 599.0, 100.0, kKey).onLattice());
    EXPECT_TRUE(NoiseField::gaussian({600, 400}, 601.0, 100.0, kKey).onLattice());
    EXPECT_NEAR(width(599.0), width(601.0), 0.03);
}

TEST(NoiseFields, PixelGainIsWhatAMeanOverThePixelLeaves)
{
    // A field drawn ten times finer, averaged over the pixel.
    for (const double pxUm : {100.0, 200.0, 330.0}) {
        const auto left = [&](const NoiseField& fine) {
            return pilResize(fine.plane(), 160, 120, Resampling::box).std();
        };
        const NoiseField one = NoiseField::gaussian({1600, 1200}, 90.0, pxUm / 10.0, kKey);
        EXPECT_NEAR(left(one) / gaussianPixelGain(90.0, pxUm), 1.0, 0.04) << pxUm;
        const NoiseField two = NoiseField::difference({1600, 1200}, 130.0, 360.0, pxUm / 10.0, kKey);
        EXPECT_NEAR(left(two) / differencePixelGain(130.0, 360.0, pxUm), 1.0, 0.04) << pxUm;
    }
    EXPECT_NEAR(gaussianPixelGain(1000.0, 1.0), 1.0, 1e-6);
    EXPECT_EQ(gaussianPixelGain(0.0, 50.0), 0.0);
}

TEST(NoiseFields, StayFiniteAtAbsurdSizesAndScales)
{
    struct Case {
        Size size;
        double sigmaUm, pxUm;
    };
    for (const Case& c : {Case{{1, 1}, 50.0, 60.0}, Case{{1, 1}, 1e9, 60.0}, Case{{30'000, 1}, 1100.0, 3.0},
                          Case{{1, 3000}, 1e9, 1e-9}, Case{{40, 30}, 1e-9, 1e-12}}) {
        for (const NoiseField& field :
             {NoiseField::gaussian(c.size, c.sigmaUm, c.pxUm, kKey),
              NoiseField::difference(c.size, c.sigmaUm, 2.5 * c.sigmaUm, c.pxUm, kKey)}) {
            const Plane plane = field.plane();
            ASSERT_EQ(plane.size(), c.size);
            for (const float v : plane.data) ASSERT_TRUE(std::isfinite(v)) << c.sigmaUm;
        }
    }
}

} // namespace
} // namespace tamlo
