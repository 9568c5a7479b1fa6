// The card round an instant picture: its millimetres, the body under its light and the torn sheet against
// slow twins that decide each pixel by itself, and the statistics of a torn edge.
#include "core/image/gaussian.h"
#include "core/image/position_hash.h"
#include "core/image/tamlo_error.h"
#include "core/process/card/card_light.h"
#include "core/process/card/card_relief.h"
#include "core/process/card/instant_card.h"
#include "core/process/card/peel_card.h"
#include "core/process/card/peel_edge.h"
#include "core/process/mat/canvas.h"
#include "core/process/noise/mm_field.h"
#include "core/profiles/catalogue/profile_store.h"
#include "core/profiles/options/peel_size.h"
#include "tests/support/pictures.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tamlo::test {
namespace {

using namespace Pipeline;

InstantFrameParams frameOf(const char* film)
{
    return *ProfileStore::shared().film(film).frame;
}

RGBImage card(const InstantFrameParams& frame, const RGBImage& picture, const RenderOptions& options = {})
{
    GrainRNG rng(11);
    return addInstantFrame(RGBImage(picture), frame, options, rng);
}

TEST(Card, IsAsLargeAsTheRealOne)
{
    struct Case {
        const char *film, *peelSize;
        Size picture;
        double widthMm, heightMm, longMm;
    };
    const Case cases[] = {
        {"polaroid_sx70", "", {1200, 1200}, 88.9, 107.2, 79.0},
        {"polaroid_600", "", {1200, 1200}, 88.9, 107.2, 79.0},
        {"polaroid_itype", "", {1200, 1200}, 88.9, 107.2, 79.0},
        {"instax_square", "", {1200, 1200}, 72.0, 86.1, 62.0},
        {"instax_wide", "", {1200, 752}, 107.9, 85.2, 99.0},
        {"instax_wide", "", {752, 1200}, 85.2, 107.9, 99.0},
        {"fp100c", "3x4", {1200, 922}, 108.0, 85.0, 95.0},
        {"fp100c", "3x4", {922, 1200}, 85.0, 108.0, 95.0},
        {"fp100c", "4x5", {915, 1200}, 102.0, 127.0, 118.0},
        {"fp100c", "8x10", {960, 1200}, 203.1, 254.1, 237.5},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.film << " " << c.peelSize << " " << c.picture.width);
        const Size size = instantFrameWhites(c.picture, frameOf(c.film), c.peelSize).around(c.picture);
        const double mm = c.longMm / static_cast<double>(std::max(c.picture.width, c.picture.height));
        EXPECT_NEAR(static_cast<double>(size.width) * mm, c.widthMm, 0.15);
        EXPECT_NEAR(static_cast<double>(size.height) * mm, c.heightMm, 0.15);
        EXPECT_EQ(card(frameOf(c.film), RGBImage(30, 20), {}).size(),
                  instantFrameWhites({30, 20}, frameOf(c.film), "3x4").around({30, 20}));
    }
    // The chin of a turned card lies at the right.
    const CardMargins turned = instantFrameWhites({752, 1200}, frameOf("instax_wide"), "");
    EXPECT_GT(turned.right, 2 * turned.left);
    EXPECT_EQ(turned.top, turned.bottom);
}

TEST(Card, CornersAreResolvedAndTurned)
{
    InstantFrameParams frame;
    EXPECT_NEAR(CardRelief::corners(frame)[0]->mm, 0.3, 1e-12);
    frame.hasCornerKey = true;
    EXPECT_FALSE(CardRelief::corners(frame)[0]) << "null is square";
    CornerSpec spec;
    spec.style = "chamfer";
    spec.mm = 2.0;
    spec.tl = CornerLeaf{};
    spec.tl->mm = 3.0;
    spec.hasTL = spec.hasBR = true;
    frame.corner = spec;
    const CardRelief::Corners native = CardRelief::corners(frame);
    EXPECT_TRUE(native[0]->isChamfer);
    EXPECT_NEAR(native[0]->mm, 3.0, 1e-12);
    EXPECT_NEAR(native[0]->roundMm, 0.9, 1e-12);
    EXPECT_NEAR(native[1]->mm, 2.0, 1e-12);
    EXPECT_FALSE(native[3]);
    const CardRelief::Corners turned = CardRelief::displayCorners(native, true);
    EXPECT_NEAR(turned[2]->mm, 3.0, 1e-12) << "the top left one lands at the bottom left";
    EXPECT_FALSE(turned[1]) << "the bottom right one at the top right";
}

/// The formula of an integral card for one pixel, with nothing left out.
Vec3f slowPixel(const CardParams& p, const RGBImage& picture, std::int64_t x, std::int64_t y)
{
    const auto clamped = [](double v) { return std::clamp(v, 0.0, 1.0); };
    const double w = static_cast<double>(p.picture.width), h = static_cast<double>(p.picture.height);
    const double di = std::max(std::abs(static_cast<double>(y - p.top) + 0.5 - h / 2) - h / 2,
                               std::abs(static_cast<double>(x - p.left) + 0.5 - w / 2) - w / 2);
    double k = 1.0 + clamped(std::min(di + 0.5, p.linePx) - std::max(di - 0.5, 0.0)) * p.lineDev;
    if (di <= 0.0) k -= p.skirtDepth * std::exp(-std::pow(std::max(-di - 0.5, 0.0) / p.skirtPx, 1.6));
    if (p.lattice) {
        double hx = 0.0, hy = 0.0;
        for (std::size_t q = 0; q < 2; ++q) {
            const double along = ((static_cast<double>(x) + 0.5) * p.lattice->wx[q] +
                                  (static_cast<double>(y) + 0.5) * p.lattice->wy[q]) /
                                     p.pxMm +
                                 p.lattice->phaseMm[q];
            const double s = along - 1.2 * std::floor(along / 1.2) - 0.6;
            if (std::abs(s) >= 0.4) continue;
            const double ds = -p.lattice->height * std::sin(2.0 * M_PI * s / 0.8);
            hx += ds * p.lattice->wx[q];
            hy += ds * p.lattice->wy[q];
        }
        const double n = std::sqrt(1.0 + hx * hx + hy * hy);
        k *= 1.0 + (CardRelief::shade(-hx / n, -hy / n, 1.0 / n) - 1.0) * p.lattice->gain *
                       clamped(di - p.lattice->bandPx + 0.5);
    }
    const auto d = [&](std::int64_t i, std::int64_t j) {
        return CardRelief::sdf(p.outline, static_cast<double>(i) + 0.5, static_cast<double>(j) + 0.5);
    };
    const Size canvas = p.outline.canvas;
    const auto slope = [&](bool alongX) {
        const std::int64_t at = alongX ? x : y, n = alongX ? canvas.width : canvas.height;
        const std::int64_t a = std::max<std::int64_t>(at - 1, 0), b = std::min(at + 1, n - 1);
        return (alongX ? d(b, y) - d(a, y) : d(x, b) - d(x, a)) / static_cast<double>(b - a);
    };
    double nx = slope(true), ny = slope(false);
    const double length = std::hypot(nx, ny);
    nx = length < 1e-6 ? 0.0 : nx / length;
    ny = length < 1e-6 ? 0.0 : ny / length;
    const double r = (0.3 * std::abs(ny) + 0.15 * std::abs(nx)) * p.pxMm, reach = std::max(r, 0.7);
    const double u = clamped((d(x, y) + reach) / reach);
    const double f = CardRelief::shade(u * nx, u * ny, std::sqrt(1.0 - u * u));
    k *= 1.0 + (f - 1.0) * std::min(r / 0.7, 1.0);
    const bool inside = di < 0.0;
    const double a = p.outline.isCut() ? clamped(0.5 - d(x, y)) : 1.0;
    Vec3f out = inside ? picture.pixel(x - p.left, y - p.top) : p.base;
    for (std::size_t c = 0; c < 3; ++c)
        out[c] = static_cast<float>(std::max(out[c] * k * a + p.outside[c] * (1.0 - a), 0.0));
    return out;
}

TEST(Card, TheBodyIsItsDefinition)
{
    InstantFrameParams cut = frameOf("polaroid_sx70");
    cut.corner->style = "chamfer";
    cut.corner->mm = 6.0;
    cut.corner->tr = CornerLeaf{"round", 9.0, {}};
    cut.corner->hasTR = cut.corner->hasBL = true;
    cut.nativeOrientation = "landscape";
    struct Case {
        InstantFrameParams frame;
        Size picture;
    };
    const Case cases[] = {{frameOf("polaroid_sx70"), {300, 300}},
                          {frameOf("instax_wide"), {62, 99}},
                          {cut, {90, 140}},
                          {cut, {500, 300}},
                          {frameOf("polaroid_sx70"), {1, 1}},
                          {frameOf("instax_wide"), {3, 40}}};
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.picture.width << " x " << c.picture.height);
        const RGBImage picture = noisePicture(c.picture.width, c.picture.height, 3, 2.0f);
        RenderOptions options;
        options.cardOutside = std::vector{0.1, 0.3, 0.2};
        const RGBImage out = card(c.frame, picture, options);
        const CardMargins whites = instantFrameWhites(c.picture, c.frame, "");
        GrainRNG rng(11);
        const CardParams params = CardRelief::plan(
            c.frame,
            {out.size(), c.picture, whites.left, whites.top,
             static_cast<double>(std::max(c.picture.width, c.picture.height)) / *c.frame.imageLongMm,
             isTurnedCard(c.frame, c.picture)},
            {0.89f, 0.883f, 0.865f}, {0.1f, 0.3f, 0.2f}, rng);
        float worst = 0.0f;
        for (std::int64_t y = 0; y < out.height; ++y)
            for (std::int64_t x = 0; x < out.width; ++x) {
                CardParams own = params;
                for (std::size_t i = 0; i < 3; ++i) own.base[i] = static_cast<float>((*c.frame.baseTint)[i]);
                const Vec3f slow = slowPixel(own, picture, x, y), fast = out.pixel(x, y);
                for (std::size_t i = 0; i < 3; ++i) worst = std::max(worst, std::abs(slow[i] - fast[i]));
            }
        EXPECT_LT(worst, 2e-4f);
    }
}

// Figures of a card under its light, at 20 pixels a millimetre.
TEST(Card, ShowsLineSkirtLatticeAndRim)
{
    InstantFrameParams frame = frameOf("polaroid_sx70");
    frame.baseTint = Vec3d{1.0, 1.0, 1.0};
    frame.hasCornerKey = true;
    frame.corner.reset();
    const double pxMm = 20.0;
    const auto side = static_cast<std::int64_t>(79.0 * pxMm);
    const RGBImage picture(side, side, Vec3f{1.0f, 1.0f, 1.0f});
    const RGBImage embossed = card(frame, picture);
    frame.embossUm = 0.0;
    const RGBImage smooth = card(frame, picture);
    const CardMargins whites = instantFrameWhites(picture.size(), frame, "");
    const std::int64_t midX = smooth.width / 2, midY = smooth.height / 2;
    EXPECT_NEAR(smooth.pixel(midX, 0)[1], 0.93, 0.02);
    EXPECT_NEAR(smooth.pixel(midX, 2)[1], 1.03, 0.02);
    EXPECT_NEAR(smooth.pixel(midX, smooth.height - 1)[1], 0.58, 0.02);
    EXPECT_NEAR(smooth.pixel(0, midY)[1], 0.92, 0.02);
    EXPECT_NEAR(smooth.pixel(smooth.width - 1, midY)[1], 0.72, 0.02);
    EXPECT_NEAR(smooth.pixel(whites.left, midY)[1], 0.70, 0.01);
    EXPECT_GT(smooth.pixel(whites.left + 12, midY)[1], 0.99);
    EXPECT_NEAR(smooth.pixel(whites.left - 1, midY)[1], 0.25, 0.01);

    double sum = 0.0, squares = 0.0, n = 0.0;
    for (std::int64_t y = whites.top + side + 40; y < embossed.height - 40; ++y)
        for (std::int64_t x = 40; x < embossed.width - 40; ++x, ++n) {
            const double v = embossed.pixel(x, y)[1];
            sum += v;
            squares += v * v;
        }
    EXPECT_NEAR(sum / n, 0.9995, 3e-4);
    EXPECT_NEAR(std::sqrt(squares / n - sum * sum / n / n), 0.0097, 5e-4);

    // A line of 0.06 mm at 5 pixels a millimetre: 0.7 pixel wide at 0.43 of its strength.
    GrainRNG rng(1);
    const CardParams thin =
        CardRelief::plan(frame, {{500, 600}, {395, 395}, 30, 30, 5.0, false}, {}, {}, rng);
    EXPECT_NEAR(thin.linePx, 0.7, 1e-9);
    EXPECT_NEAR(thin.lineDev, -0.75 * 0.3 / 0.7, 1e-9);
}

TEST(Card, CoverageCutsTheCardOut)
{
    const FilmProfile film = ProfileStore::shared().film("polaroid_sx70");
    RenderOptions options;
    const RGBImage picture(1600, 1600, Vec3f{0.5f, 0.5f, 0.5f});
    const RGBImage out = card(*film.frame, picture);
    const auto mask = cardCutOut(film, options, picture.size(), out.size());
    ASSERT_TRUE(mask);
    EXPECT_EQ(mask->size(), out.size());
    EXPECT_LT(mask->at(0, 0), 0.5f);
    EXPECT_EQ(mask->at(out.width / 2, 0), 1.0f);
    EXPECT_LT(out.pixel(0, 0)[0], 0.2f) << "black beyond the corner";
    EXPECT_GT(CardRelief::flatten(RGBImage(out), *mask).pixel(0, 0)[0], 0.9f);
    std::int64_t x = 0;
    while (mask->at(x, 0) <= 0.1f) ++x;
    EXPECT_NEAR(CardRelief::unmixed(RGBImage(out), *mask).pixel(x, 0)[0], out.pixel(x, 0)[0] / mask->at(x, 0),
                1e-5);
    options.table = "linen";
    EXPECT_FALSE(cardCutOut(film, options, picture.size(), out.size()));
    options.table.reset();
    options.cardOutside = std::vector{1.0, 1.0, 1.0};
    EXPECT_FALSE(cardCutOut(film, options, picture.size(), out.size()));
    EXPECT_FALSE(cardCutOut(ProfileStore::shared().film("fp100c"), {}, picture.size(), out.size()));
}

TEST(Card, AMatShowsThreeMillimetresOfIt)
{
    RenderOptions options;
    const InstantFrameParams frame = frameOf("polaroid_sx70");
    const std::array<double, 4> grips = matCardGrips({790, 790}, frame, options);
    const CardMargins whites = instantFrameWhites({790, 790}, frame, "");
    EXPECT_NEAR(grips[0], static_cast<double>(whites.top) - 30.0, 4.0);
    EXPECT_NEAR(grips[0] + grips[1], static_cast<double>(whites.top + whites.bottom) - 60.0, 1e-9);
    FilmProfile film;
    film.type = "instant";
    film.frame = frame;
    EXPECT_NEAR(instantCardOptions(film, options, {790, 790}, {889, 1072}).printPxUm, 100.0, 1e-9);
    EXPECT_EQ(instantCardOptions(film, options, {790, 790}, {889, 1072}).matGripsPx->size(), 4u);
}

TEST(PeelEdge, IsAsTornAsPacksAre)
{
    double bitten = 0.0, deepest = 0.0, waves = 0.0, correlation = 0.0;
    constexpr int kCards = 40;
    constexpr double kMm = 95.0, kPxMm = 1800.0 / kMm;
    for (std::uint64_t seed = 0; seed < kCards; ++seed) {
        GrainRNG a(seed), b(seed), clean(seed);
        const std::vector<float> fine = peelEdgeOffsets(1800, kPxMm, a, 1.0, kMm);
        const std::vector<float> coarse = peelEdgeOffsets(900, kPxMm / 2.0, b, 1.0, kMm);
        const std::vector<float> unbitten = peelEdgeOffsets(1800, kPxMm, clean, 0.0, kMm);
        Plane half(900, 1);
        for (std::size_t i = 0; i < coarse.size(); ++i)
            half.mutableData()[i] = 0.25f * (fine[2 * i] + fine[2 * i + 1]);
        const Plane small(900, 1, coarse);
        double product = 0.0;
        for (std::size_t i = 0; i < coarse.size(); ++i)
            product += (half.data[i] - half.mean()) * (small.data[i] - small.mean());
        correlation += product / 900.0 / (half.std() * small.std()) / kCards;
        for (const float px : fine) {
            bitten += px / kPxMm > 0.06 ? 1.0 / 1800.0 / kCards : 0.0;
            deepest = std::max(deepest, px / kPxMm);
        }
        waves += Plane(1800, 1, unbitten).std() / kPxMm / kCards;
    }
    EXPECT_NEAR(waves, 0.043, 0.002);
    EXPECT_NEAR(bitten, 0.13, 0.05);
    EXPECT_NEAR(deepest, 0.29, 0.12);
    EXPECT_GT(correlation, 0.995);
}

/// The sheet pixel by pixel on whole planes.
RGBImage slowSheet(const RGBImage& picture, const PeelParams& p)
{
    const std::int64_t w = p.canvas.width, h = p.canvas.height;
    const auto clamped = [](double v) { return std::clamp(v, 0.0, 1.0); };
    Plane mask(w, h);
    for (std::int64_t y = 0; y < h; ++y)
        for (std::int64_t x = 0; x < w; ++x) {
            const auto i = static_cast<std::size_t>(x), j = static_cast<std::size_t>(y);
            mask.mutableData()[y * w + x] =
                static_cast<float>(clamped(static_cast<double>(y) + 1.0 - p.topEdge[i]) *
                                   clamped(p.bottomEdge[i] - static_cast<double>(y)) *
                                   clamped(static_cast<double>(x) + 1.0 - p.leftEdge[j]) *
                                   clamped(p.rightEdge[j] - static_cast<double>(x)));
        }
    if (p.maskSigmaPx > 0.0) mask = gaussianFilter(mask, p.maskSigmaPx, EdgeMode::reflect);
    std::array<Plane, 2> fibre;
    const double strength[] = {0.003, 0.0025};
    for (std::uint32_t k = 0; k < 2; ++k) {
        constexpr std::int64_t kPad = 64;
        Plane noise =
            gaussianFilter(noisePlane({w + 2 * kPad, h + 2 * kPad}, {p.seed, 42 + k}, {-kPad, -kPad}),
                           p.fibreSigmaPx[k], EdgeMode::nearest);
        fibre[k] = Plane(w, h);
        for (std::int64_t y = 0; y < h; ++y)
            std::copy_n(noise.row(y + kPad) + kPad, w, fibre[k].mutableData() + y * w);
        fibre[k] = fibre[k].map([&](float v) {
            return static_cast<float>(v * strength[k] / kernelPower(gaussianHalfKernel(p.fibreSigmaPx[k])));
        });
    }
    const Plane blot = p.blot ? p.blot->plane() : Plane(w, h);
    RGBImage out(p.turned ? h : w, p.turned ? w : h);
    for (std::int64_t y = 0; y < h; ++y)
        for (std::int64_t x = 0; x < w; ++x) {
            const double dd = static_cast<double>(std::min({x, y, w - 1 - x, h - 1 - y})) + 0.5;
            const double s = clamped(p.yellow * std::exp(-dd / p.ppmm / 2.5) * (1.0 + 0.6 * blot.at(x, y)));
            const bool inside =
                x >= p.side && x < p.side + p.picture.width && y >= p.top && y < p.top + p.picture.height;
            const double fib = inside ? 0.0 : fibre[0].at(x, y) + fibre[1].at(x, y);
            const double m = mask.at(x, y);
            const double e =
                clamped(p.windowX[static_cast<std::size_t>(x)] * p.windowY[static_cast<std::size_t>(y)] - m);
            const std::int64_t sx = std::clamp<std::int64_t>(x - p.side, 0, p.picture.width - 1),
                               sy = std::clamp<std::int64_t>(y - p.top, 0, p.picture.height - 1);
            const Vec3f seen = p.turned ? picture.pixel(sy, p.picture.width - 1 - sx) : picture.pixel(sx, sy);
            const double yellow[] = {0.0, 0.03, 0.10}, cream[] = {0.0, 0.015, 0.045};
            for (std::size_t c = 0; c < 3; ++c) {
                const double b = p.base[c] * (1.0 - yellow[c] * s) * (1.0 + fib) * (1.0 - e * cream[c]);
                const std::int64_t ox = p.turned ? y : x, oy = p.turned ? w - 1 - x : y;
                out.mutableData()[(oy * out.width + ox) * 3 + static_cast<std::int64_t>(c)] =
                    static_cast<float>(std::max(m * seen[c] + (1.0 - m) * b, 0.0));
            }
        }
    return out;
}

TEST(PeelCard, TheSheetIsItsDefinition)
{
    const InstantFrameParams frame = frameOf("fp100c");
    for (const Size size : {Size{219, 285}, Size{285, 219}, Size{1140, 876}, Size{40, 1}, Size{2, 2}}) {
        SCOPED_TRACE(testing::Message() << size.width << " x " << size.height);
        const RGBImage picture = noisePicture(size.width, size.height, 9, 3.0f);
        GrainRNG rng(5), same(5);
        const PeelParams params = planPeel(size, frame, "3x4", 1.0, same);
        EXPECT_EQ(params.turned, size.width > size.height);
        EXPECT_LT(
            worstDifference(peelFrame(picture, frame, "3x4", 1.0, rng).data, slowSheet(picture, params).data),
            2e-4f);
    }
    // A knob of 0 yellows nothing, though the draw is made; no yellowing of the paper draws nothing.
    GrainRNG a(5), b(5), c(5);
    const PeelParams full = planPeel({60, 80}, frame, "3x4", 1.0, a);
    const PeelParams none = planPeel({60, 80}, frame, "3x4", 0.0, b);
    InstantFrameParams white = frame;
    white.edgeYellow = 0.0;
    const PeelParams undrawn = planPeel({60, 80}, white, "3x4", 1.0, c);
    EXPECT_GT(full.yellow, 0.1);
    EXPECT_EQ(none.yellow, 0.0);
    EXPECT_EQ(none.seed, full.seed);
    EXPECT_NE(undrawn.seed, full.seed);
}

TEST(Card, OddPicturesAndCardsEndWell)
{
    const RGBImage picture(40, 30, Vec3f{0.5f, 0.5f, 0.5f});
    for (const char* film : {"polaroid_sx70", "instax_wide", "fp100c"}) {
        expectSameForAnyWorkers([&] { return card(frameOf(film), noisePicture(301, 220, 2)); });
        for (const Size size : {Size{1, 1}, Size{2, 2}, Size{1, 300}, Size{300, 1}}) {
            const RGBImage out = card(frameOf(film), RGBImage(size.width, size.height));
            EXPECT_GT(out.pixelCount(), 0) << film;
            for (const float v : out.data) ASSERT_TRUE(std::isfinite(v)) << film;
        }
    }
    for (const double mm : {0.0, 1e-9, 1e4, 1e300, -5.0}) {
        InstantFrameParams frame = frameOf("polaroid_sx70");
        frame.imageLongMm = mm;
        frame.corner->mm = std::max(mm, 1.0);
        frame.windowLine->mm = mm;
        for (const float v : card(frame, picture).data) ASSERT_TRUE(std::isfinite(v)) << mm;
    }
    InstantFrameParams frame = frameOf("polaroid_sx70");
    frame.sideFrac = -3.0;
    frame.topRatio = -2.0;
    EXPECT_EQ(card(frame, picture).size(), (Size{48, 48})) << "sides of 4 pixels, no top, 4.4 of them below";
    frame.sideFrac = 1e9;
    EXPECT_THROW(card(frame, picture), TamloError);
}

} // namespace
} // namespace tamlo::test
