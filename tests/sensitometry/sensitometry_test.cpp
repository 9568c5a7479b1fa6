// What films and papers measure, against closed forms; and the darkroom as a whole on a step wedge.
#include "core/film/emulsion/hd_curve.h"
#include "core/pipeline/film_dispatch.h"
#include "core/pipeline/pipeline.h"
#include "core/profiles/catalogue/profile_store.h"
#include "core/profiles/formats/profile_error.h"
#include "core/sensitometry/sensitometry.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>

namespace tamlo::test {
namespace {

using Kind = ProfileStore::Kind;
using Sensitometry::measure;
using Sensitometry::Report;

const ProfileStore& store()
{
    return ProfileStore::shared();
}

/// A colour film without couplers, halation, edges and grain: its densities are its curves.
FilmProfile bareFilm()
{
    FilmProfile film = store().film("digital_negative");
    film.mtf.reset();
    return film;
}

TEST(Sensitometry, ABareFilmMeasuresItsCurve)
{
    const FilmProfile film = bareFilm();
    const NegativeLayer& l = film.layers->g;
    const HDCurve curve(l.dmin, l.dmax, l.gamma, *l.toe, *l.midDensity);
    const Report report = measure(film, nullptr, {});
    ASSERT_EQ(report.layers.size(), 3u);
    for (const Sensitometry::Layer& layer : report.layers) {
        ASSERT_EQ(layer.density.size(), 21u);
        for (std::size_t i = 0; i < 21; ++i)
            EXPECT_NEAR(layer.density[i], curve.density(static_cast<float>(report.logExposure[i])), 1e-4);
        EXPECT_NEAR(layer.dmin, l.dmin, 1e-4);
        EXPECT_NEAR(layer.dmax, curve.density(6.0f), 1e-4);
        // The steepest chord of four steps lies within the curve's steepest tangent.
        double steepest = 0.0;
        for (float x = -1.5f; x < 1.5f; x += 0.01f)
            steepest = std::max(steepest, (curve.density(x + 0.01f) - curve.density(x)) / 0.01);
        EXPECT_GT(layer.gamma, 0.95 * steepest);
        EXPECT_LT(layer.gamma, 1.001 * steepest);
        EXPECT_NEAR(curve.density(static_cast<float>(*layer.speedPoint)), l.dmin + 0.10, 1e-3);
    }
    EXPECT_NEAR(report.adjacencyOvershoot, 0.0, 1e-4);
    EXPECT_FALSE(report.halationRadiusUm);
    EXPECT_FALSE(report.mtf50);
    for (const Sensitometry::MTFPoint& p : report.mtf) EXPECT_NEAR(p.response, 1.0, 0.01) << p.cyclesPerMm;
}

TEST(Sensitometry, TheEmulsionsOwnFiguresComeOut)
{
    FilmProfile film = bareFilm();
    film.mtf.emplace();
    film.mtf->f50CycMm = 40.0;
    EXPECT_NEAR(*measure(film, nullptr, {}).mtf50, 40.0, 2.0);

    film.adjacency.emplace();
    film.adjacency->k = 0.1;
    film.adjacency->um = 60.0;
    const Report edged = measure(film, nullptr, {});
    EXPECT_GT(edged.adjacencyOvershoot, 0.01);
    EXPECT_GT(edged.mtf[3].response, measure(bareFilm(), nullptr, {}).mtf[3].response);

    film.halation->strength = 0.2;
    const auto radius = [&](double um) {
        film.halation->radiusUm = um;
        return measure(film, nullptr, {}).halationRadiusUm.value_or(0.0);
    };
    const double small = radius(150.0), large = radius(450.0);
    EXPECT_GT(small, 50.0);
    EXPECT_GT(large, 1.5 * small);
}

// Classic grain through an aperture of many grains follows Selwyn's law, and the reference silver film at its
// data-sheet setting measures the published 17; three layers of one graininess measure as one.
TEST(Sensitometry, GranularityIsThatOfTheDataSheet)
{
    RenderOptions options;
    options.grainEngine = GrainEngine::classic;
    options.grainRms = true;
    const Report silver = measure(store().film("trix400"), nullptr, options);
    EXPECT_NEAR(silver.granularity->rms[1], 17.0, 0.8);
    EXPECT_NEAR(measure(store().film("velvia50"), nullptr, options).granularity->rms[1], 9.0, 0.8);

    FilmProfile fine = store().film("trix400");
    fine.grain->sizeUm = 4.0;
    const auto g = measure(fine, nullptr, options).granularity->selwyn;
    EXPECT_NEAR(g[2] / g[1], 1.0, 0.12);

    options.grainMult = 2.0;
    EXPECT_NEAR(measure(store().film("trix400"), nullptr, options).granularity->rms[1],
                2.0 * silver.granularity->rms[1], 1.0);
    FilmProfile thin = store().film("trix400");
    thin.negative->dmax = thin.negative->dmin + 0.95;
    EXPECT_FALSE(measure(thin, nullptr, options).granularity) << "net density 1.0 is out of reach";
}

TEST(Sensitometry, SaysWhatCannotBeMeasured)
{
    EXPECT_THROW(measure(store().film("three_plates_1909"), nullptr, {}), TamloError);
    FilmProfile bare;
    bare.type = "bw";
    EXPECT_THROW(measure(bare, nullptr, {}), ProfileError);
}

// What the plate says of itself is what lies on it; nothing else has a coat to measure.
TEST(Sensitometry, MeasuresThePlate)
{
    RenderOptions options;
    const auto plate = [&](const char* film) {
        return Sensitometry::measurePlate(store().film(film), options);
    };
    EXPECT_FALSE(plate("trix400"));
    const auto wet = plate("collodion_wet"), dry = plate("dryplate_ortho");
    EXPECT_NEAR(*wet->ringMm, 2.8, 0.15);
    EXPECT_NEAR(*dry->ringMm, 2.62, 0.15);
    EXPECT_NEAR(wet->bare, 0.021, 0.003);
    EXPECT_NEAR(wet->veil, 0.022, 0.02);
    EXPECT_EQ(wet->crystals, 0.0);
    EXPECT_LT(wet->rim, -0.1);
    EXPECT_GT(dry->rim, 0.1);
    EXPECT_NEAR(dry->unevenness, 0.0, 1e-3);
    options.push = 3.0;
    EXPECT_NEAR(plate("collodion_wet")->crystals, 0.025, 0.006);
    options.platePour = 0.0;
    EXPECT_LT(plate("collodion_wet")->unevenness, 1e-3);
}

// An instant film measures its positive, and its surface part by part.
TEST(Sensitometry, InstantFilmShowsItsToneAndItsSurface)
{
    struct Case {
        const char* film;
        double whole, tolerance;
        std::map<std::string, double> parts;
    };
    const Case cases[] = {
        {"polaroid_sx70", 0.022, 0.002, {{"mottle", 0.0175}, {"fine", 0.006}, {"streaks", 0.012}}},
        {"polaroid_600", 0.018, 0.002, {{"mottle", 0.014}, {"fine", 0.007}, {"streaks", 0.010}}},
        {"polaroid_itype", 0.028, 0.003, {{"mottle", 0.0245}, {"fine", 0.008}, {"streaks", 0.012}}},
        {"instax_square", 0.007, 0.001, {{"mottle", 0.0035}, {"fine", 0.006}, {"streaks", 0.003}}},
        {"fp100c", 0.0165, 0.004, {{"chatter", 0.0155}, {"fine", 0.006}}},
        {"fp100c_silk", 0.032, 0.004, {{"silk", 0.012}, {"lattice", 0.0263}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.film);
        const FilmProfile film = store().film(c.film);
        const Report report = measure(film, nullptr, {});
        ASSERT_TRUE(report.surface);
        EXPECT_FALSE(report.granularity);
        EXPECT_NEAR(report.surface->density, -std::log10(0.18), 0.02);
        EXPECT_NEAR(report.surface->whole, c.whole, c.tolerance);
        for (const auto& [name, deviation] : c.parts) {
            const auto found =
                std::ranges::find(report.surface->parts, name, &Sensitometry::SurfacePart::name);
            ASSERT_NE(found, report.surface->parts.end()) << name;
            EXPECT_NEAR(found->deviation, deviation, 0.2 * deviation) << name;
        }
        ASSERT_EQ(report.layers.size(), 3u);
        EXPECT_LT(report.layers[0].gamma, -0.9);
        EXPECT_GT(report.layers[0].dmax - report.layers[0].dmin, 1.4);
        EXPECT_TRUE(std::ranges::is_sorted(report.layers[1].density, std::greater()));
    }
    const Report silver = measure(store().film("fp3000b"), nullptr, {});
    ASSERT_EQ(silver.layers.size(), 1u);
    EXPECT_NEAR(silver.layers[0].density[10], -std::log10(0.18), 0.01);
    EXPECT_LT(*silver.mtf50, 20.0);
}

TEST(Sensitometry, AHarderPaperHasTheShorterRange)
{
    const PaperProfile paper = store().paper("bw_neutral");
    double last = 1e9, lastContrast = 0.0;
    for (int grade = 0; grade <= 5; ++grade) {
        RenderOptions options;
        options.grade = grade;
        const Report report = measure(store().film("trix400"), &paper, options);
        EXPECT_LT(*report.print->isoRange, last) << "grade " << grade;
        last = *report.print->isoRange;
        const double contrast = report.print->density[8] - report.print->density[12];
        EXPECT_GT(contrast, lastContrast) << "grade " << grade;
        lastContrast = contrast;
        EXPECT_NEAR(report.print->density[10], -std::log10(0.18), 1e-3);
    }
}

/// Every film that a stage stands for, with a paper of each sort it goes on.
std::vector<std::pair<std::string, std::string>> printableCombinations()
{
    std::vector<std::pair<std::string, std::string>> all;
    for (const std::string& film : store().list(Kind::films, true))
        for (const std::string& paper : store().list(Kind::papers, true)) {
            const FilmProfile f = store().film(film);
            const PaperProfile p = store().paper(paper);
            if (f.isInstant() || f.isTricolor()) continue;
            if (p.isRepro()) continue; // no white paper, and a limit on the ink: the tests of the presses
            if (p.fixedExposure.value_or(false) || (p.isReversal() && !f.isSlide())) continue;
            all.emplace_back(film, paper);
        }
    return all;
}

// The chain is a darkroom: on every film and paper the wedge is monotone, push and age have their effect, and
// the Black and White knobs turn about the grey card.
TEST(Darkroom, HoldsOnEveryFilmAndPaper)
{
    const auto wedge = [](std::int64_t x) {
        return 0.18 * std::pow(10.0, 0.15 * (static_cast<double>(x / 4) - 10.0));
    };
    RGBImage light(21 * 4, 4);
    for (std::int64_t i = 0; i < light.pixelCount(); ++i)
        std::fill_n(light.mutableData() + i * 3, 3, static_cast<float>(wedge(i % light.width)));
    const auto tones = [&](const FilmProfile& film, const PaperProfile& paper, RenderOptions options) {
        options.grainMult = options.halationMult = 0.0;
        options.wbMode = "custom";
        options.printCm = 20000.0;
        options.coat = "none";
        options.relief = 0.0;
        options.platePour = 0.0;
        FilmProfile even = film;
        even.adjacency.reset(); // what the neighbouring steps do to each other is no tone
        even.mtf.reset();
        even.look.reset();
        if (even.isSlide()) // a reversal paper's anchor is where the slide shows 0.18
            for (NegativeLayer* l : {&even.layers->r, &even.layers->g, &even.layers->b})
                l->midDensity.reset();
        const RGBImage out = Pipeline::process(light, even, {}, paper, options, {});
        std::vector<double> v;
        for (int s = 0; s < 21; ++s)
            v.push_back(out.pixel((s * 4 + 2) * out.width / light.width, 2 * out.height / 4)[1]);
        return v;
    };
    const auto contrast = [](const std::vector<double>& v) { return std::log10(v[12] / v[8]); };
    const auto range = [](const std::vector<double>& v) { return std::log10(v[20] / v[0]); };
    for (const auto& [filmName, paperName] : printableCombinations()) {
        SCOPED_TRACE(filmName + " on " + paperName);
        const FilmProfile film = store().film(filmName);
        PaperProfile paper = store().paper(paperName);
        if (paper.scan) { // a scan's own lift of a slide would move the card off the knobs' anchor
            paper.scan->mtf = paper.scan->sharpen = 0.0;
            paper.scan->positiveGamma.reset();
            paper.scan->positiveDmax.reset();
            paper.scan->flare.reset();
        }
        paper.flare.reset();
        paper.exposureEv.reset(); // it allows for a slide's denser grey, which is taken away above
        const std::vector<double> plain = tones(film, paper, {});
        EXPECT_TRUE(std::is_sorted(plain.begin(), plain.end()));
        EXPECT_TRUE(std::all_of(plain.begin(), plain.end(), [](double v) { return std::isfinite(v); }));

        RenderOptions pushed, aged, knobs;
        pushed.push = 1.0;
        aged.expiredYears = 30.0;
        knobs.printBlack = knobs.printWhite = 0.6;
        const std::vector<double> withPush = tones(film, paper, pushed);
        if (film.isSlide())
            EXPECT_GT(withPush[10], 1.3 * plain[10]) << "a stop lighter";
        else
            EXPECT_GT(contrast(withPush), contrast(plain));
        if (film.formatDefault == "plate")
            EXPECT_EQ(tones(film, paper, aged), plain) << "glass keeps";
        else if (paper.pigment && paper.pigment->mode == "ink")
            EXPECT_LE(range(tones(film, paper, aged)), range(plain)) << "solid ink to bare paper";
        else
            EXPECT_LT(range(tones(film, paper, aged)), range(plain));
        if (paper.layers) continue; // a coat may be exposed off the card
        EXPECT_NEAR(tones(film, paper, knobs)[10], plain[10], 2e-3 * plain[10]);
    }
}

// A grey card prints at 0.18 wherever a printer or a scan sets it there, also pushed: negatives always, a
// slide whose layers are anchored where they show as grey. Tone and look colour it, flare lifts it: left out.
TEST(Darkroom, AGreyCardIsGreyOnEveryPathThatPromisesIt)
{
    for (const auto& [filmName, paperName] : printableCombinations()) {
        FilmProfile film = store().film(filmName);
        PaperProfile paper = store().paper(paperName);
        if (paper.isAlt()) continue;   // a colourant on tinted paper has a grey of its own
        if (paper.isPlate()) continue; // seen, not printed to a grey
        film.look.reset();
        film.irProxy.reset();
        film.sensitization.reset();
        if (film.isSlide())
            for (NegativeLayer* l : {&film.layers->r, &film.layers->g, &film.layers->b}) {
                l->dmin = film.layers->r.dmin;
                l->midDensity.reset();
            }
        paper.flare.reset();
        paper.exposureEv.reset();
        paper.tone.reset();
        if (paper.scan) {
            paper.scan->flare.reset();
            paper.scan->positiveGamma.reset();
            paper.scan->positiveDmax.reset();
        }
        for (const double push : {-1.0, 0.0, 2.0}) {
            if (film.isSlide() && push != 0.0) continue;
            SCOPED_TRACE(filmName + " on " + paperName + ", push " + std::to_string(push));
            RenderOptions options;
            options.push = push;
            options.grainMult = options.platePour = 0.0;
            options.wbMode = "custom";
            options.srcExposure = "as_shot";
            const RGBImage out =
                Pipeline::process(RGBImage(40, 40, Vec3f{0.18f, 0.18f, 0.18f}), film, {}, paper, options, {});
            const Vec3f v = out.pixel(out.width / 2, out.height / 2);
            for (const float channel : v) EXPECT_NEAR(channel, 0.18f, 5e-4f);
        }
    }
}

} // namespace
} // namespace tamlo::test
