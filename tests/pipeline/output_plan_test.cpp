// The plan of a render against the render itself, and the copies made of a finished picture.
#include "core/pipeline/output_plan.h"
#include "core/pipeline/pipeline.h"
#include "core/pipeline/render_size.h"
#include "core/profiles/catalogue/profile_store.h"
#include "core/profiles/options/film_format.h"
#include "core/profiles/options/peel_size.h"

#include <gtest/gtest.h>

#include <random>

namespace tamlo::test {
namespace {

using Kind = ProfileStore::Kind;

/// A reproducible choice of everything that can change a picture's size.
class Chance {
public:
    explicit Chance(std::uint32_t seed) : engine_(seed) {}
    std::int64_t whole(std::int64_t low, std::int64_t high)
    {
        return low + static_cast<std::int64_t>(engine_() % static_cast<std::uint64_t>(high - low + 1));
    }
    double real(double low, double high)
    {
        return low + (high - low) * static_cast<double>(whole(0, 1000)) / 1000.0;
    }
    bool coin() { return whole(0, 1) == 1; }
    template <typename List>
    auto of(const List& list)
    {
        return list[static_cast<std::size_t>(whole(0, static_cast<std::int64_t>(std::size(list)) - 1))];
    }

private:
    std::mt19937 engine_;
};

RenderOptions randomOptions(Chance& chance)
{
    RenderOptions options;
    options.grainMult = 0.0;
    options.rotate =
        chance.of(std::array{-450, -135, -90, 0, 0, 44, 45, 90, 134, 135, 180, 225, 270, 315, 405});
    options.mirror = chance.coin();
    if (chance.coin()) {
        options.crop = Crop{chance.real(0.0, 0.6), chance.real(0.0, 0.6), chance.real(0.05, 0.4),
                            chance.real(0.05, 0.4), 0.0};
        if (chance.coin()) options.crop->angle = chance.real(-8.0, 8.0);
    }
    options.format = chance.of(std::array{FilmFormat::f135, FilmFormat::f120, FilmFormat::half,
                                          FilmFormat::sheet4x5, FilmFormat::sheet, FilmFormat::plate});
    if (chance.coin()) options.frameSize = std::string(chance.of(Formats::frameSizes()).size);
    options.cropGate = chance.coin() ? "full" : "none";
    options.masterCap = chance.coin();
    options.border = chance.coin() ? chance.real(0.0, 0.3) : 0.0;
    options.borderBlack = chance.coin();
    if (chance.coin()) options.sheetCm = chance.real(5.0, 60.0);
    options.printCm = chance.real(5.0, 60.0);
    options.instantFrame = chance.coin();
    options.peelSize = std::string(chance.of(Pipeline::peelSizes).key);
    // A smooth table counts its nodes in millimetres, so that a large one costs as much at any size.
    if (chance.coin()) options.table = options.printCm < 8.0 && !options.sheetCm ? "grey" : "linen";
    options.tableWidthCm = chance.real(0.0, 5.0);
    options.mat = std::string(chance.of(std::array{"", "none", "classic", "double", "emboss", "french"}));
    options.matWidthCm = chance.real(0.0, 4.0);
    options.matBottomWeight = chance.real(1.0, 1.4);
    options.blindStamp = chance.coin();
    if (chance.coin()) options.stampText = "A";
    if (chance.coin()) options.coat = chance.of(std::array<std::string, 3>{"none", "clean", "brush"});
    if (chance.coin()) options.plateMark = chance.coin();
    options.frameStyle = chance.of(std::array{FrameStyle::none, FrameStyle::thin, FrameStyle::wide});
    if (chance.coin()) options.frame = chance.real(0.0, 0.2);
    options.framePrint = chance.coin();
    options.frameNumber = chance.whole(0, 40);
    options.crtZoom = chance.real(1.0, 10.0);
    return options;
}

/// 400 random choices of these films and papers: the plan is the size of the render.
void expectThePlanIsTheRender(const std::vector<std::string>& films, const std::vector<std::string>& papers,
                              std::uint32_t seed)
{
    const ProfileStore& store = ProfileStore::shared();
    Chance chance(seed);
    for (int round = 0; round < 400; ++round) {
        const Size source{chance.whole(1, 90), chance.whole(1, 90)};
        const std::string filmName = chance.of(films), paperName = chance.of(papers);
        FilmProfile film = store.film(filmName);
        PaperProfile paper = store.paper(paperName);
        // Ceilings that bite at this size: a scanner's, and that of a very soft instant film.
        if (paper.scan && chance.coin()) paper.scan->longPx = static_cast<int>(chance.whole(1, 120));
        if (film.isInstant() && film.mtf && chance.coin()) film.mtf->f50CycMm = chance.real(0.05, 1.0);
        // Cards that leave the camera either way, or have no size and no block of their own.
        if (film.isInstant() && film.frame && chance.coin()) {
            film.frame->nativeOrientation = chance.of(std::array<std::string, 2>{"portrait", "landscape"});
            film.frame->sideFrac = chance.real(-0.1, 0.4);
            if (chance.whole(0, 3) == 0) film.frame->imageLongMm.reset();
            if (chance.whole(0, 7) == 0) film.frame.reset();
        }
        // Screens and drops coarse enough that a picture of this size grows for them.
        if (paper.offset) paper.offset->lpi = chance.real(1.0, 60.0);
        if (paper.crt) paper.crt->pitchMm = chance.real(0.3, 40.0);
        if (paper.inkjet) paper.inkjet->dropUm = chance.real(50.0, 3000.0);
        const RenderOptions options = randomOptions(chance);
        const double scale = chance.of(std::array{1.0, 0.9995, 0.9989, 0.5, 0.25});
        SCOPED_TRACE(testing::Message() << round << ": " << filmName << " on " << paperName << ", "
                                        << source.width << " x " << source.height << ", scale " << scale);

        RGBImage image(source.width, source.height, Vec3f{0.3f, 0.2f, 0.1f});
        image = Pipeline::process(std::move(image), film, {}, paper, options, {});
        image = Pipeline::exportDownscale(std::move(image), scale);
        const Pipeline::OutputPlan plan = Pipeline::outputPlan(source, film, paper, options, scale);
        ASSERT_EQ(plan.size(), image.size());
    }
}

TEST(OutputPlan, IsTheSizeOfTheRender)
{
    const ProfileStore& store = ProfileStore::shared();
    const std::vector<std::string> films = store.list(Kind::films, true),
                                   papers = store.list(Kind::papers, true);
    std::vector<std::string> cards = films;
    std::erase_if(cards, [&](const std::string& name) { return !store.film(name).isInstant(); });
    expectThePlanIsTheRender(films, papers, 5);
    // Those of a geometry of their own, on what shows them.
    expectThePlanIsTheRender(cards, papers, 6);
    expectThePlanIsTheRender({"collodion_wet", "dryplate_ortho"},
                             {"ambrotype", "ferrotype", "albumen", "bw_neutral"}, 7);
    expectThePlanIsTheRender({"portra400", "trix400"}, {"crt_tv", "crt_trinitron", "crt_mono"}, 8);
    // The film's edge, on prints of negatives and on slides.
    expectThePlanIsTheRender({"portra400", "trix400", "provia100f"},
                             {"color_ra4", "bw_neutral", "projector", "cibachrome"}, 9);
}

// Known frames, by hand: 36 mm of film in 6,000 pixels, a crop of half of it, a sheet with borders.
TEST(OutputPlan, TellsThePhysicalScale)
{
    const ProfileStore& store = ProfileStore::shared();
    const FilmProfile film = store.film("portra400");
    const PaperProfile paper = store.paper("color_ra4");
    RenderOptions options;
    Pipeline::OutputPlan plan = Pipeline::outputPlan({6000, 4000}, film, paper, options, 0.9995);
    EXPECT_EQ(plan.size(), (Size{6000, 4000})) << "so little is no reduction";
    EXPECT_NEAR(plan.pxUm, 6.0, 1e-9);
    EXPECT_NEAR(plan.printPxUm, 50.0, 1e-9);

    plan = Pipeline::outputPlan({12'000, 8000}, film, paper, options, 1.0);
    EXPECT_EQ(plan.size(), (Size{6545, 4363}));

    options.frameSize = "full";
    options.crop = Crop{0.25, 0.25, 0.5, 0.5, 0.0};
    options.rotate = 90;
    options.border = 0.05;
    options.sheetCm = 20.0;
    plan = Pipeline::outputPlan({6000, 4000}, film, paper, options, 0.5);
    EXPECT_EQ(plan.picture, (Size{2000, 3000}));
    EXPECT_EQ(plan.size(), (Size{1150, 1650}));
    EXPECT_NEAR(plan.fmtUm, 18'000.0, 1e-6);
    EXPECT_NEAR(plan.printCm, 20.0 / 1.1, 1e-9);

    PaperProfile minilab = store.paper("scan_film");
    minilab.scan->longPx = 3000;
    plan = Pipeline::outputPlan({6000, 4000}, film, minilab, {}, 1.0);
    EXPECT_EQ(plan.size(), (Size{3000, 2000}));
    EXPECT_NEAR(plan.printPxUm, 100.0, 1e-9);
    EXPECT_NEAR(plan.printCm, 30.0, 1e-9);
}

TEST(OutputPlan, CardsCutTheirPicture)
{
    FilmProfile film;
    film.type = "instant";
    film.frame.emplace();
    film.frame->crop = "square";
    RenderOptions options;
    const Size wide{300, 200}, tall{200, 300};
    EXPECT_EQ(Pipeline::cardCropRect(wide, film, options), (Pipeline::PixelRect{50, 0, 250, 200}));
    film.frame->crop = "aspect";
    EXPECT_EQ(Pipeline::cardCropRect(wide, film, options), std::nullopt) << "no size, no aspect";
    film.frame->imageLongMm = 99.0;
    film.frame->imageShortMm = 62.0;
    EXPECT_EQ(Pipeline::cardCropRect(tall, film, options), (Pipeline::PixelRect{6, 0, 194, 300}));
    film.frame->style = "peel";
    options.peelSize = "3x4";
    EXPECT_NEAR(*Pipeline::cardAspect(film, options), 95.0 / 73.0, 1e-12);
    EXPECT_NEAR(Pipeline::instantBareOptions(film, options, {950, 730}).printPxUm, 100.0, 1e-9);
    options.instantFrame = false;
    EXPECT_EQ(Pipeline::cardAspect(film, options), std::nullopt);

    film.frame->style = "integral";
    film.frame->imageLongMm.reset();
    EXPECT_EQ(Pipeline::instantBareOptions(film, options, {950, 730}).printPxUm, options.printPxUm);
}

TEST(OutputPlan, PreviewsStartFromTheCheapestCandidate)
{
    const ProfileStore& store = ProfileStore::shared();
    const FilmProfile film = store.film("portra400");
    const PaperProfile paper = store.paper("color_ra4");
    const std::vector<std::int64_t> tiers{2048, 960, 4096}, beyond{8000};
    EXPECT_EQ(Pipeline::previewInputLong({6000, 4000}, film, paper, {}, {}), 6000);
    EXPECT_EQ(Pipeline::previewInputLong({6000, 4000}, film, paper, {}, tiers), 960);
    EXPECT_EQ(Pipeline::previewInputLong({6000, 4000}, film, paper, {}, beyond), 6000);
    EXPECT_EQ(Pipeline::previewInputLong({600, 400}, film, paper, {}, tiers), 600);
}

TEST(OutputPlan, SocialCopiesAreAsLargeAsTold)
{
    struct Case {
        Size finished;
        bool crop45;
        const char* by;
        int px;
        Size expected;
    };
    const std::vector<Case> cases{
        {{300, 200}, false, "width", 100, {100, 67}},  {{200, 300}, false, "long", 100, {67, 100}},
        {{300, 200}, true, "width", 80, {80, 100}},    {{100, 300}, true, "width", 1080, {100, 125}},
        {{300, 200}, false, "width", 300, {300, 200}}, {{300, 200}, false, "width", 0, {300, 200}},
        {{1, 1}, true, "width", 1080, {1, 1}},
    };
    const ProfileStore& store = ProfileStore::shared();
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.finished.width << " x " << c.finished.height << " " << c.px);
        RenderOptions options;
        options.socialCrop45 = c.crop45;
        options.socialBy = c.by;
        options.socialPx = c.px;
        const RGBImage copy = Pipeline::socialVariant(RGBImage(c.finished.width, c.finished.height), options);
        EXPECT_EQ(copy.size(), c.expected);
        EXPECT_EQ(
            Pipeline::socialSize(c.finished, store.film("portra400"), store.paper("color_ra4"), options),
            c.expected);
    }
    EXPECT_EQ(Pipeline::sizeLabel({6000, 4000}, "MP"), "6000 × 4000, 24.0 MP");
    EXPECT_EQ(Pipeline::sizeLabel({6000, 4000}), "6000 × 4000");
}

TEST(OutputPlan, InsetsAreFractionsOfThePicture)
{
    EXPECT_EQ(Pipeline::frameInsetFrac(std::nullopt, 100), (std::array<double, 4>{}));
    EXPECT_EQ(Pipeline::frameInsetFrac(std::array{1.0, 2.0, 3.0, 4.0}, 0), (std::array{1.0, 2.0, 3.0, 4.0}));
    EXPECT_NEAR(Pipeline::frameInsetFrac(std::array{1.0, 2.0, 3.0, 4.0}, 100)[3], 0.04, 1e-12);
    EXPECT_EQ(Pipeline::borderMarginPx(0.05, 50), 2) << "ties go to even";
    EXPECT_EQ(Pipeline::borderMarginPx(-0.05, 50), 0);
}

} // namespace
} // namespace tamlo::test
