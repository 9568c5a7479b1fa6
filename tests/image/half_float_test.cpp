#include "core/image/half_float.h"

#include <gtest/gtest.h>
#include <hwy/targets.h>

#include <cmath>
#include <limits>
#include <vector>

namespace tamlo {
namespace {

/// The value of a half, from its three fields.
double valueOf(std::uint16_t half)
{
    const int exponent = half >> 10 & 31, fraction = half & 1023;
    const double size =
        exponent == 0 ? std::ldexp(fraction, -24) : std::ldexp(1024 + fraction, exponent - 25);
    return half & 0x8000 ? -size : size;
}

TEST(HalfFloat, EveryHalfComesBackAndEveryFloatGoesToTheNearest)
{
    std::vector<std::uint16_t> halves, again;
    std::vector<float> floats, between;
    for (std::uint32_t h = 0; h < 0x7C00; ++h)
        for (const std::uint32_t sign : {0u, 0x8000u}) halves.push_back(static_cast<std::uint16_t>(h | sign));
    floats.resize(halves.size());
    again.resize(halves.size());
    for (const std::int64_t target : hwy::SupportedAndGeneratedTargets()) {
        hwy::SetSupportedTargetsForTest(target);
        HalfFloat::decode(halves, floats);
        for (std::size_t i = 0; i < halves.size(); ++i) ASSERT_EQ(floats[i], valueOf(halves[i])) << halves[i];
        HalfFloat::encode(floats, again);
        EXPECT_EQ(again, halves);
        // Half way between two neighbours goes to the even one, a hair beyond to the nearer.
        for (std::uint16_t h = 0; h < 0x7BFF; h += 13) {
            const double low = valueOf(h), high = valueOf(static_cast<std::uint16_t>(h + 1));
            const float middle = static_cast<float>((low + high) / 2);
            const float cases[] = {middle, std::nextafter(middle, 1e9f), std::nextafter(middle, -1e9f)};
            std::uint16_t got[3];
            HalfFloat::encode(cases, got);
            EXPECT_EQ(got[0], h % 2 ? h + 1 : h);
            EXPECT_EQ(got[1], h + 1);
            EXPECT_EQ(got[2], h);
        }
    }
    hwy::SetSupportedTargetsForTest(0);
}

TEST(HalfFloat, NothingFiniteBecomesEndless)
{
    constexpr float kEndless = std::numeric_limits<float>::infinity();
    const float in[] = {65'504, 65'519, 65'520, 1e30f, kEndless, -1e30f, -kEndless, -0.0f, 1e-30f, NAN};
    std::vector<std::uint16_t> halves(std::size(in));
    HalfFloat::encode(in, halves);
    const std::vector<std::uint16_t> most{0x7BFF, 0x7BFF, 0x7BFF, 0x7BFF, 0x7BFF,
                                          0xFBFF, 0xFBFF, 0x8000, 0,      0x7E00};
    EXPECT_EQ(halves, most);
    std::vector<float> out(1);
    HalfFloat::decode({halves.data() + 9, 1}, out);
    EXPECT_TRUE(std::isnan(out[0]));
}

} // namespace
} // namespace tamlo
