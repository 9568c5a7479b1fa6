// What growth grain measures: granularity through apertures, tone, spectrum, independence of layers, and the
// calibration behind them.
#include "core/film/grain/classic_grain.h"
#include "tests/film/growth_twin.h"
#include "tests/support/pictures.h"

#include <numbers>
#include <thread>

#include <gtest/gtest.h>

namespace tamlo {
namespace {

using test::GrainFilm;
using test::grainFilms;

/// A flat field of net density through the grain; silver fills one plane, dye three.
std::vector<Plane> grainedFlat(const GrainFilm& film, Size size, double pxUm, double net,
                               Grain::GrowthZone zone)
{
    Grain::GrowthFrame frame;
    frame.grain = film.grain;
    frame.formatLongUm = pxUm * static_cast<double>(std::max(size.width, size.height));
    frame.seed = 20'240'611u;
    frame.zone = zone;
    const auto at = [&](std::size_t c) { return static_cast<float>(film.dmins[c] + net); };
    if (film.silver)
        return {Grain::growthBW(Plane(size.width, size.height, at(0)), film.dmins[0], film.dmaxs[0], frame)};
    const RGBImage image = Grain::growthColor(RGBImage(size.width, size.height, {at(0), at(1), at(2)}),
                                              film.dmins, film.dmaxs, frame);
    return {image.plane(0), image.plane(1), image.plane(2)};
}

/// Classic granularity of each layer at the same numbers: what growth grain is to measure.
std::vector<double> targets(const GrainFilm& film)
{
    if (film.silver) return {Grain::classicSigma48(film.grain, film.dmins[0], film.dmaxs[0])};
    const Vec3d sigma = Grain::classicSigma48Color(film.grain, film.dmins, film.dmaxs);
    return {sigma.begin(), sigma.end()};
}

/// Deviation of means through a round aperture whose edge cells count by their area, on a grid of places a
/// third of the aperture apart.
double apertureStd(const Plane& plane, double pxUm, double apertureUm = 48.0)
{
    const double r = apertureUm / 2.0 / pxUm;
    const auto reach = static_cast<std::int64_t>(std::ceil(r + 0.5)), side = 2 * reach + 1;
    std::vector<double> weight;
    double total = 0.0;
    constexpr int kParts = 24;
    for (std::int64_t i = 0; i < side * side; ++i) {
        int inside = 0;
        for (int part = 0; part < kParts * kParts; ++part) {
            const double x = static_cast<double>(i % side - reach) - 0.5 + (part % kParts + 0.5) / kParts;
            const double y = static_cast<double>(i / side - reach) - 0.5 + (part / kParts + 0.5) / kParts;
            inside += x * x + y * y <= r * r;
        }
        total += weight.emplace_back(inside / static_cast<double>(kParts * kParts));
    }
    double sum = 0.0, squares = 0.0, places = 0.0;
    const std::int64_t step = std::max<std::int64_t>(static_cast<std::int64_t>(r * 2.0 / 3.0), 1);
    for (std::int64_t y = reach; y < plane.height - reach; y += step)
        for (std::int64_t x = reach; x < plane.width - reach; x += step) {
            double mean = 0.0;
            for (std::int64_t i = 0; i < side * side; ++i)
                if (const double w = weight[static_cast<std::size_t>(i)]; w > 0.0)
                    mean += w * plane.at(x + i % side - reach, y + i / side - reach);
            mean /= total;
            sum += mean;
            squares += mean * mean;
            places += 1.0;
        }
    return std::sqrt(std::max(squares / places - sum * sum / (places * places), 0.0));
}

TEST(GrowthGranularity, FullPathMeasuresTheClassicTarget)
{
    for (const GrainFilm& film : grainFilms())
        for (const double pxUm : {2.0, 4.0, 5.5, 6.0, 12.0, 14.0, 17.6}) {
            const auto side = static_cast<std::int64_t>(6000.0 / pxUm);
            const auto planes = grainedFlat(film, {side, side}, pxUm, 1.0, Grain::GrowthZone::full);
            const auto target = targets(film);
            const bool exactSite = std::fmod(pxUm, 2.0) == 0.0;
            for (std::size_t c = 0; c < planes.size(); ++c) {
                const double ratio = apertureStd(planes[c], pxUm) / target[c];
                EXPECT_GT(ratio, exactSite ? 0.92 : 0.88) << film.name << " " << pxUm << " layer " << c;
                EXPECT_LT(ratio, exactSite ? 1.08 : 1.12) << film.name << " " << pxUm << " layer " << c;
            }
        }
}

// Where the automatic zone takes the aggregate path a pixel deviates as much as on the full path; through the
// aperture the aggregate is quieter, since its pixels are independent.
TEST(GrowthGranularity, AggregatePixelsDeviateAsFullOnes)
{
    for (const GrainFilm& film : grainFilms())
        for (const double pxUm : {14.0, 17.6, 24.0}) {
            const double clumpUm = Grain::growthClumpUm(*film.grain.sizeUm, !film.silver, 1.0);
            if (!Grain::aggregateFits(pxUm, Grain::growthLattice({1, 1}, pxUm).site, clumpUm)) continue;
            const Size size{420, 420};
            const auto full = grainedFlat(film, size, pxUm, 1.0, Grain::GrowthZone::full);
            const auto aggregate = grainedFlat(film, size, pxUm, 1.0, Grain::GrowthZone::automatic);
            const auto target = targets(film);
            for (std::size_t c = 0; c < full.size(); ++c) {
                EXPECT_NEAR(aggregate[c].std() / full[c].std(), 1.0, 0.05) << film.name << " " << pxUm;
                EXPECT_NEAR(aggregate[c].mean() / full[c].mean(), 1.0, 0.003) << film.name << " " << pxUm;
            }
            // The aggregate costs little: a patch so large that the measuring error is 0.2 %. Tri-X at 14 µm,
            // the finest pixel on which its clumps still fit, is the quietest with 0.647; all others lie
            // above 0.65.
            const auto wide = grainedFlat(film, {1400, 1400}, pxUm, 1.0, Grain::GrowthZone::automatic);
            for (std::size_t c = 0; c < wide.size(); ++c) {
                const double ratio = apertureStd(wide[c], pxUm) / target[c];
                const double quietest = film.silver && pxUm == 14.0 ? 0.645 : 0.65;
                EXPECT_TRUE(ratio > quietest && ratio < 0.85) << film.name << " " << pxUm << ": " << ratio;
            }
        }
}

TEST(GrowthTone, SurvivesAtEveryDensity)
{
    for (const GrainFilm& film : grainFilms())
        for (const double net : {0.2, 0.5, 1.0, 1.5, 2.0}) {
            const Size size{300, 300};
            const auto full = grainedFlat(film, size, 12.0, net, Grain::GrowthZone::full);
            const auto aggregate = grainedFlat(film, size, 12.0, net, Grain::GrowthZone::aggregate);
            for (std::size_t c = 0; c < full.size(); ++c) {
                const double mean = full[c].mean();
                EXPECT_NEAR(aggregate[c].mean() / mean, 1.0, 0.003) << film.name << " " << net;
                if (film.silver) {
                    // The fog; near dmax the film's own ceiling cuts the densest pixels.
                    EXPECT_NEAR(mean - film.dmins[c] - net, 0.0217, net < 2.0 ? 0.003 : 0.006) << net;
                } else {
                    EXPECT_LT(mean, film.dmins[c] + net * 1.0005) << film.name << " " << net;
                    EXPECT_GT(mean, film.dmins[c] + net * 0.985) << film.name << " " << net;
                }
            }
        }
    // The base of a colour film carries no dye; that of a silver film carries fog.
    const auto base = grainedFlat(grainFilms()[0], {64, 64}, 6.0, 0.0, Grain::GrowthZone::full);
    EXPECT_EQ(base[1].std(), 0.0);
    EXPECT_GT(grainedFlat(grainFilms()[1], {64, 64}, 6.0, 0.0, Grain::GrowthZone::full)[0].std(), 1e-3);
}

// Selwyn's law: granularity times the root of the aperture's area, from 96 µm up.
TEST(GrowthGranularity, FollowsSelwynFrom96Um)
{
    for (const GrainFilm& film : grainFilms()) {
        const auto planes = grainedFlat(film, {1000, 1000}, 12.0, 1.0, Grain::GrowthZone::full);
        for (const Plane& plane : planes) {
            const double reference = apertureStd(plane, 12.0, 96.0) * 96.0;
            for (const double apertureUm : {144.0, 192.0, 240.0})
                EXPECT_NEAR(apertureStd(plane, 12.0, apertureUm) * apertureUm / reference, 1.0, 0.1)
                    << film.name << " " << apertureUm;
        }
    }
}

double correlation(const Plane& a, const Plane& b)
{
    const double meanA = a.mean(), meanB = b.mean();
    double sum = 0.0;
    for (std::int64_t i = 0; i < a.count(); ++i)
        sum += (a.data.data()[i] - meanA) * (b.data.data()[i] - meanB);
    return sum / static_cast<double>(a.count()) / (a.std() * b.std());
}

TEST(GrowthSpectrum, LayersAreIndependent)
{
    for (const auto zone : {Grain::GrowthZone::full, Grain::GrowthZone::aggregate}) {
        const auto planes = grainedFlat(grainFilms()[0], {800, 800}, 12.0, 1.0, zone);
        EXPECT_LT(std::abs(correlation(planes[0], planes[1])), 0.02);
        EXPECT_LT(std::abs(correlation(planes[0], planes[2])), 0.02);
        EXPECT_LT(std::abs(correlation(planes[1], planes[2])), 0.02);
    }
}

/// Mean power of the rows of a plane by frequency, without its mean.
std::vector<double> rowPower(const Plane& plane)
{
    const auto n = static_cast<std::size_t>(plane.width);
    std::vector<double> cosine(n), sine(n), power(n / 2, 0.0);
    for (std::size_t i = 0; i < n; ++i) {
        cosine[i] = std::cos(2.0 * std::numbers::pi * static_cast<double>(i) / static_cast<double>(n));
        sine[i] = std::sin(2.0 * std::numbers::pi * static_cast<double>(i) / static_cast<double>(n));
    }
    const double mean = plane.mean();
    for (std::int64_t y = 0; y < plane.height; ++y)
        for (std::size_t f = 1; f < n / 2; ++f) {
            double re = 0.0, im = 0.0;
            for (std::size_t x = 0; x < n; ++x) {
                const double v = plane.row(y)[x] - mean;
                re += v * cosine[x * f % n];
                im += v * sine[x * f % n];
            }
            power[f] += re * re + im * im;
        }
    return power;
}

Plane transposed(const Plane& plane)
{
    Plane out(plane.height, plane.width);
    float* p = out.mutableData();
    for (std::int64_t i = 0; i < out.count(); ++i) p[i] = plane.at(i / out.width, i % out.width);
    return out;
}

// No line anywhere: no frequency stands out of its neighbours, neither along the rows nor down the columns,
// with the lattice cut so finely that the pitch of the cuts lies within the spectrum.
TEST(GrowthSpectrum, HasNoLines)
{
    const GrainFilm& film = grainFilms()[1];
    for (const double pxUm : {2.0, 5.5}) {
        Grain::GrowthFrame frame;
        frame.grain = film.grain;
        frame.formatLongUm = pxUm * 256;
        frame.seed = 11;
        frame.zone = Grain::GrowthZone::full;
        frame.tiling = {48, 48 * 32};
        const Plane plane = Grain::growthBW(Plane(256, 256, 1.28f), 0.28, 2.45, frame);
        for (const Plane& way : {plane, transposed(plane)}) {
            const std::vector<double> power = rowPower(way);
            for (std::size_t f = 9; f + 9 < power.size(); ++f) {
                std::vector<double> around(power.begin() + static_cast<std::ptrdiff_t>(f) - 8,
                                           power.begin() + static_cast<std::ptrdiff_t>(f) + 9);
                std::nth_element(around.begin(), around.begin() + 8, around.end());
                EXPECT_LT(power[f], 2.5 * around[8]) << pxUm << " " << f;
            }
        }
    }
}

TEST(GrowthCalibration, IsAPureFunctionOfItsKey)
{
    const GrainFilm& film = grainFilms()[0];
    const Grain::ColorCalInput input{0.05123, 7.0, 2.0, film.grain, film.dmins, film.dmaxs};
    // The same key from numbers a little apart, computed by several threads at once, first come first stored.
    Grain::ColorCalInput near = input;
    near.baseAmount += 3e-6;
    near.site += 3e-4;
    std::vector<Grain::ColorCal> results(4);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < results.size(); ++i)
        threads.emplace_back([&, i] { results[i] = Grain::growthColorCal(i % 2 ? near : input); });
    for (std::thread& thread : threads) thread.join();
    for (const Grain::ColorCal& cal : results) {
        EXPECT_EQ(cal.deltas, results[0].deltas);
        EXPECT_EQ(cal.css, results[0].css);
    }
    // The spans and the size scales are part of what a result is known by.
    Grain::ColorCalInput other = input;
    other.dmaxs[0] += 1.0;
    EXPECT_NE(Grain::growthColorCal(other).deltas[0], results[0].deltas[0]);
    other = input;
    other.grain.layerSizeScale = Vec3d{1.5, 1.0, 1.15};
    EXPECT_NE(Grain::growthColorCal(other).deltas[0], results[0].deltas[0]);
    EXPECT_EQ(Grain::growthColorCal(other).deltas[1], results[0].deltas[1]);
}

TEST(GrowthCalibration, StaysWithinItsLimits)
{
    EXPECT_EQ(Grain::growthClumpSigma(1e-5, 14.0, 2.0, 0.0, 2.0), 0.0f); // crystals alone are more than that
    EXPECT_EQ(Grain::growthClumpSigma(10.0, 14.0, 2.0, 0.0, 2.0), 0.6f);
    const Grain::ColorCal strong = Grain::growthColorCal({10.0, 8.4, 2.0, {}, {}, {2.0, 2.0, 2.0}});
    EXPECT_EQ(strong.css, (Vec3f{0.3f, 0.3f, 0.3f}));
    EXPECT_EQ(strong.deltas, (Vec3f{0.5f, 0.5f, 0.5f}));
    const Grain::ColorCal weak = Grain::growthColorCal({2e-5, 8.4, 2.0, {}, {}, {2.0, 2.0, 2.0}});
    EXPECT_EQ(weak.deltas[0], 0.002f);
}

TEST(GrowthGeometry, SizesScalesAndTheReachOfTheAggregate)
{
    const std::pair<double, std::int64_t> scales[]{{0.5, 1}, {2.9, 1}, {3.0, 2},
                                                   {5.0, 3}, {5.5, 3}, {17.6, 9}};
    for (const auto& [pxUm, scale] : scales) EXPECT_EQ(Grain::growthScale(pxUm), scale) << pxUm;
    EXPECT_EQ(Grain::growthCrystalUm(14.0), 0.5);
    EXPECT_EQ(Grain::growthCrystalUm(1.0), 0.25);
    EXPECT_EQ(Grain::growthCrystalUm(100.0), 0.9);
    EXPECT_EQ(Grain::growthClumpUm(14.0, false, 0.0), 0.1 * 7.0);
    EXPECT_EQ(Grain::growthClumpUm(5.0, true, 2.0), 12.0);
    EXPECT_FALSE(Grain::aggregateFits(1.0, 1.0, 0.6));

    // Averaging a field of correlation exp(-d² / 4 s²) over a square pixel, by sums.
    for (const double sigma : {0.5, 4.0, 50.0}) {
        double line = 0.0;
        constexpr int kCells = 400;
        for (int i = 0; i < kCells; ++i)
            for (int j = 0; j < kCells; ++j)
                line += std::exp(-std::pow((i - j) * 12.0 / kCells / (2.0 * sigma), 2.0)) / (kCells * kCells);
        EXPECT_NEAR(Grain::aggClumpFactor(12.0, sigma), line * line, 2e-3 * line);
    }
    // Clouds: the kernel folded with the box, term by term.
    for (const std::int64_t scale : {1, 3, 9, 40}) {
        const std::vector<double> g = gaussianKernel1D(1.4, 6);
        std::vector<double> c(g.size() + static_cast<std::size_t>(scale) - 1, 0.0);
        for (std::size_t i = 0; i < g.size(); ++i)
            for (std::size_t j = 0; j < static_cast<std::size_t>(scale); ++j) c[i + j] += g[i];
        double h = 0.0;
        for (const double v : c) h += v * v / static_cast<double>(scale);
        const Grain::CloudFactors factors = Grain::aggCloudFactors(scale, 1.4, 0.2);
        EXPECT_NEAR(factors.h, h * h, 1e-12);
        EXPECT_GT(factors.kappa, 0.97);
        EXPECT_LT(factors.kappa, 1.0);
    }
    EXPECT_EQ(Grain::aggCloudFactors(5, 0.01, 0.2).h, 1.0);

    FilmProfile film;
    film.type = "color";
    film.grain = grainFilms()[0].grain;
    RenderOptions options;
    // 35 mm at two clump sigmas of 8.4 µm.
    EXPECT_EQ(Grain::aggregateLongPx(film, options, 36'000.0), 2142);
    options.grainSizeMult = 1000.0;
    EXPECT_EQ(Grain::aggregateLongPx(film, options, 36'000.0), 64);
    options.grainSizeMult = 0.0;
    EXPECT_EQ(Grain::aggregateLongPx(film, options, 36'000.0), 5142); // four sites of a pixel of 7 µm
    EXPECT_FALSE(Grain::aggregateLongPx(film, options, 0.0));
    film.grain->amount = 0.0;
    EXPECT_FALSE(Grain::aggregateLongPx(film, options, 36'000.0));
    film.grain->amount.reset();
    EXPECT_TRUE(Grain::aggregateLongPx(film, options, 36'000.0));
    film.type = "instant";
    EXPECT_FALSE(Grain::aggregateLongPx(film, options, 36'000.0));
}

} // namespace
} // namespace tamlo
