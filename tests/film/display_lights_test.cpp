// Lights of a display picture: who gets how much, who gets none, and that a size changes nothing.
#include "core/film/light/display_lights.h"
#include "core/image/resample.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <gtest/gtest.h>

namespace tamlo {
namespace {

struct Spot {
    double x, y, radius; ///< fractions of the width
    Vec3f colour;
};

RGBImage drawn(std::int64_t width, std::int64_t height, const Vec3f& ground, const std::vector<Spot>& spots)
{
    RGBImage image(width, height, ground);
    float* p = image.mutableData();
    const double w = static_cast<double>(width);
    for (std::int64_t y = 0; y < height; ++y)
        for (std::int64_t x = 0; x < width; ++x, p += 3)
            for (const Spot& spot : spots) {
                const double away = std::hypot((static_cast<double>(x) + 0.5) / w - spot.x,
                                               (static_cast<double>(y) + 0.5) / w - spot.y);
                const float cover = static_cast<float>(std::clamp((spot.radius - away) * w + 0.5, 0.0, 1.0));
                for (std::size_t c = 0; c < 3; ++c) p[c] += cover * (spot.colour[c] - p[c]);
            }
    return image;
}

Vec3f at(const RGBImage& image, double x, double y)
{
    const double w = static_cast<double>(image.width);
    return image.pixel(static_cast<std::int64_t>(x * w), static_cast<std::int64_t>(y * w));
}

bool same(const RGBImage& a, const RGBImage& b)
{
    return std::equal(a.data.begin(), a.data.end(), b.data.begin(), b.data.end());
}

constexpr Vec3f kDark{0.02f, 0.02f, 0.02f}, kWhite{1, 1, 1};

TEST(DisplayLights, TheSmallerTheMore)
{
    EXPECT_EQ(DisplayLights::gainOf(0.0), 16.0);
    EXPECT_NEAR(DisplayLights::gainOf(DisplayLights::lampArea), 1.5, 1e-9);
    EXPECT_EQ(DisplayLights::gainOf(0.5), 1.0);
    double last = 16.0;
    for (double area = 1e-6; area < 1.0; area *= 1.05) {
        const double gain = DisplayLights::gainOf(area);
        EXPECT_LE(gain, last);
        EXPECT_GT(gain, last * 0.9) << "no step at " << area;
        last = gain;
    }
}

TEST(DisplayLights, GivesALampItsLightAndItsColour)
{
    const Vec3f red{1.0f, 0.1f, 0.05f};
    const RGBImage frame = drawn(600, 400, kDark, {{0.2, 0.3, 0.004, kWhite}, {0.6, 0.3, 0.01, red}});
    const RGBImage lit = DisplayLights::restore(frame, 1.0);
    EXPECT_GT(at(lit, 0.2, 0.3)[0], 8.0f);
    EXPECT_NEAR(at(lit, 0.2, 0.3)[2], at(lit, 0.2, 0.3)[0], 0.1f) << "a white lamp stays white";
    const Vec3f tube = at(lit, 0.6, 0.3);
    EXPECT_GT(tube[0], 4.0f);
    EXPECT_NEAR(tube[1] / tube[0], 0.1f, 0.01f);
    EXPECT_NEAR(tube[2] / tube[0], 0.05f, 0.01f);
    for (std::int64_t i = 0; i < frame.pixelCount(); ++i) {
        const float* p = frame.data.data() + i * 3;
        if (std::max({p[0], p[1], p[2]}) > DisplayLights::touchedFrom) continue;
        for (int c = 0; c < 3; ++c) ASSERT_EQ(lit.data[static_cast<std::size_t>(i * 3 + c)], p[c]);
    }
}

TEST(DisplayLights, AWhiteCoreTakesTheColourOfItsRim)
{
    const RGBImage frame =
        drawn(600, 400, kDark, {{0.5, 0.3, 0.012, {0.8f, 0.1f, 0.05f}}, {0.5, 0.3, 0.008, kWhite}});
    const Vec3f core = at(DisplayLights::restore(frame, 1.0), 0.5, 0.3);
    EXPECT_GT(core[0], 2.0f * core[1]);
    EXPECT_GT(core[1], core[2]);
}

TEST(DisplayLights, LeavesWhatIsNoLampAsItIs)
{
    RGBImage odd = drawn(64, 64, kDark, {});
    odd.mutableData()[300] = std::numeric_limits<float>::quiet_NaN();
    odd.mutableData()[600] = -1.0f;
    const std::vector<RGBImage> frames{
        RGBImage(1, 1, kWhite),
        RGBImage(300, 200, kWhite),
        RGBImage(300, 200, Vec3f{0.18f, 0.18f, 0.18f}),
        RGBImage(300, 200),
        drawn(300, 200, kDark, {{0.5, 0.3, 0.2, kWhite}}),                   // a sky
        drawn(300, 200, kDark, {{0.5, 0.3, 0.01, {0.88f, 0.88f, 0.88f}}}),   // white that does not clip
        drawn(300, 200, {0.9f, 0.9f, 0.9f}, {{0.5, 0.3, 0.01, kWhite}}),     // a speck on a white wall
        drawn(300, 200, {0.1f, 0.25f, 0.1f}, {{0.5, 0.3, 0.01, {1, 0, 0}}}), // a red flower in a meadow
        drawn(300, 200, kDark, {{0.5, 0.3, 0.01, kWhite}, {0.2, 0.3, 0.01, {5, 5, 5}}}), // scene light
    };
    for (std::size_t i = 0; i < frames.size(); ++i)
        EXPECT_TRUE(same(DisplayLights::restore(frames[i], 1.0), frames[i])) << i;
    const RGBImage kept = DisplayLights::restore(odd, 1.0);
    for (std::size_t i = 0; i < odd.data.size(); ++i) EXPECT_EQ(std::isnan(kept.data[i]), i == 300);
    const RGBImage lamp = drawn(300, 200, kDark, {{0.5, 0.3, 0.01, kWhite}});
    EXPECT_TRUE(same(DisplayLights::restore(lamp, 0.0), lamp));
    EXPECT_TRUE(DisplayLights::measure(RGBImage()).empty());
}

TEST(DisplayLights, AreTheSameAtEverySize)
{
    const std::vector<Spot> spots{{0.2, 0.3, 0.01, kWhite}, {0.7, 0.4, 0.02, {1.0f, 0.2f, 0.1f}}};
    const RGBImage large = drawn(2400, 1600, kDark, spots), small = drawn(600, 400, kDark, spots);
    const DisplayLights::Map map = DisplayLights::measure(large);
    const RGBImage a = pilResize(DisplayLights::restore(large, map, 1.0), small.size(), Resampling::box);
    const RGBImage kept = DisplayLights::restore(small, map, 1.0), own = DisplayLights::restore(small, 1.0);
    for (const Spot& spot : spots) {
        const float light = at(a, spot.x, spot.y)[0];
        EXPECT_NEAR(at(kept, spot.x, spot.y)[0], light, 0.02f * light);
        EXPECT_NEAR(at(own, spot.x, spot.y)[0], light, 0.05f * light);
    }
}

} // namespace
} // namespace tamlo
