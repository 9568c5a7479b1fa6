// Handmade prints in one coat: published tones of the catalogue's papers, closed forms of each step, and the
// same print at every size.
#include "core/film/print/print.h"
#include "core/image/resample.h"
#include "core/image/zcolor.h"
#include "core/process/altprint/alt_steps.h"
#include "core/process/altprint/alt_texture.h"
#include "core/process/altprint/brushed_coat.h"
#include "core/process/altprint/paper_base.h"
#include "core/process/altprint/plate_mark.h"
#include "core/process/altprint/render_alt.h"
#include "core/profiles/catalogue/profile_store.h"
#include "tests/support/pictures.h"

namespace tamlo {
namespace {

PaperProfile paperOf(const std::string& id)
{
    return ProfileStore::shared().paper(id);
}

/// No texture, relief or coat.
RenderOptions plain()
{
    RenderOptions options;
    options.printTexture = 0.0;
    options.relief = 0.0;
    options.coat = "none";
    return options;
}

/// Luma of an even print at a density above the grey card's.
double printedLuma(const PaperProfile& paper, double db)
{
    const RGBImage print =
        AltPrint::printOneCoat(Plane(4, 4, static_cast<float>(db)), 0.0f, {paper, plain(), nullptr});
    const Vec3f p = print.pixel(1, 1);
    return ZColor::luma[0] * p[0] + ZColor::luma[1] * p[1] + ZColor::luma[2] * p[2];
}

/// Luma of a grey card in 64-bit floats: the anchor's place between the curve's ends, shaped and coloured.
double greyOf(const PaperProfile& paper)
{
    const double f = paper.inkFloor.value_or(0.0);
    double t = (kPaperAnchor / (*paper.dmax - *paper.dmin) - f) / (1.0 - f);
    t = 1.0 - std::pow(1.0 - t, 1.0 + paper.plug.value_or(0.0));
    const double pickup = paper.transfer ? paper.transfer->pickup.value_or(1.0) : 1.0;
    t *= (1.0 - (1.0 - pickup) * t) / pickup;
    const Vec3f base = AltPrint::resolveBase(paper, plain());
    double luma = 0.0;
    for (std::size_t c = 0; c < 3; ++c) {
        const double light = paper.pigment->mode == "ink"
                                 ? base[c] * (1.0 - t) + (*paper.pigment->rgb)[c] * t
                                 : base[c] * std::pow(10.0, -t * (*paper.pigment->density)[c]);
        luma += static_cast<double>(ZColor::luma[c]) * light;
    }
    return luma;
}

struct Tone {
    const char* paper;
    double grey;  // luma of a grey card, in three digits
    double black; // density of the deepest tone over the bare paper
};

TEST(AltPrint, PapersHaveTheirGreyAndBlack)
{
    for (const Tone& tone :
         {Tone{"salt", 0.201, 0.99}, Tone{"albumen", 0.193, 1.34}, Tone{"cyanotype", 0.252, 0.89},
          Tone{"cyanotype_ware", 0.240, 1.12}, Tone{"vandyke", 0.176, 1.20}, Tone{"platinum", 0.180, 1.34},
          Tone{"palladium", 0.166, 1.27}, Tone{"platinum_palladium", 0.170, 1.32}, Tone{"gum", 0.143, 1.19},
          Tone{"carbon", 0.18, 1.89}, Tone{"collotype", 0.18, 1.49}, Tone{"bromoil", 0.18, 1.39},
          Tone{"bromoil_transfer", 0.18, 1.33}}) {
        const PaperProfile paper = paperOf(tone.paper);
        // An ink process is set to put a grey card at 0.18 by two digits of its dmax.
        const bool ink = paper.pigment->mode == "ink";
        EXPECT_NEAR(printedLuma(paper, 0.0), greyOf(paper), 1e-4) << tone.paper;
        EXPECT_NEAR(greyOf(paper), tone.grey, ink ? 0.0035 : 5e-4) << tone.paper;
        EXPECT_NEAR(std::log10(printedLuma(paper, 20.0) / printedLuma(paper, -20.0)), tone.black, 0.01)
            << tone.paper;
        if (ink) continue;
        const HDCurve curve = Print::paperCurve(paper, 2.0, 0.0, 0.0);
        const Plane t = AltPrint::printAmount(Plane(1, 1, 0.95f), 0.95f, curve, 0.0);
        EXPECT_NEAR(t.at(0, 0), kPaperAnchor / (*paper.dmax - *paper.dmin), 2e-5) << tone.paper;
    }
}

TEST(AltPrint, AmountIsTheScalarFormInAnyRun)
{
    const PaperProfile paper = paperOf("vandyke");
    const HDCurve curve = Print::paperCurve(paper, 3.0, 0.4, 0.3);
    for (const std::int64_t width : {1, 15, 16, 17, 33}) {
        Plane density(width, 3);
        float* values = density.mutableData();
        for (std::int64_t i = 0; i < density.count(); ++i) values[i] = 0.06f * static_cast<float>(i % 50);
        const Plane t = AltPrint::printAmount(density, 0.8f, curve, 0.5);
        for (std::size_t i = 0; i < t.data.size(); ++i)
            ASSERT_NEAR(
                t.data[i],
                Print::amount(curve, density.data[i] - 0.8f, static_cast<float>(Print::printEvTerm(0.5))),
                1e-5);
    }
}

TEST(AltPrint, StepsKeepTheirEnds)
{
    PaperProfile paper;
    paper.inkFloor = 0.06;
    paper.plug = 0.18;
    paper.transfer = PaperTransfer{0.62, {}};
    Plane t(101, 1);
    for (std::int64_t i = 0; i <= 100; ++i) t.mutableData()[i] = static_cast<float>(i) / 100.0f;
    const Plane shaped = AltPrint::shapeAmount(t, paper);
    EXPECT_EQ(shaped.at(0, 0), 0.0f);
    EXPECT_EQ(shaped.at(6, 0), 0.0f) << "a hard cut";
    EXPECT_NEAR(shaped.at(100, 0), 1.0f, 1e-6);
    EXPECT_NEAR(shaped.at(53, 0), 1.0 - std::pow(0.5, 1.18), 1e-5);
    for (const double pickup : {1.0, 0.62, 0.5, 0.2, 0.05}) {
        RenderOptions options;
        options.pickup = pickup;
        const Plane pressed = AltPrint::pressTransfer(t, paper, options);
        EXPECT_EQ(pressed.at(0, 0), 0.0f);
        EXPECT_NEAR(pressed.at(100, 0), 1.0f, 1e-6) << "full ink survives the press at " << pickup;
        // The press inverts t' = t (1 - q t) / (1 - q).
        const double q = 1.0 - pickup, solid = pickup / q;
        EXPECT_NEAR(pressed.at(10, 0), std::min(0.1 * (1.0 - 0.1 * q) / pickup, 1.0), 1e-5) << pickup;
        if (solid < 0.9) {
            EXPECT_EQ(pressed.at(std::lround(solid * 100.0) + 4, 0), 1.0f) << "plugged from " << solid;
        }
    }
    paper.transfer = PaperTransfer{1.0, 0.3};
    RenderOptions soft;
    soft.printPxUm = 100.0;
    EXPECT_FALSE(test::sameBytes(AltPrint::pressTransfer(AltPrint::shapeAmount(t, paper), paper, soft),
                                 AltPrint::shapeAmount(t, paper)))
        << "a press that takes all is still soft";
}

TEST(AltPrint, StainFiltersAndInkCovers)
{
    const Vec3f base{0.9f, 0.8f, 0.7f};
    Plane t(3, 1);
    t.mutableData()[1] = 0.35f;
    t.mutableData()[2] = 0.7f;
    PaperProfile stain;
    stain.pigment = PaperPigment{"stain", Vec3d{1.2, 0.9, 0.4}, {}, {}};
    const RGBImage stained = AltPrint::colorize(t, stain, base);
    PaperProfile ink;
    ink.pigment = PaperPigment{"ink", {}, Vec3d{0.03, 0.02, 0.01}, {}};
    const RGBImage inked = AltPrint::colorize(Plane(1, 1, 1.0f), ink, base);
    for (std::size_t c = 0; c < 3; ++c) {
        const float once = stained.pixel(1, 0)[c] / base[c], twice = stained.pixel(2, 0)[c] / base[c];
        EXPECT_NEAR(twice, once * once, 1e-5);
        EXPECT_EQ(stained.pixel(0, 0)[c], base[c]);
        EXPECT_NEAR(inked.pixel(0, 0)[c], (*ink.pigment->rgb)[c], 1e-5);
    }
}

/// An even amount under a paper's texture, at a scale of the print.
Plane textured(const PaperProfile& paper, Size size, double pxUm, float amount)
{
    RenderOptions options;
    options.printPxUm = pxUm;
    return AltPrint::applyTexture(Plane(size.width, size.height, amount), paper, options,
                                  AltPrint::printSeed(options));
}

TEST(AltTexture, FibreIsStrongestInTheMiddleTones)
{
    PaperProfile paper = paperOf("platinum");
    for (const float t : {0.2f, 0.5f, 0.8f}) {
        const Plane plane = textured(paper, {2400, 1800}, 15.0, t);
        EXPECT_NEAR(plane.std() / (0.06 * std::sqrt(t * (1.0 - t))), 1.0, 0.01) << t;
    }
    // The mean over a whole print of 30 cm; a smaller piece may lie on one of the paper's clouds.
    EXPECT_NEAR(textured(paper, {3000, 2000}, 100.0, 0.5f).mean(), 0.5, 5e-4);
    for (const float t : {0.0f, 1.0f})
        for (const float v : textured(paper, {64, 64}, 60.0, t).data) ASSERT_EQ(v, t);
    paper.texture->kind = "felt";
    EXPECT_EQ(textured(paper, {8, 8}, 60.0, 0.5f).std(), 0.0) << "an unknown kind has no texture";
}

TEST(AltTexture, InkStandsInSpecksOnWhiteAndGrowsIntoTheShadows)
{
    const PaperProfile paper = paperOf("bromoil");
    const Plane white = textured(paper, {600, 400}, 200.0, 0.0f);
    EXPECT_EQ(*std::min_element(white.data.begin(), white.data.end()), 0.0f);
    const double light = textured(paper, {600, 400}, 200.0, 0.3f).std();
    EXPECT_LT(white.std(), 0.5 * light);
    EXPECT_GT(textured(paper, {600, 400}, 200.0, 0.6f).std(), 1.4 * light);
}

TEST(AltTexture, IsTheSamePrintAtEveryScale)
{
    // A piece of a print of 30 cm at the scales of a proxy (2,048 px), a screen (3,072) and a file (6,000),
    // all seen at 1,024.
    for (const char* id :
         {"platinum", "salt", "gum", "albumen", "bromoil", "bromoil_transfer", "collotype"}) {
        const PaperProfile paper = paperOf(id);
        const auto seen = [&](std::int64_t printPx) {
            const Size size{printPx / 2, printPx / 3};
            const Plane fine = textured(paper, size, 300'000.0 / static_cast<double>(printPx), 0.5f);
            return pilResize(fine, 512, 341, Resampling::box).std();
        };
        const double file = seen(6000);
        const double tolerance = paper.process == "collotype" ? 0.1 : 0.05; // its cracks are no Gaussian
        EXPECT_NEAR(seen(2048) / file, 1.0, tolerance) << id;
        EXPECT_NEAR(seen(3072) / file, 1.0, tolerance) << id;
    }
}

TEST(BrushedCoat, IsTheSameStrokeAtEverySize)
{
    const PaperProfile paper = paperOf("gum_tricolor");
    const auto drawn = [&](Size size) {
        const RenderOptions options;
        GrainRNG rng = AltPrint::coatRNG(options);
        return *AltPrint::coatProfiles(size, paper, options, rng);
    };
    const AltPrint::CoatProfiles small = drawn({900, 600}), large = drawn({1800, 1200});
    ASSERT_EQ(small.m, 41);
    ASSERT_EQ(large.m, 81);
    double worst = 0.0;
    for (std::size_t i = 0; i < small.left.size(); ++i) {
        const std::size_t j = std::min(2 * i, large.left.size() - 1);
        worst = std::max({worst, std::abs(small.left[i] / 41.0 - large.left[j] / 81.0),
                          std::abs((small.right[i] - 981.0) / 41.0 - (large.right[j] - 1961.0) / 81.0)});
    }
    EXPECT_LT(worst, 0.03) << "in margins";
    const auto deviation = [](const std::vector<float>& line) {
        return Plane(static_cast<std::int64_t>(line.size()), 1, std::span<const float>(line)).std();
    };
    EXPECT_NEAR(deviation(small.streakX), 1.0, 0.02);
    EXPECT_NEAR(deviation(small.streakY) / deviation(large.streakY), 1.0, 0.05);
    EXPECT_LT(deviation(small.streakY), 0.5);
}

TEST(BrushedCoat, RunsOutRoundThePicture)
{
    PaperProfile paper; // no coat of its own: the defaults
    RenderOptions options;
    options.coat = "brush";
    const Size size{400, 300};
    GrainRNG rng = AltPrint::coatRNG(options);
    const auto coat = AltPrint::coatProfiles(size, paper, options, rng);
    ASSERT_TRUE(coat);
    ASSERT_EQ(coat->m, 18);
    ASSERT_EQ(AltPrint::coatedSize(size, paper, options), (Size{436, 336}));
    const Plane canvas = AltPrint::coatCanvas(Plane(400, 300, 0.25f), *coat);
    const Plane masked = AltPrint::maskAmount(canvas, *coat);
    double most = 0.0;
    for (std::int64_t y = 0; y < canvas.height; ++y)
        for (std::int64_t x = 0; x < canvas.width; ++x) {
            const double d = std::min(
                {y - coat->top[static_cast<std::size_t>(x)], coat->bottom[static_cast<std::size_t>(x)] - y,
                 x - coat->left[static_cast<std::size_t>(y)], coat->right[static_cast<std::size_t>(y)] - x},
                [](double a, double b) { return a < b; });
            const double mask = std::clamp(d / coat->maskDen + 0.5, 0.0, 1.0);
            const bool inside = x >= 18 && x < 418 && y >= 18 && y < 318;
            const double layer = 0.82 * std::pow(std::clamp(d / coat->fadeDen, 0.0, 1.0), 0.7) *
                                 (1.0 + coat->streakK * (coat->streakX[static_cast<std::size_t>(x)] +
                                                         coat->streakY[static_cast<std::size_t>(y)]));
            const double t = inside ? 0.25 : std::clamp(layer, 0.0, 1.0);
            ASSERT_NEAR(canvas.at(x, y), t, 1e-4) << x << ", " << y;
            ASSERT_NEAR(masked.at(x, y), t * mask, 2e-4) << x << ", " << y;
            most = std::max(most, static_cast<double>(canvas.at(x, y)));
        }
    EXPECT_GT(most, 0.6) << "the coat glows round the picture";

    for (const char* none : {"none", "brush"}) {
        options.coat = none;
        paper.coat = PaperCoat{{}, std::string(none) == "none" ? 0.045 : 0.0, {}, {}};
        EXPECT_EQ(AltPrint::coatedSize(size, paper, options), size);
    }
}

TEST(BrushedCoat, CleanEdgeIsTwoPixelsOfPaperAndABand)
{
    const PaperProfile paper = paperOf("platinum");
    RenderOptions options = plain();
    options.coat = "clean";
    const RGBImage print = AltPrint::printOneCoat(Plane(500, 300, -20.0f), 0.0f, {paper, options, nullptr});
    ASSERT_EQ(print.size(), (Size{520, 320}));
    const Vec3f base = AltPrint::resolveBase(paper, options);
    EXPECT_NEAR(print.pixel(260, 160)[1], base[1] * std::pow(10.0, -1.349), 1e-4) << "the picture";
    EXPECT_NEAR(print.pixel(260, 8)[1], base[1] * std::pow(10.0, -1.349 * 0.82), 1e-3) << "the band";
    EXPECT_GT(print.pixel(0, 0)[1], 0.98 * base[1]) << "the paper";
}

TEST(AltPrint, AWindowInTheRebateShowsPaperOrCoat)
{
    const PaperProfile paper = paperOf("platinum");
    RenderOptions options = plain();
    Plane mask(200, 100, 1.0f);
    for (std::int64_t i = 0; i < 50 * 200; ++i) mask.mutableData()[i] = 0.0f;
    const Vec3f base = AltPrint::resolveBase(paper, options);
    const RGBImage print = AltPrint::printOneCoat(Plane(200, 100, -20.0f), 0.0f, {paper, options, &mask});
    EXPECT_NEAR(print.pixel(100, 10)[1], base[1], 1e-6);
    options.coat = "clean";
    const RGBImage coated = AltPrint::printOneCoat(Plane(200, 100, -20.0f), 0.0f, {paper, options, &mask});
    EXPECT_NEAR(coated.pixel(104, 14)[1], base[1] * std::pow(10.0, -1.349 * 0.82), 1e-4)
        << "a clear rebate prints the band's density";
}

TEST(PlateMark, LiesWhereThePressLeavesIt)
{
    const PaperProfile paper = paperOf("platinum");
    RenderOptions options;
    const auto edgeMm = [&](const PaperProfile& on, double marginMm) {
        const auto px = AltPrint::plateEdgePx(on, options, marginMm * 1000.0 / 60.0, 60.0);
        return px ? *px * 60.0 / 1000.0 : -1.0;
    };
    EXPECT_EQ(edgeMm(paper, 20.0), -1.0) << "no plate is pressed";
    options.plateMark = true;
    EXPECT_NEAR(edgeMm(paper, 20.0), 13.0, 1e-6);
    EXPECT_NEAR(edgeMm(paper, 60.0), 42.0, 1e-6);
    EXPECT_NEAR(edgeMm(paper, 2.0), 0.8, 1e-6);
    EXPECT_EQ(edgeMm(paper, 1.0), -1.0);
    EXPECT_EQ(edgeMm(PaperProfile{}, 20.0), -1.0) << "no handmade process";
}

TEST(PlateMark, IsAShadowInsideAndALightOutside)
{
    RenderOptions options;
    options.printPxUm = 50.0; // the line is 18 px wide
    options.plateInsetPx = 120.0;
    const RGBImage sheet =
        AltPrint::embossPlate(RGBImage(601, 501, {0.5f, 0.5f, 0.5f}), paperOf("platinum"), options);
    float lowest = 1.0f, highest = 0.0f;
    std::int64_t darkAt = 0, lightAt = 0;
    for (std::int64_t x = 0; x < 300; ++x) {
        const float factor = sheet.pixel(x, 250)[0] / 0.5f;
        if (factor < lowest) lowest = factor, darkAt = x;
        if (factor > highest) highest = factor, lightAt = x;
    }
    EXPECT_NEAR(lowest, 0.90, 0.003);
    EXPECT_GT(highest, 1.05);
    EXPECT_LT(highest, 1.06);
    EXPECT_LT(lightAt, 120);
    EXPECT_GT(darkAt, 120);
    EXPECT_EQ(sheet.pixel(300, 250)[0], 0.5f);
    for (std::int64_t y = 0; y < 501; ++y)
        for (std::int64_t x = 0; x < 601; ++x)
            ASSERT_EQ(sheet.pixel(x, y), sheet.pixel(600 - x, 500 - y)) << x << ", " << y;
}

TEST(AltPrint, SameBytesForAnyNumberOfWorkers)
{
    for (const char* id : {"platinum", "bromoil_transfer", "carbon"}) {
        const PaperProfile paper = paperOf(id);
        RenderOptions options;
        options.coat = "brush";
        test::expectSameForAnyWorkers([&] {
            Plane density = test::noisePicture(701, 333, 3).plane(0);
            return AltPrint::printOneCoat(std::move(density), 0.9f, {paper, options, nullptr});
        });
    }
}

TEST(AltPrint, AbsurdPapersAndPicturesGiveAPrint)
{
    PaperProfile paper = paperOf("bromoil");
    paper.texture->brushMm = 1e9;
    paper.texture->fineMm = 1e-9;
    paper.texture->amount = paper.texture->fineAmp = paper.texture->specks = 1e300;
    paper.coat = PaperCoat{"brush", 1e9, 1e300, 5.0};
    paper.pigment = PaperPigment{"stain", Vec3d{1e300, 1e300, 0.0}, {}, {}};
    paper.transfer = PaperTransfer{-3.0, 1e9};
    paper.relief = PaperRelief{1e300, 1e9, 1e9, std::vector<double>{1.0}, 0.0};
    paper.baseRgb = std::vector<double>{5.0, -1.0, 0.5};
    paper.base = "glass";
    RenderOptions options;
    for (const Size size : {Size{1, 1}, Size{5'000, 1}, Size{1, 300}, Size{64, 48}}) {
        const RGBImage print =
            AltPrint::printOneCoat(Plane(size.width, size.height, 0.3f), 0.9f, {paper, options, nullptr});
        EXPECT_EQ(print.size(), AltPrint::coatedSize(size, paper, options));
        for (const float v : print.data) ASSERT_TRUE(v >= 0.0f && v <= 1.0f);
    }
}

} // namespace
} // namespace tamlo
