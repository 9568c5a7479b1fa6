#include "core/io/srgb_encode.h"
#include "core/pipeline/film_dispatch.h"
#include "core/pipeline/pipeline.h"
#include "core/process/border.h"
#include "core/profiles/profile_store.h"
#include "tests/support/pictures.h"

#include <string>
#include <vector>

namespace tamlo {
namespace {

struct Darkroom {
    FilmProfile film = ProfileStore::shared().film("portra400");
    LensProfile lens = ProfileStore::shared().lens("modern_clean");
    PaperProfile paper = ProfileStore::shared().paper("color_ra4");
    RenderOptions options;

    RGBImage operator()(const RGBImage& source, const RenderHooks& hooks = {}) const
    {
        return Pipeline::process(source, film, lens, paper, options, hooks);
    }
};

TEST(Pipeline, AGreyCardComesOutGreyOnTheNeutralTriple)
{
    Darkroom neutral;
    neutral.film = ProfileStore::shared().film("digital_negative");
    neutral.paper = ProfileStore::shared().paper("color_scan");
    // The neutral lens keeps a trace of veil and fall-off: the card is read in the middle of the frame.
    const RGBImage seen = neutral(RGBImage(64, 48, {0.18f, 0.18f, 0.18f}));
    const PageBuffer bytes = ImageWriter::encodeSRGB8RGB(seen);
    for (std::size_t c = 0; c < 3; ++c) EXPECT_NEAR(bytes.bytes(64 * 48 * 3)[(24 * 64 + 32) * 3 + c], 118, 1);

    neutral.lens = {};
    const RGBImage out = neutral(RGBImage(64, 48, {0.18f, 0.18f, 0.18f}));
    EXPECT_EQ(out.size(), (Size{64, 48}));
    for (const float v : out.data) ASSERT_NEAR(v, 0.18f, 1e-4f);
}

TEST(Pipeline, IsThePictureAtAnySizeAndForAnyWorkers)
{
    const Darkroom darkroom;
    const RGBImage source = test::noisePicture(180, 121, 4, 8.0f);
    test::expectSameForAnyWorkers([&] { return darkroom(source); });
    for (const Size size : {Size{1, 1}, Size{30'000, 1}, Size{1, 999}}) {
        const RGBImage out = darkroom(RGBImage(size.width, size.height, {0.3f, 0.2f, 0.1f}));
        for (const float v : out.data) ASSERT_TRUE(std::isfinite(v));
    }
    EXPECT_THROW(darkroom(RGBImage()), TamloError);
}

TEST(Pipeline, TurnsMirrorsAndCapsTheSource)
{
    Darkroom darkroom;
    RGBImage source(40, 20, {0.18f, 0.18f, 0.18f});
    source.mutableData()[0] = 3.0f; // red in the top left corner
    darkroom.options.rotate = 90;
    const RGBImage turned = darkroom(source);
    ASSERT_EQ(turned.size(), (Size{20, 40}));
    EXPECT_GT(turned.pixel(19, 0)[0], 0.5f);
    darkroom.options.mirror = true; // mirrored first, then turned
    EXPECT_GT(darkroom(source).pixel(19, 39)[0], 0.5f);

    darkroom.options = {};
    const RGBImage large(8000, 4, {0.18f, 0.18f, 0.18f});
    EXPECT_EQ(darkroom(large).width, 6545);
    darkroom.options.masterCap = false;
    EXPECT_EQ(darkroom(large).width, 8000);
}

TEST(Pipeline, LaysTheBorderInThePapersBase)
{
    Darkroom darkroom;
    darkroom.lens = {};
    darkroom.options.border = 0.1;
    darkroom.options.grainMult = 0.0;
    const RGBImage out = darkroom(RGBImage(50, 30, {0.18f, 0.18f, 0.18f}));
    ASSERT_EQ(out.size(), (Size{60, 40}));
    EXPECT_EQ(out.pixel(0, 0), (Vec3f{1.0f, 0.996f, 0.985f}));
    EXPECT_NEAR(out.pixel(5, 5)[1], out.pixel(30, 20)[1], 1e-6f);

    darkroom.paper = ProfileStore::shared().paper("color_scan");
    darkroom.options.borderBlack = true;
    const RGBImage onScan = darkroom(RGBImage(50, 30, {0.18f, 0.18f, 0.18f}));
    EXPECT_LT(onScan.pixel(0, 0)[1], 0.02f);
    const Vec3d black = Film::printBlackRGB(darkroom.film, darkroom.paper, darkroom.options, 5.5);
    EXPECT_NEAR(onScan.pixel(0, 0)[1], black[1], 1e-6);

    const RGBImage thin = Pipeline::addBorder(RGBImage(1, 1), 1, {1, 2, 3});
    EXPECT_EQ(thin.size(), (Size{3, 3}));
    EXPECT_EQ(thin.pixel(1, 1), (Vec3f{0, 0, 0}));
    EXPECT_EQ(thin.pixel(2, 1), (Vec3f{1, 2, 3}));
}

TEST(Pipeline, PrintBlackIsTheDarkestAndOwesNothingToTheDice)
{
    const Darkroom darkroom;
    RenderOptions options;
    options.devUneven = 3.0;
    const Vec3d black = Film::printBlackRGB(darkroom.film, darkroom.paper, options, 5.5);
    options.seed = 99;
    EXPECT_EQ(Film::printBlackRGB(darkroom.film, darkroom.paper, options, 5.5), black);
    Darkroom plain = darkroom;
    plain.options.grainMult = 0.0;
    const RGBImage dark = plain(RGBImage(9, 9));
    for (std::size_t c = 0; c < 3; ++c) EXPECT_NEAR(dark.pixel(4, 4)[c], black[c], 1e-6);
}

TEST(Pipeline, StopsAtEachCancellationPoint)
{
    const Darkroom darkroom;
    const RGBImage source(8, 8, {0.2f, 0.2f, 0.2f});
    int points = 0;
    RenderHooks hooks;
    hooks.shouldCancel = [&] { return ++points, false; };
    std::vector<double> fractions;
    hooks.onProgress = [&](const char*, double fraction) { fractions.push_back(fraction); };
    darkroom(source, hooks);
    EXPECT_EQ(points, 2);
    EXPECT_TRUE(std::is_sorted(fractions.begin(), fractions.end()));
    EXPECT_EQ(fractions.back(), 1.0);

    for (int stopAt = 1; stopAt <= points; ++stopAt) {
        int asked = 0;
        hooks.shouldCancel = [&] { return ++asked == stopAt; };
        try {
            darkroom(source, hooks);
            FAIL() << "point " << stopAt << " did not stop the render";
        } catch (const TamloError& error) {
            EXPECT_EQ(error.kind(), TamloError::Kind::cancelled);
        }
    }
}

TEST(Pipeline, EveryReferenceFilmAndPaperRunsThrough)
{
    const ProfileStore& store = ProfileStore::shared();
    const RGBImage source = test::noisePicture(48, 32, 6, 6.0f);
    Darkroom darkroom;
    for (const std::string& film : store.list(ProfileStore::Kind::films))
        for (const std::string& paper : store.list(ProfileStore::Kind::papers)) {
            darkroom.film = store.film(film);
            darkroom.paper = store.paper(paper);
            const RGBImage out = darkroom(source);
            for (const float v : out.data) ASSERT_TRUE(std::isfinite(v)) << film << " on " << paper;
        }
    darkroom.film.type = "glass";
    EXPECT_THROW(darkroom(source), TamloError);
}

TEST(Pipeline, SaysWhatLetsThePictureThrough)
{
    const ProfileStore& store = ProfileStore::shared();
    const auto pending = [&](const char* film, const char* paper) {
        return Film::pendingStage(store.film(film), store.paper(paper)).has_value();
    };
    EXPECT_FALSE(pending("portra400", "color_ra4"));
    EXPECT_FALSE(pending("trix400", "bw_neutral"));
    EXPECT_FALSE(pending("velvia50", "scan_film"));
    EXPECT_FALSE(pending("collodion_wet", "bw_neutral"));
    EXPECT_TRUE(pending("collodion_wet", "ambrotype"));
    EXPECT_TRUE(pending("polaroid_sx70", "color_scan"));
    EXPECT_TRUE(pending("trix400", "platinum"));
    EXPECT_TRUE(pending("portra400", "offset_newsprint"));
}

TEST(Pipeline, FinishingIsWantedOrNot)
{
    RenderOptions options;
    EXPECT_FALSE(Pipeline::hasFinishing(options));
    options.mat = "none";
    options.embossLine = "";
    options.stampText = "";
    options.blindStamp = false;
    EXPECT_FALSE(Pipeline::hasFinishing(options));
    options.blindStamp = true;
    EXPECT_TRUE(Pipeline::hasFinishing(options));
}

} // namespace
} // namespace tamlo
