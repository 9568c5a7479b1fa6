#include "core/film/emulsion/dev_field.h"
#include "tests/support/pictures.h"

namespace tamlo {
namespace {

constexpr double kUm = 36.0; // a 36 mm frame of 1,000 pixels

Plane fieldOf(Size size, double pxUm, const std::string& format, double amount = 1.0)
{
    GrainRNG rng(7);
    return *DevField::field(size, pxUm, format, amount, rng);
}

TEST(DevField, IsTheSamePatternAtAnyResolution)
{
    const Plane small = fieldOf({500, 334}, 72.0, "135");
    const Plane large = fieldOf({1000, 668}, 36.0, "135");
    double worst = 0.0;
    for (std::int64_t y = 10; y < small.height - 10; ++y)
        for (std::int64_t x = 10; x < small.width - 10; ++x) {
            const double mean = 0.25 * (large.at(2 * x, 2 * y) + large.at(2 * x + 1, 2 * y) +
                                        large.at(2 * x, 2 * y + 1) + large.at(2 * x + 1, 2 * y + 1));
            worst = std::max(worst, std::abs(mean - small.at(x, y)));
        }
    EXPECT_LT(worst, 0.01);
}

TEST(DevField, StandsUprightAsItLies)
{
    const Plane lying = fieldOf({300, 200}, 120.0, "135");
    const Plane upright = fieldOf({200, 300}, 120.0, "135");
    ASSERT_EQ(upright.size(), (Size{200, 300}));
    for (std::int64_t y = 0; y < 300; y += 7)
        for (std::int64_t x = 0; x < 200; x += 7) ASSERT_EQ(upright.at(x, y), lying.at(y, x));
}

TEST(DevField, IsStrongestAtTheFilmsEdges)
{
    const Plane field = fieldOf({1000, 667}, kUm, "120");
    const auto rowMean = [&](std::int64_t y) {
        double sum = 0.0;
        for (std::int64_t x = 0; x < field.width; ++x) sum += field.at(x, y);
        return sum / static_cast<double>(field.width);
    };
    EXPECT_GT(rowMean(2), rowMean(333) + 0.05);
    EXPECT_GT(rowMean(664), rowMean(333) + 0.05);
}

TEST(DevField, JetsRepeatWithThePerforations)
{
    // The share of the row's variation at one cycle a perforation is far higher with jets than without.
    const auto power = [](const Plane& field) {
        double re = 0.0, im = 0.0;
        for (std::int64_t x = 0; x < field.width; ++x) {
            const double phase = 2.0 * 3.14159265358979 * static_cast<double>(x) * kUm / 1000.0 / 4.75;
            re += field.at(x, 3) * std::cos(phase);
            im += field.at(x, 3) * std::sin(phase);
        }
        return std::hypot(re, im) / static_cast<double>(field.width);
    };
    EXPECT_GT(power(fieldOf({1000, 667}, kUm, "135")), 3.0 * power(fieldOf({1000, 667}, kUm, "120")));
}

TEST(DevField, RunsOnlyWhereATankIs)
{
    RenderOptions options;
    options.devUneven = 1.0;
    FilmProfile film;
    for (const auto& [type, runs] : {std::pair{"color", true},
                                     {"bw", true},
                                     {"slide", true},
                                     {"instant", false},
                                     {"collodion", false}}) {
        film.type = type;
        EXPECT_EQ(DevField::unevenField({64, 48}, 500.0, "135", film, options).has_value(), runs) << type;
    }
    film.type = "color";
    options.devUneven = 0.00005;
    EXPECT_FALSE(DevField::unevenField({64, 48}, 500.0, "135", film, options));
    options.devUneven = 1.0;
    const Plane first = *DevField::unevenField({64, 48}, 500.0, "135", film, options);
    options.seedVariants = SeedVariants{{"frame", 3}};
    EXPECT_TRUE(
        test::sameBytes(first.data, DevField::unevenField({64, 48}, 500.0, "135", film, options)->data));
    options.seedVariants = SeedVariants{{"develop", 1}};
    EXPECT_FALSE(
        test::sameBytes(first.data, DevField::unevenField({64, 48}, 500.0, "135", film, options)->data));
}

// A strip of one pixel's height is 720 m of film, with 151,579 holes.
TEST(DevField, LaysAThinPictureOutInBoundedWork)
{
    const Plane strip = fieldOf({30'000, 1}, 24'000.0, "135");
    EXPECT_EQ(strip.size(), (Size{30'000, 1}));
    EXPECT_GT(strip.std(), 0.0);
    EXPECT_LE(std::abs(strip.mean()), 0.8);
}

TEST(DevField, LeavesTheBaseAloneAndTurnsRoundOnASlide)
{
    const Plane field(2, 1, 0.8f);
    const RGBImage density(2, 1, {0.2f, 1.2f, 1.2f});
    const RGBImage negative =
        DevField::apply(density, {0.2f, 0.2f, 0.2f}, field, DevField::layerWColor, 1.0f);
    EXPECT_EQ(negative.pixel(0, 0)[0], 0.2f);
    EXPECT_NEAR(negative.pixel(0, 0)[1], 0.2f + 1.8f, 1e-6f);
    EXPECT_NEAR(negative.pixel(0, 0)[2], 0.2f + 1.92f, 1e-6f);
    const RGBImage slide = DevField::apply(density, {0.2f, 0.2f, 0.2f}, field, {1, 1, 1}, -1.0f);
    EXPECT_NEAR(slide.pixel(0, 0)[1], 0.2f + 0.2f, 1e-6f);
    EXPECT_NEAR(DevField::apply(Plane(2, 1, 1.2f), 0.2f, field).at(0, 0), 2.0f, 1e-6f);
}

} // namespace
} // namespace tamlo
