// Black-and-white, slide and scan: every way from the film to a positive but the colour negative's.
#include "core/film/emulsion/development.h"
#include "core/film/print/black_and_white.h"
#include "core/film/print/black_and_white_passes.h"
#include "core/film/print/print.h"
#include "core/film/print/scan.h"
#include "core/film/print/slide.h"
#include "core/film/print/slide_passes.h"
#include "core/profiles/catalogue/profile_store.h"
#include "core/profiles/formats/profile_error.h"
#include "tests/support/pictures.h"

#include <hwy/targets.h>

namespace tamlo {
namespace {

RenderOptions withoutGrain()
{
    RenderOptions options;
    options.grainMult = 0.0;
    return options;
}

DevelopedFilm developed(FilmProfile film, double push = 0.0)
{
    film.look.reset();
    DevelopmentKnobs knobs;
    knobs.push = push;
    return applyDevelopment(film, knobs);
}

FilmProfile film(const std::string& name)
{
    return ProfileStore::shared().film(name);
}

PaperProfile paper(const std::string& name)
{
    return ProfileStore::shared().paper(name);
}

RGBImage card(float v = 0.18f)
{
    return {6, 5, {v, v, v}};
}

TEST(BlackAndWhite, AGreyCardPrintsAsGreyWhateverTheWeights)
{
    FilmProfile silver = film("trix400");
    for (const Vec3d& weights : {Vec3d{0.26, 0.36, 0.38}, Vec3d{1, 0, 0}, Vec3d{2, 2, 2}})
        for (const double push : {-1.0, 0.0, 2.0}) {
            silver.spectralWeights = weights;
            const RGBImage out =
                Film::renderBW(card(), developed(silver, push), paper("bw_neutral"), withoutGrain(), 5.5);
            for (const float v : out.data) ASSERT_NEAR(v, 0.18f, 2e-5f);
        }
    PaperProfile toned = paper("bw_neutral");
    toned.tone = Vec3d{1.1, 1.0, 0.8};
    const Vec3f v = Film::renderBW(card(), developed(silver), toned, withoutGrain(), 5.5).pixel(2, 2);
    EXPECT_NEAR(v[0], 0.198f, 2e-5f);
    EXPECT_NEAR(v[2], 0.144f, 2e-5f);
    const RGBImage onPaper = Film::renderColorOnBWPaper(card(), developed(film("portra400")),
                                                        paper("bw_neutral"), withoutGrain(), 5.5);
    for (const float p : onPaper.data) ASSERT_NEAR(p, 0.18f, 2e-5f);
}

TEST(BlackAndWhite, WeightsPlatesAndIntensification)
{
    FilmProfile ortho = film("trix400");
    ortho.spectralWeights = Vec3d{0, 0, 1};
    const RGBImage redAndBlue(1, 1, {0.6f, 0.1f, 0.05f});
    const auto density = [&](const FilmProfile& f, const Film::PlateExposure& plate, RenderOptions options) {
        options.grainMult = 0.0;
        return Film::bwNegativeDb(redAndBlue, developed(f), options, 5.5, plate).density.at(0, 0);
    };
    EXPECT_GT(density(ortho, {Vec3d{1, 0, 0}, 0.0, {}}, {}), density(ortho, {}, {}));
    RenderOptions lighter;
    lighter.ev = 1.0;
    EXPECT_EQ(density(ortho, {{}, 1.0, {}}, {}), density(ortho, {}, lighter));

    FilmProfile plate = film("collodion_wet");
    const auto dmax = [&](double intensify, const FilmProfile& f) {
        RenderOptions options = withoutGrain();
        options.intensify = intensify;
        return Film::bwNegativeDb(card(), developed(f), options, 20.0).curve.dmax;
    };
    EXPECT_EQ(dmax(2.0, plate), dmax(1.0, plate));
    EXPECT_NEAR(dmax(1.0, plate), 4.2, 1e-12);
    EXPECT_NEAR(dmax(0.5, plate), 3.1, 1e-12);
    EXPECT_EQ(dmax(1.0, film("trix400")), dmax(0.0, film("trix400")));
    FilmProfile bare;
    bare.type = "bw";
    EXPECT_THROW(Film::bwNegativeDb(card(), developed(bare), {}, 5.5), ProfileError);
}

TEST(BlackAndWhite, VectorPassesAgreeWithTheScalarForms)
{
    const HDCurve curve(0.28, 2.45, 0.62, 1.7, 0.88);
    PrintBWParams params;
    params.curve = Print::paperCurve(paper("bw_neutral"), 3.0, 0.5, 0.5);
    params.d0 = curve.fD0;
    params.printEvTerm = 0.2f;
    params.flareAdd = 0.01f;
    params.tone = {1.0f, 0.9f, 0.8f};
    for (const std::int64_t target : hwy::SupportedAndGeneratedTargets()) {
        hwy::SetSupportedTargetsForTest(target);
        for (const std::int64_t width : {1, 15, 16, 17, 33}) {
            const Plane light = test::noisePicture(width, 3, 5, 30.0f).plane(1);
            Plane density = light;
            curve_bw(density, curve, 0.4f);
            RGBImage out(width, 3);
            print_bw(out, density, params);
            for (std::int64_t i = 0; i < light.count(); ++i) {
                const float d =
                    curve.density(Film::logExposure(light.data[static_cast<std::size_t>(i)], 0.4f));
                ASSERT_NEAR(density.data[static_cast<std::size_t>(i)], d, 1e-5f) << hwy::TargetName(target);
                const float v = Print::positive(params.curve, d - params.d0, 0.2f, params.flareAdd);
                for (std::size_t c = 0; c < 3; ++c)
                    ASSERT_NEAR(out.pixel(i % width, i / width)[c], v * params.tone[c], 3e-5f);
            }
        }
    }
    hwy::SetSupportedTargetsForTest(0);
}

FilmProfile evenSlide()
{
    FilmProfile slide = film("velvia50");
    for (NegativeLayer* l : {&slide.layers->r, &slide.layers->g, &slide.layers->b}) {
        l->dmin = 0.15;
        l->midDensity.reset();
    }
    return slide;
}

TEST(Slide, GreyCardAndItsBase)
{
    const RGBImage out = Film::renderSlide(card(), developed(evenSlide()), withoutGrain(), 5.5);
    for (const float v : out.data) ASSERT_NEAR(v, 0.18f, 2e-5f);
    FilmProfile cast = evenSlide();
    cast.layers->r.dmin = 0.1;
    cast.layers->g.dmin = 0.2;
    cast.layers->b.dmin = 0.25;
    cast.couplers.reset();
    const Vec3f v = Film::renderSlide(card(), developed(cast), withoutGrain(), 5.5).pixel(3, 3);
    EXPECT_NEAR(v[0], 0.18f, 1e-4f);
    EXPECT_NEAR(v[1], 0.143f, 1e-3f);
    EXPECT_NEAR(v[2], 0.127f, 1e-3f);

    PaperProfile reversal = paper("color_ra4");
    reversal.type = "reversal_paper";
    reversal.tone.reset();
    const RGBImage print =
        Film::renderSlidePrint(card(), developed(evenSlide()), reversal, withoutGrain(), 5.5);
    for (const float p : print.data) ASSERT_NEAR(p, 0.18f, 5e-5f);
    EXPECT_THROW(Film::renderSlide(card(), DevelopedFilm{}, {}, 5.5), ProfileError);
}

TEST(Slide, LightensWithLightAndPushAndSaturatesInDensity)
{
    const auto grey = [&](double ev, double push) {
        RenderOptions options = withoutGrain();
        options.ev = ev;
        return Film::renderSlide(card(), developed(evenSlide(), push), options, 5.5).pixel(2, 2)[1];
    };
    EXPECT_GT(grey(1.0, 0.0), grey(0.0, 0.0));
    EXPECT_GT(grey(0.0, 1.0), grey(0.0, 0.0) * 1.3f);

    PaperProfile plain = paper("color_ra4");
    plain.tone.reset();
    PaperProfile pure = plain;
    pure.dyePurity = 0.18;
    const RGBImage orange(3, 3, {0.3f, 0.2f, 0.12f});
    const auto spread = [&](const PaperProfile& p) {
        const Vec3f v =
            Film::renderSlidePrint(orange, developed(evenSlide()), p, withoutGrain(), 5.5).pixel(1, 1);
        EXPECT_GE(v[2], 0.0f);
        return std::log(v[0] / v[2]);
    };
    EXPECT_NEAR(spread(pure) / spread(plain), 1.18f, 1e-3f);
}

TEST(ScanPositive, ReadsByItsBlock)
{
    PaperProfile scanner;
    EXPECT_FALSE(Film::scanPositiveParams(scanner, {}));
    scanner.scan.emplace();
    const RGBImage picture = test::noisePicture(17, 3, 4, 6.0f);
    EXPECT_EQ(Film::scanPositive(picture, scanner, {}).data.data(), picture.data.data());

    scanner.scan->positiveDmax = 3.2;
    const float floorLight = std::pow(10.0f, -3.2f);
    const RGBImage deep(1, 1, {floorLight, floorLight, floorLight});
    EXPECT_NEAR(Film::scanPositive(deep, scanner, {}).pixel(0, 0)[0], 0.0f, 1e-7f);
    EXPECT_NEAR(Film::scanPositive(card(1.0f), scanner, {}).pixel(0, 0)[0], 1.0f, 1e-6f);

    scanner.scan->positiveDmax.reset();
    RenderOptions knobs;
    knobs.printBlack = 1.0;
    EXPECT_NEAR(Film::scanPositiveParams(scanner, knobs)->black, 0.45 * (3.6 - kPaperAnchor), 1e-6);
    knobs.printEv = 1.0;
    EXPECT_NEAR(Film::scanPositive(card(0.18f), scanner, knobs).pixel(0, 0)[0], 0.09f, 1e-2f);

    PaperProfile projector = scanner;
    projector.fixedGrade = projector.fixedExposure = true;
    projector.scan->flare = 0.006;
    knobs.grade = 5.0;
    EXPECT_NEAR(Film::scanPositive(card(0.18f), projector, knobs).pixel(0, 0)[0], 0.186f / 1.006f, 1e-6f);

    knobs = {};
    knobs.grade = 3.0;
    EXPECT_NEAR(Film::scanPositive(card(0.5f), scanner, knobs).pixel(0, 0)[0], std::pow(0.5f, 1.2f), 1e-5f);
    knobs = {};
    knobs.printBlack = knobs.printWhite = 0.7;
    EXPECT_NEAR(Film::scanPositive(card(0.18f), scanner, knobs).pixel(0, 0)[0], 0.18f, 1e-5f);
}

TEST(ScanPositive, EveryTargetGivesTheSameWithinAHair)
{
    const Film::ScanPositive params{0.002f, 1e-3f, 1.3f, 1.2f, 0.6f, 0.2f, 3.6f};
    const RGBImage source = test::noisePicture(33, 5, 6, 12.0f);
    SlidePrintParams onPaper;
    onPaper.curve = Print::paperCurve(paper("color_ra4"), 2.0, 0.3, 0.3);
    onPaper.dyePurity = 1.15f;
    hwy::SetSupportedTargetsForTest(0);
    RGBImage scanned = source, printed = source, shown = source;
    scan_positive(scanned, params);
    slide_print(printed, onPaper);
    positive_out(shown, 0.1f, Film::LookOp(film("velvia50").look));
    for (const std::int64_t target : hwy::SupportedAndGeneratedTargets()) {
        hwy::SetSupportedTargetsForTest(target);
        RGBImage a = source, b = source, c = source;
        scan_positive(a, params);
        slide_print(b, onPaper);
        positive_out(c, 0.1f, Film::LookOp(film("velvia50").look));
        EXPECT_LT(test::worstDifference(a.data, scanned.data), 1e-5f) << hwy::TargetName(target);
        EXPECT_LT(test::worstDifference(b.data, printed.data), 1e-5f) << hwy::TargetName(target);
        EXPECT_LT(test::worstDifference(c.data, shown.data), 1e-5f) << hwy::TargetName(target);
    }
    hwy::SetSupportedTargetsForTest(0);
}

TEST(Scan, CeilingSoftnessSharpeningAndClip)
{
    PaperProfile scanner;
    const RGBImage loud(4, 4, {1.4f, -0.2f, 0.5f});
    EXPECT_EQ(Film::applyScan(loud, scanner).data.data(), loud.data.data());
    scanner.scan.emplace();
    EXPECT_EQ(Film::applyScan(loud, scanner).pixel(1, 1), (Vec3f{1.0f, 0.0f, 0.5f}));
    scanner.scan->highlightClip = 0.06;
    for (const auto& [in, out] : {std::pair{0.94f, 0.94f}, {0.98f, 0.95f}, {1.0f, 0.955f}})
        EXPECT_NEAR(Film::applyScan(card(in), scanner).pixel(0, 0)[0], out, 1e-6f);

    scanner.scan->longPx = 3089;
    EXPECT_EQ(Film::scanSize({6000, 4000}, *scanner.scan), (Size{3089, 2059}));
    EXPECT_FALSE(Film::scanSize({3000, 2000}, *scanner.scan));
    scanner.scan->longPx = 20;
    EXPECT_EQ(Film::applyScan(RGBImage(40, 2), scanner).size(), (Size{20, 1}));

    // An edge: softness lowers its slope, sharpening overshoots by a share of k.
    RGBImage edge(400, 3);
    for (std::int64_t i = 0; i < edge.pixelCount(); ++i)
        for (int c = 0; c < 3; ++c) edge.mutableData()[i * 3 + c] = i % 400 < 200 ? 0.2f : 0.6f;
    PaperProfile soft, sharp;
    soft.scan.emplace().mtf = 5.0;
    sharp.scan.emplace().sharpen = 0.4;
    sharp.scan->sharpenFrac = 0.01;
    const auto step = [](const RGBImage& image) { return image.pixel(200, 1)[0] - image.pixel(199, 1)[0]; };
    EXPECT_LT(step(Film::applyScan(edge, soft)), 0.1f);
    EXPECT_GT(step(Film::applyScan(edge, sharp)), 0.45f);
    EXPECT_NEAR(Film::applyScan(edge, sharp).pixel(20, 1)[0], 0.2f, 1e-5f);
}

TEST(Darkroom, AWedgeIsMonotoneOnEveryPathAndGradesStandInOrder)
{
    RGBImage wedge(21 * 8, 4);
    for (std::int64_t i = 0; i < wedge.pixelCount(); ++i) {
        const double step = static_cast<double>(i % wedge.width / 8);
        for (int c = 0; c < 3; ++c)
            wedge.mutableData()[i * 3 + c] = static_cast<float>(0.18 * std::pow(10.0, 0.15 * (step - 10.0)));
    }
    RenderOptions options = withoutGrain();
    options.halationMult = 0.0;
    const auto tones = [&](const RGBImage& out) {
        std::vector<float> v;
        for (int s = 0; s < 21; ++s) v.push_back(out.pixel(s * 8 + 4, 2)[1]);
        return v;
    };
    constexpr double kFarApartUm = 1e4; // no edge effect reaches from step to step
    double last = 0.0;
    for (int grade = 0; grade <= 5; ++grade) {
        options.grade = grade;
        const auto v = tones(
            Film::renderBW(wedge, developed(film("trix400")), paper("bw_neutral"), options, kFarApartUm));
        EXPECT_TRUE(std::is_sorted(v.begin(), v.end()));
        const double contrast = std::log10(v[12] / v[8]);
        EXPECT_GT(contrast, last) << "grade " << grade;
        last = contrast;
    }
    options.grade = 2.0;
    const auto slide = tones(Film::renderSlide(wedge, developed(evenSlide()), options, kFarApartUm));
    EXPECT_TRUE(std::is_sorted(slide.begin(), slide.end()));
    const auto contrastAt = [&](double push) {
        const auto v = tones(Film::renderBW(wedge, developed(film("trix400"), push), paper("bw_neutral"),
                                            options, kFarApartUm));
        return v[12] / v[8];
    };
    EXPECT_GT(contrastAt(2.0), contrastAt(0.0));
    EXPECT_LT(contrastAt(-2.0), contrastAt(0.0));
}

} // namespace
} // namespace tamlo
