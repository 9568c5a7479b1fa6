// Three plates: the dice, the register in millimetres at every size, the tone of the diapositives, and the
// bicubic read against its formula.
#include "core/process/tricolor/tricolor.h"

#include "core/image/bicubic_read.h"
#include "core/process/tricolor/plate_passes.h"
#include "core/process/tricolor/registration.h"
#include "core/profiles/catalogue/profile_store.h"
#include "core/profiles/options/seed_stream.h"
#include "tests/support/pictures.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tamlo::test {
namespace {

using namespace Tricolor;

constexpr double kPlateUm = 113'000.0;

FilmProfile plates1909()
{
    return ProfileStore::shared().film("three_plates_1909");
}

RegPlan planAt(std::int64_t longPx, const RenderOptions& options = {})
{
    const FilmProfile film = plates1909();
    GrainRNG rng = Seeds::streamRNG(options, Seeds::SeedStream::film, salt);
    plateEV(film, rng);
    return tricolorRegistrationPlan(*film.tricolor, options, kPlateUm / static_cast<double>(longPx), rng);
}

TEST(Tricolor, DrawsTheKnownDice)
{
    GrainRNG rng = Seeds::streamRNG(RenderOptions(), Seeds::SeedStream::film, salt);
    const auto ev = plateEV(plates1909(), rng);
    EXPECT_NEAR(ev[0], -0.4156, 5e-5);
    EXPECT_NEAR(ev[1], -0.2171, 5e-5);
    EXPECT_NEAR(ev[2], 0.0655, 5e-5);
    const RegPlan plan = planAt(900);
    const Margins& red = plan.plates[0].margins;
    EXPECT_NEAR(red.l, 0.0047, 5e-5);
    EXPECT_NEAR(red.t, 0.0147, 5e-5);
    EXPECT_NEAR(red.r, 0.0135, 5e-5);
    EXPECT_NEAR(red.b, 0.0139, 5e-5);
    EXPECT_EQ(plan.seed, 1335385456u);
    EXPECT_NE(grainSeed({}, 0), grainSeed({}, 1));
}

/// Displacement in millimetres at a share of the picture.
std::pair<double, double> displacedMm(std::int64_t longPx, std::size_t plate, double u, double v)
{
    const Size size{longPx, longPx * 2 / 3};
    const RegPlan plan = planAt(longPx);
    const auto field = RegistrationField::of(plan, plate, size);
    RegistrationField::Rows rows(*field);
    const double y = v * static_cast<double>(size.height) - 0.5,
                 x = u * static_cast<double>(size.width) - 0.5;
    const auto top = static_cast<std::int64_t>(y), left = static_cast<std::int64_t>(x);
    double dx = 0.0, dy = 0.0;
    for (std::int64_t j = 0; j < 2; ++j) {
        const auto [rowX, rowY] = rows.row(top + j);
        const double wy = j == 0 ? 1.0 - (y - static_cast<double>(top)) : y - static_cast<double>(top);
        for (std::int64_t i = 0; i < 2; ++i) {
            const double wx = i == 0 ? 1.0 - (x - static_cast<double>(left)) : x - static_cast<double>(left);
            dx += wx * wy * static_cast<double>(rowX[left + i]);
            dy += wx * wy * static_cast<double>(rowY[left + i]);
        }
    }
    return {dx / plan.ppmm, dy / plan.ppmm};
}

TEST(Tricolor, EverySizeHasTheSameRegister)
{
    for (std::size_t plate = 0; plate < 3; ++plate)
        for (const double u : {0.11, 0.37, 0.52, 0.9})
            for (const double v : {0.2, 0.61, 0.83}) {
                const auto [x, y] = displacedMm(1800, plate, u, v);
                EXPECT_LT(std::hypot(x, y), 0.8);
                for (const std::int64_t longPx : {450, 900}) {
                    const auto [x2, y2] = displacedMm(longPx, plate, u, v);
                    EXPECT_NEAR(x2, x, 0.001) << plate << " " << u << " " << v << " " << longPx;
                    EXPECT_NEAR(y2, y, 0.001) << plate << " " << u << " " << v << " " << longPx;
                }
            }
    RenderOptions still;
    still.plateShift = 0.0;
    const RegPlan plan = planAt(900, still);
    for (std::size_t plate = 0; plate < 3; ++plate)
        EXPECT_FALSE(RegistrationField::of(plan, plate, {900, 600}));
    EXPECT_EQ(plan.plates[0].margins.l, planAt(900).plates[0].margins.l) << "the holder stays";
}

// A plate of 9 x 12 cm, of which 113 mm are picture.
TEST(Tricolor, PlatesMissEachOtherAsFarAsKnown)
{
    const Size size{1800, 1200};
    const RegPlan plan = planAt(size.width);
    const double n = static_cast<double>(size.width * size.height);
    const double known[] = {0.102, 0.150, 0.124}; // deviation along the rows, mm
    double farthest = 0.0;
    for (std::size_t plate = 0; plate < 3; ++plate) {
        const auto field = RegistrationField::of(plan, plate, size);
        RegistrationField::Rows rows(*field);
        double sum = 0.0, squares = 0.0;
        for (std::int64_t y = 0; y < size.height; ++y) {
            const auto [dx, dy] = rows.row(y);
            for (std::int64_t x = 0; x < size.width; ++x) {
                const double alongX = dx[x] / plan.ppmm, alongY = dy[x] / plan.ppmm;
                sum += alongX / n;
                squares += alongX * alongX / n;
                farthest = std::max({farthest, std::abs(alongX), std::abs(alongY)});
            }
        }
        EXPECT_NEAR(std::sqrt(squares - sum * sum), known[plate], 6e-4) << plate;
    }
    EXPECT_NEAR(farthest, 0.528, 6e-4);
}

TEST(Tricolor, DiapositivesHaveTheToneOfTheirCurve)
{
    FilmProfile film = plates1909();
    film.tricolor->positive->midDensity = 0.9;
    const Curves c = curves(film);
    const PlatePositiveParams params{c.pos, c.neg.fD0, {0, 1, 0, 1}};
    const std::pair<double, double> known[] = {{0.0, 0.0037}, {0.18, 0.1259}, {1.0, 0.5876}, {8.0, 0.8655}};
    for (const auto& [scene, t] : known) {
        Plane plate(1, 1, c.neg.density(Film::logExposure(static_cast<float>(scene), 0.0f)));
        plate_positive(plate, params);
        EXPECT_NEAR(plate.at(0, 0), t, 1e-4) << scene;
    }
    Plane covered(4, 3, 0.5f);
    plate_positive(covered, {c.pos, c.neg.fD0, {1, 3, 1, 3}});
    for (std::int64_t y = 0; y < 3; ++y)
        for (std::int64_t x = 0; x < 4; ++x)
            EXPECT_EQ(covered.at(x, y) > 0.0f, x >= 1 && x < 3 && y >= 1) << x << " " << y;
}

// What the exposures of three plates leave of a grey card's balance.
TEST(Tricolor, GreyCardsVaryWithTheDice)
{
    DevelopedFilm film;
    film.film = plates1909();
    film.film.tricolor->positive->midDensity = 0.9;
    RenderOptions options;
    options.grainMult = 0.0;
    constexpr int kDice = 24;
    std::array<double, 3> sum{}, squares{};
    for (int roll = 0; roll < kDice; ++roll) {
        options.seedVariants = SeedVariants{{"film", roll}};
        const RGBImage out =
            render(RGBImage(90, 60, Vec3f{0.18f, 0.18f, 0.18f}), film, options, kPlateUm / 90.0);
        for (std::size_t c = 0; c < 3; ++c) {
            const double v = out.pixel(45, 30)[c];
            sum[c] += v / kDice;
            squares[c] += v * v / kDice;
        }
    }
    for (std::size_t c = 0; c < 3; ++c) {
        const double deviation = std::sqrt(squares[c] - sum[c] * sum[c]);
        EXPECT_GT(deviation, 0.0075) << c;
        EXPECT_LT(deviation, 0.0135) << c;
    }
}

// A grey card comes out grey enough to be one, the same on average at two sizes.
TEST(Tricolor, GreyCardsAndSizes)
{
    DevelopedFilm film;
    film.film = plates1909();
    RenderOptions options;
    options.grainMult = 0.0;
    Vec3f last{};
    for (const std::int64_t longPx : {90, 180}) {
        const RGBImage out = render(RGBImage(longPx, longPx * 2 / 3, Vec3f{0.18f, 0.18f, 0.18f}), film,
                                    options, kPlateUm / static_cast<double>(longPx));
        const Vec3f v = out.pixel(longPx / 2, longPx / 3);
        for (std::size_t c = 0; c < 3; ++c) {
            EXPECT_GT(v[c], 0.11f);
            EXPECT_LT(v[c], 0.24f);
            if (longPx > 90) {
                EXPECT_NEAR(v[c], last[c], 2e-3);
            }
        }
        last = v;
    }
}

TEST(BicubicRead, IsTheKernelWithItsEdgeRepeated)
{
    const RGBImage image = noisePicture(9, 7, 3, 1.0f);
    const Plane green = image.plane(1);
    const auto slow = [&](double x, double y) {
        const double fx = std::floor(x), fy = std::floor(y);
        const auto wx = catmullRom(static_cast<float>(x - fx)), wy = catmullRom(static_cast<float>(y - fy));
        double sum = 0.0;
        for (int j = 0; j < 4; ++j)
            for (int i = 0; i < 4; ++i)
                sum += static_cast<double>(wx[static_cast<std::size_t>(i)]) *
                       static_cast<double>(wy[static_cast<std::size_t>(j)]) *
                       static_cast<double>(
                           green.at(std::clamp<std::int64_t>(static_cast<std::int64_t>(fx) - 1 + i, 0, 8),
                                    std::clamp<std::int64_t>(static_cast<std::int64_t>(fy) - 1 + j, 0, 6)));
        return sum;
    };
    for (double y = -9.3; y < 16.0; y += 1.7)
        for (double x = -9.1; x < 18.0; x += 1.3) {
            const auto xf = static_cast<float>(x), yf = static_cast<float>(y);
            EXPECT_NEAR(readBicubic(green, xf, yf), slow(x, y), 2e-5) << x << " " << y;
            EXPECT_NEAR(readBicubic(image, xf, yf)[1], slow(x, y), 2e-5) << x << " " << y;
        }
    EXPECT_EQ(readBicubic(green, NAN, 0.0f), green.at(0, 0));
}

} // namespace
} // namespace tamlo::test
