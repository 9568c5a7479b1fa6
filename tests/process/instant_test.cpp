// Instant film: its tone, what the knob makes of the surface, the same surface at every size, and the passes
// against slow twins that know no rows and no lattices.
#include "core/film/emulsion/development.h"
#include "core/film/print/slide.h"
#include "core/image/position_hash.h"
#include "core/process/instant/chatter.h"
#include "core/process/instant/instant_film.h"
#include "core/process/instant/reagent.h"
#include "core/process/instant/silk_lattice.h"
#include "core/profiles/catalogue/profile_store.h"
#include "core/profiles/formats/profile_error.h"
#include "core/profiles/options/seed_stream.h"
#include "tests/support/pictures.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

namespace tamlo::test {
namespace {

using Store = ProfileStore;

/// A film of the catalogue, its colours as the layers make them.
FilmProfile bare(const char* name)
{
    FilmProfile film = Store::shared().film(name);
    film.look.reset();
    film.halation.reset();
    return film;
}

RGBImage rendered(const FilmProfile& film, RGBImage light, const RenderOptions& options = {})
{
    const DevelopedFilm developed = applyFilmStateAndDevelopment(film, options);
    const double pxUm = 79'000.0 / static_cast<double>(light.longSide());
    return film.isMonoInstant() ? Film::renderInstantMono(std::move(light), developed, options, pxUm)
                                : Film::renderInstant(std::move(light), developed, options, pxUm);
}

RGBImage even(std::int64_t width, std::int64_t height, float light = 0.18f)
{
    return RGBImage(width, height, Vec3f{light, light, light});
}

/// Density of a channel of an even card.
Plane densityOf(const FilmProfile& film, Size size, const RenderOptions& options = {}, int channel = 1)
{
    return rendered(film, even(size.width, size.height), options).plane(channel).map([](float v) {
        return -std::log10(std::max(v, 1e-6f));
    });
}

double correlation(const Plane& a, const Plane& b)
{
    const double ma = a.mean(), mb = b.mean();
    double ab = 0.0;
    for (std::int64_t i = 0; i < a.count(); ++i)
        ab += (a.data[static_cast<std::size_t>(i)] - ma) * (b.data[static_cast<std::size_t>(i)] - mb);
    return ab / static_cast<double>(a.count()) / (a.std() * b.std());
}

/// Means of k × k pixels.
Plane reduced(const Plane& plane, std::int64_t k)
{
    Plane out(plane.width / k, plane.height / k);
    for (std::int64_t y = 0; y < out.height; ++y)
        for (std::int64_t x = 0; x < out.width; ++x) {
            double sum = 0.0;
            for (std::int64_t i = 0; i < k * k; ++i) sum += plane.at(x * k + i % k, y * k + i / k);
            out.mutableData()[y * out.width + x] = static_cast<float>(sum / static_cast<double>(k * k));
        }
    return out;
}

// A clean surface leaves the tone of the layers: a grey card at 0.18 of the clearest layer, whites and blacks
// by Dmin and Dmax.
TEST(InstantFilm, ShowsWhatItsLayersHold)
{
    struct Case {
        const char* film;
        Vec3d white, black;
    };
    const Case cases[] = {{"polaroid_sx70", {1.0, 0.953, 0.863}, {0.028, 0.033, 0.036}},
                          {"fp100c", {1.0, 0.990, 0.960}, {0.011, 0.011, 0.011}}};
    RenderOptions clean;
    clean.devMottle = 0.0;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.film);
        FilmProfile film = bare(c.film);
        film.couplers.reset();
        const ColorLayers& layers = *film.layers;
        const double dmin[] = {layers.r.dmin, layers.g.dmin, layers.b.dmin};
        const Vec3f grey = rendered(film, even(8, 8), clean).pixel(3, 3);
        const Vec3f white = rendered(film, even(8, 8, 1e6f), clean).pixel(3, 3);
        const Vec3f black = rendered(film, even(8, 8, 0.0f), clean).pixel(3, 3);
        for (std::size_t i = 0; i < 3; ++i) {
            EXPECT_NEAR(grey[i], 0.18 * std::pow(10.0, dmin[0] - dmin[i]), 2e-4);
            EXPECT_NEAR(white[i], c.white[i], 2.5e-2) << "the curve ends a hair above its Dmin";
            EXPECT_NEAR(black[i], c.black[i], 1e-3);
        }
    }
    FilmProfile none = bare("fp100c");
    none.layers.reset();
    EXPECT_THROW(rendered(none, even(4, 4)), ProfileError);
}

// An aged pack: its stain colours the white once, and a silver card shows its fog.
TEST(InstantFilm, AgeStainsTheWhiteOnce)
{
    RenderOptions options;
    options.devMottle = 0.0;
    options.expiredYears = 20.0;
    for (const char* name : {"polaroid_sx70", "polaroid_bw_sx70"}) {
        SCOPED_TRACE(name);
        FilmProfile film = bare(name);
        film.imageTone.reset();
        const DevelopedFilm aged = applyFilmStateAndDevelopment(film, options);
        const Vec3f white = rendered(film, even(8, 8, 1e6f), options).pixel(3, 3);
        const NegativeLayer& layer = film.isMonoInstant() ? aged.film.layers->r : aged.film.layers->b;
        EXPECT_NEAR(white[2], std::pow(10.0, film.layers->r.dmin - layer.dmin), 2e-2);
        EXPECT_LT(white[2], 0.9);
    }
}

/// The light that an even card of this density takes, mean of its layers.
float lightFor(const FilmProfile& film, double density)
{
    RenderOptions clean;
    clean.devMottle = 0.0;
    const ColorLayers& layers = *film.layers;
    const double clearest = std::min({layers.r.dmin, layers.g.dmin, layers.b.dmin});
    double low = -3.0, high = 2.0; // powers of ten
    for (int i = 0; i < 30; ++i) {
        const double middle = 0.5 * (low + high);
        const Vec3f v =
            rendered(film, even(4, 4, static_cast<float>(std::pow(10.0, middle))), clean).pixel(1, 1);
        double mean = clearest;
        for (const float channel : v) mean -= std::log10(channel) / 3.0;
        (mean > density ? low : high) = middle;
    }
    return static_cast<float>(std::pow(10.0, low));
}

// How much surface each film has at a density of 0.7, part by part and as a whole; pack film lies.
TEST(InstantFilm, SurfacesAreAsStrongAsKnown)
{
    struct Case {
        const char* film;
        std::function<void(TextureParams& to, const TextureParams& from)> keep; ///< all where empty
        double deviation, tolerance;
    };
    const auto mottle = [](TextureParams& to, const TextureParams& from) { to.mottleAmp = from.mottleAmp; };
    const auto fine = [](TextureParams& to, const TextureParams& from) { to.fineAmp = from.fineAmp; };
    const auto streaks = [](TextureParams& to, const TextureParams& from) {
        to.streaksAmp = from.streaksAmp;
    };
    const auto chatter = [](TextureParams& to, const TextureParams& from) { to.chatter = from.chatter; };
    const auto lattice = [](TextureParams& to, const TextureParams& from) {
        to.silkLattice = from.silkLattice;
    };
    // A mottle has few clouds, so that the layers' fields agree or not by chance.
    const Case cases[] = {
        {"polaroid_sx70", mottle, 0.0170, 0.0009}, {"polaroid_sx70", fine, 0.006, 1e-4},
        {"polaroid_sx70", streaks, 0.012, 1e-4},   {"fp100c", chatter, 0.0147, 0.0004},
        {"fp100c_silk", lattice, 0.0236, 0.0004},  {"polaroid_sx70", {}, 0.022, 0.001},
        {"polaroid_600", {}, 0.018, 0.001},        {"polaroid_itype", {}, 0.028, 0.001},
        {"instax_wide", {}, 0.007, 0.001},         {"fp100c", {}, 0.016, 0.001},
        {"fp100c_silk", {}, 0.031, 0.0015},
    };
    for (const Case& c : cases) {
        FilmProfile film = bare(c.film);
        if (c.keep) {
            const TextureParams all = *film.texture;
            film.texture.emplace();
            c.keep(*film.texture, all);
        }
        const bool isPack = film.frame->style == "peel";
        const RGBImage shown = rendered(film, even(600, isPack ? 461 : 600, lightFor(film, 0.7)));
        const auto deviationOf = [&](int channel) {
            return shown.plane(channel).map([](float v) { return -std::log10(v); }).std();
        };
        // Chatter is told of its green layer, which it colours least.
        const double deviation =
            isPack ? deviationOf(1) : (deviationOf(0) + deviationOf(1) + deviationOf(2)) / 3.0;
        EXPECT_NEAR(deviation, c.deviation, c.tolerance) << c.film;
    }
}

// The knob acts once on every part: twice the knob is twice the surface, and none leaves the curve's picture.
TEST(InstantFilm, TheKnobActsOnce)
{
    for (const char* name : {"polaroid_sx70", "fp100c", "fp100c_silk", "polaroid_bw_600"}) {
        SCOPED_TRACE(name);
        FilmProfile film = bare(name);
        film.toneMottle.reset();                                             // it is no density
        if (film.texture->chatter) film.texture->chatter->coarseShare = 1.0; // the shares follow the knob too
        const auto deviation = [&](double knob) {
            RenderOptions options;
            options.devMottle = knob;
            return densityOf(film, {150, 190}, options).std();
        };
        const double one = deviation(1.0);
        EXPECT_GT(one, 0.003);
        EXPECT_EQ(deviation(0.0), 0.0);
        EXPECT_NEAR(deviation(0.5) / one, 0.5, 0.03);
        EXPECT_NEAR(deviation(2.0) / one, 2.0, 0.12);
    }
}

TEST(InstantFilm, ShowsTheSameSurfaceAtEverySize)
{
    struct Part {
        const char* film;
        std::function<void(TextureParams& to, const TextureParams& from)> keep;
        double least;
        double tolerance = 0.04; // of the deviation
    };
    const Part parts[] = {
        {"polaroid_sx70", [](auto& to, const auto& from) { to.mottleAmp = from.mottleAmp; }, 0.999},
        {"polaroid_sx70", [](auto& to, const auto& from) { to.streaksAmp = from.streaksAmp; }, 0.999},
        {"fp100c", [](auto& to, const auto& from) { to.chatter = from.chatter; }, 0.999},
        {"fp100c_silk",
         [](auto& to, const auto& from) {
             to.silkLattice = from.silkLattice;
             to.silkLattice->grain = 0.0; // it lies on the pixels
         },
         0.8, 0.25}, // its finest lines do not resolve in the smaller one
    };
    for (const Part& part : parts) {
        FilmProfile film = bare(part.film);
        const TextureParams all = *film.texture;
        film.texture.emplace();
        part.keep(*film.texture, all);
        const Plane small = densityOf(film, {1200, 900}), large = reduced(densityOf(film, {2400, 1800}), 2);
        EXPECT_GT(correlation(small, large), part.least) << part.film;
        EXPECT_NEAR(small.std() / large.std(), 1.0, part.tolerance) << part.film;
    }
}

/// Lag in pixels at which a plane has fallen to half its correlation with itself.
std::int64_t halfCorrelated(const Plane& plane, bool alongX)
{
    const double mean = plane.mean(), variance = plane.std() * plane.std();
    for (std::int64_t lag = 1; lag < plane.width / 2; ++lag) {
        double sum = 0.0;
        std::int64_t count = 0;
        for (std::int64_t y = 0; y + (alongX ? 0 : lag) < plane.height; ++y)
            for (std::int64_t x = 0; x + (alongX ? lag : 0) < plane.width; ++x, ++count)
                sum += (plane.at(x, y) - mean) *
                       (plane.at(x + (alongX ? lag : 0), y + (alongX ? 0 : lag)) - mean);
        if (sum / static_cast<double>(count) < 0.5 * variance) return lag;
    }
    return plane.width / 2;
}

// Bars lie across the pull, which runs along the picture's long side.
TEST(InstantFilm, ChatterTurnsWithThePicture)
{
    FilmProfile film = bare("fp100c");
    film.texture->fineAmp = 0.0;
    film.texture->chatter->pasteAmp = 0.0;
    for (const Size size : {Size{950, 730}, Size{730, 950}}) {
        const Plane density = densityOf(film, size);
        const bool alongX = size.width > size.height;
        const double along = static_cast<double>(halfCorrelated(density, alongX));
        const double across = static_cast<double>(halfCorrelated(density, !alongX));
        EXPECT_GT(across / along, 2.5);
        EXPECT_LT(across / along, 5.5);
    }
}

// A table without the sheet's size falls back on the common strength.
TEST(InstantFilm, SheetsMayHaveTheirOwnStrength)
{
    FilmProfile film = bare("fp100c");
    film.texture->fineAmp = 0.0;
    film.texture->chatter->pasteAmp = 0.0;
    const double common = densityOf(film, {190, 146}).std();
    film.texture->chatter->ampBySize = NumberMap{{"4x5", 0.05}};
    EXPECT_NEAR(densityOf(film, {190, 146}).std(), common, 1e-9);
    film.texture->chatter->ampBySize = NumberMap{{"3x4", 0.025}};
    EXPECT_NEAR(densityOf(film, {190, 146}).std() / common, 2.0, 0.05);
}

// The fine noise pixel by pixel, from the definition, at the widths where vectors end and rows begin.
TEST(ReagentSurface, FineNoiseIsItsDefinition)
{
    TextureParams texture;
    texture.fineAmp = 0.01;
    double taps[5], power = 0.0;
    for (int k = -2; k <= 2; ++k) taps[k + 2] = std::exp(-0.5 * k * k / 0.36);
    const double sum = taps[0] + taps[1] + taps[2] + taps[3] + taps[4];
    for (double& t : taps) {
        t /= sum;
        power += t * t;
    }
    for (const Size size : {Size{1, 1}, Size{1, 40}, Size{15, 3}, Size{17, 9}, Size{33, 7}}) {
        const Film::ReagentPlan plan = Film::instantTexture(size, 3, texture, {}, 1.0, 0x1234567890ABCDEFu);
        Film::ReagentRows rows(plan, size, 3);
        std::array<std::vector<float>, 3> layers;
        for (auto& layer : layers) layer.resize(static_cast<std::size_t>(size.width));
        for (std::int64_t y = 0; y < size.height; ++y) {
            for (auto& layer : layers) std::ranges::fill(layer, 0.0f);
            rows.apply(y, {{layers[0].data(), layers[1].data(), layers[2].data()}, 3, size.width});
            for (std::int64_t x = 0; x < size.width; ++x)
                for (std::uint32_t c = 0; c < 3; ++c) {
                    double noise = 0.0;
                    for (int k = 0; k < 25; ++k)
                        noise += taps[k % 5] * taps[k / 5] *
                                 gaussNoise(static_cast<std::int32_t>(x) + k % 5 - 2,
                                            static_cast<std::int32_t>(y) + k / 5 - 2, 0x90ABCDEFu, 8 + c);
                    EXPECT_NEAR(layers[c][static_cast<std::size_t>(x)], 0.01 * noise / power, 2e-6);
                }
        }
    }
}

// A millimetre field: unit deviation, and correlation 1/e at two sigmas.
TEST(MmField, CorrelatesAsItsSigma)
{
    const Size size{1200, 1200};
    const Plane field = Film::mmField(size, 12.0, {2.0, 2.0}, {7, 3}).plane();
    EXPECT_NEAR(field.std(), 1.0, 0.02);
    double at = 0.0;
    const std::int64_t lag = 48; // 4 mm
    for (std::int64_t y = 0; y < size.height; ++y)
        for (std::int64_t x = 0; x + lag < size.width; ++x) at += field.at(x, y) * field.at(x + lag, y);
    at /= static_cast<double>(size.height * (size.width - lag));
    EXPECT_NEAR(at, std::exp(-1.0), 0.06);
    // Absurd scales cost no more than others.
    for (const double mm : {-1.0, 0.0, 1e-9, 1e9, 1e300})
        EXPECT_TRUE(std::isfinite(Film::mmField({30, 20}, 12.0, {mm, 2.0}, {7, 3}).plane().std()));
    for (const double ppmm : {1e-9, 1e9})
        EXPECT_TRUE(std::isfinite(Film::mmField({30'000, 1}, ppmm, {2.0, 2.0}, {7, 3}).plane().std()));
}

// The chatter's pass against the formula in doubles, on one and three layers.
TEST(ReagentSurface, ChatterIsItsDefinition)
{
    Lcg random(5);
    for (const std::size_t width : {1u, 7u, 16u, 33u}) {
        std::array<std::vector<float>, 8> fields;
        for (auto& field : fields)
            for (std::size_t i = 0; i < width; ++i) field.push_back(6.0f * random.next() - 3.0f);
        ChatterParams32 p;
        p.fineGain = 0.6f, p.coarseGain = 0.8f, p.clumpGain = 0.9f, p.strength = 0.02f;
        p.pasteGain = {0.01f, 0.011f, 0.012f, 0.013f};
        p.d0 = 0.1f, p.dSpan = 0.7f, p.fineFloor = 0.3f, p.coarseFloor = 0.7f;
        p.colourD0 = 0.3f, p.colourSpan = 0.9f, p.r0 = 0.65f, p.rSpan = 0.7f, p.b0 = 1.3f, p.bSpan = -0.4f;
        const ChatterRow row{fields[0].data(),
                             fields[1].data(),
                             fields[2].data(),
                             fields[3].data(),
                             {fields[4].data(), fields[5].data(), fields[6].data(), fields[7].data()}};
        for (const int layers : {1, 3}) {
            std::array<std::vector<float>, 3> before;
            for (auto& layer : before)
                for (std::size_t i = 0; i < width; ++i) layer.push_back(2.0f * random.next());
            auto after = before;
            peel_chatter({{after[0].data(), after[1].data(), after[2].data()},
                          layers,
                          static_cast<std::int64_t>(width)},
                         row, p);
            for (std::size_t i = 0; i < width; ++i) {
                const double dm =
                    layers == 1 ? before[0][i] : (before[0][i] + before[1][i] + before[2][i]) / 3.0;
                const double td = std::clamp((dm - 0.1) / 0.7, 0.0, 1.0);
                double mix = 0.6 * fields[0][i] * (0.3 + 0.7 * td) + 0.8 * fields[1][i] * (0.7 + 0.3 * td);
                mix = 2.5 * std::tanh(mix / 2.5);
                const double base =
                    0.02 * std::clamp(1.0 + 0.9 * fields[2][i], 0.1, 2.2) * fields[3][i] * mix;
                const double t = std::clamp((dm - 0.3) / 0.9, 0.0, 1.0);
                const double share[] = {0.65 + 0.7 * t, 1.0, 1.3 - 0.4 * t};
                for (int c = 0; c < layers; ++c) {
                    const auto k = static_cast<std::size_t>(c);
                    double add = 0.0075 * fields[4][i];
                    add +=
                        layers == 1 ? base : base * share[k] + 0.45 * p.pasteGain[k + 1] * fields[5 + k][i];
                    EXPECT_NEAR(after[k][i] - before[k][i], add, 1e-6);
                }
            }
        }
    }
}

// Lines closer than two pixels are not drawn as something else.
TEST(SilkLattice, FadesWhereItDoesNotResolve)
{
    SilkLatticeParams lattice = *Store::shared().film("fp100c_silk").texture->silkLattice;
    lattice.grain = lattice.mod = lattice.jitterMm = 0.0;
    lattice.rowLine = 0.0;
    const auto deviation = [&](double ppmm) {
        GrainRNG rng(3);
        Film::PictureScale scale;
        scale.ppmm = ppmm;
        const Film::LatticePlan plan = Film::silkLattice({200, 160}, lattice, scale, 1.0, 1, rng);
        return plan.pattern.std() * plan.gain.scale;
    };
    EXPECT_NEAR(deviation(40.0), 1.0, 1e-3);
    EXPECT_EQ(deviation(4.0), 0.0);
}

TEST(InstantFilm, IsThePictureForAnyWorkersAndStaysFinite)
{
    const RGBImage source = noisePicture(257, 190, 4, 12.0f);
    for (const char* name : {"polaroid_sx70", "fp100c_silk", "polaroid_bw_600"}) {
        const FilmProfile film = Store::shared().film(name);
        expectSameForAnyWorkers([&] { return rendered(film, source); });
        for (const Size size : {Size{1, 1}, Size{2, 2}, Size{1, 3000}, Size{3000, 1}}) {
            const RGBImage out = rendered(film, even(size.width, size.height));
            EXPECT_EQ(out.size(), size);
            for (const float v : out.data) ASSERT_TRUE(v >= 0.0f && v <= 1.0f) << name;
        }
    }
}

} // namespace
} // namespace tamlo::test
