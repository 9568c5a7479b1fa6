#include "core/film/light/emulsion_input.h"
#include "core/film/light/source_light.h"
#include "core/image/source_exposure.h"
#include "core/image/zcolor.h"
#include "tests/support/pictures.h"

namespace tamlo {
namespace {

using SourceExposure::Mode;
using SourceExposure::Stats;

TEST(SourceExposure, GainByModeAndStatistics)
{
    struct Case {
        double p10, p50, p995;
        Mode mode;
        double gain;
    };
    for (const Case& c : {Case{0, 0.0375, 0, Mode::auto_, 4.0}, Case{0, 0.0005, 0, Mode::auto_, 64.0},
                          Case{0, 5.0, 0, Mode::auto_, 0.25}, Case{0, 0.3, 0.5, Mode::highlights, 0.5},
                          Case{0, 0.03, 0.5, Mode::highlights, 1.8}, Case{0.1, 0.3, 0, Mode::shadows, 0.5},
                          Case{0.01, 0.3, 0, Mode::shadows, 4.5}, Case{0, 0, 0, Mode::auto_, 1.0},
                          Case{0, 0, 0, Mode::shadows, 1.0}, Case{0, 0, 0, Mode::asShot, 1.44}})
        EXPECT_NEAR(SourceExposure::gain(Stats{c.p10, c.p50, c.p995, 1, 1}, c.mode), c.gain, 1e-12);
    EXPECT_EQ(SourceExposure::gain(RGBImage(4, 4), Mode::asShot), 1.44);
    EXPECT_EQ(SourceExposure::fromKey("highlights"), Mode::highlights);
    EXPECT_EQ(SourceExposure::fromKey("bright"), Mode::auto_);
    EXPECT_EQ(SourceExposure::fromKey(std::nullopt), Mode::auto_);
}

TEST(SourceExposure, PercentilesAgreeWithASortedList)
{
    test::Lcg random(5);
    for (const std::size_t n : {0u, 1u, 2u, 3u, 10u, 1001u}) {
        std::vector<double> values(n);
        for (double& v : values) v = random.next();
        std::vector<double> sorted = values;
        std::sort(sorted.begin(), sorted.end());
        for (const double p : {0.0, 10.0, 50.0, 99.5, 100.0}) {
            double expected = n ? sorted[0] : 0.0;
            if (n > 1) {
                const double index = p / 100.0 * static_cast<double>(n - 1);
                const std::size_t lo = static_cast<std::size_t>(index), hi = std::min(lo + 1, n - 1);
                expected = std::lerp(sorted[lo], sorted[hi], index - static_cast<double>(lo));
            }
            EXPECT_NEAR(SourceExposure::percentile(values, p), expected, 1e-12) << n << " at " << p;
        }
    }
}

TEST(SourceExposure, MeasuresAReducedCopy)
{
    EXPECT_EQ(SourceExposure::statsShape({1024, 10}), (Size{1024, 10}));
    EXPECT_EQ(SourceExposure::statsShape({1025, 683}), (Size{1024, 682}));
    EXPECT_EQ(SourceExposure::statsShape({1, 30'000}), (Size{1, 1024}));
    const Stats stats = SourceExposure::stats(Plane(3000, 2000, 0.25f));
    EXPECT_NEAR(stats.p10, 0.25, 1e-7);
    EXPECT_NEAR(stats.p995, 0.25, 1e-7);
    EXPECT_EQ(stats.width, 3000);
    EXPECT_EQ(stats.height, 2000);
}

TEST(SourceLight, TintKeepsLuminanceAndKnobsAtRestKeepTheBits)
{
    const RGBImage image = test::noisePicture(33, 17, 1);
    RenderOptions options;
    EXPECT_EQ(SourceLight::applySource(image, FilmProfile{}, options).data.data(), image.data.data());

    FilmProfile tungsten;
    tungsten.balance = FilmBalance{3200.0};
    for (const FilmProfile& film : {FilmProfile{}, tungsten})
        for (const double temp : {-400.0, -30.0, 108.0, 1000.0})
            for (const double tint : {-40.0, 0.0, 40.0}) {
                options.wbTemp = temp;
                options.wbTint = tint;
                const auto gains = SourceLight::gains(film, options);
                ASSERT_TRUE(gains);
                EXPECT_NEAR(ZColor::lumaOf((*gains)[0], (*gains)[1], (*gains)[2]), 1.0f, 1e-6f);
                if (tint == 0.0) {
                    EXPECT_EQ((*gains)[0] > (*gains)[2], temp > 0.0);
                }
            }
    options.wbTemp = 50.0;
    options.wbTint = 0.0;
    options.sourceGain = 2.0;
    const Vec3f g = *SourceLight::gains(FilmProfile{}, options);
    const RGBImage lit = SourceLight::applySource(image, FilmProfile{}, options);
    for (std::size_t i = 0; i < image.data.size(); ++i)
        ASSERT_EQ(lit.data[i], image.data[i] * 2.0f * g[i % 3]);
}

TEST(EmulsionInput, BalanceOfTungstenFilm)
{
    FilmProfile film;
    film.type = "color";
    EXPECT_FALSE(Film::balanceGains(film, 5500.0));
    film.balance = FilmBalance{3200.0};
    const auto gains = Film::balanceGains(film, Film::sceneIlluminantK(film, "film"));
    ASSERT_TRUE(gains);
    EXPECT_GT((*gains)[2], 1.0f);
    EXPECT_NEAR(ZColor::lumaOf((*gains)[0], (*gains)[1], (*gains)[2]), 1.0f, 1e-6f);
    EXPECT_FALSE(Film::balanceGains(film, Film::sceneIlluminantK(film, "custom")));

    const RGBImage image = test::noisePicture(9, 5, 2);
    const RGBImage custom = Film::applyEmulsion(image, film, false, "custom");
    EXPECT_TRUE(test::sameBytes(custom.data, image.data));
    FilmProfile silver = film;
    silver.type = "bw";
    EXPECT_TRUE(test::sameBytes(Film::applyEmulsion(image, silver, true, "film").data, image.data));
}

TEST(EmulsionInput, SensitisationKeepsGreyAndPassesOverWhatIsNoMatrix)
{
    FilmProfile film;
    film.type = "color";
    film.sensitization = ProfileMatrix{{0.9, 0.2, 0.1}, {0.0, 2.0, 0.0}, {0.1, 0.1, 0.8}};
    const auto matrix = Film::sensitizationMatrix(film, false);
    ASSERT_TRUE(matrix);
    EXPECT_NEAR((*matrix)[0][0], 0.75, 1e-6);
    EXPECT_NEAR((*matrix)[0][2], 0.0833333, 1e-6);
    const RGBImage grey = Film::applyEmulsion(RGBImage(3, 3, {0.18f, 0.18f, 0.18f}), film, false, "film");
    for (const float v : grey.data) EXPECT_NEAR(v, 0.18f, 1e-7f);

    for (const ProfileMatrix& none : {ProfileMatrix{{2, 0, 0}, {0, 3, 0}, {0, 0, 1}},
                                      ProfileMatrix{{1, 0, 0}}, ProfileMatrix{{1, 0}, {0, 1}, {0, 0}}}) {
        film.sensitization = none;
        EXPECT_FALSE(Film::sensitizationMatrix(film, false));
    }
    film.sensitizationDs = ProfileMatrix{{0.8, 0.2, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}};
    const RGBImage red(1, 1, {1.0f, 0.0f, 0.0f});
    EXPECT_EQ(Film::applyEmulsion(red, film, false, "film").pixel(0, 0), (Vec3f{1.0f, 0.0f, 0.0f}));
    EXPECT_NEAR(Film::applyEmulsion(red, film, true, "film").pixel(0, 0)[0], 0.8f, 1e-7f);
}

TEST(EmulsionInput, InfraredLayersSeeInfraredRedAndGreen)
{
    const auto defaults = Film::irCoefficients(IRProxy{});
    EXPECT_NEAR(defaults.weights[0], 0.55f, 1e-7f);
    const RGBImage leaf = Film::falseColorIR(RGBImage(1, 1, {0.1f, 0.4f, 0.05f}), IRProxy{});
    EXPECT_NEAR(leaf.pixel(0, 0)[0], 0.055f + 0.18f + 1.6f * 0.3f, 1e-6f);
    EXPECT_EQ(leaf.pixel(0, 0)[1], 0.1f);
    EXPECT_EQ(leaf.pixel(0, 0)[2], 0.4f);
    EXPECT_NEAR(Film::falseColorIR(RGBImage(1, 1, {0.3f, 0.3f, 0.3f}), IRProxy{}).pixel(0, 0)[0], 0.3f,
                1e-6f);
}

TEST(SourceLight, MeansDoNotDependOnWorkers)
{
    const RGBImage image = test::noisePicture(701, 301, 9);
    double reference = 0.0;
    for (const int workers : {1, 2, 7}) {
        const platform::WorkerLimit limit(workers);
        const double mean = SourceLight::meanLuma(image);
        if (workers == 1) reference = mean;
        EXPECT_EQ(mean, reference);
    }
    EXPECT_NEAR(reference, Film::lumaPlane(image).mean(), 1e-9 * reference);
}

} // namespace
} // namespace tamlo
