// Plates through the whole pipeline: the tones of a view, the floor that it begins at, and one plate at every
// size and for any number of workers.
#include "core/film/emulsion/development.h"
#include "core/film/emulsion/halation.h"
#include "core/film/print/plate_positive.h"
#include "core/image/gaussian.h"
#include "core/image/resample.h"
#include "core/pipeline/film_dispatch.h"
#include "core/pipeline/pipeline.h"
#include "core/profiles/catalogue/profile_store.h"
#include "tests/support/pictures.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tamlo::test {
namespace {

const ProfileStore& store()
{
    return ProfileStore::shared();
}

struct PlatePrint {
    const char* film;
    const char* paper;
    double level; ///< by how much the mean may differ between sizes, encoded sRGB
};
constexpr PlatePrint kPrints[] = {{"collodion_wet", "ambrotype", 0.002},
                                  {"collodion_wet", "ferrotype", 0.002},
                                  {"collodion_wet", "albumen", 0.002},
                                  {"dryplate_ortho", "bw_neutral", 0.005}};

RGBImage printed(const RGBImage& source, const PlatePrint& print, const RenderOptions& options)
{
    return Pipeline::process(source, store().film(print.film), {}, store().paper(print.paper), options, {});
}

/// Soft shapes over eight stops with a few small lights: a scene that is one at every size.
RGBImage softScene(std::int64_t width, std::int64_t height)
{
    RGBImage scene = gaussianFilter(noisePicture(48, 32, 3, 12.0f), 0.8, EdgeMode::reflect);
    scene = pilResize(scene, 2048, 1366, Resampling::bicubic);
    float* p = scene.mutableData();
    for (std::int64_t i = 0; i < scene.pixelCount() * 3; ++i) p[i] = std::max(p[i], 0.002f);
    for (const auto& [x, y] : {std::pair{500, 400}, {1500, 900}})
        for (std::int64_t dy = 0; dy < 30; ++dy) std::fill_n(p + ((y + dy) * 2048 + x) * 3, 90, 30.0f);
    return pilResize(scene, width, height, Resampling::box);
}

double encoded(double v)
{
    return v <= 0.0031308 ? 12.92 * v : 1.055 * std::pow(v, 1.0 / 2.4) - 0.055;
}

TEST(PlatePrints, AreOnePlateAtEverySize)
{
    for (const PlatePrint& print : kPrints) {
        SCOPED_TRACE(testing::Message() << print.film << " on " << print.paper);
        RenderOptions options;
        options.format = FilmFormat::plate;
        options.frameSize = "quarter_plate";
        options.grainMult = 0.0;
        options.coat = "none";
        options.seed = 7;
        const RGBImage small = printed(softScene(450, 300), print, options);
        for (const std::int64_t width : {900, 2048}) {
            RGBImage large = printed(softScene(width, width * 300 / 450), print, options);
            large = pilResize(large, small.width, small.height, Resampling::box);
            double difference = 0.0, level = 0.0;
            for (std::size_t i = 0; i < small.data.size(); ++i) {
                const double d = encoded(large.data[i]) - encoded(small.data[i]);
                difference += std::abs(d);
                level += d;
            }
            const double n = static_cast<double>(small.data.size());
            EXPECT_LT(difference / n, 0.010) << width;
            EXPECT_LT(std::abs(level / n), print.level) << width;
        }
    }
}

TEST(PlatePrints, AreTheSameForAnyWorkers)
{
    for (const PlatePrint& print : kPrints) {
        RenderOptions options;
        options.format = FilmFormat::plate;
        options.push = 3.0;
        options.platePour = 2.0;
        expectSameForAnyWorkers([&] { return printed(softScene(300, 200), print, options); });
    }
}

// What a photographer meters: a perfect plate without grain and halation, patch by patch.
TEST(PlatePrints, ShowAGreyCardDark)
{
    RenderOptions options;
    options.format = FilmFormat::plate;
    options.grainMult = options.halationMult = options.platePour = 0.0;
    const auto shown = [&](double light, const char* paper) {
        const auto v = static_cast<float>(light);
        const RGBImage out =
            printed(RGBImage(60, 60, Vec3f{v, v, v}), {"collodion_wet", paper, 0.0}, options);
        return out.pixel(30, 30);
    };
    EXPECT_NEAR(shown(0.18, "ambrotype")[0], 0.30, 0.005);
    EXPECT_NEAR(shown(0.72, "ambrotype")[0], 0.64, 0.005);
    EXPECT_NEAR(shown(0.0, "ambrotype")[1], (*store().paper("ambrotype").plateView->base)[1], 1e-4);
    // Iron is exposed a little longer, and never as light as a print.
    EXPECT_NEAR(shown(0.18, "ferrotype")[1], 0.30, 0.03);
    double before = 0.0;
    for (const double light : {0.001, 0.01, 0.05, 0.18, 0.5, 1.0, 4.0, 30.0}) {
        const double v = shown(light, "ferrotype")[0];
        EXPECT_GT(v, before);
        before = v;
    }
    options.intensify = 1.0;
    EXPECT_GT(shown(30.0, "ambrotype")[0], before);
}

TEST(PlatePrints, BeginAtTheClearPlate)
{
    RenderOptions options;
    options.format = FilmFormat::plate;
    options.formatLongUm = 101'000.0;
    const DevelopedFilm film = applyFilmStateAndDevelopment(store().film("collodion_wet"), options);
    const auto floorOf = [&](std::int64_t longSide) {
        return Film::plateFloor(film, options, 101'000.0 / static_cast<double>(longSide), 0.05, longSide);
    };
    EXPECT_NEAR(floorOf(1000), 0.0713, 0.002);
    EXPECT_NEAR(floorOf(4000), floorOf(1000), 0.002);
    EXPECT_TRUE(std::isfinite(floorOf(1)));
    options.grainMult = 0.0;
    EXPECT_EQ(floorOf(1000), 0.05);
}

// A light on glass has its ring, 2.8 mm away; on iron it has none. On a colour film the ring has the tint.
TEST(PlatePrints, RingTheirLights)
{
    constexpr std::int64_t kSide = 301; // 0.1 mm a pixel
    RGBImage light(kSide, kSide, Vec3f{0.01f, 0.01f, 0.01f});
    float* p = light.mutableData();
    for (std::int64_t y = 148; y < 153; ++y) std::fill_n(p + (y * kSide + 148) * 3, 15, 100.0f);
    HalationParams glass = *store().film("collodion_wet").halation;
    glass.strength = 1.0;
    glass.tint = Vec3d{1.0, 0.5, 0.25};
    HalationParams film = glass;
    film.glassMm.reset();
    const RGBImage on = Film::applyHalation(light, glass, 100.0, 1.0);
    const RGBImage off = Film::applyHalation(light, film, 100.0, 1.0);
    const auto ringAt = [&](std::int64_t x, int c) { return on.pixel(x, 150)[c] - off.pixel(x, 150)[c]; };
    EXPECT_GT(ringAt(150 + 29, 0), 5.0f * std::max(ringAt(150 + 20, 0), 1e-6f));
    EXPECT_GT(ringAt(150 + 29, 0), 2.0f * ringAt(150 + 60, 0));
    EXPECT_NEAR(ringAt(150 - 29, 0), ringAt(150 + 29, 0), 1e-5);
    EXPECT_NEAR(ringAt(150 + 29, 1), 0.5f * ringAt(150 + 29, 0), 1e-5);
    const Plane plane = Film::applyHalation(light.plane(0), glass, 100.0, 1.0);
    EXPECT_NEAR(plane.at(179, 150), on.pixel(179, 150)[0], 1e-5)
        << "one layer has no tint, and the same ring";

    RenderOptions options;
    options.format = FilmFormat::plate;
    options.grainMult = options.platePour = 0.0;
    const auto view = [&](const char* paper, double halation) {
        options.halationMult = halation;
        return printed(RGBImage(light), {"collodion_wet", paper, 0.0}, options);
    };
    const auto gain = [&](const char* paper, std::int64_t mm10) {
        const std::int64_t x = 150 + mm10 * 301 / 1010;
        return view(paper, 20.0).pixel(x, 150)[0] - view(paper, 0.0).pixel(x, 150)[0];
    };
    EXPECT_GT(gain("ambrotype", 30), 3e-4f);
    EXPECT_LT(std::abs(gain("ferrotype", 30)), 1e-5f);
}

TEST(PlatePrints, HoldAnyShape)
{
    for (const PlatePrint& print : kPrints)
        for (const Size size : {Size{1, 1}, Size{2, 2}, Size{1, 30'000}, Size{700, 3}}) {
            RenderOptions options;
            options.format = FilmFormat::plate;
            options.masterCap = false;
            options.push = 3.0;
            const RGBImage out =
                printed(RGBImage(size.width, size.height, Vec3f{0.2f, 0.2f, 0.2f}), print, options);
            EXPECT_TRUE(std::ranges::all_of(out.data, [](float v) { return std::isfinite(v); }));
        }
}

} // namespace
} // namespace tamlo::test
