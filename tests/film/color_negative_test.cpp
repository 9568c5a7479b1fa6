#include "core/film/emulsion/dev_field.h"
#include "core/film/emulsion/development.h"
#include "core/film/print/color_negative.h"
#include "core/film/print/color_negative_passes.h"
#include "core/film/print/print.h"
#include "core/image/zcolor.h"
#include "core/profiles/formats/profile_error.h"
#include "tests/support/pictures.h"

#include <limits>

#include <hwy/targets.h>

namespace tamlo {
namespace {

FilmProfile portraLike()
{
    const auto layer = [](double dmin, double dmax, double gamma) {
        NegativeLayer l;
        l.dmin = dmin;
        l.dmax = dmax;
        l.gamma = gamma;
        l.toe = 1.5;
        l.midDensity = 0.85;
        return l;
    };
    FilmProfile film;
    film.type = "color";
    film.layers = ColorLayers{layer(0.2, 2.3, 0.6), layer(0.55, 2.65, 0.575), layer(0.9, 3.0, 0.55)};
    return film;
}

PaperProfile ra4Like()
{
    PaperProfile paper;
    paper.type = "color_paper";
    paper.kind = "silver";
    paper.dmin = 0.05;
    paper.dmax = 2.35;
    paper.gamma = 1.75;
    paper.toe = 1.2;
    return paper;
}

/// Prints without grain, so that a value is what the chain makes of it.
RGBImage print(const RGBImage& light, const DevelopedFilm& film, const PaperProfile& paper,
               RenderOptions options = {})
{
    options.grainMult = 0.0;
    return Film::renderColor(light, film, paper, options, 5.5);
}

DevelopedFilm developed(const FilmProfile& film)
{
    return applyDevelopment(film, {});
}

/// The chain told pixel by pixel with the scalar functions.
Vec3f printedSlowly(const Vec3f& light, const CurvesColorParams& negative, float field,
                    const PrintColorParams& paper)
{
    Vec3f x{};
    for (std::size_t c = 0; c < 3; ++c) {
        const HDCurve& curve = negative.curves[c];
        const float e = light[c] > 0.0f ? std::min(light[c], 1e30f) : 0.0f;
        const float d = curve.density(Film::logExposure(e, negative.evTerm) + negative.layerEv[c]);
        x[c] = DevField::uneven(d, curve.fDmin, field, negative.unevenWeights[c]) - curve.fD0;
    }
    const float mean = (x[0] + x[1] + x[2]) / 3.0f;
    Vec3f mixed = x;
    for (std::size_t c = 0; c < 3; ++c) {
        if (negative.couplers.mode == GPUCouplers::Mode::scalar)
            mixed[c] = mean + negative.couplers.csF * (x[c] - mean);
        if (negative.couplers.mode == GPUCouplers::Mode::matrix) {
            mixed[c] = mean;
            for (std::size_t k = 0; k < 3; ++k) mixed[c] += negative.couplers.a[c][k] * (x[k] - mean);
        }
    }
    const float silver = negative.retainedSilver * (mixed[0] + mixed[1] + mixed[2]) / 3.0f;
    Vec3f out{};
    for (std::size_t c = 0; c < 3; ++c)
        out[c] = Print::positive(paper.curve, mixed[c] + silver, paper.printEvTerm, paper.flareAdd[c]);
    out = paper.look(out);
    for (std::size_t c = 0; c < 3; ++c) out[c] = std::clamp(out[c] * paper.tone[c], 0.0f, 1.0f);
    return out;
}

TEST(ColorNegative, VectorPassesAgreeWithTheScalarChain)
{
    CurvesColorParams negative;
    negative.curves = {HDCurve(0.2, 2.3, 0.6, 1.5, 0.85), HDCurve(0.55, 2.65, 0.575, 1.5, 0.85),
                       HDCurve(0.9, 3.0, 0.55, 0.35, 0.85)};
    negative.evTerm = 0.3f;
    negative.layerEv = {0.1f, 0.0f, -0.2f};
    negative.unevenWeights = DevField::layerWColor;
    negative.retainedSilver = 0.38f;

    PrintColorParams paper;
    paper.curve = Print::paperCurve(ra4Like(), 3.0, 0.4, 0.7);
    paper.printEvTerm = -0.2f;
    paper.flareAdd = {0.01f, 0.0f, 0.02f};
    LookParams look;
    look.shadowTint = Vec3d{-0.006, 0.003, 0.005};
    look.highlightTint = Vec3d{0.008, 0.003, -0.006};
    look.saturation = -0.3;
    look.greenMute = 0.3;
    look.dyeFade = Vec3d{0.1, 0.0, 1.0};
    paper.look = Film::LookOp(look);
    paper.tone = {1.01f, 1.0f, 0.985f};

    Couplers scalar, matrix;
    scalar.saturation = 0.14;
    matrix.matrix = ProfileMatrix{{1.26, -0.07, -0.01}, {-0.03, 1.15, -0.01}, {-0.02, -0.06, 1.24}};
    const float inf = std::numeric_limits<float>::infinity();
    const std::optional<Couplers> allCouplers[] = {std::nullopt, scalar, matrix};
    for (const std::int64_t target : hwy::SupportedAndGeneratedTargets()) {
        hwy::SetSupportedTargetsForTest(target);
        for (const auto& couplers : allCouplers)
            for (const std::int64_t width : {1, 15, 16, 17, 31, 33}) {
                negative.couplers = GPUCouplers(couplers, false, true, false);
                RGBImage image = test::noisePicture(width, 3, 11, 40.0f);
                float* p = image.mutableData();
                p[0] = -1.0f;
                p[1] = 0.0f;
                p[2] = inf;
                p[3] = std::numeric_limits<float>::quiet_NaN();
                Plane field(width, 3);
                for (std::int64_t i = 0; i < field.count(); ++i)
                    field.mutableData()[i] = 0.3f * std::sin(static_cast<float>(i));

                RGBImage fast = image;
                curves_color(fast, negative, &field);
                subtract_anchor(fast,
                                {negative.curves[0].fD0, negative.curves[1].fD0, negative.curves[2].fD0});
                print_color(fast, paper);
                for (std::int64_t i = 0; i < image.pixelCount(); ++i) {
                    const Vec3f slow = printedSlowly(image.pixel(i % width, i / width), negative,
                                                     field.data[static_cast<std::size_t>(i)], paper);
                    for (std::size_t c = 0; c < 3; ++c)
                        ASSERT_NEAR(fast.pixel(i % width, i / width)[c], slow[c], 3e-5f)
                            << "pixel " << i << " of " << width << " on " << hwy::TargetName(target);
                }
            }
    }
    hwy::SetSupportedTargetsForTest(0);
}

TEST(ColorNegative, AGreyCardPrintsAsGrey)
{
    FilmProfile film = portraLike();
    Couplers couplers;
    couplers.saturation = 0.3;
    film.couplers = couplers;
    const RGBImage card(5, 4, {0.18f, 0.18f, 0.18f});
    for (const double grade : {0.0, 2.0, 5.0})
        for (const double push : {-2.0, 0.0, 2.0}) {
            RenderOptions options;
            options.grade = grade;
            DevelopmentKnobs knobs;
            knobs.push = push;
            const RGBImage out = print(card, applyDevelopment(film, knobs), ra4Like(), options);
            for (const float v : out.data) EXPECT_NEAR(v, 0.18f, 2e-5f) << grade << " " << push;
        }
}

TEST(ColorNegative, ExposureSigns)
{
    const RGBImage card(2, 2, {0.18f, 0.18f, 0.18f});
    const DevelopedFilm film = developed(portraLike());
    const auto with = [&](auto&& change) {
        RenderOptions options;
        change(options);
        return print(card, film, ra4Like(), options).pixel(0, 0)[1];
    };
    EXPECT_GT(with([](RenderOptions& o) { o.ev = 1.0; }), 0.2f);
    EXPECT_LT(with([](RenderOptions& o) { o.printEv = 1.0; }), 0.15f);

    DevelopedFilm shifted = film;
    shifted.layerEV = Vec3d{1.0, 0.0, 0.0};
    const Vec3f red = print(card, shifted, ra4Like()).pixel(0, 0);
    EXPECT_GT(red[0], 0.2f);
    EXPECT_NEAR(red[1], 0.18f, 2e-5f);
}

TEST(ColorNegative, CouplersByProfileAndInterlayer)
{
    using Mode = GPUCouplers::Mode;
    Couplers saturation, negative, datasheet, broken;
    saturation.saturation = 0.14;
    negative.saturation = -0.12;
    datasheet.saturation = 0.14;
    datasheet.matrixDs = ProfileMatrix{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    broken.saturation = 0.14;
    broken.matrix = ProfileMatrix{{1, 0, 0}};
    EXPECT_EQ(GPUCouplers({}, true, true, true).mode, Mode::none);
    EXPECT_EQ(GPUCouplers(saturation, false, true, true).mode, Mode::scalar);
    EXPECT_EQ(GPUCouplers(negative, false, true, true).mode, Mode::none);
    EXPECT_EQ(GPUCouplers(negative, true, true, true).mode, Mode::scalar);
    EXPECT_EQ(GPUCouplers(datasheet, false, true, false).mode, Mode::scalar);
    EXPECT_EQ(GPUCouplers(datasheet, false, true, true).mode, Mode::matrix);
    Couplers crooked = datasheet;
    crooked.matrix = ProfileMatrix{{1, 0, 0}, {0, 1, 0}};
    EXPECT_EQ(GPUCouplers(crooked, false, true, true).mode, Mode::scalar)
        << "passed over, for no other matrix";
    EXPECT_EQ(GPUCouplers(crooked, true, false, true).mode, Mode::matrix) << "a slide never reads it";
    EXPECT_EQ(GPUCouplers(broken, false, true, true).mode, Mode::scalar);

    const RGBImage red(1, 1, {0.4f, 0.1f, 0.1f});
    FilmProfile film = portraLike();
    const Vec3f plain = print(red, developed(film), ra4Like()).pixel(0, 0);
    film.couplers = saturation;
    const Vec3f saturated = print(red, developed(film), ra4Like()).pixel(0, 0);
    EXPECT_GT(saturated[0] - saturated[1], plain[0] - plain[1]);
}

TEST(ColorNegative, RetainedSilverAddsTheSameToEachLayer)
{
    RGBImage light = test::noisePicture(7, 3, 3, 6.0f);
    DevelopedFilm film = developed(portraLike());
    RenderOptions options;
    options.grainMult = 0.0;
    const RGBImage plain = Film::colorNegativeDb(light, film, options, 5.5).db;
    film.retainedSilver = 0.38;
    const RGBImage bypassed = Film::colorNegativeDb(light, film, options, 5.5).db;
    for (std::int64_t x = 0; x < 7; ++x) {
        const Vec3f a = plain.pixel(x, 1), b = bypassed.pixel(x, 1);
        for (std::size_t c = 0; c < 3; ++c)
            EXPECT_NEAR(b[c] - a[c], 0.38f * (a[0] + a[1] + a[2]) / 3.0f, 1e-5f);
    }
}

TEST(ColorNegative, FlareIsTheFramesMeanLightAndLiftsTheShadows)
{
    const RGBImage db = test::noisePicture(333, 77, 4, 2.0f);
    double sum = 0.0;
    for (std::int64_t i = 0; i < db.pixelCount(); ++i)
        sum += std::pow(10.0, 0.1 - (db.data[static_cast<std::size_t>(i) * 3 + 1] - 0.05));
    const std::span<const float> samples(db.data.data(), db.data.size());
    for (const int workers : {1, 2, 7}) {
        const platform::WorkerLimit limit(workers);
        const double add = Film::enlargerFlareAdd(0.008, samples, {3, 1}, 0.05f, 0.1f);
        EXPECT_NEAR(add, 0.008 * sum / static_cast<double>(db.pixelCount()), 1e-8);
    }
    EXPECT_EQ(Film::enlargerFlareAdd(0.0, samples, {3, 1}, 0.0f, 0.0f), 0.0);

    PaperProfile hazy = ra4Like();
    hazy.flare = 0.008;
    RGBImage scene(8, 8, {0.18f, 0.18f, 0.18f});
    for (int c = 0; c < 3; ++c) scene.mutableData()[c] = 4.0f;
    const DevelopedFilm film = developed(portraLike());
    // More light everywhere on the paper darkens its lights.
    EXPECT_LT(print(scene, film, hazy).pixel(0, 0)[1], print(scene, film, ra4Like()).pixel(0, 0)[1]);
}

TEST(ColorNegative, PrintIsMonotoneAndInsideTheScreen)
{
    RGBImage wedge(400, 1);
    float* p = wedge.mutableData();
    for (int i = 0; i < 400; ++i)
        for (int c = 0; c < 3; ++c)
            p[i * 3 + c] = 0.18f * std::exp2((static_cast<float>(i) - 200.0f) / 20.0f);
    const RGBImage out = print(wedge, developed(portraLike()), ra4Like());
    for (int i = 0; i < 400; ++i)
        for (std::size_t c = 0; c < 3; ++c) {
            const float v = out.pixel(i, 0)[c];
            EXPECT_TRUE(v >= 0.0f && v <= 1.0f);
            if (i > 0) {
                EXPECT_GE(v, out.pixel(i - 1, 0)[c] - 1e-6f);
            }
        }
}

TEST(ColorNegative, SameBytesForAnyWorkersAndAnErrorWithoutLayers)
{
    const RGBImage light = test::noisePicture(701, 203, 8);
    const DevelopedFilm film = developed(portraLike());
    test::expectSameForAnyWorkers([&] { return print(light, film, ra4Like()); });

    FilmProfile bare;
    bare.type = "color";
    try {
        print(light, developed(bare), ra4Like());
        FAIL() << "a film without layers printed";
    } catch (const ProfileError& error) {
        EXPECT_NE(std::string(error.what()).find("color film without 'layers'"), std::string::npos);
    }
}

TEST(Look, StepsInOrder)
{
    LookParams params;
    EXPECT_EQ(Film::LookOp(params)({0.2f, 0.5f, 0.9f}), (Vec3f{0.2f, 0.5f, 0.9f}));
    params.dyeFade = Vec3d{1.0, 0.0, 0.0};
    EXPECT_NEAR(Film::LookOp(params)({0.5f, 0.5f, 0.5f})[0], std::pow(0.5, 0.05), 1e-6);
    LookParams mute;
    mute.greenMute = 0.5;
    const Vec3f green = Film::LookOp(mute)({0.2f, 0.8f, 0.2f});
    EXPECT_NEAR(green[1], 0.5f, 1e-6f);
    EXPECT_NEAR(green[0], 0.2f + 0.55f * 0.3f, 1e-6f);
    LookParams grey;
    grey.saturation = -1.0;
    const Vec3f flat = Film::LookOp(grey)({0.2f, 0.8f, 0.4f});
    EXPECT_NEAR(flat[0], flat[2], 1e-6f);
}

} // namespace
} // namespace tamlo
