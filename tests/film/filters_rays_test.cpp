// Star and streak filters: where the light goes, and that none is lost.
#include "core/film/filters/filters.h"
#include "core/film/filters/ray_kernel.h"
#include "core/image/fft_convolve.h"
#include "core/image/resample.h"
#include "core/image/resample_bands.h"
#include "tests/support/pictures.h"

#include <hwy/targets.h>

#include <cmath>
#include <numbers>
#include <set>

namespace tamlo {
namespace {

using test::sameBytes;

FilterProfile starOf(std::int64_t rays, double width = 0.0015, double length = 0.14)
{
    FilterProfile profile;
    profile.type = "rays";
    profile.rays = rays;
    profile.widthFrac = width;
    profile.lengthFrac = length;
    profile.strength = 0.3;
    return profile;
}

/// A lamp of 20 pixels a side in the middle of the dark.
RGBImage lamp(std::int64_t side, float light = 5.0f)
{
    RGBImage image(side, side, Vec3f{0.01f, 0.01f, 0.01f});
    float* p = image.mutableData();
    for (std::int64_t y = side / 2 - 10; y < side / 2 + 10; ++y)
        for (std::int64_t x = side / 2 - 10; x < side / 2 + 10; ++x)
            for (std::int64_t c = 0; c < 3; ++c) p[(y * side + x) * 3 + c] = light;
    return image;
}

double energy(const RGBImage& image, int channel)
{
    const Plane plane = image.plane(channel);
    return plane.mean() * static_cast<double>(plane.count());
}

/// Bright directions on a circle round the centre.
int raysOnCircle(const RGBImage& image, double radius)
{
    constexpr int kSteps = 1440;
    std::vector<bool> bright;
    const double centre = static_cast<double>(image.width - 1) / 2.0;
    for (int i = 0; i < kSteps; ++i) {
        const double a = 2.0 * std::numbers::pi * i / kSteps;
        bright.push_back(image.pixel(std::lround(centre + radius * std::cos(a)),
                                     std::lround(centre + radius * std::sin(a)))[1] > 0.02f);
    }
    int rises = 0;
    for (int i = 0; i < kSteps; ++i) rises += !bright[i] && bright[(i + 1) % kSteps];
    return rises;
}

TEST(RayFilter, TwoRaysAFamily)
{
    const std::pair<std::int64_t, int> rows[] = {{1, 2}, {2, 2}, {3, 2}, {4, 4}, {5, 4}, {6, 6}, {8, 8}};
    for (const auto& [rays, expected] : rows) {
        const RGBImage out = Filters::applyRays(lamp(500), starOf(rays), 10.0);
        EXPECT_EQ(raysOnCircle(out, 40.0), expected) << rays << " rays";
    }
    FilterProfile absent = starOf(4);
    absent.rays.reset();
    EXPECT_EQ(raysOnCircle(Filters::applyRays(lamp(500), absent, 10.0), 40.0), 4);
}

TEST(RayFilter, EnergyIsKeptAndTheSourceDims)
{
    // Full size and the reduced grid.
    for (const double width : {0.0015, 0.012}) {
        const RGBImage before = lamp(640);
        const RGBImage after = Filters::applyRays(before, starOf(6, width), 0.0);
        for (int c = 0; c < 3; ++c)
            EXPECT_NEAR(energy(after, c) / energy(before, c), 1.0, 2e-3) << width << " " << c;
        EXPECT_LT(after.pixel(320, 320)[1], 4.5f);
        EXPECT_GT(after.pixel(320 + 40, 320)[1], 0.011f);
    }
}

TEST(RayFilter, DispersionMakesRedRaysLongAndBlueRaysShort)
{
    const auto reach = [](const RGBImage& image, std::size_t c) {
        std::int64_t x = 300;
        while (x < 599 && image.pixel(x, 300)[c] > 0.0104f) ++x;
        return static_cast<double>(x - 300);
    };
    FilterProfile star = starOf(2, 0.0015, 0.3);
    star.decay = 2.0; // an end that can be seen
    const RGBImage spread = Filters::applyRays(lamp(600), star, 0.0);
    EXPECT_NEAR(reach(spread, 0), 10 + 180 * 0.62 / 0.55, 4.0);
    EXPECT_NEAR(reach(spread, 1), 10 + 180, 4.0);
    EXPECT_NEAR(reach(spread, 2), 10 + 180 * 0.45 / 0.55, 4.0);
    star.dispersion = 0.0;
    const RGBImage white = Filters::applyRays(lamp(600), star, 0.0);
    EXPECT_EQ(reach(white, 0), reach(white, 2));
}

TEST(RayFilter, TheReducedGridAgreesWithTheFullOne)
{
    FilterProfile star = starOf(4, 0.0115, 0.12); // 8 pixels wide: drawn on a grid of 261
    star.dispersion = 0.0;
    const RGBImage before = lamp(700);
    const Plane got = Filters::applyRays(before, star, 20.0).plane(1);
    const Plane source = before.plane(1);
    const Plane light = source.map([](float v) { return std::max(v - 0.8f, 0.0f); });
    const Plane rays = FFTConvolve::same(light, Filters::rayKernel({84.0, 2, 20.0, 0.32, 8.05}));
    double difference = 0.0, moved = 0.0, most = 0.0;
    for (std::size_t i = 0; i < got.data.size(); ++i) {
        const double full = source.data[i] + 0.3 * (rays.data[i] - light.data[i]);
        difference += std::abs(got.data[i] - full);
        moved += std::abs(full - source.data[i]);
        most = std::max(most, std::abs(got.data[i] - full));
    }
    EXPECT_LT(difference, 0.03 * moved);
    EXPECT_LT(most, 0.02);
}

TEST(RayFilter, NothingBrightLeavesEveryBit)
{
    RGBImage dim = test::noisePicture(120, 80, 6, 3.0f); // up to 0.51
    dim.mutableData()[17] = 0.8f;                        // at the threshold
    dim.mutableData()[18] = -0.25f;
    EXPECT_EQ(Filters::peak(dim), 0.8f);
    EXPECT_TRUE(sameBytes(Filters::applyRays(dim, starOf(4), 0.0).data, dim.data));
    const RGBImage bright = lamp(100);
    FilterProfile off = starOf(4);
    off.strength = 1e-5;
    EXPECT_TRUE(sameBytes(Filters::applyRays(bright, off, 0.0).data, bright.data));
    for (const std::int64_t w : {1, 3, 64, 1001}) {
        RGBImage peaks(w, 1);
        peaks.mutableData()[w * 3 - 1] = 3.0f;
        EXPECT_EQ(Filters::peak(peaks), 3.0f);
    }
}

TEST(RayFilter, ATintOfNothingLeavesItsChannel)
{
    FilterProfile streak = starOf(2);
    streak.tint = Vec3d{0.0, 0.5, 1.0};
    streak.dispersion = 0.0;
    RGBImage before = lamp(200);
    before.mutableData()[0] = -0.5f;
    const RGBImage after = Filters::applyRays(before, streak, 0.0);
    EXPECT_TRUE(sameBytes(after.plane(0).data, before.plane(0).data));
    for (const std::int64_t x : {100, 115}) {
        const float green = after.pixel(x, 100)[1] - before.pixel(x, 100)[1];
        EXPECT_GT(std::abs(green), 0.01f);
        EXPECT_NEAR(after.pixel(x, 100)[2] - before.pixel(x, 100)[2], 2.0f * green, 1e-4);
    }
}

TEST(RayFilter, SameBytesForAnyWorkersAndVectors)
{
    const RGBImage image = test::noisePicture(431, 305, 8);
    const auto make = [&] { return Filters::applyRays(image, starOf(6, 0.01), 5.0); };
    test::expectSameForAnyWorkers(make);
    const RGBImage reference = make();
    for (const std::int64_t target : hwy::SupportedAndGeneratedTargets()) {
        hwy::SetSupportedTargetsForTest(target);
        EXPECT_TRUE(sameBytes(make().data, reference.data)) << hwy::TargetName(target);
        hwy::SetSupportedTargetsForTest(0);
    }
    for (const Size size : {Size{0, 0}, Size{1, 1}, Size{1, 3000}, Size{2000, 2}}) {
        const RGBImage out =
            Filters::applyRays(RGBImage(size.width, size.height, Vec3f{2, 3, 0}), starOf(8, 0.006), 0.0);
        EXPECT_EQ(out.size(), size);
        for (const float v : out.data) ASSERT_TRUE(std::isfinite(v));
    }
}

TEST(RayKernel, IsItsDefinition)
{
    using Filters::RayShape;
    const RayShape shapes[] = {{20.0, 1, 0.0, 0.32, 0.6},
                               {17.4, 2, 0.0, 0.3, 1.5},
                               {30.6, 3, 12.5, 0.45, 3.0},
                               {11.0, 4, 90.0, 0.28, 0.7},
                               {0.2, 0, 0.0, 0.0, 0.6}};
    for (const RayShape& shape : shapes) {
        const Plane kernel = Filters::rayKernel(shape);
        const std::int64_t r = std::max<std::int64_t>(std::lrint(shape.length), 1);
        ASSERT_EQ(kernel.width, 2 * r + 1);
        std::vector<double> cells;
        double sum = 0.0;
        for (std::int64_t dy = -r; dy <= r; ++dy)
            for (std::int64_t dx = -r; dx <= r; ++dx) {
                double cell = 0.0;
                const auto n = static_cast<int>(std::max<std::int64_t>(shape.families, 1));
                for (int k = 0; k < n; ++k) {
                    const double theta = (shape.angleDeg + k * 180.0 / n) * std::numbers::pi / 180.0;
                    const double x = static_cast<double>(dx), y = static_cast<double>(dy);
                    const double along = std::abs(std::sin(theta) * y + std::cos(theta) * x);
                    const double across = std::cos(theta) * y - std::sin(theta) * x;
                    if (along <= shape.length)
                        cell += std::exp(-along / std::max(shape.length * shape.tau, 0.001)) *
                                std::exp(-across * across / (2.0 * shape.sigma * shape.sigma));
                }
                cells.push_back(cell);
                sum += cell;
            }
        for (std::size_t i = 0; i < cells.size(); ++i)
            ASSERT_NEAR(kernel.data[i], cells[i] / sum, 1e-7) << shape.length << " cell " << i;
    }
}

TEST(RayKernel, TheCacheIsBounded)
{
    const auto first = Filters::cachedRayKernel({5.0, 2, 0.0, 0.3, 1.0});
    EXPECT_EQ(Filters::cachedRayKernel({5.0, 2, 0.0, 0.3, 1.0}), first);
    EXPECT_NE(Filters::cachedRayKernel({5.0, 2, std::nextafter(0.0, 1.0), 0.3, 1.0}), first);
    std::set<std::size_t> counts;
    for (int i = 0; i < 40; ++i) {
        Filters::cachedRayKernel({6.0 + i, 2, 0.0, 0.3, 1.0});
        counts.insert(Filters::keptRayKernels());
    }
    EXPECT_EQ(*counts.rbegin(), Filters::kKeptRayKernels);
    EXPECT_EQ(*counts.begin(), 1u);
    EXPECT_EQ(first->width, 11); // what a render holds stays
}

TEST(ResampleBands, AreTheResamplerToTheBit)
{
    const RGBImage image = test::noisePicture(97, 1201, 2);
    for (const Size size : {Size{31, 400}, Size{97, 500}, Size{40, 1201}, Size{97, 1201}, Size{130, 1500}}) {
        const RGBImage expected = pilResize(image, size, Resampling::bilinear);
        const auto rows = [&](std::int64_t y, float* to) { std::copy_n(image.row(y), 97 * 3, to); };
        EXPECT_TRUE(sameBytes(reduceInBands<RGBImage>(image.size(), size, rows).data, expected.data));
        RGBImage enlarged(size.width, size.height);
        float* to = enlarged.mutableData();
        enlargeByRows<RGBImage>(image, size, [&](std::int64_t y, const float* row) {
            std::copy_n(row, size.width * 3, to + y * size.width * 3);
        });
        EXPECT_TRUE(sameBytes(enlarged.data, expected.data)) << size.width;
    }
}

} // namespace
} // namespace tamlo
