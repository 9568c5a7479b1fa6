// Prints in several coats and the relief of thick pigment: balance, register, and light that is only moved.
#include "core/image/gaussian.h"
#include "core/process/gum/gum_layers.h"
#include "core/process/relief/relief.h"
#include "core/profiles/catalogue/profile_store.h"
#include "tests/support/pictures.h"

namespace tamlo {
namespace {

PaperProfile gum()
{
    return ProfileStore::shared().paper("gum_tricolor");
}

RenderOptions plain()
{
    RenderOptions options;
    options.printTexture = 0.0;
    options.relief = 0.0;
    options.coat = "none";
    return options;
}

TEST(GumLayers, FullColourCoatsAddUpToANeutral)
{
    PaperProfile paper = gum();
    for (PaperLayer& layer : *paper.layers) layer.amount.reset();
    const std::vector<double> gains = AltPrint::layerGains(paper);
    ASSERT_EQ(gains.size(), 4u);
    for (std::size_t c = 0; c < 3; ++c) {
        double sum = 0.0;
        for (std::size_t j = 0; j < 3; ++j) sum += gains[j] * (*paper.layers)[j].pigment[c];
        EXPECT_NEAR(sum, *paper.dmax, 1e-9) << c;
    }
    EXPECT_EQ(gains[3], 1.0) << "the key takes no part";

    // As carried, the gains are near one: the pigments are densities of cyan, magenta and yellow.
    const std::vector<double> carried = AltPrint::layerGains(gum());
    EXPECT_NEAR(carried[0], 0.87, 0.01);
    EXPECT_NEAR(carried[1], 0.71, 0.01);
    EXPECT_NEAR(carried[2], 0.71, 0.01);
    EXPECT_EQ(carried[3], 0.4);

    (*paper.layers)[1].pigment = (*paper.layers)[0].pigment;
    EXPECT_EQ(AltPrint::layerGains(paper), std::vector<double>(4, 1.0)) << "no balance to be had";
    paper.layers->erase(paper.layers->begin());
    EXPECT_EQ(AltPrint::layerGains(paper), std::vector<double>(3, 1.0)) << "two colours";
}

TEST(GumLayers, OneCoatIsTheSinglePrint)
{
    PaperProfile single = ProfileStore::shared().paper("platinum"), coats = single;
    PaperLayer layer;
    layer.pigment = {(*single.pigment->density)[0], (*single.pigment->density)[1],
                     (*single.pigment->density)[2]};
    coats.layers = {layer};
    Plane density = test::noisePicture(120, 80, 5, 4.0f).plane(1);
    const RenderOptions options = plain();
    const RGBImage print = AltPrint::printOneCoat(density, 0.3f, {single, options, nullptr});
    const RGBImage layered = Film::renderAltLayers({density, 0.3f, {}}, {coats, options, nullptr});
    EXPECT_LT(test::worstDifference(print.data, layered.data), 1e-6);
    coats.layers->clear();
    EXPECT_EQ(Film::renderAltLayers({density, 0.3f, {}}, {coats, options, nullptr}).pixelCount(), 0);
}

TEST(GumLayers, EachCoatPrintsItsSeparation)
{
    // Red light leaves density in the layer of red alone, and so takes the cyan pigment off the print.
    const PaperProfile paper = gum();
    const auto printOf = [&](Vec3f db) {
        return Film::renderAltLayers({{}, 0.0f, RGBImage(8, 8, db)}, {paper, plain(), nullptr}).pixel(4, 4);
    };
    const Vec3f grey = printOf({0.0f, 0.0f, 0.0f}), red = printOf({0.5f, 0.0f, 0.0f});
    EXPECT_GT(red[0], 1.5f * grey[0]);
    EXPECT_LT(red[2] / grey[2], 0.7f * red[0] / grey[0]);
    const Vec3f blue = printOf({0.0f, 0.0f, 0.5f});
    EXPECT_GT(blue[2], 1.5f * grey[2]);
    EXPECT_LT(blue[0] / grey[0], 1.15f);
    for (const float v : grey) EXPECT_NEAR(v / grey[1], 1.0f, 0.2f) << "a grey card stays near grey";
}

TEST(GumLayers, RegisterIsAFixedDrawOfTheSeed)
{
    PaperProfile paper = gum();
    const RenderOptions options;
    const auto all = AltPrint::layerShiftsMm(paper, options);
    (*paper.layers)[1].shiftMm = 0.0;
    const auto without = AltPrint::layerShiftsMm(paper, options);
    EXPECT_EQ(without[0], all[0]);
    EXPECT_EQ(without[1], (std::pair{0.0, 0.0}));
    EXPECT_EQ(without[2].first / 0.18, all[1].first / 0.18) << "the draws move up";
    paper.layers->erase(paper.layers->begin() + 1);
    const auto dropped = AltPrint::layerShiftsMm(paper, options);
    EXPECT_EQ(dropped[1], without[2]) << "a coat in register draws nothing";
    EXPECT_EQ(dropped[2], without[3]);
    EXPECT_EQ(AltPrint::layerShiftPx({0.15, -0.25}, 100.0), (std::pair<std::int64_t, std::int64_t>{2, -3}));

    const Plane plane = test::noisePicture(23, 17, 9).plane(0);
    for (const auto& [dy, dx] :
         {std::pair<std::int64_t, std::int64_t>{0, 0}, {3, -5}, {-2, 4}, {40, -60}, {-99, 23}}) {
        const Plane moved = AltPrint::shiftEdge(plane, {dy, dx});
        for (std::int64_t y = 0; y < 17; ++y)
            for (std::int64_t x = 0; x < 23; ++x)
                ASSERT_EQ(moved.at(x, y), plane.at(std::clamp<std::int64_t>(x - dx, 0, 22),
                                                   std::clamp<std::int64_t>(y - dy, 0, 16)));
    }
}

TEST(GumLayers, SameBytesForAnyNumberOfWorkers)
{
    const PaperProfile paper = gum();
    RenderOptions options;
    options.printPxUm = 200.0;
    const RGBImage db = test::noisePicture(611, 333, 3, 3.0f);
    test::expectSameForAnyWorkers([&] {
        return Film::renderAltLayers({{}, 0.0f, db}, {paper, options, nullptr});
    });
}

/// A smooth bump of pigment in the middle.
Plane bump(std::int64_t side)
{
    Plane t(side, side);
    float* values = t.mutableData();
    for (std::int64_t y = 0; y < side; ++y)
        for (std::int64_t x = 0; x < side; ++x) {
            const double r = std::hypot(static_cast<double>(x - side / 2), static_cast<double>(y - side / 2));
            values[y * side + x] = static_cast<float>(0.2 + 0.6 * std::exp(-r * r / 800.0));
        }
    return t;
}

TEST(Relief, MovesLightAndAddsNone)
{
    PaperProfile paper;
    paper.relief = PaperRelief{0.5, 0.0, 0.15, std::vector<double>{-0.6, -0.8}, 0.012};
    RenderOptions options;
    const Plane t = bump(201);
    const RGBImage grey(201, 201, {0.4f, 0.4f, 0.4f});
    const RGBImage lit = AltPrint::applyRelief(grey, t, paper, options);
    double sum = 0.0;
    for (std::int64_t i = 0; i < grey.pixelCount(); ++i)
        sum += lit.data[static_cast<std::size_t>(i) * 3] - 0.4;
    EXPECT_NEAR(sum / static_cast<double>(grey.pixelCount()), 0.0, 1e-6);
    EXPECT_GT(lit.pixel(85, 85)[0], 0.42f) << "the flank that faces the upper left";
    EXPECT_LT(lit.pixel(115, 115)[0], 0.38f);

    const RGBImage even = AltPrint::applyRelief(grey, Plane(201, 201, 0.7f), paper, options);
    EXPECT_LT(test::worstDifference(even.data, grey.data), 1e-6);
    paper.relief->sheen = 0.1;
    const RGBImage sheen = AltPrint::applyRelief(grey, Plane(201, 201, 0.7f), paper, options);
    EXPECT_NEAR(sheen.pixel(9, 9)[2], 0.4 + 0.1 * 0.49, 1e-5);
    options.relief = 0.0;
    EXPECT_TRUE(test::sameBytes(AltPrint::applyRelief(grey, t, paper, options), grey))
        << "the sheen goes too";
}

TEST(Relief, IsTheSlowTwin)
{
    PaperProfile paper;
    paper.relief = PaperRelief{1.0, 0.01, 0.1, std::vector<double>{-0.6}, 0.015};
    RenderOptions options;
    options.printPxUm = 1e9; // the least softness, 0.6 px
    const Plane t = test::noisePicture(37, 29, 4, 1.0f).plane(0);
    const RGBImage image = test::noisePicture(37, 29, 6, 1.0f);
    const RGBImage lit = AltPrint::applyRelief(image, t, paper, options);
    const Plane h = blurChannel(t, 0.6);
    Plane slope(37, 29), weighted(37, 29);
    const auto at = [&](std::int64_t x, std::int64_t y) {
        return static_cast<double>(
            h.at(std::clamp<std::int64_t>(x, 0, 36), std::clamp<std::int64_t>(y, 0, 28)));
    };
    for (std::int64_t y = 0; y < 29; ++y)
        for (std::int64_t x = 0; x < 37; ++x) {
            const double gx = (at(x + 1, y) - at(x - 1, y)) / (x == 0 || x == 36 ? 1.0 : 2.0);
            const double gy = (at(x, y + 1) - at(x, y - 1)) / (y == 0 || y == 28 ? 1.0 : 2.0);
            slope.mutableData()[y * 37 + x] = static_cast<float>((0.6 * gx + 0.7 * gy) * 0.6);
        }
    const double scale = std::max(3.0 * slope.std(), 0.015);
    double sum = 0.0, weight = 0.0;
    for (std::size_t i = 0; i < slope.data.size(); ++i) {
        const double e = std::pow(std::clamp(t.data[i], 0.0f, 1.0f), 0.7);
        sum += std::tanh(slope.data[i] / scale) * e;
        weight += e;
    }
    for (std::size_t i = 0; i < image.data.size(); ++i) {
        const double v = std::clamp(t.data[i / 3], 0.0f, 1.0f);
        const double factor = 1.0 + (std::tanh(slope.data[i / 3] / scale) - sum / weight) * std::pow(v, 0.7);
        ASSERT_NEAR(lit.data[i], std::clamp(image.data[i] * factor + 0.01 * v * v, 0.0, 1.0), 1e-5) << i;
    }
}

} // namespace
} // namespace tamlo
