// The catalogue as a photographer meets it: orders between materials that must come out of the render, read
// from pictures and from what the materials measure, never from their profiles.
#include "core/pipeline/film_dispatch.h"
#include "core/pipeline/pipeline.h"
#include "core/profiles/catalogue/profile_store.h"
#include "core/profiles/presets/preset_document.h"
#include "core/sensitometry/sensitometry.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>

namespace tamlo::test {
namespace {

using Kind = ProfileStore::Kind;

const ProfileStore& store()
{
    return ProfileStore::shared();
}

const Sensitometry::Report& measured(const std::string& film)
{
    static std::map<std::string, Sensitometry::Report> known;
    const auto found = known.find(film);
    if (found != known.end()) return found->second;
    RenderOptions options;
    options.grainRms = true;
    options.grainEngine = GrainEngine::classic;
    return known.emplace(film, Sensitometry::measure(store().film(film), nullptr, options)).first->second;
}

/// A patch of colour, in daylight, through a film onto a paper.
Vec3f rendered(const std::string& film, const std::string& paper, const Vec3f& light,
               const std::string& balance = "film")
{
    RenderOptions options;
    options.grainMult = 0.0;
    options.wbMode = balance;
    const RGBImage out =
        Pipeline::process(RGBImage(32, 32, light), store().film(film), {}, store().paper(paper), options, {});
    return out.pixel(out.width / 2, out.height / 2);
}

float luminance(const Vec3f& v)
{
    return 0.2126f * v[0] + 0.7152f * v[1] + 0.0722f * v[2];
}

/// Spread of the channels of a leaf, a sky and a roof, over their mean.
double colourfulness(const std::string& film, const std::string& paper)
{
    double sum = 0.0;
    for (const Vec3f& light :
         {Vec3f{0.09f, 0.16f, 0.05f}, Vec3f{0.12f, 0.2f, 0.36f}, Vec3f{0.3f, 0.1f, 0.06f}}) {
        const Vec3f v = rendered(film, paper, light);
        const auto [low, high] = std::minmax({v[0], v[1], v[2]});
        sum += (high - low) / ((v[0] + v[1] + v[2]) / 3.0f);
    }
    return sum;
}

using Order = std::vector<std::string>;

TEST(Catalogue, GranularityAndSharpnessFollowSpeedAndEmulsion)
{
    for (const Order& falling :
         {Order{"portra800", "portra400", "portra160"}, Order{"vision3_500t", "vision3_250d"},
          Order{"konica_vx400", "konica_vx100"}, Order{"ultramax400", "gold200", "pro_image100", "ektar100"},
          Order{"delta3200", "delta400", "delta100"}, Order{"hp5", "fp4", "panf50"},
          Order{"fomapan400", "fomapan100"}, Order{"ilfordpan400", "ilfordpan100"},
          Order{"trix400", "tmax400"}, Order{"hp5", "delta400"}, Order{"natura1600", "superia400"}})
        for (std::size_t i = 1; i < falling.size(); ++i) {
            const Sensitometry::Report &fast = measured(falling[i - 1]), &slow = measured(falling[i]);
            EXPECT_GT(fast.granularity->rms[1], slow.granularity->rms[1])
                << falling[i - 1] << ", " << falling[i];
            EXPECT_LT(fast.mtf50.value_or(500.0), slow.mtf50.value_or(500.0))
                << falling[i - 1] << ", " << falling[i];
        }
}

// What the profile says of its granularity is what the material measures.
TEST(Catalogue, MeasuresThePublishedGranularity)
{
    const std::map<std::string, double> published{
        {"trix400", 17.0},   {"trix400_ds", 17.0}, {"tmax400", 10.0}, {"doublex5222", 14.0},
        {"e100", 8.0},       {"provia100f", 8.0},  {"velvia50", 9.0}, {"kodachrome64", 10.0},
        {"superia400", 4.0}, {"natura1600", 7.0},  {"pro400h", 4.0}};
    for (const auto& [film, rms] : published)
        EXPECT_NEAR(measured(film).granularity->rms[1], rms, 0.05 * rms) << film;
    // The two that stand for a data sheet draw its grain with no option asked for; others draw more.
    RenderOptions atRest;
    atRest.grainEngine = GrainEngine::classic;
    const auto drawn = [&](const char* film) {
        return Sensitometry::measure(store().film(film), nullptr, atRest).granularity->rms[1];
    };
    for (const char* film : {"trix400_ds", "portra400_ds"})
        EXPECT_NEAR(drawn(film), measured(film).granularity->rms[1], 0.01) << film;
    EXPECT_NEAR(drawn("trix400"), 1.4 * 17.0, 0.5);
}

TEST(Catalogue, SlidesAreSteeperThanNegatives)
{
    double steepestNegative = 0.0, flattestSlide = 1e9;
    for (const std::string& name : store().list(Kind::films, true)) {
        const FilmProfile film = store().film(name);
        if (film.type != "color" && !film.isSlide()) continue;
        const double gamma = std::abs(measured(name).layers[1].gamma);
        if (film.isSlide())
            flattestSlide = std::min(flattestSlide, gamma);
        else
            steepestNegative = std::max(steepestNegative, gamma);
    }
    EXPECT_GT(flattestSlide, 1.5 * steepestNegative);
}

TEST(Catalogue, ColoursAreTheMaterialsOwn)
{
    for (const char* portrait : {"portra160", "portra400", "pro400h", "vericolor3"})
        for (const char* landscape : {"ektar100", "agfa_ultra100", "superia400"})
            EXPECT_LT(colourfulness(portrait, "color_ra4"), colourfulness(landscape, "color_ra4"))
                << portrait << ", " << landscape;
    EXPECT_GT(colourfulness("velvia50", "scan_film"), colourfulness("provia100f", "scan_film"));
    EXPECT_LT(colourfulness("lomochrome_metropolis", "color_ra4"), colourfulness("portra400", "color_ra4"));

    const Vec3f grey{0.18f, 0.18f, 0.18f}, leaf{0.09f, 0.16f, 0.05f}, sky{0.12f, 0.2f, 0.36f},
        red{0.3f, 0.05f, 0.04f};
    for (const char* tungsten : {"cinestill800t", "vision3_500t", "eastmancolor_5247"}) {
        const Vec3f v = rendered(tungsten, "color_ra4", grey);
        EXPECT_GT(v[2], 1.5f * v[0]) << tungsten << " is blue in daylight";
    }
    const auto redness = [&](const char* film) {
        const Vec3f v = rendered(film, "color_ra4", grey, "custom");
        return v[0] / v[1];
    };
    EXPECT_GT(redness("eastmancolor_faded20"), 1.02f * redness("eastmancolor_5247"));
    EXPECT_GT(redness("eastmancolor_faded40"), 1.02f * redness("eastmancolor_faded20"));

    const Vec3f purple = rendered("lomochrome_purple", "color_ra4", leaf);
    EXPECT_TRUE(purple[0] > purple[1] && purple[2] > purple[1]) << "leaves turn purple";
    const Vec3f golden = rendered("lomochrome_turquoise", "color_ra4", sky);
    EXPECT_GT(golden[0], golden[2]) << "the sky turns gold";
    const Vec3f crimson = rendered("aerochrome", "scan_film", leaf);
    EXPECT_TRUE(crimson[0] > 1.5f * crimson[1] && crimson[0] > crimson[2]) << "foliage turns crimson";

    const auto tone = [&](const char* film, const Vec3f& light) {
        return luminance(rendered(film, "bw_neutral", light)) / luminance(rendered(film, "bw_neutral", grey));
    };
    EXPECT_LT(tone("orthoplus80", red), 0.6f * tone("fp4", red)) << "ortho is blind to red";
    for (const char* extended : {"sfx200", "retro80s"}) {
        EXPECT_LT(tone(extended, sky), tone("fp4", sky)) << extended;
        EXPECT_GT(tone(extended, red), tone("fp4", red)) << extended;
        EXPECT_GT(tone(extended, leaf), 1.1f * tone("fp4", leaf)) << extended;
    }
}

/// A patch through a recipe's chain without its grain, on its own film or on another without its colour
/// filter.
Vec3f byRecipe(const std::string& id, const Vec3f& light, const std::string& otherFilm = "")
{
    const Preset preset = store().preset(id);
    RenderOptions options;
    apply(options, preset.opts, {});
    options.grainMult = 0.0;
    options.border = 0.0;
    if (!otherFilm.empty()) options.filterCut.reset();
    const FilmProfile film = store().film(otherFilm.empty() ? *preset.stock : otherFilm);
    const RGBImage out = Pipeline::process(RGBImage(48, 32, light), film, store().lens(*preset.lens),
                                           store().paper(*preset.paper), options, {});
    return out.pixel(out.width / 2, out.height / 2);
}

TEST(Catalogue, RecipesKeepWhatTheyPromise)
{
    // Leaf and sky of a summer's day: near infrared lightens the one and darkens the other.
    const Vec3f leaf{0.10f, 0.18f, 0.04f}, sky{0.07f, 0.15f, 0.33f};
    const auto tone = [](const Vec3f& light, const std::string& film) {
        return luminance(byRecipe("pseudo_infrared", light, film));
    };
    EXPECT_GT(tone(leaf, ""), 1.1f * tone(leaf, "fp4"));
    EXPECT_LT(tone(sky, ""), 0.6f * tone(sky, "fp4"));
    // A night whose lamps the camera took for white stays about white.
    const Vec3f lamp = byRecipe("neon_800t", {0.18f, 0.18f, 0.18f});
    EXPECT_LT(std::max({lamp[0], lamp[1], lamp[2]}), 1.25f * std::min({lamp[0], lamp[1], lamp[2]}));
}

// Light that is added darkens nothing: no lens draws a dark ring round a lamp.
TEST(Catalogue, NoLensDrawsAMoatRoundALamp)
{
    // As long as a halo needs to be resolved round its lamp, and as narrow as it may be.
    RGBImage dark(960, 120, Vec3f{0.05f, 0.05f, 0.05f});
    RGBImage lit = dark;
    float* p = lit.mutableData();
    for (std::int64_t y = 58; y < 62; ++y) std::fill_n(p + (y * 960 + 478) * 3, 12, 20.0f);
    RenderOptions options;
    options.grainMult = 0.0;
    for (const std::string& lens : store().list(Kind::lenses)) {
        const auto seen = [&](const RGBImage& scene) {
            return Pipeline::process(scene, store().film("digital_negative"), store().lens(lens),
                                     store().paper("color_scan"), options, {});
        };
        const RGBImage with = seen(lit), without = seen(dark);
        float deepest = 0.0f;
        for (std::size_t i = 0; i < with.data.size(); ++i)
            deepest = std::max(deepest, without.data[i] - with.data[i]);
        EXPECT_LT(deepest, 1e-3f) << lens;
    }
}

TEST(Catalogue, PapersDifferAsTheirSurfacesDo)
{
    // A grey card on any slide prints at L* 48 to 51.
    for (const char* paper : {"dye_transfer", "cibachrome"})
        for (const std::string& film : store().list(Kind::films)) {
            if (!store().film(film).isSlide()) continue;
            const float y = luminance(rendered(film, paper, {0.18f, 0.18f, 0.18f}));
            const double lightness = 116.0 * std::cbrt(y) - 16.0;
            EXPECT_TRUE(lightness > 48.0 && lightness < 51.0) << film << " on " << paper << ": " << lightness;
        }
    const auto black = [](const char* film, const char* paper) {
        const PaperProfile p = store().paper(paper);
        return Sensitometry::measure(store().film(film), &p, {}).print->dmax;
    };
    EXPECT_GT(black("portra400", "color_ra4"), black("portra400", "color_ra4_matte") + 0.3);
    EXPECT_GT(black("portra400", "color_ra4"), black("portra400", "color_ra4_hand"))
        << "flare lifts the blacks";
    EXPECT_GT(black("trix400", "bw_fb_neutral"), black("trix400", "bw_chlorobromide"));
    for (const char* scanner : {"color_scan", "scan_film", "scan_flatbed", "scan_minilab"})
        EXPECT_NEAR(luminance(rendered("digital_negative", scanner, {0.18f, 0.18f, 0.18f})), 0.18f, 0.006f)
            << scanner;
}

// Every film that a stage stands for, on the paper that it starts with: a grey card in its own light stays a
// grey within the film's character, nothing is undefined.
TEST(Catalogue, EveryFilmPrintsAGreyCard)
{
    for (const std::string& name : store().list(Kind::films, true)) {
        SCOPED_TRACE(name);
        const FilmProfile film = store().film(name);
        const PaperProfile paper = store().paper(ProfileStore::defaultPaperName(film));
        RenderOptions options;
        options.wbMode = "custom";
        options.grainEngine = GrainEngine::classic;
        options.platePour = 0.0;      // a card in the middle of a plate, not its rim
        options.instantFrame = false; // the picture alone
        const RGBImage out =
            Pipeline::process(RGBImage(48, 48, Vec3f{0.18f, 0.18f, 0.18f}), film, {}, paper, options, {});
        Vec3d mean{};
        for (std::int64_t i = 0; i < out.pixelCount(); ++i)
            for (std::size_t c = 0; c < 3; ++c) {
                const float v = out.data[static_cast<std::size_t>(i) * 3 + c];
                ASSERT_TRUE(std::isfinite(v));
                mean[c] += v / static_cast<double>(out.pixelCount());
            }
        const auto [low, high] = std::minmax({mean[0], mean[1], mean[2]});
        const bool isFaded = film.look && film.look->dyeFade;
        // Three plates of an hour of their own each: the dice tint a card.
        const bool drifts = isFaded || film.isTricolor();
        EXPECT_LT(high / low, drifts ? 2.5 : 1.35);
        if (film.isSlide() || drifts || paper.isPlate()) continue; // a plate shows its card as it comes
        EXPECT_NEAR((mean[0] + mean[1] + mean[2]) / 3.0, 0.18, 0.03);
    }
}

} // namespace
} // namespace tamlo::test
