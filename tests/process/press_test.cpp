// The presses: against slow twins that draw every pixel of the drawn picture, and by what a print promises:
// tones as asked, bare paper where nothing is printed, the same print at every size.
#include "core/image/gaussian.h"
#include "core/image/resample.h"
#include "core/process/noise/noise_fields.h"
#include "core/process/press/am_screen.h"
#include "core/process/press/blue_noise.h"
#include "core/process/press/laydown.h"
#include "core/process/press/surface.h"
#include "core/process/raster/raster.h"
#include "core/profiles/options/seed_stream.h"
#include "tests/process/press_fixture.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace tamlo::test {
namespace {

using namespace ReproPrint;

/// A print as drawn, without the spread of light and the clouds.
template <typename Plan>
Plan bare(Plan plan)
{
    plan.laydown.psfSigmaPx = plan.laydown.mottle = 0.0;
    return plan;
}

std::int64_t held(std::int64_t i, std::int64_t n)
{
    return std::clamp<std::int64_t>(i, 0, n - 1);
}

/// Coverage of an ink at every pixel of a picture.
Plane coverageOf(const RGBImage& positive, const Separation& s, std::size_t ink)
{
    Plane out(positive.width, positive.height);
    float* to = out.mutableData();
    for (std::int64_t y = 0; y < out.height; ++y)
        for (std::int64_t x = 0; x < out.width; ++x)
            to[y * out.width + x] = separate(positive.pixel(x, y), s)[ink];
    return out;
}

void layOver(RGBImage& print, const Plane& ink, std::array<std::int64_t, 2> shift, const Vec3f& rel)
{
    float* to = print.mutableData();
    for (std::int64_t y = 0; y < print.height; ++y)
        for (std::int64_t x = 0; x < print.width; ++x) {
            const float a = ink.at(held(x - shift[0], ink.width), held(y - shift[1], ink.height));
            for (std::size_t c = 0; c < 3; ++c)
                to[(y * print.width + x) * 3 + static_cast<std::int64_t>(c)] *= 1.0f - a * (1.0f - rel[c]);
        }
}

/// Offset at its drawn size, screen after screen over whole pictures, averaged at the end.
RGBImage slowOffset(const RGBImage& positive, Size size, const OffsetPlan& plan)
{
    const RGBImage grown = pilResize(positive, size, Resampling::bicubic);
    const Size drawn{size.width * plan.ss, size.height * plan.ss};
    RGBImage print(drawn.width, drawn.height, plan.base);
    for (const InkPlate& plate : plan.plates) {
        Plane ink = pilResize(coverageOf(grown, plan.separation, plate.ink), drawn, Resampling::bilinear);
        const double theta = screenAngles[plate.ink] * std::numbers::pi / 180.0;
        const double c = std::cos(theta) / plan.cellPx, s = std::sin(theta) / plan.cellPx;
        float* a = ink.mutableData();
        for (std::int64_t y = 0; y < drawn.height && plan.screened; ++y)
            for (std::int64_t x = 0; x < drawn.width; ++x) {
                const auto px = static_cast<double>(x), py = static_cast<double>(y);
                const double w = std::cos(2.0 * std::numbers::pi * (px * c + py * s + plate.phase0)) +
                                 std::cos(2.0 * std::numbers::pi * (-px * s + py * c + plate.phase1));
                float& at = a[y * drawn.width + x];
                at = screenInk(at, static_cast<float>(w), screenEdge(plan.cellPx), amCDF());
            }
        layOver(print, ink, {plate.dx, plate.dy}, plan.separation.rel[plate.ink]);
    }
    return pilResize(print, size, Resampling::box);
}

RGBImage slowInkjet(const RGBImage& positive, Size size, const InkjetPlan& plan)
{
    const RGBImage grown = pilResize(positive, size, Resampling::bicubic);
    const BlueNoise& noise = blueNoise();
    RGBImage print(size.width, size.height, plan.base);
    const auto cell = [&](std::int64_t i, std::int64_t n) {
        if (plan.cellPx <= kPixelCellPx) return i;
        const auto cells =
            std::max<std::int64_t>(static_cast<std::int64_t>(static_cast<double>(n) / plan.cellPx), 1);
        return std::min(static_cast<std::int64_t>(static_cast<double>(i) / plan.cellPx), cells - 1);
    };
    for (std::size_t ink = 0; ink < kInkCount; ++ink) {
        Plane a = coverageOf(grown, plan.separation, ink);
        float* at = a.mutableData();
        for (std::int64_t y = 0; y < size.height; ++y)
            for (std::int64_t x = 0; x < size.width; ++x) {
                const float k = plan.band[static_cast<std::size_t>(plan.bandAlongX ? x : y)];
                float& v = at[y * size.width + x];
                v = dotGain(std::clamp(v * k, 0.0f, 1.0f), plan.separation.curve);
                if (!plan.dither) continue;
                const std::int64_t row = (cell(y, size.height) + plan.start[ink][0]) % noise.side;
                const std::int64_t column = (cell(x, size.width) + plan.start[ink][1]) % noise.side;
                v = v >= noise.thresholds[static_cast<std::size_t>(row * noise.side + column)] ? 1.0f : 0.0f;
            }
        a = gaussianFilter(std::move(a), plan.edgeSigmaPx, EdgeMode::nearest);
        layOver(print, a, plan.shift[ink], plan.separation.rel[ink]);
    }
    return print;
}

/// 99.9 % of the samples within `tolerance`, and the means within 1e-5.
void expectSamePrint(const RGBImage& a, const RGBImage& b, float tolerance)
{
    ASSERT_EQ(a.size(), b.size());
    std::size_t off = 0;
    for (std::size_t i = 0; i < a.data.size(); ++i)
        if (!(std::abs(a.data[i] - b.data[i]) <= tolerance)) ++off;
    EXPECT_LE(off, a.data.size() / 1000);
    for (std::size_t c = 0; c < 3; ++c) EXPECT_NEAR(meansOf(a)[c], meansOf(b)[c], 1e-5);
}

TEST(Offset, IsItsSlowTwin)
{
    struct Case {
        const char* paper;
        Size picture;
        double grow;
        double pxUm; // of the printed picture
        int ss;
        bool mono;
    };
    for (const Case& c : std::initializer_list<Case>{
             {"offset_newsprint", {61, 47}, 1.0, 46.0, 1, false},  // dots, out of register
             {"offset_newsprint", {61, 47}, 2.0, 73.0, 2, false},  // grown and drawn above
             {"offset_newsprint", {33, 40}, 1.3, 60.0, 2, true},   // black alone
             {"offset_coated", {40, 37}, 1.0, 146.0, 1, false},    // too fine for dots
             {"offset_coated", {1, 31}, 1.772, 28.0, 1, false}}) { // as wide as a pixel
        const RGBImage picture = noisePicture(c.picture.width, c.picture.height, 5, 6.0f);
        const Size size = grownSize(c.picture, c.grow);
        const OffsetPlan plan = bare(planOffset(paperNamed(c.paper), {}, c.pxUm, c.ss, c.mono));
        SCOPED_TRACE(std::string(c.paper) + " " + std::to_string(c.pxUm));
        expectSamePrint(applyOffset(picture, size, plan), slowOffset(picture, size, plan), 2e-3f);
    }
    const OffsetPlan plan = planOffset(paperNamed("offset_newsprint"), {}, 46.0, 1, false);
    EXPECT_TRUE(plan.plates[0].dx != 0 || plan.plates[1].dy != 0) << "the twins must have met a shift";
}

TEST(Inkjet, IsItsSlowTwin)
{
    for (const double pxUm :
         {37.5, 9.0, 70.0, 146.0}) // grown for its drop; a large drop; a pixel a drop; none
        for (const char* feed : {"long", "short"}) {
            RenderOptions options;
            options.inkjetFeed = feed;
            const RGBImage picture = noisePicture(71, 45, 8, 6.0f);
            const Size size = grownSize(picture.size(), 4.0 / 3.0);
            const InkjetPlan plan = bare(planInkjet(paperNamed("inkjet_plain"), options, pxUm, size));
            SCOPED_TRACE(pxUm);
            expectSamePrint(applyInkjet(picture, size, plan), slowInkjet(picture, size, plan), 1e-5f);
        }
}

TEST(Offset, InksTheShareThatIsAsked)
{
    for (const double cellPx : {3.0, 4.3, 6.0, 12.0})
        for (const float a : {0.1f, 0.5f, 0.7f, 0.9f}) {
            double share = 0.0;
            constexpr int kPhases = 4; // a picture cuts cells at its edges, each phase other ones
            for (int seed = 0; seed < kPhases; ++seed) {
                RenderOptions options;
                options.seed = seed;
                OffsetPlan plan =
                    bare(planOffset(paperNamed("offset_coated"), options, 25400.0 / 150.0 / cellPx, 1, true));
                plan.separation.curve = {};
                const Vec3f& rel = plan.separation.rel[kBlack];
                const float asked = 1.0f - a * (1.0f - (rel[0] + rel[1] + rel[2]) / 3.0f);
                const RGBImage print = applyOffset(flat(700, 700, asked), {700, 700}, plan);
                share += (1.0 - meansOf(print)[0] / plan.base[0]) / (1.0 - rel[0]) / kPhases;
            }
            EXPECT_NEAR(share, a, 0.001) << cellPx;
        }
}

// Tones of whole prints, with dot gain, clouds and the spread of light, over the seeds of many sheets.
TEST(Press, KeepsTheToneOfAGreyCard)
{
    struct Case {
        const char* paper;
        double pxUm;
    };
    for (const Case& c : std::initializer_list<Case>{{"offset_coated", 25400.0 / 150.0 / 6.0},
                                                     {"offset_newsprint", 50.0},
                                                     {"inkjet_plain", 37.5},
                                                     {"offset_book", 100.0}}) {
        Vec3d mean{};
        constexpr int kSeeds = 16;
        for (int seed = 0; seed < kSeeds; ++seed) {
            RenderOptions options;
            options.seed = 100 + seed;
            options.inkjetBanding = 0.0;
            options.reproRaster = "off";
            const Vec3d light = meansOf(printed(c.paper, flat(220, 220, 0.18f), c.pxUm, options));
            for (std::size_t i = 0; i < 3; ++i) mean[i] += light[i] / baseOf(c.paper)[i] / kSeeds;
            // Green is where three screens in resonance would show: by a twelfth, this way or that. Blue is
            // where yellow would, with the pixels.
            for (const std::size_t i : {1u, 2u})
                EXPECT_NEAR(light[i] / baseOf(c.paper)[i], 0.18, 0.18 * 0.03) << c.paper << " " << seed;
        }
        for (const double channel : mean) EXPECT_NEAR(channel, 0.18, 0.18 * 0.02) << c.paper;
    }
    for (const float v : {0.9f, 0.744f, 0.488f, 0.232f}) { // black alone, by Murray and Davies
        const double black = inks("offset_coated", "")[kBlack][0];
        const double light = meansOf(printed("offset_coated", flat(300, 300, v), 28.2, {}, true))[0] /
                             baseOf("offset_coated")[0];
        EXPECT_NEAR((1.0 - light) / (1.0 - black), (1.0 - v) / (1.0 - black), 0.006);
    }
}

TEST(Press, LeavesPaperBareAndPrintsSolids)
{
    for (const char* paper : {"offset_newsprint", "offset_coated", "inkjet_plain", "inkjet_photo"})
        for (const double pxUm : {18.0, 40.0, 150.0}) {
            const RGBImage print = printed(paper, flat(64, 48, 1.0f), pxUm);
            const Vec3d base = baseOf(paper);
            const RGBImage blank(
                print.width, print.height,
                Vec3f{static_cast<float>(base[0]), static_cast<float>(base[1]), static_cast<float>(base[2])});
            EXPECT_LT(worstDifference(print.data, blank.data), 2e-6f) << paper;
        }
    const OffsetPlan plan = bare(planOffset(paperNamed("offset_newsprint"), {}, 40.0, 1, true));
    const RGBImage solid = applyOffset(flat(64, 48, 0.0f), {64, 48}, plan);
    const float black = plan.base[1] * plan.separation.rel[kBlack][1];
    const Plane green = solid.plane(1);
    EXPECT_LT(worstDifference(green.data, Plane(64, 48, black).data), 2e-6f);
}

/// Deviation of the green channel over its mean.
double relativeDeviation(const RGBImage& image)
{
    const Plane green = image.plane(1);
    return green.std() / green.mean();
}

TEST(Mottle, GrowsWithTheInkAndKeepsItsSheet)
{
    struct Case {
        const char* paper;
        double deviation;
    };
    for (const Case& c : std::initializer_list<Case>{
             {"offset_newsprint", 0.0452}, {"offset_coated", 0.0181}, {"inkjet_plain", 0.0272}}) {
        const PaperProfile paper = paperNamed(c.paper);
        const auto clouds = [&](std::int64_t side, double pxUm) {
            Laydown laydown = paper.offset ? planOffset(paper, {}, pxUm, 1, false).laydown
                                           : planInkjet(paper, {}, pxUm, {8, 8}).laydown;
            laydown.psfSigmaPx = 0.0;
            const Vec3d base = baseOf(c.paper);
            const auto shade = [&](double v) {
                return Vec3f{static_cast<float>(base[0] * v), static_cast<float>(base[1] * v),
                             static_cast<float>(base[2] * v)};
            };
            return layDown(RGBImage(side, side, shade(0.18)), shade(1.0), laydown);
        };
        const RGBImage fine = clouds(1600, 15.0);
        EXPECT_NEAR(relativeDeviation(fine), c.deviation, 0.02 * c.deviation) << c.paper;
        // A pixel of 120 µm shows what is left of the same clouds.
        const RGBImage coarse = clouds(200, 120.0);
        EXPECT_NEAR(relativeDeviation(coarse), relativeDeviation(pilResize(fine, 200, 200, Resampling::box)),
                    0.05 * c.deviation)
            << c.paper;
    }
}

TEST(Surface, IsLitFromItsSideAndMovesNoAverage)
{
    PaperProfile paper = paperNamed("color_ra4");
    paper.surface = SurfaceParams{"lustre", 0.06, 350.0, {}};
    RenderOptions options;
    const auto relief = [&](std::int64_t side, double pxUm) {
        options.printPxUm = pxUm;
        return Film::applyRepro(flat(side, side, 0.5f), paper, options, false);
    };
    const RGBImage lit = relief(700, 25.0);
    EXPECT_NEAR(meansOf(lit)[1], 0.5, 1e-4);
    EXPECT_NEAR(relativeDeviation(lit), 0.06 * 0.58, 0.003); // tanh of 0.8 normals deviates by 0.58
    EXPECT_NEAR(relativeDeviation(relief(175, 100.0)),
                relativeDeviation(pilResize(lit, 175, 175, Resampling::box)), 0.1 * relativeDeviation(lit));

    // Slopes that rise towards the light's side are the ones in the shade.
    const auto seed =
        static_cast<std::uint32_t>(Seeds::streamRNG(options, Seeds::SeedStream::print).nextUInt64());
    const Plane field = NoiseField::difference({700, 700}, 0.35 * 350.0, 350.0, 25.0, {seed, 44}).plane();
    double agreement = 0.0, slopes = 0.0, lights = 0.0;
    for (std::int64_t y = 1; y < 699; ++y)
        for (std::int64_t x = 1; x < 699; ++x) {
            const double slope = 0.72 * (field.at(x + 1, y) - field.at(x - 1, y)) +
                                 0.70 * (field.at(x, y + 1) - field.at(x, y - 1));
            const double light = lit.pixel(x, y)[1] - 0.5;
            agreement += slope * light;
            slopes += slope * slope;
            lights += light * light;
        }
    EXPECT_GT(agreement / std::sqrt(slopes * lights), 0.95);
    options.printTexture = 0.0;
    EXPECT_TRUE(sameBytes(relief(20, 25.0), flat(20, 20, 0.5f)));
}

TEST(Press, SameBytesForAnyWorkersAndRollsWithThePrint)
{
    const RGBImage picture = noisePicture(300, 210, 4, 5.0f);
    for (const char* paper : {"offset_newsprint", "offset_coated", "inkjet_plain"})
        expectSameForAnyWorkers([&] { return printed(paper, picture, 75.0); });
    RenderOptions rolled;
    rolled.seedVariants = SeedVariants{{"film", 3}};
    EXPECT_TRUE(sameBytes(printed("offset_newsprint", picture, 75.0),
                          printed("offset_newsprint", picture, 75.0, rolled)));
    rolled.seedVariants = SeedVariants{{"print", 3}};
    EXPECT_FALSE(sameBytes(printed("offset_newsprint", picture, 75.0),
                           printed("offset_newsprint", picture, 75.0, rolled)));
}

// Profiles beyond any press, on pictures beyond any print: bounded, and every value a number.
TEST(Press, StandsAbsurdProfiles)
{
    for (const double value : {0.0, -1.0, 1e-9, 1e9, 1e300})
        for (const Size size : {Size{1, 1}, Size{30'000, 1}, Size{1, 3000}, Size{37, 21}})
            for (const char* repro : {"offset", "inkjet"}) {
                PaperProfile paper;
                paper.repro = repro;
                paper.offset = OffsetParams{"?", "?", value, value, value, value, value, value, value, value};
                InkjetParams jet;
                jet.gcr = jet.dropUm = jet.spreadUm = jet.gain = jet.gainComp = jet.swathMm = jet.passVar =
                    value;
                jet.seamAmp = jet.ripple = jet.nozzleMm = jet.misalignDrops = jet.mottle = jet.psfUm = value;
                paper.inkjet = jet;
                paper.surface = SurfaceParams{"lustre", value, value, std::vector<double>{value, value}};
                RenderOptions options;
                options.printPxUm = 20.0;
                const RGBImage out =
                    Film::applyRepro(noisePicture(size.width, size.height, 2), paper, options, false);
                for (const float v : out.data)
                    ASSERT_TRUE(v >= 0.0f && v <= 1.0f) << value << repro << size.width;
            }
}

} // namespace
} // namespace tamlo::test
