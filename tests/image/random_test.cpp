// Expected numbers were worked out from the published definitions with arbitrary-precision integers and
// 64-bit floats in Python.
#include "core/image/position_hash.h"
#include "core/image/random.h"

#include <array>
#include <cmath>
#include <set>

#include <gtest/gtest.h>

namespace tamlo {
namespace {

constexpr std::uint64_t kMax = ~std::uint64_t{0};

struct GrainCase {
    std::uint64_t seed;
    std::array<std::uint64_t, 3> raw;
    double unit;
    std::array<float, 4> normals;
};

const GrainCase kGrainCases[] = {
    {0,
     {0x422ea740d0977210, 0xe062b061b42e2928, 0x5a071fc5930841b6},
     0x1.08ba9d03425dep-2,
     {1.1740369f, -1.1520277f, 1.4450964f, 0.042588953f}},
    {12345,
     {0x90b6115441078f2c, 0x68b3f159529919ab, 0xbdc514bab540895b},
     0x1.216c22a8820f2p-1,
     {-0.89821196f, 0.57800525f, -0.67847574f, 0.3720236f}},
    {kMax,
     {0x3752bdaf106afaec, 0x4441cbc0ffebc80f, 0x2a4eaa9ffeb08f42},
     0x1.ba95ed7883580p-3,
     {-0.18255633f, 1.7408743f, -1.1615393f, 1.5004207f}},
};

TEST(GrainRNG, KnownValues)
{
    for (const GrainCase& c : kGrainCases) {
        GrainRNG raw(c.seed), unit(c.seed), normal(c.seed);
        for (const std::uint64_t expected : c.raw) EXPECT_EQ(raw.nextUInt64(), expected);
        EXPECT_EQ(unit.random(), c.unit);
        for (const float expected : c.normals) EXPECT_FLOAT_EQ(normal.nextNormal(), expected);
    }
    GrainRNG ints(12345);
    for (const std::int64_t expected : {1, 2, 6, -2}) EXPECT_EQ(ints.integers(-5, 12), expected);
}

TEST(GrainRNG, DrawsOnlyWhatItNeeds)
{
    const std::uint64_t third = kGrainCases[1].raw[2];
    GrainRNG rng(12345);
    rng.nextNormal(); // two draws
    rng.nextNormal(); // the spare
    EXPECT_EQ(rng.integers(4, 5), 4);
    EXPECT_EQ(rng.integers(4, -100), 4);
    EXPECT_EQ(rng.nextUInt64(), third);
    GrainRNG between(12345);
    between.nextNormal();
    between.nextUInt64();
    EXPECT_FLOAT_EQ(between.nextNormal(), kGrainCases[1].normals[1]); // other draws leave the spare alone
}

TEST(GrainRNG, UnitStaysAboveZeroAndNormalsAreNormal)
{
    GrainRNG rng(99);
    double sum = 0.0, squares = 0.0;
    constexpr int kDraws = 100'000;
    for (int i = 0; i < kDraws; ++i) {
        const double u = rng.random(), between = rng.uniform(-2.0, 3.0);
        EXPECT_TRUE(u > 0.0 && u <= 1.0 && between > -2.0 && between <= 3.0);
        const double n = rng.nextNormal();
        sum += n;
        squares += n * n;
    }
    EXPECT_NEAR(sum / kDraws, 0.0, 0.015);
    EXPECT_NEAR(squares / kDraws, 1.0, 0.02);
}

TEST(CalibRNG, KnownValuesAndAnyWindow)
{
    const auto seedOf = [](std::initializer_list<std::uint64_t> key) {
        return CalibRNG::seed(std::span(key.begin(), key.size()));
    };
    EXPECT_EQ(seedOf({}), 0u);
    EXPECT_EQ(seedOf({1}), 0xe4d971771b652c20u);
    EXPECT_EQ(seedOf({kMax, 0}), 0xa636eeb448342d16u);
    const std::uint64_t seed = seedOf({1, 2, 3});
    ASSERT_EQ(seed, 0xeabcfa2c623c5a59u);
    EXPECT_EQ(CalibRNG::uniforms(seed, -1, 4), (std::vector<float>{1674087 * 0x1p-24f, 8136429 * 0x1p-24f,
                                                                   3458575 * 0x1p-24f, 7023020 * 0x1p-24f}));
    EXPECT_EQ(CalibRNG::uniforms(seed, 1000, 1)[0], 1768978 * 0x1p-24f);
    const std::vector<float> normals = CalibRNG::normals(seed, 0, 3);
    const float expected[] = {0.32730603f, -1.0516701f, 1.0983135f};
    for (std::size_t i = 0; i < 3; ++i) EXPECT_FLOAT_EQ(normals[i], expected[i]);
    EXPECT_EQ(CalibRNG::normals(seed, 2, 1)[0], normals[2]);
    CalibRNG stream(seed);
    EXPECT_EQ(stream.standardNormal(2), (std::vector<float>{normals[0], normals[1]}));
    EXPECT_TRUE(stream.standardNormal(0).empty());
    EXPECT_EQ(stream.standardNormal(1)[0], normals[2]);
}

TEST(FrameSeed, Crc32CheckValues)
{
    EXPECT_EQ(FrameSeed::crc32("123456789"), 0xCBF43926u);
    EXPECT_EQ(FrameSeed::crc32(""), 0u);
    EXPECT_EQ(FrameSeed::crc32("The quick brown fox jumps over the lazy dog"), 0x414FA339u);
}

TEST(PositionHash, KnownValues)
{
    EXPECT_EQ(hash32(0), 0u);
    EXPECT_EQ(hash32(1), 0x688990c0u);
    EXPECT_EQ(hash32(0xDEADBEEF), 0xe628c683u);
    EXPECT_NEAR(gaussNoise(3, 5, 7, 2), 0.7517670895, 2e-6);
    EXPECT_NEAR(gaussNoise(-4, -9, 0xFFFFFFFF, 11), -0.5903425116, 2e-6);
    EXPECT_EQ(growth_hash(7, -3, 5, 0x5B1), 0xfda0732eu);
    EXPECT_EQ(growth_hash(0xFFFFFFFF, 100'000, -1, 9), 0xbe0973e7u);
    EXPECT_NEAR(growth_normal(0, 0, 0), -0.3237133213, 2e-6);
    EXPECT_NEAR(growth_normal(7, -3, 5), 0.1363419860, 2e-6);
    EXPECT_EQ(growth_unit(0), 0x1p-25f);
    EXPECT_LE(growth_unit(0xFFFFFFFF), 1.0f);
}

// Normal, and without a trace of its neighbour, its layer or its seed, also at negative positions.
TEST(PositionHash, FieldsAreNormalAndIndependent)
{
    constexpr int kSide = 200;
    double squares[2] = {}, sums[2] = {}, right = 0.0, below = 0.0, layers = 0.0, seeds = 0.0;
    for (int y = -kSide / 2; y < kSide / 2; ++y)
        for (int x = -kSide / 2; x < kSide / 2; ++x) {
            const double n = gaussNoise(x, y, 42, 3), g = growth_normal(42, x, y);
            ASSERT_TRUE(std::isfinite(n) && std::isfinite(g));
            sums[0] += n;
            sums[1] += g;
            squares[0] += n * n;
            squares[1] += g * g;
            right += n * gaussNoise(x + 1, y, 42, 3);
            below += g * growth_normal(42, x, y + 1);
            layers += n * gaussNoise(x, y, 42, 4);
            seeds += n * gaussNoise(x, y, 43, 3);
        }
    constexpr double kCount = kSide * kSide, kBound = 0.025; // five standard errors
    for (const int i : {0, 1}) {
        EXPECT_NEAR(sums[i] / kCount, 0.0, kBound);
        EXPECT_NEAR(squares[i] / kCount, 1.0, 2.0 * kBound);
    }
    for (const double product : {right, below, layers, seeds}) EXPECT_NEAR(product / kCount, 0.0, kBound);
}

} // namespace
} // namespace tamlo
