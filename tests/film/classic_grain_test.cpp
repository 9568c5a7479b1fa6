#include "core/film/grain/classic_grain.h"

#include "core/image/gaussian.h"
#include "core/image/position_hash.h"
#include "tests/support/pictures.h"

#include <hwy/targets.h>

#include <algorithm>
#include <cmath>
#include <tuple>

namespace tamlo {
namespace {

using test::sameBytes;

GrainParams grainOf(OptNumber sizeUm, OptNumber amount = {}, OptTriple layerScale = {},
                    OptTriple layerSizeScale = {})
{
    return {sizeUm, amount, {}, layerScale, layerSizeScale};
}

double correlation(const Plane& a, const Plane& b)
{
    const double ma = a.mean(), mb = b.mean();
    double sum = 0.0;
    for (std::size_t i = 0; i < a.data.size(); ++i) sum += (a.data[i] - ma) * (b.data[i] - mb);
    return sum / (static_cast<double>(a.count()) * a.std() * b.std());
}

/// Field sample by its definition, in 64-bit floats.
double slowField(std::int32_t x, std::int32_t y, double sigma, std::uint32_t seed, std::uint32_t layer)
{
    const auto radius = static_cast<std::int32_t>(std::floor(sigma * 4.0 + 0.5));
    const std::vector<double> w = gaussianKernel1D(sigma, radius);
    double sum = 0.0, squares = 0.0;
    for (std::int32_t j = -radius; j <= radius; ++j) {
        const double wj = w[static_cast<std::size_t>(j + radius)];
        squares += wj * wj;
        for (std::int32_t i = -radius; i <= radius; ++i)
            sum += wj * w[static_cast<std::size_t>(i + radius)] * gaussNoise(x + i, y + j, seed, layer);
    }
    return sum / squares;
}

TEST(ClassicGrain, FieldIsTheBlurredHashNoiseOfUnitDeviation)
{
    for (const double sigma : {0.45, 1.3, 3.0}) {
        const Plane field = Grain::field({1100, 700}, sigma, 77, 2);
        for (const auto& [x, y] : {std::pair{0, 0}, {1023, 5}, {1024, 5}, {1099, 349}, {3, 350}, {1098, 699}})
            EXPECT_NEAR(field.at(x, y), slowField(x, y, sigma, 77, 2), 2e-5) << sigma << " " << x << " " << y;
        // A hundredth part is three deviations of the estimate for the coarsest field.
        EXPECT_NEAR(field.std(), 1.0, sigma > 2.0 ? 0.03 : 0.01) << sigma;
        EXPECT_NEAR(field.mean(), 0.0, 0.05) << sigma;
        // The pattern belongs to the position: no tile, band or picture size shows in it.
        const Plane corner = Grain::field({37, 19}, sigma, 77, 2);
        for (std::int64_t y = 0; y < 19; ++y)
            EXPECT_TRUE(std::equal(corner.row(y), corner.row(y) + 37, field.row(y)));
    }
    for (const std::int64_t target : hwy::SupportedAndGeneratedTargets()) {
        hwy::SetSupportedTargetsForTest(target);
        const Plane white = Grain::field({70, 33}, 0.05, 5, 1);
        EXPECT_NEAR(white.at(69, 32), gaussNoise(69, 32, 5, 1), 1e-5) << hwy::TargetName(target);
        const Plane soft = Grain::field({70, 33}, 1.3, 5, 1);
        EXPECT_NEAR(soft.at(67, 31), slowField(67, 31, 1.3, 5, 1), 2e-5) << hwy::TargetName(target);
    }
    hwy::SetSupportedTargetsForTest(0);
}

TEST(ClassicGrain, LayersAndSeedsAreIndependent)
{
    const Plane a = Grain::field({700, 700}, 0.7, 9, 0);
    EXPECT_LT(std::abs(correlation(a, Grain::field({700, 700}, 0.7, 9, 1))), 0.02);
    EXPECT_LT(std::abs(correlation(a, Grain::field({700, 700}, 0.7, 9, 2))), 0.02);
    const Plane other = Grain::field({700, 700}, 0.7, 10, 0);
    EXPECT_LT(std::abs(correlation(a, other)), 0.02);
    std::int64_t equal = 0;
    for (std::int64_t i = 0; i < a.count(); ++i) equal += a.data.data()[i] == other.data.data()[i];
    EXPECT_LT(equal, a.count() / 10'000);
}

TEST(ClassicGrain, SizeBelowThePixelGridBecomesAmplitude)
{
    // size, pxUm, sizeMult, ampMult -> sigma, amplitude
    const std::tuple<double, double, double, double, double, double> rows[] = {
        {4.0, 5.5, 1.0, 1.0, 4.0 / 5.5, 1.0},
        {4.0, 20.0, 1.0, 0.5, 0.45, 0.5 * 0.2 / 0.45},
        {4.0, 20.0, 2.0, 0.5, 0.45, 0.5 * 0.4 / 0.45},
        {4.0, 20.0, 4.0, 0.5, 0.8, 0.5},
        {0.0, 5.5, 1.0, 1.0, 0.45, 0.0},
        {4.0, 0.0, 1.0, 1.0, 4e6, 1.0}};
    for (const auto& [size, pxUm, sizeMult, ampMult, sigma, amp] : rows) {
        const Grain::SigmaAmp result = Grain::effectiveSigmaAmp(size, pxUm, sizeMult, ampMult);
        EXPECT_NEAR(result.sigmaPx, sigma, 1e-9 * sigma);
        EXPECT_NEAR(result.amp, amp, 1e-12);
    }
}

TEST(ClassicGrain, EnvelopeFollowsDensity)
{
    const double dmin = 0.2, dmax = 2.7, amount = 0.05, n = 1.0 / 2.5;
    const double c = std::sqrt(n * (1 - n)) / std::sqrt((n + 0.06) * (1 - 0.45 * n));
    const double shortN = 0.95; // a span below 1
    const double shortC = std::sqrt(shortN * (1 - shortN)) / std::sqrt((shortN + 0.06) * (1 - 0.45 * shortN));
    const std::tuple<double, double, double> rows[] = {// density, dmax, envelope
                                                       {dmin, dmax, c * std::sqrt(0.06)},
                                                       {dmin - 0.5, dmax, c * std::sqrt(0.06)},
                                                       {dmin + 1.0, dmax, std::sqrt(n * (1 - n))},
                                                       {dmax, dmax, c * std::sqrt(1.06 * 0.55)},
                                                       {dmax + 3.0, dmax, c * std::sqrt(1.06 * 0.55)},
                                                       {dmin, dmin + 0.4, shortC * std::sqrt(0.06)},
                                                       {dmin, dmin, shortC * std::sqrt(0.06)}};
    const Grain::ClassicGrain grain{.gprof = grainOf(4.0, amount), .pxUm = 5.5, .seed = 3};
    const Plane field = Grain::field({300, 300}, 4.0 / 5.5, 3, 0);
    for (const auto& [density, top, envelope] : rows) {
        const Plane out = Grain::addBW(Plane(300, 300, static_cast<float>(density)), dmin, top, grain);
        EXPECT_NEAR(out.std() / field.std(), amount * envelope, 1e-5) << density << " " << top;
        EXPECT_NEAR(out.at(17, 5), density + amount * envelope * field.at(17, 5), 2e-6);
    }
}

TEST(ClassicGrain, ColorTakesEachLayersOwnNumbers)
{
    const Vec3d dmins{0.1, 0.2, 0.3}, dmaxs{2.4, 2.9, 3.3};
    const auto laid = [&](GrainParams gprof, double ampMult) {
        return Grain::addColor(RGBImage(301, 203, Vec3f{1.0f, 1.2f, 1.4f}), dmins, dmaxs,
                               {.gprof = gprof, .pxUm = 5.5, .ampMult = ampMult, .seed = 8});
    };
    // What an absent number stands for.
    const RGBImage absent = laid({}, 1.0);
    EXPECT_TRUE(sameBytes(absent.data,
                          laid(grainOf(4.0, 0.05, Vec3d{1.0, 0.9, 1.35}, Vec3d{1.0, 1.0, 1.2}), 1.0).data));
    const Plane flat(301, 203, 1.0f);
    EXPECT_TRUE(
        sameBytes(Grain::addBW(flat, 0.1, 2.4, {.pxUm = 5.5, .seed = 8}).data,
                  Grain::addBW(flat, 0.1, 2.4, {.gprof = grainOf(6.0, 0.08), .pxUm = 5.5, .seed = 8}).data));
    // A layer is the silver engine with that layer's numbers and pattern.
    const Plane first = Grain::addBW(flat, 0.1, 2.4, {.gprof = grainOf(4.0, 0.05), .pxUm = 5.5, .seed = 8});
    EXPECT_TRUE(sameBytes(absent.plane(0).data, first.data));
    EXPECT_LT(std::abs(correlation(absent.plane(0), absent.plane(1))), 0.02);
    // A layer without amplitude stays as it is; so does the whole picture without grain.
    const RGBImage green = laid(grainOf({}, {}, Vec3d{0.0, 1.0, -1.0}), 1.0);
    EXPECT_EQ(green.plane(0).std(), 0.0);
    EXPECT_GT(green.plane(1).std(), 0.0);
    EXPECT_EQ(green.plane(2).std(), 0.0);
    for (const double ampMult : {0.0, 1e-5, -1.0})
        EXPECT_TRUE(sameBytes(laid({}, ampMult).data, RGBImage(301, 203, Vec3f{1.0f, 1.2f, 1.4f}).data));
}

TEST(ClassicGrain, SameBytesForAnyNumberOfWorkers)
{
    const Grain::ClassicGrain grain{.gprof = grainOf(9.0), .pxUm = 5.5, .seed = 1};
    test::expectSameForAnyWorkers([&] {
        return Grain::addColor(RGBImage(1101, 203, Vec3f{1.0f, 1.2f, 1.4f}), {}, {2, 2, 2}, grain);
    });
    test::expectSameForAnyWorkers([&] { return Grain::addBW(Plane(1101, 203, 1.0f), 0.1, 2.0, grain); });
}

TEST(ClassicGrain, TakesAnySizeAmountAndPicture)
{
    for (const Size size : {Size{1, 1}, {16, 16}, {501, 1}, {1, 99}, {0, 0}})
        for (const double sizeUm : {0.0, 5.0, 1e12, 1e300})
            for (const double amount : {0.0, 0.05, 1e300}) {
                const Grain::ClassicGrain grain{.gprof = grainOf(sizeUm, amount), .pxUm = 5.5};
                const Plane silver = Grain::addBW(Plane(size.width, size.height, 1.0f), 0.1, 2.0, grain);
                const RGBImage color =
                    Grain::addColor(RGBImage(size.width, size.height, Vec3f{1, 1, 1}), {}, {2, 2, 2}, grain);
                EXPECT_TRUE(std::all_of(silver.data.begin(), silver.data.end(),
                                        [](float v) { return std::isfinite(v); }));
                EXPECT_TRUE(std::all_of(color.data.begin(), color.data.end(),
                                        [](float v) { return std::isfinite(v); }));
            }
}

TEST(Granularity, DiscMeasuresTheSpreadOfMeansThroughTheAperture)
{
    const Plane noise = Grain::field({61, 47}, 0.8, 4, 0);
    for (const double pxUm : {6.0, 5.5, 11.0, 30.0}) {
        const double r = 24.0 / pxUm;
        const auto reach = static_cast<std::int64_t>(std::ceil(r));
        std::vector<double> means;
        for (std::int64_t y = reach; y < 47 - reach; ++y)
            for (std::int64_t x = reach; x < 61 - reach; ++x) {
                double sum = 0.0, cells = 0.0;
                for (std::int64_t dy = -reach; dy <= reach; ++dy)
                    for (std::int64_t dx = -reach; dx <= reach; ++dx)
                        if (static_cast<double>(dx * dx + dy * dy) <= r * r) {
                            sum += noise.at(x + dx, y + dy);
                            cells += 1.0;
                        }
                means.push_back(sum / cells);
            }
        double mean = 0.0, square = 0.0;
        for (const double m : means) mean += m / static_cast<double>(means.size());
        for (const double m : means) square += (m - mean) * (m - mean);
        EXPECT_NEAR(Grain::disc48Std(noise, pxUm), std::sqrt(square / static_cast<double>(means.size())),
                    1e-9);
    }
    // One place or none for the aperture.
    EXPECT_EQ(Grain::disc48Std(Grain::field({9, 9}, 0.8, 4, 0), 6.0), 0.0);
    EXPECT_GT(Grain::disc48Std(Grain::field({10, 9}, 0.8, 4, 0), 6.0), 0.0);
    EXPECT_EQ(Grain::disc48Std(noise, 1e-9), 0.0);
    EXPECT_EQ(Grain::disc48Std(noise, 0.0), 0.0);
    EXPECT_EQ(Grain::disc48Std(Plane(), 6.0), 0.0);
}

/// The granularity that theory gives: the disc's mean over a field with the autocorrelation e^(-d² / 4
/// sigma²).
double expectedSigma48(double sigmaPx, double deviation)
{
    double sum = 0.0, cells = 0.0;
    for (int y = -4; y <= 4; ++y)
        for (int x = -4; x <= 4; ++x) {
            if (x * x + y * y > 16) continue;
            cells += 1.0;
            for (int v = -4; v <= 4; ++v)
                for (int u = -4; u <= 4; ++u)
                    if (u * u + v * v <= 16)
                        sum += std::exp(-((u - x) * (u - x) + (v - y) * (v - y)) / (4 * sigmaPx * sigmaPx));
        }
    return deviation * std::sqrt(sum) / cells;
}

TEST(Granularity, ClassicMeasuresWhatItsNumbersSay)
{
    const double n = 1.0 / 2.2, envelope = std::sqrt(n * (1 - n));
    for (const double sizeUm : {6.0, 9.0, 14.0}) {
        const double measured = Grain::classicSigma48(grainOf(sizeUm, 0.07), 0.2, 2.4);
        EXPECT_NEAR(measured / expectedSigma48(sizeUm / 6.0, 0.07 * envelope), 1.0, 0.02) << sizeUm;
        EXPECT_EQ(measured, Grain::classicSigma48(grainOf(sizeUm, 0.07), 0.2, 2.4));
    }
    EXPECT_EQ(Grain::classicSigma48(grainOf({}, 0.0), 0.2, 2.4), 0.0);
    EXPECT_EQ(Grain::classicSigma48({}, 0.2, 2.4), Grain::classicSigma48(grainOf(6.0, 0.08), 0.2, 2.4));
    EXPECT_TRUE(std::isfinite(Grain::classicSigma48(grainOf(1e300, 1e300), 0.2, 2.4)));

    // The layers draw one after the other from one stream; one that stays flat draws nothing.
    const GrainParams even = grainOf(8.0, 0.06, Vec3d{1, 1, 1}, Vec3d{1, 1, 1});
    const double silver = Grain::classicSigma48(even, 0.2, 2.4);
    const Vec3d all = Grain::classicSigma48Color(even, {0.2, 0.2, 0.2}, {2.4, 2.4, 2.4});
    EXPECT_EQ(all[0], silver);
    EXPECT_NE(all[1], silver);
    EXPECT_NEAR(all[1] / silver, 1.0, 0.04);
    GrainParams noRed = even;
    noRed.layerScale = Vec3d{0, 1, 1};
    const Vec3d two = Grain::classicSigma48Color(noRed, {0.2, 0.2, 0.2}, {2.4, 2.4, 2.4});
    EXPECT_EQ(two[0], 0.0);
    EXPECT_EQ(two[1], silver);
    EXPECT_EQ(two[2], all[1]);
}

TEST(GrainProfile, ChoosesTheStrength)
{
    FilmProfile film;
    RenderOptions options;
    EXPECT_EQ(Film::grainProfile(film, options), GrainParams{});
    film.grain = grainOf(5.0, 0.07, Vec3d{1, 2, 3});
    options.grainRms = true;
    EXPECT_EQ(Film::grainProfile(film, options).amount, 0.07);
    film.grain->amountRms = 0.05;
    EXPECT_EQ(Film::grainProfile(film, options).amount, 0.05);
    EXPECT_EQ(Film::grainProfile(film, options).layerScale, (Vec3d{1, 2, 3}));
    options.grainRms = false;
    EXPECT_EQ(Film::grainProfile(film, options).amount, 0.07);
}

} // namespace
} // namespace tamlo
