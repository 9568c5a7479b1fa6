#include "core/image/resample.h"
#include "core/io/srgb_encode.h"
#include "core/pipeline/backend.h"
#include "core/pipeline/film_dispatch.h"
#include "core/pipeline/output_plan.h"
#include "core/pipeline/pipeline.h"
#include "core/process/border.h"
#include "core/profiles/catalogue/profile_store.h"
#include "tests/support/pictures.h"

#include <algorithm>
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

    const RGBImage thin = Finishing::addBorder(RGBImage(1, 1), 1, {1, 2, 3});
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

/// Mean light of the middle of one third of a picture, from the left.
double lightOfThird(const RGBImage& image, std::int64_t third)
{
    double sum = 0.0, count = 0.0;
    for (std::int64_t y = image.height / 3; y < image.height * 2 / 3; ++y)
        for (std::int64_t x = (4 * third + 1) * image.width / 12; x < (4 * third + 3) * image.width / 12;
             ++x) {
            const Vec3f v = image.pixel(x, y);
            sum += (v[0] + v[1] + v[2]) / 3.0;
            ++count;
        }
    return sum / count;
}

// Whatever the materials, light comes out as light: three steps, in their order, inside the paper's range.
TEST(Pipeline, EveryReferenceFilmAndPaperRunsThrough)
{
    const ProfileStore& store = ProfileStore::shared();
    RGBImage source = test::noisePicture(48, 32, 6, 1.0f);
    constexpr float kSteps[] = {0.15f, 1.0f, 5.0f};
    float* p = source.mutableData();
    for (std::int64_t i = 0; i < source.pixelCount() * 3; ++i) p[i] *= kSteps[i / 3 % 48 / 16];
    Darkroom darkroom;
    darkroom.options.instantFrame = false; // the picture alone
    for (const std::string& film : store.list(ProfileStore::Kind::films))
        for (const std::string& paper : store.list(ProfileStore::Kind::papers)) {
            SCOPED_TRACE(film + " on " + paper);
            darkroom.film = store.film(film);
            darkroom.paper = store.paper(paper);
            const RGBImage out = darkroom(source);
            const auto [low, high] = std::ranges::minmax(out.data);
            ASSERT_TRUE(low >= 0.0f && high <= 1.0f) << low << " to " << high;
            const double dark = lightOfThird(out, 0), grey = lightOfThird(out, 1),
                         light = lightOfThird(out, 2);
            EXPECT_LT(dark, grey);
            EXPECT_LT(grey, light);
        }
    darkroom.film.type = "glass";
    EXPECT_THROW(darkroom(source), TamloError);
}

// Slivers and specks on every kind of card, and under a mat or on a table with it.
TEST(Pipeline, OddPicturesGetTheirCard)
{
    Darkroom darkroom;
    for (const char* film : {"polaroid_sx70", "instax_wide", "fp100c", "polaroid_bw_600"}) {
        darkroom.film = ProfileStore::shared().film(film);
        for (const Size size : {Size{1, 1}, Size{2, 2}, Size{1, 30'000}, Size{30'000, 1}}) {
            SCOPED_TRACE(testing::Message() << film << " " << size.width << " x " << size.height);
            const RGBImage source(size.width, size.height, Vec3f{0.2f, 0.2f, 0.2f});
            for (const char* mount : {"", "mat", "table"}) {
                darkroom.options.mat = darkroom.options.table = std::nullopt;
                if (*mount == 'm') darkroom.options.mat = "classic";
                if (*mount == 't') darkroom.options.table = "linen";
                const RGBImage out = darkroom(source);
                EXPECT_EQ(
                    out.size(),
                    Pipeline::outputPlan(size, darkroom.film, darkroom.paper, darkroom.options, 1.0).size());
                for (const float v : out.data) ASSERT_TRUE(std::isfinite(v));
            }
        }
    }
}

// Each instant film at three sizes, brought to one: the same picture.
TEST(Pipeline, ACardIsTheSameAtEverySize)
{
    Darkroom darkroom;
    const RGBImage scene = pilResize(test::noisePicture(24, 24, 8, 3.0f), 2048, 2048, Resampling::bicubic);
    for (const char* film : {"polaroid_sx70", "polaroid_600", "instax_wide", "fp100c", "fp3000b"}) {
        darkroom.film = ProfileStore::shared().film(film);
        darkroom.film.texture->fineAmp = 0.0; // it is as fine as the pixels
        const bool isPack = darkroom.film.frame->style == "peel";
        std::optional<RGBImage> smallest;
        for (const std::int64_t longPx : {450, 900, 2048}) {
            SCOPED_TRACE(testing::Message() << film << " " << longPx);
            RGBImage out = darkroom(resized(RGBImage(scene), longPx));
            if (!smallest) {
                smallest = std::move(out);
                continue;
            }
            out = pilResize(out, smallest->size(), Resampling::box);
            double difference = 0.0, level = 0.0;
            for (std::size_t i = 0; i < out.data.size(); ++i) {
                const double d =
                    double{ImageWriter::srgbOf(out.data[i])} - ImageWriter::srgbOf(smallest->data[i]);
                difference += std::abs(d);
                level += d;
            }
            difference /= static_cast<double>(out.data.size());
            level /= static_cast<double>(out.data.size());
            EXPECT_LT(difference, isPack ? 0.019 : 0.010);
            EXPECT_LT(std::abs(level), 0.002);
        }
    }
}

/// The same scene at any size: clouds, an edge and a fine grating that no size loses.
RGBImage sceneAt(std::int64_t longPx)
{
    RGBImage out(longPx, longPx * 2 / 3);
    float* p = out.mutableData();
    for (std::int64_t y = 0; y < out.height; ++y)
        for (std::int64_t x = 0; x < out.width; ++x, p += 3) {
            const double u = (static_cast<double>(x) + 0.5) / static_cast<double>(longPx);
            const double v = (static_cast<double>(y) + 0.5) / static_cast<double>(longPx);
            const double cloud = 0.2 + 0.15 * std::sin(9.0 * u + 4.0 * v) * std::sin(11.0 * v);
            p[0] = static_cast<float>(cloud * (1.1 + 0.3 * std::sin(30.0 * u)));
            p[1] = static_cast<float>(cloud);
            p[2] = static_cast<float>(cloud * (1.0 - 0.4 * std::sin(25.0 * v)));
        }
    return out;
}

// Screens, plates and rebates at three tiers: the larger brought to the smallest one's size are the same
// picture, and the same bytes for any number of workers.
TEST(Pipeline, TubesPlatesAndRebatesAreTheSamePictureAtEveryTier)
{
    struct Case {
        const char *film, *paper;
        FrameStyle style;
        bool print;
        double level, apart = 0.010;
    };
    // The dots of a television are 3.5 pixels apart at 2,048, and a box leaves beats of them at 450.
    for (const Case& c : {Case{"portra400", "crt_tv", FrameStyle::none, false, 0.02, 0.022},
                          Case{"portra400", "crt_mono", FrameStyle::none, false, 0.02},
                          Case{"three_plates_1909", "color_scan", FrameStyle::none, false, 0.002},
                          // At 450 pixels its margins miss their width by a fifth of a pixel on each side.
                          Case{"portra400", "color_ra4", FrameStyle::wide, false, 0.0025},
                          Case{"velvia50", "scan_film", FrameStyle::wide, true, 0.002}}) {
        SCOPED_TRACE(std::string(c.film) + " on " + c.paper);
        Darkroom darkroom;
        darkroom.film = ProfileStore::shared().film(c.film);
        darkroom.paper = ProfileStore::shared().paper(c.paper);
        darkroom.options.grainMult = 0.0;
        darkroom.options.reproRaster = "off"; // tiers of their own size
        darkroom.options.frameStyle = c.style;
        darkroom.options.framePrint = c.print;
        darkroom.options.frameNumber = 8;
        const RGBImage small = darkroom(sceneAt(450));
        const PageBuffer a = ImageWriter::encodeSRGB8RGB(small);
        const auto count = static_cast<std::size_t>(small.pixelCount() * 3);
        const auto first = a.bytes(count);
        for (const std::int64_t longPx : {900, 2048}) {
            const RGBImage large = pilResize(darkroom(sceneAt(longPx)), small.size(), Resampling::box);
            const PageBuffer b = ImageWriter::encodeSRGB8RGB(large);
            const auto second = b.bytes(count);
            double apart = 0.0, levels = 0.0;
            for (std::size_t i = 0; i < count; ++i) {
                apart += std::abs(first[i] - second[i]) / 255.0;
                levels += (first[i] - second[i]) / 255.0;
            }
            EXPECT_LT(apart / static_cast<double>(count), longPx > 900 ? c.apart : 0.010) << longPx;
            EXPECT_LT(std::abs(levels) / static_cast<double>(count), c.level) << longPx;
        }
        test::expectSameForAnyWorkers([&] { return darkroom(sceneAt(240)); });
    }
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
