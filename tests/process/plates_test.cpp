// Plates: the coat, its faults and the glass, against figures worked out apart from this code, closed forms,
// and each other at several sizes.
#include "core/image/gaussian.h"
#include "core/process/plates/coverage.h"
#include "core/process/plates/crystals.h"
#include "core/process/plates/glass_ring.h"
#include "core/process/plates/plate_coating.h"
#include "core/process/plates/plate_view.h"
#include "core/profiles/catalogue/profile_store.h"
#include "tests/support/pictures.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace tamlo::test {
namespace {

constexpr double kQuarterPlateUm = 101'000.0;
constexpr double kDmin = 0.05, kDmax = 2.0;

const FilmProfile& wetPlate()
{
    static const FilmProfile film = ProfileStore::shared().film("collodion_wet");
    return film;
}

const FilmProfile& dryPlate()
{
    static const FilmProfile film = ProfileStore::shared().film("dryplate_ortho");
    return film;
}

/// A quarter plate of `width` pixels, under the film's dice of a re-roll.
struct TestPlate {
    Size size;
    RenderOptions options;

    explicit TestPlate(std::int64_t width, std::int64_t roll = 0) : size{width, width * 76 / 101}
    {
        options.seedVariants = SeedVariants{{"film", roll}};
    }
    double pxUm() const { return kQuarterPlateUm / static_cast<double>(size.width); }
    Plate::Extent extent() const { return Plate::Extent::of(size, pxUm()); }
    Plate::Coating coating(const FilmProfile& film) const { return {film, options, size, pxUm()}; }
    Plane even(float value) const { return Plane(size.width, size.height, value); }
    Plane thickness() const { return coating(wetPlate()).onLight(even(1.0f)); }
    Plane coverage() const { return coating(wetPlate()).atTheEnd(even(1.0f), 0.0); }
    /// What crystals add to a plate of one density.
    Plane crystals(double push, float density)
    {
        options.push = 0.0;
        const Plane without = coating(wetPlate()).onDensity(even(density), kDmin, kDmax);
        options.push = push;
        Plane with = coating(wetPlate()).onDensity(even(density), kDmin, kDmax);
        float* to = with.mutableData();
        for (std::int64_t i = 0; i < with.count(); ++i) to[i] -= without.data[static_cast<std::size_t>(i)];
        return with;
    }
};

double shareOf(const Plane& plane, const auto& holds)
{
    return static_cast<double>(std::ranges::count_if(plane.data, holds)) / static_cast<double>(plane.count());
}

int cornerOf(std::int64_t roll)
{
    const TestPlate plate(8, roll);
    return static_cast<int>(
        Seeds::streamRNG(plate.options, Seeds::SeedStream::film, Plate::kSalt).nextUInt64() & 3);
}

TEST(Plates, AreTheSamePlateAtEverySize)
{
    for (const std::int64_t width : {505, 1010, 2020}) {
        SCOPED_TRACE(width);
        const TestPlate plate(width);
        const Plane thick = plate.thickness(), cover = plate.coverage();
        const auto [low, high] = std::ranges::minmax(thick.data);
        EXPECT_NEAR(thick.mean(), 0.9937, 1e-4);
        EXPECT_NEAR(thick.std(), 0.0402, 1e-4);
        EXPECT_NEAR(low, 0.911, 1e-3);
        EXPECT_NEAR(high, 1.145, 1e-3);
        EXPECT_NEAR(shareOf(cover, [](float c) { return c < 0.5f; }), 0.021, 3e-4);
        EXPECT_LT(cover.at(0, cover.height - 1), 1e-6f) << "the fingers hold the fourth corner";
        // The light of one place of the plate, whatever its pixels.
        const auto at = [&](const Plane& p, double x, double y) {
            return p.at(static_cast<std::int64_t>(x * static_cast<double>(p.width)),
                        static_cast<std::int64_t>(y * static_cast<double>(p.height)));
        };
        const Plane first = TestPlate(505).thickness();
        for (const auto& [x, y] : {std::pair{0.1, 0.9}, {0.5, 0.5}, {0.8, 0.2}, {0.97, 0.6}})
            EXPECT_NEAR(at(thick, x, y), at(first, x, y), 2e-3);
    }
    std::array<int, 4> corners{};
    for (std::int64_t roll = 0; roll < 64; ++roll) ++corners[static_cast<std::size_t>(cornerOf(roll))];
    EXPECT_EQ(corners, (std::array{12, 18, 19, 15}));
}

// Corner by corner, the held corner is bare and the layer is thickest where it was poured in.
TEST(Plates, RunAwayFromTheHeldCorner)
{
    std::array<bool, 4> seen{};
    for (std::int64_t roll = 0; roll < 12; ++roll) {
        const int corner = cornerOf(roll);
        seen[static_cast<std::size_t>(corner)] = true;
        TestPlate plate(202, roll);
        FilmProfile bare = wetPlate();
        bare.collodion->edgeMm = bare.collodion->edgeRough = 0.0;
        const Plane cover = plate.coating(bare).atTheEnd(plate.even(1.0f), 0.0);
        const bool right = corner == 1 || corner == 2, low = corner >= 2;
        const std::int64_t x = right ? cover.width - 3 : 2, y = low ? cover.height - 3 : 2;
        EXPECT_EQ(cover.at(x, y), 0.0f) << "corner " << corner;
        EXPECT_EQ(cover.at(right ? 2 : cover.width - 3, y), 1.0f);
        FilmProfile smooth = wetPlate();
        smooth.collodion->wander = smooth.collodion->crescent = 0.0;
        const Plane thick = plate.coating(smooth).onLight(plate.even(1.0f));
        EXPECT_NEAR(thick.at(right ? 201 : 0, low ? thick.height - 1 : 0), 1.05, 1e-3);
        EXPECT_NEAR(thick.at(right ? 0 : 201, low ? 0 : thick.height - 1), 0.95, 1e-3);
    }
    EXPECT_EQ(seen, (std::array{true, true, true, true}));
}

TEST(Plates, AreNearlyPerfectWithoutAPour)
{
    TestPlate plate(2020);
    plate.options.platePour = 0.0;
    plate.options.push = 3.0;
    EXPECT_TRUE(std::ranges::all_of(plate.thickness().data, [](float t) { return t == 1.0f; }));
    Plate::Coating wet = plate.coating(wetPlate());
    EXPECT_TRUE(sameBytes(wet.onDensity(plate.even(0.3f), kDmin, kDmax), plate.even(0.3f)));
    // 0.05 × 0.9 mm of edge is 0.9 pixels: at most a few of the outermost.
    const Plane cover = plate.coverage();
    EXPECT_LT(shareOf(cover, [](float c) { return c < 1.0f; }), 0.006);
    EXPECT_LT(shareOf(cover, [](float c) { return c < 0.5f; }), 0.002);
    Plate::Coating dry = plate.coating(dryPlate());
    EXPECT_TRUE(sameBytes(dry.onLight(plate.even(0.3f)), plate.even(0.3f)));
}

TEST(Plates, GrowCrystalsWhereTheyAreOverdeveloped)
{
    for (const std::int64_t width : {1010, 2020}) {
        TestPlate plate(width);
        const auto seen = [](float d) { return d > 0.05f; };
        EXPECT_EQ(std::ranges::max(plate.crystals(0.0, 0.1f).data), 0.0f);
        const Plane few = plate.crystals(1.0, 0.1f), many = plate.crystals(3.0, 0.1f);
        EXPECT_NEAR(shareOf(few, seen), 0.008, 0.0015) << width;
        EXPECT_NEAR(shareOf(many, seen), 0.024, 0.003) << width;
        EXPECT_NEAR(std::ranges::max(many.data), 0.65, 0.05) << width;
        EXPECT_LT(shareOf(plate.crystals(3.0, 1.9f), seen), 1e-4) << "none on dense silver";
    }
}

// The rows that a band lays crystals into, against one speck computed whole.
TEST(Plates, SplatTheirCrystals)
{
    const Plate::Crystals one{{{5, 30, 8.0f}, {6, 33, 4.0f}}, 2.5};
    const Plane out = Plate::applyCrystals(Plane(40, 70), one);
    Plane mass(40, 70);
    mass.mutableData()[30 * 40 + 5] = 8.0f;
    mass.mutableData()[33 * 40 + 6] = 4.0f;
    const Plane slow = gaussianFilter(mass, 2.5, EdgeMode::constant);
    for (std::size_t i = 0; i < slow.data.size(); ++i)
        EXPECT_NEAR(out.data[i], slow.data[i] / (1.0f + slow.data[i] / 1.2f), 1e-6f);
}

TEST(Plates, VeilGathersAtTheEdge)
{
    TestPlate plate(505);
    double edge = 0.0, middle = 0.0; // over many plates, since the veil of one has clouds of centimetres
    for (std::int64_t roll = 0; roll < 40; ++roll) {
        TestPlate one(101, roll);
        const Plane veiled = one.coating(wetPlate()).onDensity(one.even(0.0f), kDmin, kDmax);
        for (std::int64_t i = 20; i < 56; ++i) {
            edge += veiled.at(0, i) / 1440.0;
            middle += veiled.at(50, i) / 1440.0;
        }
    }
    EXPECT_NEAR(middle, 0.022, 0.003);
    EXPECT_NEAR(edge, 2.1 * 0.022, 0.005);
    // A row's vector code against the scalar form.
    const Plate::Veil veil = *Plate::Veil::of(plate.extent(), *wetPlate().collodion, 1.0, {3, 7});
    const Plate::Thickness thick(plate.extent(), *wetPlate().collodion, 1.0, {3, 7});
    const Plane whole = Plate::applyVeil(plate.even(0.0f), veil, thick);
    for (const auto& [x, y] : {std::pair{0, 0}, {504, 379}, {30, 200}, {503, 1}, {250, 379}}) {
        const VeilRow row{0.022f, static_cast<float>(std::min(y, 379 - y)) + 0.5f,
                          static_cast<float>(1.0 / veil.weight.reachPx)};
        const float fromSide = static_cast<float>(std::min(x, 504 - x)) + 0.5f;
        EXPECT_NEAR(whole.at(x, y), row.at(fromSide, veil.field.at(x, y), thick.at(x, y)), 1e-6);
    }
}

TEST(DryPlate, HasARimAndFrillsOnSixSidesOfTen)
{
    int frilled = 0;
    for (std::int64_t roll = 0; roll < 50; ++roll) {
        const TestPlate plate(8, roll);
        GrainRNG rng = Seeds::streamRNG(plate.options, Seeds::SeedStream::film, Glass::kDrySalt);
        const Glass::Coat coat(plate.extent(), *dryPlate().dryplate, 1.0, rng);
        frilled += static_cast<int>(std::ranges::count(coat.frilled(), true));
    }
    EXPECT_EQ(frilled, 133);

    FilmProfile calm = dryPlate();
    calm.dryplate->frill = 0.0;
    const auto rim = [&](const FilmProfile& film, std::int64_t width) {
        TestPlate plate(width);
        return plate.coating(film).onLight(plate.even(1.0f));
    };
    const Plane coat = rim(calm, 505);
    double top = 0.0;
    for (std::int64_t x = 0; x < coat.width; ++x) top += coat.at(x, 0) / static_cast<double>(coat.width);
    EXPECT_NEAR(top, 1.37, 0.012);
    EXPECT_EQ(coat.at(252, 190), 1.0f);
    // Twice as many pixels, the same rim; and of one more pixel, no other frill.
    const Plane fine = rim(calm, 1010);
    for (std::int64_t x = 0; x < coat.width; x += 7)
        for (const std::int64_t y : {0, 12, 20, 26, 190, 360, 379}) {
            const float mean = (fine.at(2 * x, 2 * y) + fine.at(2 * x + 1, 2 * y) +
                                fine.at(2 * x, 2 * y + 1) + fine.at(2 * x + 1, 2 * y + 1)) /
                               4.0f;
            EXPECT_NEAR(coat.at(x, y), mean, 7e-3) << x << ", " << y;
        }
    EXPECT_NEAR(rim(dryPlate(), 1010).mean(), rim(dryPlate(), 1011).mean(), 1e-4);

    const Plane density = TestPlate(505).coating(calm).onDensity(TestPlate(505).even(0.5f), 0.18, 2.8);
    EXPECT_NEAR(density.at(100, 0) - 0.5f, 0.35f * (coat.at(100, 0) - 1.0f), 1e-6);
}

TEST(GlassRing, StandsWhereLightIsAllReturned)
{
    EXPECT_NEAR(Glass::fresnel(0.0, 1.52), std::pow(0.52 / 2.52, 2.0), 1e-12);
    EXPECT_EQ(Glass::fresnel(std::asin(1.0 / 1.52) + 1e-9, 1.52), 1.0);
    for (const double pxUm : {20.0, 50.0, 200.0}) {
        const Plane kernel = Glass::ringKernel(1.6, pxUm, Glass::kIndex);
        const std::int64_t c = kernel.width / 2;
        double sum = 0.0;
        for (const float v : kernel.data) sum += v;
        EXPECT_NEAR(sum, 0.5493, 1.2e-3) << pxUm;
        std::int64_t peak = 0;
        for (std::int64_t i = 0; i <= c; ++i)
            if (kernel.at(c + i, c) > kernel.at(c + peak, c)) peak = i;
        EXPECT_NEAR(static_cast<double>(peak) * pxUm / 1000.0, 2.795, pxUm / 1000.0);
        EXPECT_EQ(kernel.at(c + peak, c), kernel.at(c, c - peak));
    }
    // What numpy.gradient gives for an uneven parabola and its ends.
    const std::vector<double> slope = Glass::gradient({0.0, 1.0, 9.0, 16.0}, {0.0, 1.0, 3.0, 4.0});
    EXPECT_NEAR(slope[0], 1.0, 1e-12);
    EXPECT_NEAR(slope[1], 2.0, 1e-12);
    EXPECT_NEAR(slope[2], 6.0, 1e-12);
    EXPECT_NEAR(slope[3], 7.0, 1e-12);
}

TEST(GlassRing, IsOneRingAtEverySize)
{
    const auto ringOf = [](std::int64_t width, double tMm) {
        const Size size{width, width * 3 / 4};
        const std::int64_t block = width / 400; // a light of 0.25 mm in the middle of 100 mm
        const auto light = [&](std::int64_t y, float* to) {
            for (std::int64_t x = 0; x < size.width; ++x)
                to[x] = x / block == 200 && y / block == 150 ? 1000.0f : 0.0f;
        };
        Plane out(width, size.height);
        const auto halo = Glass::Halo::of(size, 100'000.0 / static_cast<double>(width), tMm, light);
        if (!halo) return Plane();
        for (std::int64_t y = 0; y < size.height; ++y) halo->row(y, out.mutableData() + y * width);
        return out;
    };
    const Plane small = ringOf(400, 1.6), large = ringOf(3200, 1.6);
    EXPECT_NEAR(small.mean() / large.mean(), 1.0, 0.01);
    const auto peak = [](const Plane& plane) {
        const std::int64_t y = plane.height / 2 + plane.width / 800;
        const float* row = plane.row(y);
        const std::int64_t c = plane.width / 2 + plane.width / 800;
        return static_cast<double>(std::max_element(row + c, row + plane.width) - row - c) * 100.0 /
               static_cast<double>(plane.width);
    };
    EXPECT_NEAR(peak(small), 2.8, 0.3);
    EXPECT_NEAR(peak(large), 2.8, 0.15);
    EXPECT_EQ(ringOf(400, 0.0).count(), 0);
    EXPECT_EQ(ringOf(400, 1e-300).count(), 0);
    EXPECT_EQ(ringOf(400, 1e300).count(), 0);
    const double most = std::ranges::max(ringOf(400, 800.0).data);
    EXPECT_TRUE(std::isfinite(most));
}

TEST(PlateView, ShowsGlassAndSilver)
{
    const PaperProfile paper = ProfileStore::shared().paper("ambrotype");
    const std::vector<float> densities{0.0f, 0.05f, 0.3f, 1.0f, 2.0f, 3.5f};
    Plane density(6, 1, std::span<const float>(densities));
    const Plate::Range range{kDmin, kDmax};
    const RGBImage view = Plate::viewPlate(density, paper, {}, range, std::nullopt);
    for (std::size_t c = 0; c < 3; ++c) {
        const double base = (*paper.plateView->base)[c], silver = (*paper.plateView->silver)[c];
        EXPECT_NEAR(view.pixel(0, 0)[c], base, 1e-6) << "below the clear plate";
        EXPECT_NEAR(view.pixel(1, 0)[c], base, 1e-6);
        EXPECT_NEAR(view.pixel(4, 0)[c], silver, 1e-6);
        EXPECT_GT(view.pixel(5, 0)[c], silver) << "intensified";
        for (std::int64_t x = 2; x < 6; ++x) EXPECT_GT(view.pixel(x, 0)[c], view.pixel(x - 1, 0)[c]);
    }
    RenderOptions darker;
    darker.printEv = 1.0;
    const Vec3d tint{0.9, 0.84, 0.74};
    const RGBImage brown = Plate::viewPlate(density, paper, darker, range, tint);
    EXPECT_NEAR(brown.pixel(4, 0)[2], 0.5 * 0.74 * (*paper.plateView->silver)[2], 1e-6);

    PaperProfile faint = paper;
    faint.plateView->scatter = 1e-12;
    const RGBImage none = Plate::viewPlate(density, faint, {}, range, std::nullopt);
    EXPECT_TRUE(std::isfinite(none.pixel(4, 0)[0]));

    DevelopedFilm film;
    film.film = wetPlate();
    EXPECT_TRUE(Plate::withoutGlassOnOpaque(film, paper).film.halation->glassMm);
    EXPECT_FALSE(
        Plate::withoutGlassOnOpaque(film, ProfileStore::shared().paper("ferrotype")).film.halation->glassMm);
}

// Whatever a profile asks for, a plate is finite and soon done.
TEST(Plates, HoldAbsurdNumbers)
{
    for (const double odd : {1e300, -1e300, 1e9, -1.0, 0.0, 1e-300}) {
        FilmProfile wet = wetPlate(), dry = dryPlate();
        CollodionParams& c = *wet.collodion;
        c.slope = c.crescent = c.wander = c.edgeMm = c.holdMm = c.veil = c.crystal = c.edgeRough = odd;
        DryPlateParams& d = *dry.dryplate;
        d.edgeMm = d.edgeGain = d.edgeFog = d.frillMm = d.frill = d.waveMm = odd;
        for (const Size size : {Size{1, 1}, Size{2, 2}, Size{1, 3000}, Size{90, 60}})
            for (const FilmProfile* film : {&wet, &dry}) {
                RenderOptions options;
                options.push = options.platePour = 3.0;
                const double pxUm = kQuarterPlateUm / static_cast<double>(std::max(size.width, size.height));
                Plate::Coating coat(*film, options, size, pxUm);
                Plane plane = coat.onLight(Plane(size.width, size.height, 0.5f));
                plane = coat.onDensity(std::move(plane), kDmin, kDmax);
                plane = coat.atTheEnd(std::move(plane), kDmin);
                EXPECT_TRUE(std::ranges::all_of(plane.data, [](float v) { return std::isfinite(v); })) << odd;
            }
    }
}

} // namespace
} // namespace tamlo::test
