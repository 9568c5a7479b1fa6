#include "core/film/emulsion/adjacency.h"
#include "core/film/emulsion/emulsion_soften.h"
#include "core/film/emulsion/halation.h"
#include "core/image/blur_bands.h"

#include "core/image/gaussian.h"
#include "core/image/position_hash.h"
#include "core/image/zcolor.h"
#include "tests/support/pictures.h"

#include <hwy/targets.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <tuple>

namespace tamlo {
namespace {

using test::sameBytes;

HalationParams halationOf(OptNumber strength, OptNumber radiusUm = {}, OptNumber threshold = {},
                          OptTriple tint = {})
{
    return {strength, radiusUm, threshold, tint, {}};
}

FilmAdjacency edgesOf(OptNumber k, OptNumber um = {}, OptNumber sat = {})
{
    return {k, um, sat};
}

bool allFinite(const FloatBuffer& a)
{
    return std::all_of(a.begin(), a.end(), [](float v) { return std::isfinite(v); });
}

/// Rough light or density between 0 and 2.
template <typename Image>
Image roughImage(Size size)
{
    Image image(size.width, size.height);
    float* to = image.mutableData();
    for (std::size_t i = 0; i < image.data.size(); ++i)
        to[i] = 2.0f * growth_unit(hash32(static_cast<std::uint32_t>(i) + 1));
    return image;
}

FilmProfile filmWithMtf(double f50)
{
    FilmProfile film;
    film.mtf = FilmMTF{f50};
    return film;
}

TEST(BlurInBands, EqualsTheBlurToTheBitWhileThePictureChanges)
{
    const std::tuple<Size, double> rows[] = {{{23, 1400}, 3.0}, {{23, 1400}, 10.0}, {{41, 1300}, 30.0},
                                             {{300, 90}, 4.3},  {{17, 5}, 9.0},     {{5, 3}, 200.0},
                                             {{7, 591}, 9.99},  {{7, 592}, 10.001}};
    for (const auto& [size, sigma] : rows) {
        RGBImage image = roughImage<RGBImage>(size);
        const RGBImage expected = blur(image, sigma);
        float* samples = image.mutableData();
        const std::int64_t n = size.width * 3;
        blurInBands(
            size, 3, sigma, [&](std::int64_t y, float* to) { std::copy_n(samples + y * n, n, to); },
            [&](std::int64_t y, const float* row) { std::copy_n(row, n, samples + y * n); });
        EXPECT_TRUE(sameBytes(image.data, expected.data))
            << size.width << " x " << size.height << " " << sigma;

        const Plane plane = roughImage<Plane>(size);
        Plane out(size.width, size.height);
        float* to = out.mutableData();
        blurInBands(
            size, 1, sigma, [&](std::int64_t y, float* row) { std::copy_n(plane.row(y), size.width, row); },
            [&](std::int64_t y, const float* row) { std::copy_n(row, size.width, to + y * size.width); });
        EXPECT_TRUE(sameBytes(out.data, blurChannel(plane, sigma).data));
    }
}

TEST(EmulsionSoften, HalvesTheSineAtF50)
{
    // f50 in cycles per mm and the pixel in µm, down to a sigma of 19 pixels, which takes the reduced plane.
    for (const auto& [f50, pxUm] :
         {std::pair{50.0, 5.0}, {50.0, 2.0}, {20.0, 5.0}, {12.5, 2.0}, {2.0, 5.0}}) {
        const double cyclesPerPx = f50 * pxUm / 1000.0;
        const auto width = static_cast<std::int64_t>(std::lround(24.0 / cyclesPerPx));
        RGBImage image(width, 20);
        for (std::int64_t i = 0; i < image.pixelCount() * 3; ++i)
            image.mutableData()[i] =
                static_cast<float>(1.0 + 0.5 * std::sin(2 * std::numbers::pi * cyclesPerPx *
                                                        static_cast<double>(i / 3 % width)));
        const RGBImage out = Film::emulsionSoften(image, filmWithMtf(f50), pxUm);
        for (std::size_t c = 0; c < 3; ++c) {
            double sine = 0.0, cosine = 0.0; // over the middle third: whole cycles
            for (std::int64_t x = width / 3; x < width / 3 + width / 3; ++x) {
                const double phase = 2 * std::numbers::pi * cyclesPerPx * static_cast<double>(x);
                sine += out.pixel(x, 10)[c] * std::sin(phase);
                cosine += out.pixel(x, 10)[c] * std::cos(phase);
            }
            const double response = std::hypot(sine, cosine) * 2.0 / static_cast<double>(width / 3) / 0.5;
            EXPECT_NEAR(response, 0.5, 0.02) << f50 << " " << pxUm;
        }
    }
}

TEST(EmulsionSoften, LeavesAloneWhatItCannotSoften)
{
    EXPECT_NEAR(Film::softenSigmaUm(50.0), 3.7478, 1e-4);
    const RGBImage image = roughImage<RGBImage>({33, 21});
    EXPECT_TRUE(sameBytes(Film::emulsionSoften(image, FilmProfile{}, 5.0).data, image.data));
    EXPECT_TRUE(sameBytes(Film::emulsionSoften(image, filmWithMtf(0.0), 5.0).data, image.data));
    EXPECT_TRUE(sameBytes(Film::emulsionSoften(image, filmWithMtf(-3.0), 5.0).data, image.data));
    EXPECT_TRUE(sameBytes(Film::emulsionSoften(image, filmWithMtf(50.0), 25.0).data, image.data));
    EXPECT_FALSE(sameBytes(Film::emulsionSoften(image, filmWithMtf(50.0), 5.0).data, image.data));
    const Plane plane = image.plane(1);
    EXPECT_TRUE(sameBytes(Film::emulsionSoften(plane, filmWithMtf(50.0), 5.0).data,
                          Film::emulsionSoften(image, filmWithMtf(50.0), 5.0).plane(1).data));
}

/// A square of light in the middle of a dark picture.
RGBImage spot(std::int64_t side, std::int64_t spotPx, float light)
{
    RGBImage image(side, side, Vec3f{0.1f, 0.1f, 0.1f});
    const std::int64_t first = (side - spotPx) / 2;
    for (std::int64_t y = first; y < first + spotPx; ++y)
        for (std::int64_t i = first * 3; i < (first + spotPx) * 3; ++i)
            image.mutableData()[y * side * 3 + i] = light;
    return image;
}

TEST(Halation, GivesBackTheLightItIsFed)
{
    const HalationParams params = halationOf(0.09, 300.0, 0.75, Vec3d{1.0, 0.35, 0.1});
    const RGBImage scene = spot(700, 20, 5.0f);
    const double fed = 400.0 * (5.0 - 0.75);
    for (const double pxUm : {5.5, 60.0}) { // through the reduced plane and directly
        const RGBImage out = Film::applyHalation(scene, params, pxUm, 1.5);
        for (std::size_t c = 0; c < 3; ++c) {
            double added = 0.0;
            for (std::int64_t i = static_cast<std::int64_t>(c); i < scene.pixelCount() * 3; i += 3) {
                EXPECT_GE(out.data.data()[i], scene.data.data()[i]);
                added += static_cast<double>(out.data.data()[i]) - scene.data.data()[i];
            }
            EXPECT_NEAR(added / (0.09 * 1.5 * (*params.tint)[c] * fed), 1.0, 0.01) << pxUm << " " << c;
        }
    }
}

TEST(Halation, RadiusIsPhysical)
{
    const HalationParams params = halationOf(1.0, 300.0);
    for (const double pxUm : {5.5, 11.0, 44.0}) {
        const Plane out = Film::applyHalation(spot(601, 1, 100.0f).plane(0), params, pxUm, 1.0);
        double sum = 0.0, moment = 0.0;
        for (std::int64_t y = 0; y < 601; ++y)
            for (std::int64_t x = 0; x < 601; ++x) {
                if (x == 300 && y == 300) continue;
                const double glow = out.at(x, y) - 0.1f;
                sum += glow;
                moment += glow * static_cast<double>((x - 300) * (x - 300));
            }
        EXPECT_NEAR(std::sqrt(moment / sum) * pxUm, 300.0, 9.0) << pxUm;
    }
}

TEST(Halation, FollowsItsDefinition)
{
    const RGBImage image = roughImage<RGBImage>({143, 77});
    Plane luma(143, 77);
    for (std::int64_t i = 0; i < luma.count(); ++i) {
        const Vec3f p = image.pixel(i % 143, i / 143);
        luma.mutableData()[i] = ZColor::lumaOf(p[0], p[1], p[2]);
    }
    // Absent numbers, and a radius that a large pixel raises to one pixel.
    for (const auto& [params, pxUm, threshold, tint, sigma] :
         {std::tuple{halationOf(0.2), 50.0, 0.8f, Vec3f{1.0f, 0.3f, 0.08f}, 4.0},
          std::tuple{halationOf(0.2, 300.0, 1.1, Vec3d{0.5, 1, 2}), 500.0, 1.1f, Vec3f{0.5f, 1.0f, 2.0f},
                     1.0}}) {
        const float level = threshold;
        const auto fed = [level](float v) { return std::max(v - level, 0.0f); };
        const Plane glow = gaussianFilter(luma.map(fed), sigma, EdgeMode::nearest);
        const RGBImage out = Film::applyHalation(image, luma, params, pxUm, 2.0);
        for (std::int64_t i = 0; i < luma.count(); ++i)
            for (std::size_t c = 0; c < 3; ++c)
                EXPECT_NEAR(out.data[static_cast<std::size_t>(i) * 3 + c],
                            image.data[static_cast<std::size_t>(i) * 3 + c] +
                                0.4f * tint[c] * glow.data.data()[i],
                            1e-6);
        EXPECT_TRUE(sameBytes(Film::applyHalation(image, params, pxUm, 2.0).data, out.data));
        const Plane plane = Film::applyHalation(luma, params, pxUm, 2.0);
        EXPECT_NEAR(plane.at(142, 76), luma.at(142, 76) + 0.4f * glow.at(142, 76), 1e-6);
    }
    EXPECT_TRUE(sameBytes(Film::applyHalation(image, std::nullopt, 5.5, 1e9).data, image.data));
    EXPECT_TRUE(sameBytes(Film::applyHalation(image, HalationParams{}, 5.5, 1e9).data, image.data));
    EXPECT_TRUE(sameBytes(Film::applyHalation(image, halationOf(0.5), 5.5, 0.0).data, image.data));
    EXPECT_TRUE(sameBytes(Film::applyHalation(image, halationOf(1e-5), 5.5, 1.0).data, image.data));
}

DevelopedFilm filmWithEdges(double devK, double devUm, double devSat, std::optional<FilmAdjacency> own = {})
{
    DevelopedFilm film;
    film.adjacency = devK;
    film.adjacencyUm = devUm;
    film.adjacencySat = devSat;
    film.film.adjacency = own;
    return film;
}

Plane slowEdges(const Plane& density, double k, double sigmaPx, double sat)
{
    Plane out = density;
    const Plane blurred = blurChannel(density, sigmaPx);
    for (std::int64_t i = 0; i < density.count(); ++i) {
        const double difference = static_cast<double>(density.data.data()[i]) - blurred.data.data()[i];
        const double effect = sat >= 5.0 ? k * difference : k * sat * std::tanh(difference / sat);
        out.mutableData()[i] = static_cast<float>(density.data.data()[i] + effect);
    }
    return out;
}

TEST(Adjacency, FollowsItsDefinition)
{
    const RGBImage image = roughImage<RGBImage>({143, 77});
    const Plane d = image.plane(1);
    const FilmAdjacency own = edgesOf(0.4, 55.0, 0.5);
    const std::tuple<const char*, DevelopedFilm, double, Plane> rows[] = {
        {"none", filmWithEdges(0.0, 150, 0.3), 5.5, d},
        {"k at the limit", filmWithEdges(0.0001, 150, 0.3), 5.5, d},
        {"sat of 0", filmWithEdges(0.5, 150, 0.0, edgesOf(0.5, 150.0, -1.0)), 5.5, d},
        {"direct", filmWithEdges(0.22, 44, 0.3), 5.5, slowEdges(d, 0.22, 8.0, 0.3)},
        {"reduced", filmWithEdges(0.22, 110, 0.3), 5.5, slowEdges(d, 0.22, 20.0, 0.3)},
        {"raised to 0.8 pixel", filmWithEdges(0.22, 1.1, 0.3), 5.5, slowEdges(d, 0.22, 0.8, 0.3)},
        {"no ceiling", filmWithEdges(0.22, 44, 5.0), 5.5, slowEdges(d, 0.22, 8.0, 5.0)},
        {"a high ceiling", filmWithEdges(0.22, 44, 4.999), 5.5, slowEdges(d, 0.22, 8.0, 4.999)},
        {"the film's own", filmWithEdges(0.0, 150, 0.3, own), 5.5, slowEdges(d, 0.4, 10.0, 0.5)},
        {"the film's, absent numbers", filmWithEdges(0.0, 1, 0.3, edgesOf(0.4)), 30.0,
         slowEdges(d, 0.4, 5.0, 0.6)},
        {"both, the developer first", filmWithEdges(0.22, 44, 0.3, own), 5.5,
         slowEdges(slowEdges(d, 0.22, 8.0, 0.3), 0.4, 10.0, 0.5)},
        {"the film's below a pixel", filmWithEdges(0.22, 44, 0.3, own), 55.01, slowEdges(d, 0.22, 0.8, 0.3)}};
    for (const auto& [name, film, pxUm, expected] : rows) {
        const RGBImage out = Film::applyAdjacency(image, film, pxUm);
        const Plane green = out.plane(1);
        for (std::int64_t i = 0; i < d.count(); ++i)
            ASSERT_NEAR(green.data.data()[i], expected.data.data()[i], 2e-6) << name;
        EXPECT_TRUE(sameBytes(Film::applyAdjacency(d, film, pxUm).data, green.data)) << name;
        if (sameBytes(expected.data, d.data)) {
            EXPECT_TRUE(sameBytes(out.data, image.data)) << name;
        }
    }
}

TEST(Adjacency, OvershootStaysUnderItsCeiling)
{
    Plane edge(400, 9, 0.2f);
    for (std::int64_t y = 0; y < 9; ++y)
        for (std::int64_t x = 200; x < 400; ++x) edge.mutableData()[y * 400 + x] = 3.2f;
    for (const double um : {44.0, 165.0}) {
        const Plane out = Film::applyAdjacency(edge, filmWithEdges(0.3, um, 0.16), 5.5);
        const auto [low, high] = std::minmax_element(out.data.begin(), out.data.end());
        EXPECT_LT(*high - 3.2f, 0.3 * 0.16 + 1e-6);
        EXPECT_GT(*high - 3.2f, 0.3 * 0.16 * 0.95);
        EXPECT_LT(0.2f - *low, 0.3 * 0.16 + 1e-6);
        EXPECT_NEAR(out.at(5, 4), 0.2, 1e-5);
    }
}

TEST(Emulsion, SameBytesForAnyNumberOfWorkers)
{
    const RGBImage image = roughImage<RGBImage>({333, 700});
    for (const double pxUm : {0.8, 5.5, 25.0})
        test::expectSameForAnyWorkers([&] {
            RGBImage out = Film::emulsionSoften(image, filmWithMtf(20.0), pxUm);
            out = Film::applyHalation(std::move(out), halationOf(0.2), pxUm, 1.0);
            return Film::applyAdjacency(std::move(out), filmWithEdges(0.2, 100.0, 0.3), pxUm);
        });
}

TEST(Emulsion, EveryVectorTargetAgrees)
{
    const RGBImage image = roughImage<RGBImage>({83, 41});
    const HalationParams halation = halationOf(0.3, 60.0, 0.4, Vec3d{1.0, 0.4, 0.1});
    const DevelopedFilm edges = filmWithEdges(0.22, 110.0, 0.3, edgesOf(0.08, 60.0));
    const auto make = [&](const RGBImage& from) {
        RGBImage light = Film::applyHalation(from, halation, 11.0, 1.0);
        light = Film::applyHalation(std::move(light), from.plane(1), halation, 11.0, 1.0);
        return Film::applyAdjacency(std::move(light), edges, 11.0);
    };
    const RGBImage best = make(image);
    const Plane bestPlane = Film::applyAdjacency(image.plane(0), edges, 11.0);
    for (const std::int64_t target : hwy::SupportedAndGeneratedTargets()) {
        hwy::SetSupportedTargetsForTest(target);
        EXPECT_LT(test::worstDifference(make(image).data, best.data), 1e-5f) << hwy::TargetName(target);
        EXPECT_LT(
            test::worstDifference(Film::applyAdjacency(image.plane(0), edges, 11.0).data, bestPlane.data),
            1e-5f)
            << hwy::TargetName(target);
    }
    hwy::SetSupportedTargetsForTest(0);
}

TEST(Emulsion, TakesAnyNumberAndPicture)
{
    for (const Size size : {Size{0, 0}, {1, 1}, {16, 16}, {501, 1}, {1, 99}})
        for (const double huge : {1e-300, 1e6, 1e300})
            for (const double pxUm : {0.0, 5.5, 1e9}) {
                const RGBImage image = roughImage<RGBImage>(size);
                const HalationParams halation = halationOf(huge, huge, {}, Vec3d{1, 0, huge});
                const DevelopedFilm edges = filmWithEdges(huge, huge, 1.0 / huge, edgesOf(huge, huge, huge));
                EXPECT_TRUE(allFinite(Film::emulsionSoften(image, filmWithMtf(huge), pxUm).data));
                EXPECT_TRUE(allFinite(Film::applyHalation(image, halation, pxUm, 1.0).data))
                    << huge << " " << pxUm;
                EXPECT_TRUE(allFinite(Film::applyHalation(image.plane(0), halation, pxUm, 1.0).data));
                EXPECT_TRUE(allFinite(Film::applyAdjacency(image, edges, pxUm).data)) << huge << " " << pxUm;
            }
}

} // namespace
} // namespace tamlo
