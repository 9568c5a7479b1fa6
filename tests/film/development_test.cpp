#include "core/film/emulsion/development.h"
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

const NegativeLayer& curveOf(const DevelopedFilm& developed, std::size_t layer = 1)
{
    const FilmProfile& film = developed.film;
    if (film.negative) return *film.negative;
    return layer == 0 ? film.layers->r : layer == 1 ? film.layers->g : film.layers->b;
}

// A push is steeper, denser, foggier and grainier with every stop, a pull the other way without less fog; a
// slide moves in exposure, an instant picture not at all.
TEST(Development, PushByFilmType)
{
    for (const char* type : {"bw", "color", "collodion", "tricolor", "slide", "instant"}) {
        SCOPED_TRACE(type);
        FilmProfile film = filmOf(type);
        (film.negative ? *film.negative : film.layers->g).midDensity = 0.5;
        for (int push = -3; push < 3; ++push) {
            const DevelopedFilm less = applyDevelopment(film, knobs(push));
            const DevelopedFilm more = applyDevelopment(film, knobs(push + 1));
            const NegativeLayer &from = curveOf(less), &to = curveOf(more);
            const double spanGain = (to.dmax - to.dmin) - (from.dmax - from.dmin);
            EXPECT_EQ(more.exposureShift, film.isSlide() ? push + 1 : 0);
            if (film.isInstant()) {
                EXPECT_EQ(from, to);
                continue;
            }
            EXPECT_GT(to.gamma, from.gamma);
            EXPECT_GT(film.isSlide() ? -spanGain : spanGain, 0.0);
            EXPECT_GT(*more.film.grain->amount + (push < 0 ? 1e-9 : 0.0), *less.film.grain->amount);
            if (push < 0) {
                EXPECT_EQ(to.dmin, 0.2) << "a pull adds no fog and takes none away";
            } else {
                EXPECT_GT(to.dmin, from.dmin);
            }
            if (film.isSlide()) continue;
            EXPECT_NEAR(*to.midDensity / *from.midDensity, to.gamma / from.gamma, 1e-12)
                << "grey climbs with the slope";
        }
    }
    // However far it goes, a curve stays one, and grey inside it.
    FilmProfile dense = filmOf("bw");
    dense.negative->midDensity = 2.0;
    for (const double push : {-20.0, 2.0, 20.0}) {
        const NegativeLayer held = curveOf(applyDevelopment(dense, knobs(push)));
        EXPECT_GT(held.gamma, 0.0);
        EXPECT_GT(held.dmax - held.dmin, *held.midDensity) << push;
    }
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

    const auto run = [](const char* type, Development dev) {
        return applyDevelopment(filmOf(type), knobs(0, dev));
    };
    const DevelopedFilm plain = run("bw", Development::standard), sharp = run("bw", Development::acutance),
                        fine = run("bw", Development::fine), stand = run("bw", Development::stand);
    EXPECT_EQ(plain.adjacency, 0.0);
    EXPECT_GT(sharp.adjacency, plain.adjacency);
    EXPECT_GT(stand.adjacency, sharp.adjacency) << "a still tank draws the strongest edges";
    EXPECT_GT(stand.adjacencyUm, sharp.adjacencyUm);
    EXPECT_LT(*fine.film.grain->amount, *plain.film.grain->amount);
    EXPECT_GT(*sharp.film.grain->amount, *plain.film.grain->amount);
    EXPECT_LT(curveOf(stand).gamma, curveOf(fine).gamma);

    const DevelopedFilm bypass = run("color", Development::bleachBypass);
    EXPECT_GT(bypass.retainedSilver, 0.2);
    EXPECT_EQ(run("color", Development::standard).retainedSilver, 0.0);
    EXPECT_GT(curveOf(bypass).dmin, 0.2);
    const DevelopedFilm pyro = run("collodion", Development::pyro),
                        iron = run("collodion", Development::iron);
    EXPECT_GT(curveOf(pyro).gamma, curveOf(iron).gamma);
    EXPECT_FALSE(iron.silverTint);
    ASSERT_TRUE(pyro.silverTint);
    EXPECT_GT((*pyro.silverTint)[0], (*pyro.silverTint)[2]) << "pyro's silver is warm";
}

// At the machine's temperature a hand tank is the machine; the colder, the further the layers part.
TEST(Development, HandTankDriftsWithItsTemperature)
{
    const DevPreset machine = c41HandAt(C41_HAND_REF);
    EXPECT_NEAR(machine.fog, 0.0, 1e-12);
    EXPECT_EQ(*machine.layerGamma, (Vec3d{1.0, 1.0, 1.0}));
    EXPECT_NEAR(machine.grainAmount, 1.0, 1e-12);
    EXPECT_EQ(c41HandAt(C41_HAND_NOMINAL), *DevPreset::find(filmOf("color"), Development::hand));
    for (double warm = C41_HAND_REF; warm > C41_HAND_TMIN; warm -= 3.3) {
        const DevPreset before = c41HandAt(warm), colder = c41HandAt(warm - 3.3);
        EXPECT_GT(colder.fog, before.fog) << warm;
        EXPECT_GT(colder.grainAmount, before.grainAmount);
        EXPECT_LT((*colder.layerGamma)[2] / (*colder.layerGamma)[0],
                  (*before.layerGamma)[2] / (*before.layerGamma)[0]);
    }
    EXPECT_EQ(c41HandAt(C41_HAND_TMIN), c41HandAt(10.0));
}

// At room temperature nothing moves; cold is flatter, bluer and rougher, heat steeper, and by less.
TEST(Development, InstantFilmFollowsTheRoom)
{
    FilmProfile film = filmOf("instant");
    film.texture.emplace();
    film.texture->mottleAmp = film.texture->streaksAmp = film.texture->fineAmp = 1.0;
    const auto at = [&](double tempC) {
        DevelopmentKnobs k;
        k.devTempC = tempC;
        k.devMottle = 2.0;
        return applyDevelopment(film, k);
    };
    const DevelopedFilm room = at(INSTANT_TEMP_REF), cold = at(4.0), hot = at(38.0);
    EXPECT_EQ(curveOf(room), film.layers->g);
    EXPECT_EQ(room.tempRough, 1.0);
    EXPECT_EQ(*room.film.texture->mottleAmp, 2.0);
    EXPECT_LT(curveOf(cold).gamma, curveOf(room).gamma);
    EXPECT_GT(curveOf(hot).gamma, curveOf(room).gamma);
    EXPECT_LT(curveOf(hot).gamma - curveOf(room).gamma, curveOf(room).gamma - curveOf(cold).gamma);
    EXPECT_LT(curveOf(cold, 2).dmax, curveOf(cold, 1).dmax) << "blue loses its density first";
    EXPECT_LT(curveOf(cold, 1).dmax, curveOf(cold, 0).dmax);
    for (const DevelopedFilm* off : {&cold, &hot}) {
        EXPECT_GT(off->tempRough, 1.0);
        EXPECT_NEAR(*off->film.texture->mottleAmp, 2.0 * off->tempRough, 1e-12);
    }
    EXPECT_EQ(curveOf(at(-30.0)), curveOf(cold)) << "beyond its range nothing moves";
    film.tempSensitivity = 0.5;
    EXPECT_GT(curveOf(at(4.0)).gamma, curveOf(cold).gamma) << "a calmer chemistry";
}

} // namespace
} // namespace tamlo
