// Convolution by Fourier transform against the sum written out.
#include "core/image/fft_convolve.h"
#include "core/image/tamlo_error.h"
#include "platform/fft.h"
#include "tests/image/test_pictures.h"

#include <thread>

namespace tamlo {
namespace {

Plane directly(const Plane& image, const Plane& kernel)
{
    Plane out(image.width, image.height);
    float* to = out.mutableData();
    for (std::int64_t y = 0; y < image.height; ++y)
        for (std::int64_t x = 0; x < image.width; ++x) {
            double sum = 0.0;
            for (std::int64_t j = 0; j < kernel.height; ++j)
                for (std::int64_t i = 0; i < kernel.width; ++i) {
                    const std::int64_t sx = x + (kernel.width - 1) / 2 - i;
                    const std::int64_t sy = y + (kernel.height - 1) / 2 - j;
                    if (sx < 0 || sy < 0 || sx >= image.width || sy >= image.height) continue;
                    sum += static_cast<double>(kernel.at(i, j)) * image.at(sx, sy);
                }
            to[y * image.width + x] = static_cast<float>(sum);
        }
    return out;
}

double peakOf(const Plane& plane)
{
    double peak = 0.0;
    for (const float v : plane.data) peak = std::max(peak, std::abs(static_cast<double>(v)));
    return peak;
}

TEST(FFTConvolve, EqualsTheDirectSum)
{
    struct Case {
        Size image, kernel;
    };
    const std::vector<Case> cases{
        {{1, 1}, {1, 1}},    {{1, 1}, {4, 7}},    {{64, 64}, {1, 1}},   {{60, 58}, {5, 7}},
        {{61, 47}, {8, 8}},  {{33, 70}, {2, 31}}, {{17, 23}, {40, 51}}, {{128, 32}, {33, 33}},
        {{131, 67}, {9, 1}}, {{5, 90}, {64, 3}},  {{250, 3}, {101, 4}},
    };
    for (const auto& [size, kernelSize] : cases) {
        SCOPED_TRACE(::testing::Message() << size.width << "x" << size.height << " by " << kernelSize.width
                                          << "x" << kernelSize.height);
        const Plane image = test::testPlane(size.width, size.height);
        const Plane kernel =
            test::testPlane(kernelSize.width, kernelSize.height).map([](float v) { return v * 0.1f - 0.3f; });
        const Plane expected = directly(image, kernel);
        const Plane got = FFTConvolve::same(image, kernel);
        ASSERT_EQ(got.size(), image.size());
        double worst = 0.0;
        for (std::size_t i = 0; i < got.data.size(); ++i)
            worst = std::max(worst, std::abs(static_cast<double>(got.data[i]) - expected.data[i]));
        EXPECT_LE(worst, 1e-5 * peakOf(expected));
    }
}

TEST(FFTConvolve, ADeltaMovesByItsDistanceFromTheCentre)
{
    const Plane image = test::testPlane(37, 29);
    Plane centred(5, 5), corner(5, 5);
    centred.mutableData()[12] = 1.0f;
    corner.mutableData()[0] = 1.0f;
    const Plane still = FFTConvolve::same(image, centred);
    const Plane moved = FFTConvolve::same(image, corner);
    for (std::int64_t y = 0; y < 29; ++y)
        for (std::int64_t x = 0; x < 37; ++x) {
            EXPECT_NEAR(still.at(x, y), image.at(x, y), 1e-4);
            EXPECT_NEAR(moved.at(x, y), x + 2 < 37 && y + 2 < 29 ? image.at(x + 2, y + 2) : 0.0f, 1e-4);
        }
}

TEST(FFTConvolve, AChannelIsAPlaneAndTheWorkspaceServesAgain)
{
    const RGBImage image = test::testImage(83, 61);
    RGBImage convolved = image;
    FFTConvolve::Workspace workspace;
    for (const int c : {0, 2, 1}) {
        const Plane kernel = test::testPlane(9 + 14 * c, 7 + 10 * c);
        FFTConvolve::sameChannel(convolved, c, kernel, workspace);
        EXPECT_TRUE(test::sameBytes(convolved.plane(c), FFTConvolve::same(image.plane(c), kernel)));
    }
}

TEST(FFTConvolve, SameBytesForAnyWorkersAndASharedImageStays)
{
    const Plane image = test::testPlane(301, 223), kernel = test::testPlane(91, 77), kept = image;
    const Plane before = image.map([](float v) { return v; });
    test::expectSameForAnyWorkers([&] { return FFTConvolve::same(image, kernel); });
    EXPECT_TRUE(test::sameBytes(kept, before));
}

TEST(FFTConvolve, PlansAreMadeInManyThreadsAtATime)
{
    const Plane kernel = test::testPlane(3, 3);
    std::vector<Plane> results(8);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < results.size(); ++i)
        threads.emplace_back([&, i] {
            for (std::int64_t n = 400; n < 440; n += 3)
                results[i] = FFTConvolve::same(test::testPlane(n, n / 2), kernel);
        });
    for (std::thread& thread : threads) thread.join();
    for (const Plane& result : results) EXPECT_TRUE(test::sameBytes(result, results[0]));
}

TEST(FFTConvolve, RefusesAKernelOfNothing)
{
    EXPECT_THROW(FFTConvolve::same(Plane(3, 3), Plane()), TamloError);
    EXPECT_EQ(FFTConvolve::same(Plane(), Plane(1, 1)).count(), 0);
}

TEST(FftLength, IsQuickAndNotFarAbove)
{
    for (std::int64_t n = 1; n < 5000; ++n) {
        const std::int64_t length = platform::quickFftLength(n);
        ASSERT_GE(length, n);
        ASSERT_LE(static_cast<double>(length), static_cast<double>(n) * 1.2 + 1.0) << n;
    }
    EXPECT_EQ(platform::quickFftLength(1024), 1024);
}

} // namespace
} // namespace tamlo
