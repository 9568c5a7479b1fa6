// Colour, diffusion and graduated filters, and how names and slots lead to them.
#include "core/film/filters/filters.h"
#include "core/film/light/source_light.h"
#include "core/image/gaussian.h"
#include "core/image/zcolor.h"
#include "tests/support/pictures.h"

#include <cmath>
#include <filesystem>
#include <fstream>

namespace tamlo {
namespace {

using test::sameBytes;
using test::worstDifference;

FilmProfile filmOf(const char* type, OptTriple weights = {})
{
    FilmProfile film;
    film.type = type;
    film.spectralWeights = weights;
    return film;
}

FilterProfile cutOf(Vec3d gains)
{
    FilterProfile profile;
    profile.type = "cut";
    profile.gains = gains;
    return profile;
}

TEST(CutFilter, KeepsTheFilmsGrey)
{
    struct Case {
        FilmProfile film;
        Vec3d weights; ///< need not sum to 1
    };
    const Vec3d luma{ZColor::luma[0], ZColor::luma[1], ZColor::luma[2]};
    const Case cases[] = {{filmOf("color"), luma},
                          {filmOf("slide", Vec3d{1, 0, 0}), luma},
                          {filmOf("collodion", Vec3d{0, 0, 1}), luma},
                          {filmOf("bw"), {0.3, 0.36, 0.34}},
                          {filmOf("bw", Vec3d{2, 1, 5}), {2, 1, 5}}};
    for (const auto& [film, w] : cases)
        for (const Vec3d& gains : {Vec3d{0.98, 0.86, 0.1}, Vec3d{0.92, 0.05, 0.01}, Vec3d{0, 0, 0.9}})
            for (const double amount : {0.3, 1.0}) {
                const Vec3f g = Filters::cutGains(cutOf(gains), amount, film);
                const double grey = (w[0] * g[0] + w[1] * g[1] + w[2] * g[2]) / (w[0] + w[1] + w[2]);
                EXPECT_NEAR(grey, 1.0, 1e-6) << film.type << " " << gains[2] << " " << amount;
            }
}

TEST(CutFilter, GainsOfAYellowFilterAndTheAmountsLimits)
{
    const FilterProfile yellow = cutOf({0.98, 0.86, 0.1});
    const FilmProfile film = filmOf("color");
    const Vec3f full = Filters::cutGains(yellow, 1.0, film);
    EXPECT_NEAR(full[0], 1.1798, 5e-5);
    EXPECT_NEAR(full[1], 1.0353, 5e-5);
    EXPECT_NEAR(full[2], 0.1204, 5e-5);
    EXPECT_EQ(Filters::cutGains(yellow, 1.7, film), full);
    EXPECT_EQ(Filters::cutGains(yellow, 0.0, film), (Vec3f{1, 1, 1}));
    EXPECT_EQ(Filters::cutGains(yellow, -2.0, film), (Vec3f{1, 1, 1}));

    const RGBImage image = test::noisePicture(31, 17, 5);
    const RGBImage cut = Filters::applyCut(image, yellow, 1.0, film);
    for (std::size_t i = 0; i < cut.data.size(); ++i) EXPECT_EQ(cut.data[i], image.data[i] * full[i % 3]);
    EXPECT_TRUE(sameBytes(Filters::applyCut(image, yellow, 0.0, film).data, image.data));
}

FilterProfile diffusionOf(double bloom, double haze, double radius = 0.05, double threshold = 0.55)
{
    FilterProfile profile;
    profile.type = "diffusion";
    profile.bloom = bloom;
    profile.haze = haze;
    profile.radiusFrac = radius;
    profile.threshold = threshold;
    return profile;
}

TEST(DiffusionFilter, BloomIsTheBlurOfWhatIsAboveTheThreshold)
{
    // Sigmas of 3.5 and 18 pixels, for a tall frame too: the width counts, not the long side.
    for (const auto& [size, radius] :
         {std::pair{Size{70, 160}, 0.05}, std::pair{Size{360, 90}, 0.05}, std::pair{Size{9, 400}, 0.0001}}) {
        const RGBImage image = test::noisePicture(size.width, size.height, 3);
        const RGBImage got = Filters::applyDiffusion(image, diffusionOf(0.4, 0.0, radius), 0.5);
        const double sigma = std::max(radius * static_cast<double>(size.width), 1.0);
        for (int c = 0; c < 3; ++c) {
            const Plane light = image.plane(c);
            const Plane glow =
                blurChannel(light.map([](float v) { return std::max(v - 0.55f, 0.0f); }), sigma);
            const Plane channel = got.plane(c);
            for (std::size_t i = 0; i < light.data.size(); ++i)
                ASSERT_NEAR(channel.data[i], light.data[i] + 0.2f * glow.data[i],
                            1e-6f * (1.0f + light.data[i]))
                    << size.width << " channel " << c;
        }
    }
}

TEST(DiffusionFilter, HazeLiftsDarkPlacesTowardTheMean)
{
    RGBImage image(64, 64, Vec3f{0.02f, 0.02f, 0.02f});
    float* p = image.mutableData();
    for (std::int64_t i = 0; i < 64 * 32 * 3; ++i) p[i] = 0.5f;
    const double h = 0.8 * 0.09;
    const RGBImage got = Filters::applyDiffusion(image, diffusionOf(0.3, 0.09), 0.8);
    EXPECT_NEAR(got.pixel(5, 5)[0], 0.5 * (1 - 0.5 * h) + h * 0.26, 1e-6);
    EXPECT_NEAR(got.pixel(5, 60)[2], 0.02 * (1 - 0.5 * h) + h * 0.26, 1e-6);

    // With bloom the mean is taken after it.
    const RGBImage bright = test::noisePicture(96, 64, 9);
    const RGBImage bloomed = Filters::applyDiffusion(bright, diffusionOf(0.3, 0.0), 1.0);
    const RGBImage both = Filters::applyDiffusion(bright, diffusionOf(0.3, 0.1), 1.0);
    const double mean = SourceLight::meanLuma(bloomed);
    EXPECT_NEAR(both.data[100], bloomed.data[100] * 0.95 + 0.1 * mean, 1e-5 * (1.0 + mean));

    const RGBImage noise = test::noisePicture(40, 30, 2);
    EXPECT_TRUE(sameBytes(Filters::applyDiffusion(noise, diffusionOf(0.00001, 0), 0.5).data, noise.data));
}

FilterProfile gradOf(double stops, double edge, const char* kind = "edge")
{
    FilterProfile profile;
    profile.type = "grad";
    profile.grad = kind;
    profile.stops = stops;
    profile.edgeFrac = edge;
    return profile;
}

/// Density in stops that the filter lays at a pixel, by its green channel.
double densityAt(const RGBImage& filtered, std::int64_t x, std::int64_t y)
{
    return -std::log2(filtered.pixel(x, y)[1]);
}

TEST(GradFilter, HitsItsDensityAboveAndBelowTheLine)
{
    const RGBImage white(101, 61, Vec3f{1, 1, 1});
    const RGBImage hard = Filters::applyGrad(white, gradOf(2.0, 0.06), 0.0, 0.0);
    EXPECT_EQ(densityAt(hard, 7, 0), 2.0);
    EXPECT_EQ(densityAt(hard, 7, 26), 2.0); // 4 rows, 0.079 of half the long side, above the line
    EXPECT_EQ(densityAt(hard, 7, 34), 0.0);
    EXPECT_NEAR(densityAt(hard, 7, 30), 1.0, 1e-6);
    EXPECT_TRUE(sameBytes(Filters::applyGrad(white, gradOf(2.0, 0.06), -2.0, 0.0).data, white.data));

    const RGBImage moved = Filters::applyGrad(white, gradOf(3.0, 0.2), 0.1, 0.0); // line 5.05 px lower
    const double t = 0.5 + 0.1 / 0.4;
    EXPECT_NEAR(densityAt(moved, 50, 30), 3.0 * t * t * (3 - 2 * t), 1e-5);

    // A quarter turn clockwise takes the dense side from the top to the right.
    const RGBImage turned = Filters::applyGrad(white, gradOf(2.0, 0.06), 0.0, 90.0);
    EXPECT_EQ(densityAt(turned, 100, 3), 2.0);
    EXPECT_EQ(densityAt(turned, 0, 55), 0.0);
    EXPECT_NEAR(densityAt(turned, 50, 40), 1.0, 1e-5);
}

TEST(GradFilter, ColourAndReverse)
{
    FilterProfile tobacco = gradOf(9.0, 0.1);
    tobacco.stopsRgb = Vec3d{0.5, 1.0, 2.0};
    const RGBImage white(80, 80, Vec3f{1, 1, 1});
    const Vec3f top = Filters::applyGrad(white, tobacco, 0.0, 11.0).pixel(40, 0);
    EXPECT_EQ(top, (Vec3f{std::exp2(-0.5f), 0.5f, 0.25f}));

    // The step and the thinning away together reach 0.946 just above the line.
    const double stops = 2.0, edge = 0.06;
    const RGBImage tall(41, 2001, Vec3f{1, 1, 1});
    const RGBImage reverse = Filters::applyGrad(tall, gradOf(stops, edge, "reverse"), 0.0, 0.0);
    EXPECT_NEAR(densityAt(reverse, 20, 1000) / stops, 0.5, 1e-5);
    EXPECT_NEAR(densityAt(reverse, 20, 940) / stops, 0.942, 1e-3);
    EXPECT_NEAR(densityAt(reverse, 20, 0) / stops, 0.45, 1e-3);
    EXPECT_EQ(densityAt(reverse, 20, 1100), 0.0);
    double most = 0.0;
    for (std::int64_t y = 0; y < 1000; ++y) most = std::max(most, densityAt(reverse, 20, y) / stops);
    EXPECT_NEAR(most, 0.946, 1e-3);
}

/// A folder of filters beside those of the program.
class FilterNames : public ::testing::Test {
protected:
    void SetUp() override
    {
        std::filesystem::create_directories(root_ / "filters");
        write("red", R"({"type": "cut", "gains": [0.9, 0.1, 0.1]})");
        write("mist", R"({"type": "diffusion", "haze": 0.1})");
        write("plain", R"({"haze": 0.1})");
        write("dusk", R"({"type": "grad", "stops": 1})");
        write("star", R"({"type": "rays"})");
        write("faint", R"({"type": "rays", "strength": 0.00001})");
        write("broken", "{");
    }
    void TearDown() override { std::filesystem::remove_all(root_); }
    void write(const std::string& name, const std::string& text)
    {
        std::ofstream(root_ / "filters" / (name + ".json")) << text;
    }
    ProfileStore store() const { return ProfileStore(root_); }

    std::filesystem::path root_ =
        std::filesystem::temp_directory_path() /
        ("tamlo-filters-" + std::string(::testing::UnitTest::GetInstance()->current_test_info()->name()));
};

TEST_F(FilterNames, TheOldSlotGoesWhereItBelongs)
{
    struct Case {
        OptText filter, cut, diffusion;
        Filters::Slots expected;
    };
    const Case cases[] = {
        {{}, {}, {}, {{}, 0.2, {}, 0.3}},
        {"red", {}, {}, {"red", 0.7, {}, 0.3}},
        {"mist", {}, {}, {{}, 0.2, "mist", 0.7}},
        {"plain", "", "", {{}, 0.2, "plain", 0.7}},
        {"dusk", {}, {}, {{}, 0.2, "dusk", 0.7}},
        {"nobody", {}, {}, {{}, 0.2, "nobody", 0.7}},
        {"broken", {}, {}, {{}, 0.2, "broken", 0.7}},
        {"red", {}, "mist", {{}, 0.2, "mist", 0.3}},
        {"mist", "red", {}, {"red", 0.2, {}, 0.3}},
        {"", "red", "mist", {"red", 0.2, "mist", 0.3}},
    };
    for (const Case& each : cases) {
        RenderOptions options;
        options.filter = each.filter;
        options.filterCut = each.cut;
        options.filterDiffusion = each.diffusion;
        options.filterAmount = 0.7;
        options.filterCutAmount = 0.2;
        options.filterDiffusionAmount = 0.3;
        EXPECT_EQ(Filters::slots(options, store()), each.expected) << each.filter.value_or("none");
    }
}

TEST_F(FilterNames, UnknownNamesAreSkippedAndKnownOnesRun)
{
    const RGBImage image = test::noisePicture(40, 30, 7);
    const FilmProfile film = filmOf("color");
    RenderOptions options;
    for (const char* name : {"", "nobody", "broken", "../x"}) {
        options.filterCut = options.filterDiffusion = options.filterRays = options.filterGrad = name;
        EXPECT_TRUE(sameBytes(Filters::applyFront(image, options, store(), true).data, image.data));
        EXPECT_TRUE(sameBytes(Filters::apply(image, film, options, store()).data, image.data));
        EXPECT_FALSE(Filters::raysProfile(options, store()));
    }
    options.filterRays = "faint";
    EXPECT_FALSE(Filters::raysProfile(options, store()));
    options.filterRays = "star";
    EXPECT_TRUE(Filters::raysProfile(options, store()));

    options.filterGrad = "dusk";
    options.filterCut = "red";
    options.filterDiffusion = "mist";
    options.filterDiffusionAmount = 0.5;
    RGBImage front = Filters::applyGrad(image, *Filters::resolve("dusk", store()), 0.0, 0.0);
    EXPECT_TRUE(sameBytes(Filters::applyFront(image, options, store(), false).data, front.data));
    front = Filters::applyRays(std::move(front), *Filters::resolve("star", store()), 0.0);
    EXPECT_TRUE(sameBytes(Filters::applyFront(image, options, store(), true).data, front.data));
    RGBImage rear = Filters::applyCut(image, *Filters::resolve("red", store()), 1.0, film);
    rear = Filters::applyDiffusion(std::move(rear), *Filters::resolve("mist", store()), 0.5);
    EXPECT_TRUE(sameBytes(Filters::apply(image, film, options, store()).data, rear.data));
}

TEST(Filters, SameBytesForAnyWorkersAndNothingOnTinyFrames)
{
    const RGBImage image = test::noisePicture(613, 301, 4);
    test::expectSameForAnyWorkers([&] {
        RGBImage out = Filters::applyGrad(image, gradOf(2.0, 0.3, "reverse"), 0.1, 33.0);
        out = Filters::applyCut(std::move(out), cutOf({0.9, 0.2, 0.1}), 0.8, filmOf("bw"));
        return Filters::applyDiffusion(std::move(out), diffusionOf(0.3, 0.1), 1.0);
    });
    for (const Size size : {Size{0, 0}, Size{1, 1}, Size{1, 7}, Size{9, 1}}) {
        RGBImage tiny(size.width, size.height, Vec3f{0.9f, 2.0f, 0.1f});
        tiny = Filters::applyGrad(std::move(tiny), gradOf(2.0, 0.3), 0.0, 20.0);
        tiny = Filters::applyDiffusion(std::move(tiny), diffusionOf(0.3, 0.1), 1.0);
        EXPECT_EQ(tiny.size(), size);
        for (const float v : tiny.data) EXPECT_TRUE(std::isfinite(v));
    }
}

} // namespace
} // namespace tamlo
