#include "core/film/development.h"
#include "tests/film/film_fixture.h"

#include <gtest/gtest.h>

namespace tamlo {
namespace {

FilmProfile filmOf(const std::string& type)
{
    return test::plainFilm(type, 2.3);
}

DevelopmentKnobs knobs(double push, Development dev = Development::standard)
{
    DevelopmentKnobs k;
    k.push = push;
    k.dev = dev;
    return k;
}

TEST(Development, StandardChangesNothingButGivesAGrainBlock)
{
    for (const char* type : {"color", "bw", "slide", "instant", "collodion", "tricolor"}) {
        FilmProfile film = filmOf(type);
        const DevelopedFilm developed = applyDevelopment(film, knobs(0.0));
        ASSERT_TRUE(developed.film.grain);
        EXPECT_EQ(developed.film.grain->sizeUm, 5.0) << type;
        EXPECT_EQ(developed.film.grain->amount, 0.08);
        film.grain = developed.film.grain;
        EXPECT_EQ(developed.film, film) << type;
        EXPECT_EQ(developed.exposureShift, 0.0);
        EXPECT_EQ(developed.tempRough, 1.0);
    }
}

TEST(Development, PushByFilmType)
{
    struct Case {
        const char* type;
        double push, gamma, span, fog, exposureShift, midFactor;
    };
    for (const Case& c :
         {Case{"bw", 2, 0.756, 2.352, 0.07, 0, 1.26}, Case{"color", 2, 0.756, 2.352, 0.07, 0, 1.26},
          Case{"bw", -6, 0.18, 1.344, 0.0, 0, 0.3}, Case{"slide", 1, 0.678, 1.995, 0.01, 1, 1.0},
          Case{"instant", 2, 0.6, 2.1, 0.0, 0, 1.0}}) {
        FilmProfile film = filmOf(c.type);
        (film.negative ? *film.negative : film.layers->g).midDensity = 0.5;
        const DevelopedFilm developed = applyDevelopment(film, knobs(c.push));
        const NegativeLayer& l =
            developed.film.negative ? *developed.film.negative : developed.film.layers->g;
        EXPECT_NEAR(l.gamma, c.gamma, 1e-12) << c.type;
        EXPECT_NEAR(l.dmax - l.dmin, c.span, 1e-12) << c.type;
        EXPECT_NEAR(l.dmin, 0.2 + c.fog, 1e-12) << c.type;
        EXPECT_NEAR(*l.midDensity, 0.5 * c.midFactor, 1e-12) << c.type;
        EXPECT_EQ(developed.exposureShift, c.exposureShift) << c.type;
    }
    FilmProfile dense = filmOf("bw");
    dense.negative->midDensity = 2.0;
    const DevelopedFilm held = applyDevelopment(dense, knobs(2.0));
    EXPECT_NEAR(*held.film.negative->midDensity, 2.352 * 0.92, 1e-12);
}

TEST(Development, DevelopersOfferedAndApplied)
{
    struct Case {
        const char* type;
        Development wanted, runs;
    };
    for (const Case& c : {Case{"bw", Development::stand, Development::stand},
                          Case{"color", Development::acutance, Development::standard},
                          Case{"color", Development::bleachBypass, Development::bleachBypass},
                          Case{"slide", Development::acutance, Development::standard},
                          Case{"instant", Development::fine, Development::standard},
                          Case{"collodion", Development::standard, Development::iron},
                          Case{"collodion", Development::hand, Development::iron},
                          Case{"collodion", Development::pyro, Development::pyro},
                          Case{"tricolor", Development::fine, Development::fine}})
        EXPECT_EQ(Developers::applied(c.wanted, filmOf(c.type)), c.runs) << c.type;

    const DevelopedFilm bypass = applyDevelopment(filmOf("color"), knobs(0, Development::bleachBypass));
    EXPECT_EQ(bypass.retainedSilver, 0.38);
    EXPECT_NEAR(bypass.film.layers->r.dmin, 0.21, 1e-12);
    const DevelopedFilm pyro = applyDevelopment(filmOf("collodion"), knobs(0, Development::pyro));
    EXPECT_NEAR(pyro.film.negative->gamma, 0.6 * 1.18, 1e-12);
    EXPECT_EQ(pyro.silverTint, (Vec3d{0.9, 0.84, 0.74}));
    const DevelopedFilm stand = applyDevelopment(filmOf("bw"), knobs(0, Development::stand));
    EXPECT_EQ(stand.adjacency, 0.3);
    EXPECT_EQ(stand.adjacencySat, 0.16);
}

TEST(Development, HandTankDriftsWithItsTemperature)
{
    const DevPreset machine = c41HandAt(37.8);
    EXPECT_NEAR(machine.fog, 0.0, 1e-12);
    EXPECT_EQ(*machine.layerGamma, (Vec3d{1.0, 1.0, 1.0}));
    EXPECT_NEAR(machine.grainAmount, 1.0, 1e-12);
    const DevPreset nominal = c41HandAt(30.0);
    EXPECT_NEAR(nominal.fog, 0.015, 1e-12);
    EXPECT_NEAR((*nominal.layerGamma)[2], 0.93, 1e-12);
    EXPECT_EQ(c41HandAt(18.0), c41HandAt(10.0));
    EXPECT_NEAR(c41HandAt(18.0).fog, 0.015 * 2.538461538461539, 1e-12);
}

TEST(Development, InstantFilmFollowsTheRoom)
{
    struct Case {
        double tempC, gamma, blueSpan, rough;
    };
    for (const Case& c : {Case{21, 1.0, 1.0, 1.0}, Case{4, 0.7, 0.66, 1.9},
                          Case{38, 1.0 + 0.3 * 0.75, 1.0 + 0.34 * 0.75, 1.0 + 0.25 * 0.75}}) {
        FilmProfile film = filmOf("instant");
        film.texture.emplace();
        film.texture->mottleAmp = film.texture->streaksAmp = film.texture->fineAmp = 1.0;
        DevelopmentKnobs k;
        k.devTempC = c.tempC;
        k.devMottle = 2.0;
        const DevelopedFilm developed = applyDevelopment(film, k);
        EXPECT_NEAR(developed.film.layers->b.gamma, 0.6 * c.gamma, 1e-12) << c.tempC;
        EXPECT_NEAR(developed.film.layers->b.dmax, 0.2 + 2.1 * c.blueSpan, 1e-12) << c.tempC;
        EXPECT_NEAR(developed.tempRough, c.rough, 1e-12) << c.tempC;
        EXPECT_NEAR(*developed.film.texture->mottleAmp, 2.0 * c.rough, 1e-12) << c.tempC;
        EXPECT_NEAR(*developed.film.texture->fineAmp, c.tempC < 21 ? 2.6 : 2.0, 1e-12) << c.tempC;
    }
}

} // namespace
} // namespace tamlo
