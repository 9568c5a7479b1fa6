#include "core/film/emulsion/film_state.h"
#include "tests/film/film_fixture.h"

#include <cmath>

#include <gtest/gtest.h>

namespace tamlo {
namespace {

FilmProfile filmOf(const std::string& type, double grainUm)
{
    FilmProfile film = test::plainFilm(type, 2.2);
    film.grain = GrainParams{};
    film.grain->sizeUm = grainUm;
    film.grain->amount = 0.05;
    return film;
}

RenderOptions aged(double years)
{
    RenderOptions options;
    options.expiredYears = years;
    return options;
}

TEST(FilmState, FreshFilmAndPlatesAreLeftAlone)
{
    for (const char* type : {"color", "bw", "slide", "instant", "collodion", "tricolor"}) {
        const FilmProfile film = filmOf(type, 7.0);
        for (const double years : {0.0, -3.0}) {
            const FilmState::Result state = FilmState::apply(film, aged(years));
            EXPECT_EQ(state.film, film) << type;
            EXPECT_EQ(state.exposureShift, 0.0);
            EXPECT_FALSE(state.layerEV);
        }
    }
    FilmProfile dryPlate = filmOf("bw", 14.0);
    dryPlate.dryplate.emplace();
    for (const FilmProfile& film : {filmOf("collodion", 5.0), filmOf("tricolor", 5.0), dryPlate})
        EXPECT_EQ(FilmState::apply(film, aged(30.0)).film, film);
    RenderOptions redscale;
    redscale.redscale = true;
    EXPECT_EQ(FilmState::apply(filmOf("bw", 7.6), redscale).film, filmOf("bw", 7.6));
}

double fogOf(const NegativeLayer& layer)
{
    return (layer.dmin - 0.2) / 2.0;
}

// Coarse grain ages faster, within bounds: films that have aged alike come out alike, and every year takes
// light, span and slope, blue first.
TEST(FilmState, FogByAgeGrainAndLayer)
{
    const FilmState::Result ten = FilmState::apply(filmOf("color", 6.4), aged(10.0));
    EXPECT_NEAR(ten.exposureShift, -0.399, 1e-3) << "a stop in about thirty years";
    for (const auto& [grainUm, years] :
         {std::pair{3.2, 20.0}, {12.8, 5.0}, {6.4 * 0.4, 20.0}, {6.4 * 4.0, 10.0 / 2.8}}) {
        const FilmState::Result same = FilmState::apply(filmOf("color", grainUm), aged(years));
        EXPECT_NEAR(same.exposureShift, ten.exposureShift, 1e-12) << grainUm;
        EXPECT_NEAR(same.film.layers->b.dmin, ten.film.layers->b.dmin, 1e-12) << grainUm;
    }
    for (double years = 5.0; years < 80.0; years += 15.0) {
        const FilmState::Result state = FilmState::apply(filmOf("color", 6.4), aged(years));
        const FilmState::Result later = FilmState::apply(filmOf("color", 6.4), aged(years + 15.0));
        const ColorLayers& l = *state.film.layers;
        EXPECT_LT(later.exposureShift, state.exposureShift);
        EXPECT_GT(*later.film.grain->amount, *state.film.grain->amount);
        EXPECT_LT(fogOf(l.r), fogOf(l.g));
        EXPECT_LT(fogOf(l.g), fogOf(l.b));
        for (const NegativeLayer* layer : {&l.r, &l.g, &l.b}) {
            EXPECT_EQ(layer->dmax, 2.2) << "fog comes from below";
            // The curve shrinks into the span that is left.
            EXPECT_NEAR(layer->gamma / 0.6, (layer->dmax - layer->dmin) / 2.0, 1e-12);
            EXPECT_NEAR(*layer->midDensity / 0.85, layer->gamma / 0.6, 1e-12);
        }
        EXPECT_LT(fogOf(later.film.layers->b), 0.55) << "fog has its limit";
    }

    const FilmState::Result slide = FilmState::apply(filmOf("slide", 5.6), aged(30.0));
    EXPECT_LT(slide.film.layers->g.dmin - 0.2, 0.2 * (2.2 - slide.film.layers->g.dmax))
        << "a slide loses its black and hardly fogs";
    FilmProfile thin = filmOf("color", 6.4);
    thin.layers->b.dmax = 0.2;
    EXPECT_GT(FilmState::apply(thin, aged(80.0)).film.layers->b.gamma, 0.0);
}

TEST(FilmState, SilverGoesBlind)
{
    FilmProfile film = filmOf("bw", 7.6);
    film.spectralWeights = Vec3d{0.52, 0.72, 0.76};
    const FilmState::Result state = FilmState::apply(film, aged(40.0));
    const Vec3d w = *state.film.spectralWeights;
    EXPECT_NEAR(w[0] + w[1] + w[2], 1.0, 1e-12);
    EXPECT_LT(w[0], 0.26);
    EXPECT_GT(w[2], 0.38);
}

TEST(FilmState, RedscaleIsThroughTheBase)
{
    RenderOptions options;
    options.redscale = true;
    FilmProfile film = filmOf("color", 6.4);
    EXPECT_EQ(*FilmState::apply(film, options).film.halation->strength, 0.16);
    film.halation.emplace();
    EXPECT_EQ(*FilmState::apply(film, options).film.halation->strength, 0.16);
    film.halation->strength = 0.3;
    options.expiredYears = 10.0;
    const FilmState::Result both = FilmState::apply(film, options);
    EXPECT_EQ(*both.film.halation->strength, 0.6);
    EXPECT_EQ(both.layerEV, FilmState::redscaleLayerEV);
    EXPECT_NEAR(both.exposureShift, -0.399, 1e-3);
}

TEST(FilmState, InstantPacksAgeByTheirPaste)
{
    FilmProfile film = filmOf("instant", 7.0);
    film.texture.emplace();
    film.texture->mottleAmp = 1.0;
    const FilmState::Result ten = FilmState::apply(film, aged(10.0));
    EXPECT_LT(ten.exposureShift, 0.0);
    EXPECT_GT(*ten.film.texture->mottleAmp, 1.0);
    EXPECT_LT(ten.film.layers->r.gamma, 0.6);
    EXPECT_EQ(ten.film.dminRef->at("b"), 0.2);
    EXPECT_EQ(FilmState::apply(film, aged(40.0)).film, FilmState::apply(film, aged(80.0)).film);

    int yellow = 0;
    for (int seed = 0; seed < 64; ++seed) {
        RenderOptions options = aged(20.0);
        options.seed = seed;
        const FilmProfile pack = FilmState::apply(film, options).film;
        const bool isYellow = pack.layers->b.dmin > pack.layers->r.dmin;
        EXPECT_NE(pack.layers->b.dmin, pack.layers->r.dmin);
        yellow += isYellow ? 1 : 0;
    }
    EXPECT_GT(yellow, 16);
    EXPECT_LT(yellow, 48);
    film.spectralWeights = Vec3d{1, 1, 1};
    const FilmProfile mono = FilmState::apply(film, aged(20.0)).film;
    EXPECT_EQ(mono.layers->b.dmin, mono.layers->r.dmin);
}

} // namespace
} // namespace tamlo
