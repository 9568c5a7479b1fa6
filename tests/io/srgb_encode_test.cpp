#include "core/io/srgb_encode.h"

#include "core/image/zcolor.h"
#include "platform/worker_pool.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>

namespace tamlo {
namespace {

/// The formula as it is told, in 32-bit floats.
int told(float value, float alpha, float maximum)
{
    if (std::isnan(value)) return 0;
    const float c = std::min(std::max(value, 0.0f), 1.0f);
    const float s =
        (c <= 0.0031308f ? c * 12.92f : std::pow(std::max(c, 0.000001f), 0.41666666f) * 1.055f - 0.055f) *
        alpha;
    return static_cast<int>(std::min(std::max(s, 0.0f), 1.0f) * maximum + 0.5f);
}

std::vector<std::uint8_t> throughTable(std::vector<float> values)
{
    values.resize((values.size() + 2) / 3 * 3);
    const RGBImage image(std::ssize(values) / 3, 1, FloatBuffer(std::span<const float>(values)));
    const PageBuffer bytes = ImageWriter::encodeSRGB8RGB(image);
    const auto view = bytes.bytes(values.size());
    return {view.begin(), view.end()};
}

TEST(SrgbEncode, TableIsTheFormulaAtEveryStepAndBetween)
{
    std::vector<float> values;
    for (int step = 1; step <= 255; ++step) { // every threshold, found by bisection, and 64 floats around it
        std::uint32_t low = 0, high = std::bit_cast<std::uint32_t>(1.0f);
        while (high - low > 1) {
            const std::uint32_t middle = (low + high) / 2;
            (told(std::bit_cast<float>(middle), 1.0f, 255.0f) < step ? low : high) = middle;
        }
        for (std::uint32_t bits = high - 32; bits < high + 32; ++bits)
            values.push_back(std::bit_cast<float>(bits));
    }
    for (std::uint32_t bits = 0; bits < 0x40000000u; bits += 997)
        values.push_back(std::bit_cast<float>(bits));
    const float inf = std::numeric_limits<float>::infinity();
    for (const float v : {0.0f, -0.0f, -1.0f, 1.0f, 2.0f, 1e30f, inf, -inf, std::nanf(""), -std::nanf(""),
                          std::numeric_limits<float>::denorm_min(), 0.0031308f, 0x1p-13f})
        values.push_back(v);
    const std::vector<std::uint8_t> bytes = throughTable(values);
    for (std::size_t i = 0; i < values.size(); ++i)
        ASSERT_EQ(bytes[i], told(values[i], 1.0f, 255.0f))
            << values[i] << " bits " << std::hex << std::bit_cast<std::uint32_t>(values[i]);
}

TEST(SrgbEncode, ByteGoesBackToTheLightItCameFrom)
{
    std::vector<float> values;
    for (int i = 0; i < 256; ++i) values.push_back(ZColor::srgbToLinear(static_cast<float>(i) / 255.0f));
    const std::vector<std::uint8_t> bytes = throughTable(values);
    for (std::size_t i = 0; i < 256; ++i) EXPECT_EQ(bytes[i], i);
    EXPECT_EQ(throughTable({0.18f})[0], 118);
}

TEST(SrgbEncode, AlphaPremultipliesInSrgbAndSixteenBitsFollowTheFormula)
{
    const float alphas[] = {0.0f, 0.25f, 0.5f, 1.0f, 2.0f, -1.0f, std::nanf("")};
    const float lights[] = {0.0f, 0.001f, 0.18f, 0.5f, 1.0f, 3.0f};
    for (const float a : alphas) {
        for (const float v : lights) {
            const RGBImage image(1, 1, Vec3f{v, v / 2, 0.0f});
            const Plane alpha(1, 1, a);
            std::vector<std::uint8_t> out(4);
            ImageWriter::encodeSRGB8(image, out, &alpha);
            const float clamped = a > 0.0f ? std::min(a, 1.0f) : 0.0f;
            EXPECT_EQ(out[0], told(v, clamped, 255.0f));
            EXPECT_EQ(out[1], told(v / 2, clamped, 255.0f));
            EXPECT_EQ(out[3], static_cast<int>(clamped * 255.0f + 0.5f));
        }
    }
    for (float v = -0.1f; v < 1.1f; v += 0.00037f)
        EXPECT_EQ(ImageWriter::srgbStep(v, 1.0f, 65535.0f), told(v, 1.0f, 65535.0f));
    EXPECT_EQ(ImageWriter::srgbStep(1.0f, 1.0f, 65535.0f), 65535);
}

TEST(SrgbEncode, WorkersDoNotShow)
{
    RGBImage image(301, 400);
    float* to = image.mutableData();
    for (std::int64_t i = 0; i < 301 * 400 * 3; ++i) to[i] = static_cast<float>(i % 1009) / 900.0f;
    std::vector<std::vector<std::uint8_t>> results;
    for (const int workers : {1, 2, 7}) {
        const platform::WorkerLimit limit(workers);
        const PageBuffer rgba = ImageWriter::encodeSRGB8(image);
        const auto view = rgba.bytes(301 * 400 * 4);
        results.emplace_back(view.begin(), view.end());
    }
    EXPECT_EQ(results[0], results[1]);
    EXPECT_EQ(results[0], results[2]);
    EXPECT_EQ(results[0][3], 255);
}

} // namespace
} // namespace tamlo
