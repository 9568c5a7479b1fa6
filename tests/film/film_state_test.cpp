#include "core/film/film_state.h"
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

TEST(FilmState, FogByAgeGrainAndLayer)
{
    struct Case {
        double grainUm, years, shift, red, green, blue;
    };
    for (const Case& c :
         {Case{6.4, 10, -0.399, 0.0378, 0.0498, 0.0730}, Case{6.4 * 0.4, 20, -0.399, 0.0378, 0.0498, 0.0730},
          Case{6.4 * 4.0, 10 / 2.8, -0.399, 0.0378, 0.0498, 0.0730}}) {
        const FilmState::Result state = FilmState::apply(filmOf("color", c.grainUm), aged(c.years));
        EXPECT_NEAR(state.exposureShift, c.shift, 1e-3) << c.grainUm;
        EXPECT_NEAR((state.film.layers->r.dmin - 0.2) / 2.0, c.red, 1e-4);
        EXPECT_NEAR((state.film.layers->g.dmin - 0.2) / 2.0, c.green, 1e-4);
        EXPECT_NEAR((state.film.layers->b.dmin - 0.2) / 2.0, c.blue, 1e-4);
        EXPECT_EQ(state.film.layers->b.dmax, 2.2);
        EXPECT_NEAR(state.film.layers->g.gamma, 0.6 * (1.0 - c.green), 1e-4);
        EXPECT_NEAR(*state.film.layers->g.midDensity, 0.85 * (1.0 - c.green), 1e-4);
        EXPECT_NEAR(*state.film.layers->g.toe, 1.5 * (1.0 + 0.4 * c.green), 1e-4);
        EXPECT_NEAR(*state.film.grain->amount, 0.05 * std::sqrt(1.0 + 2.0 * c.green / 0.85), 1e-5);
    }
    EXPECT_NEAR(FilmState::apply(filmOf("color", 6.4), aged(80.0)).exposureShift, -2.34, 5e-3);

    const FilmState::Result slide = FilmState::apply(filmOf("slide", 5.6), aged(30.0));
    EXPECT_NEAR(slide.film.layers->g.dmin - 0.2, 0.1 * (2.2 - slide.film.layers->g.dmax), 1e-12);
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
    EXPECT_NEAR(ten.exposureShift, -0.458, 1e-3);
    EXPECT_NEAR(*ten.film.texture->mottleAmp, 1.547, 1e-3);
    EXPECT_NEAR(ten.film.layers->r.gamma, 0.6 * (1.0 - 0.5 * 0.1824), 1e-4);
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
