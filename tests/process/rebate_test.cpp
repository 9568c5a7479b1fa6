// The film's edge: margins of every format, edges that every size shares, the mask, the gate, the notches,
// and what is printed beyond the picture.
#include "core/process/rebate/frame_plan.h"

#include "core/profiles/catalogue/profile_store.h"
#include "core/profiles/options/seed_stream.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tamlo::test {
namespace {

using namespace Pipeline;
using NegativeFrame::FourSides;

constexpr double kLongPx = 3600.0;

RenderOptions styled(FrameStyle style, FilmFormat format = FilmFormat::f135, OptText size = {})
{
    RenderOptions options;
    options.frameStyle = style;
    options.format = format;
    options.frameSize = std::move(size);
    return options;
}

FilmProfile filmOf(const char* name = "portra400")
{
    return ProfileStore::shared().film(name);
}

TEST(FramePlan, MarginsOfEveryFormat)
{
    struct Case {
        FrameStyle style;
        FilmFormat format;
        const char* size;
        double longMm, shortMm;
        FourSides<double> mm;
    };
    using enum FilmFormat;
    for (const Case& c : std::initializer_list<Case>{
             {FrameStyle::thin, f135, "full", 36, 24, {0.576, 0.576, 0.576, 0.576}},
             {FrameStyle::wide, f135, "full", 36, 24, {1.296, 1.296, 1.296, 1.296}},
             {FrameStyle::thin, f120, "6x6", 56, 56, {1.09, 1.09, 1.09, 1.09}},
             {FrameStyle::wide, f120, "6x7", 69.5, 56, {0.83, 0.83, 1.53, 1.53}},
             {FrameStyle::wide, f120, "645", 56, 41.5, {1.54, 1.54, 0.81, 0.81}},
             {FrameStyle::thin, sheet, "4x5", 120, 95, {1.81, 1.81, 1.81, 1.81}},
             {FrameStyle::wide, sheet, "4x5", 120, 95, {2.1, 2.1, 4.3, 3.7}},
             {FrameStyle::wide, plate, "9x12", 116, 86, {1.81, 1.81, 1.81, 1.81}},
         }) {
        const Size picture{static_cast<std::int64_t>(kLongPx),
                           static_cast<std::int64_t>(kLongPx * c.shortMm / c.longMm)};
        const auto plan =
            framePlan(picture, filmOf(), styled(c.style, c.format, c.size), {c.longMm * 1000.0, true});
        ASSERT_TRUE(plan) << c.size;
        for (std::size_t side = 0; side < 4; ++side)
            EXPECT_NEAR(static_cast<double>(plan->layout.margins[side]) * c.longMm / kLongPx, c.mm[side],
                        0.025)
                << c.size << " side " << side;
        EXPECT_EQ(plan->notches.has_value(), c.format == sheet && c.style == FrameStyle::wide);
        EXPECT_EQ(plan->gate.has_value(), c.format != f135);
    }
    RGBImage image(40, 30, Vec3f{1, 1, 1});
    EXPECT_FALSE(addRebate(image, filmOf(), RenderOptions(), {}));
    EXPECT_EQ(image.size(), (Size{40, 30}));
    RenderOptions old;
    old.frame = 0.05;
    EXPECT_EQ(framePlan({400, 300}, filmOf(), old, {})->layout.margins[0], 20);
    EXPECT_FALSE(framePlan({20, 10}, filmOf(), styled(FrameStyle::thin), {})) << "narrower than a pixel";
    // A part of a frame has no holder's edge.
    EXPECT_FALSE(
        framePlan({900, 600}, filmOf(), styled(FrameStyle::wide, sheet, "4x5"), {9000, false})->gate);
}

TEST(NegativeFrame, EverySizeHasTheSameEdges)
{
    const auto edges = [](std::int64_t longPx) {
        NegativeFrame::Layout layout;
        layout.style = NegativeFrame::params(FrameStyle::wide);
        layout.margins.fill(40);
        GrainRNG rng = Seeds::streamRNG(RenderOptions(), Seeds::SeedStream::frame);
        return *NegativeFrame::profiles({longPx - 80, longPx - 80}, layout, rng);
    };
    const auto small = edges(1000), large = edges(2000);
    for (std::size_t i = 1; i < 999; ++i) {
        ASSERT_NEAR(0.5f * (large.top[2 * i] + large.top[2 * i + 1]), small.top[i], 5e-4);
        ASSERT_NEAR(1999.0f - 0.5f * (large.right[2 * i] + large.right[2 * i + 1]), 999.0f - small.right[i],
                    5e-4);
    }
    EXPECT_EQ(small.edgeT, large.edgeT);

    double sum = 0.0, squares = 0.0;
    int strong = 0, count = 0;
    for (std::int64_t seed = 0; seed < 200; ++seed) {
        NegativeFrame::Layout layout;
        layout.style = NegativeFrame::params(FrameStyle::wide);
        layout.margins.fill(4);
        layout.filmEdges.fill(true); // no draws but the strengths
        RenderOptions options;
        options.seed = seed;
        GrainRNG rng = Seeds::streamRNG(options, Seeds::SeedStream::frame);
        const auto drawn = NegativeFrame::profiles({20, 20}, layout, rng);
        for (const float t : drawn->edgeT) {
            EXPECT_TRUE(t >= 0.099f && t <= 1.33f) << t;
            sum += t;
            squares += static_cast<double>(t) * t;
            strong += t > 1.0f ? 1 : 0;
            ++count;
        }
    }
    const double mean = sum / count;
    EXPECT_NEAR(mean, 0.73, 0.04);
    EXPECT_NEAR(std::sqrt(squares / count - mean * mean), 0.40, 0.03);
    EXPECT_NEAR(static_cast<double>(strong) / count, 1.0 / 3.0, 0.05);
}

TEST(Rebate, PadsWithFilmAndMasksBeyondIt)
{
    for (const auto& [style, format, size] :
         std::initializer_list<std::tuple<FrameStyle, FilmFormat, const char*>>{
             {FrameStyle::wide, FilmFormat::f135, "full"},
             {FrameStyle::thin, FilmFormat::f120, "6x6"},
             {FrameStyle::wide, FilmFormat::sheet, "4x5"}}) {
        const RGBImage picture(1200, 900, Vec3f{0.5f, 0.5f, 0.5f});
        RGBImage image = picture;
        const auto rebate = addRebate(image, filmOf(), styled(style, format, size), {36'000.0, true});
        ASSERT_TRUE(rebate);
        const auto& margins = rebate->plan.layout.margins;
        EXPECT_EQ(image.size(), rebate->plan.layout.canvas(picture.size()));
        EXPECT_EQ(image.pixel(margins[2] + 600, margins[0] + 450), (Vec3f{0.5f, 0.5f, 0.5f}));
        EXPECT_EQ(image.pixel(margins[2] - 1, margins[0] + 450), (Vec3f{}));
        EXPECT_LT(image.pixel(margins[2], margins[0])[0], 0.25f) << "the window's corner is rounded";
        for (std::int64_t y = margins[0] + 60; y < margins[0] + 840; y += 20)
            for (std::int64_t x = margins[2] + 60; x < margins[2] + 1140; x += 20)
                ASSERT_EQ(rebate->mask.at(x, y), 1.0f) << size << ": no paper over the picture";
        EXPECT_EQ(rebate->mask.at(0, 300), 0.0f);
        for (const float v : rebate->mask.data) ASSERT_TRUE(v >= 0.0f && v <= 1.0f);
        const auto whites = NegativeFrame::whiteMargins(picture.size(), rebate->profiles);
        for (std::size_t side = 0; side < 4; ++side) {
            EXPECT_GE(whites[side], 0.0);
            EXPECT_LT(whites[side], static_cast<double>(margins[side]));
        }
    }
}

TEST(FormatFrame, NotchesAreCutIntoTheFilm)
{
    RGBImage image(2400, 1900, Vec3f{1, 1, 1});
    const double ppm = 20.0;
    const auto rebate = addRebate(image, filmOf(), styled(FrameStyle::wide, FilmFormat::sheet, "4x5"),
                                  {2400.0 / ppm * 1000.0, true});
    const auto& notches = *rebate->plan.notches;
    // Along a line half a millimetre inside the film's edge the notches are holes.
    const auto x = static_cast<std::int64_t>(notches.edgeAcross - 0.5 * ppm);
    std::vector<std::pair<double, double>> holes; // where from the corner, and how long
    for (std::int64_t y = 0; y < 900; ++y) {
        if (rebate->mask.at(x, y) > 0.5f) continue;
        const double along = (static_cast<double>(y) + 0.5 - notches.edgeAlong) / ppm;
        if (along < 1.0) continue;
        if (holes.empty() || along - holes.back().first - holes.back().second > 0.2)
            holes.push_back({along, 0.0});
        holes.back().second = along - holes.back().first;
    }
    ASSERT_EQ(holes.size(), 4u);
    EXPECT_GT(holes[0].first, 5.0);
    EXPECT_NEAR(holes[1].first, 8.4, 0.15) << "a U of straight walls";
    EXPECT_NEAR(holes[2].second, 2.0, 0.15) << "a square";
    EXPECT_LT(holes[3].first + holes[3].second, 5.0 + 11.6);
}

TEST(FormatFrame, TheGateClosesSidesAndLeavesEars)
{
    FormatFrame::Gate gate;
    gate.penumbra = 1.0;
    gate.ops.push_back(FormatFrame::Gate::Round{0, 0.4});
    const RGBImage white(60, 50, Vec3f{1, 1, 1});
    EXPECT_EQ(gate.apply(white).data[0], 1.0f) << "a radius under half a pixel";
    gate.ops = {
        FormatFrame::Gate::Closed{NegativeFrame::bottom, 6.0, FormatFrame::Gate::Ear{15.0, 6.0, true}}};
    const RGBImage railed = gate.apply(white);
    EXPECT_EQ(railed.pixel(10, 46)[0], 0.0f);
    EXPECT_EQ(railed.pixel(10, 40)[0], 1.0f);
    EXPECT_EQ(railed.pixel(55, 46)[0], 1.0f) << "open towards the end";
    gate.ops = {FormatFrame::Gate::BandEars{NegativeFrame::left, 5.0, 4.0, 0.6}};
    const RGBImage banded = gate.apply(white);
    EXPECT_EQ(banded.pixel(2, 25)[0], 0.0f);
    EXPECT_EQ(banded.pixel(2, 1)[0], 1.0f) << "short of the corner";
    EXPECT_EQ(banded.pixel(8, 25)[0], 1.0f);
}

TEST(FilmEdge, PrintsWordNumberAndHolesInMillimetres)
{
    for (const Size picture : {Size{720, 480}, Size{480, 720}}) {
        RGBImage image(picture.width, picture.height, Vec3f{0.2f, 0.2f, 0.2f});
        RenderOptions options = styled(FrameStyle::wide);
        options.framePrint = true;
        options.framePrintText = "TAMLO";
        options.frameNumber = 12;
        const auto rebate = addRebate(image, filmOf(), options, {36'000.0, true});
        ASSERT_TRUE(rebate && rebate->plan.print);
        const bool lying = picture.width > picture.height;
        const auto& margins = rebate->plan.layout.margins;
        EXPECT_EQ(margins[lying ? 0 : 2], 125) << "5.5 mm of film and a clear strip";
        const auto lit = [&](std::int64_t x0, std::int64_t y0, std::int64_t x1, std::int64_t y1) {
            double sum = 0.0;
            for (std::int64_t y = y0; y < y1; ++y)
                for (std::int64_t x = x0; x < x1; ++x) sum += image.pixel(x, y)[0];
            return sum;
        };
        const std::int64_t w = image.width, h = image.height, m = 110;
        const double first = lying ? lit(0, 0, w, m) : lit(0, 0, m, h);
        const double second = lying ? lit(0, h - m, w, h) : lit(w - m, 0, w, h);
        EXPECT_GT(first, 100.0) << "the word";
        EXPECT_GT(second, 40.0) << "the number";

        const RGBImage laid = composite(RGBImage(w, h, Vec3f{0.1f, 0.1f, 0.1f}), *rebate, rebate->mask,
                                        Vec3f{0.9f, 0.9f, 0.9f}, Vec3f{0.0f, 0.0f, 0.0f});
        int holes = 0;
        bool inside = false;
        const std::int64_t across = 15 + static_cast<std::int64_t>((2.0 + 1.4) * 20.0);
        for (std::int64_t u = 0; u < (lying ? w : h); ++u) {
            const bool dark = (lying ? laid.pixel(u, across) : laid.pixel(across, u))[0] < 0.02f;
            holes += dark && !inside ? 1 : 0;
            inside = dark;
        }
        EXPECT_NEAR(holes, 8, 1) << "eight to a frame of 38 mm";
    }
    // A text beyond its place is cut at a character, whatever it is written in.
    RenderOptions options = styled(FrameStyle::wide);
    options.framePrint = true;
    for (int i = 0; i < 400; ++i) options.framePrintText += "плёнка ";
    RGBImage image(300, 200, Vec3f{});
    EXPECT_TRUE(addRebate(image, filmOf(), options, {36'000.0, true}));
    options.framePrintText.clear();
    EXPECT_EQ(framePlan({300, 200}, filmOf(), options, {})->print->word, "Portra 400") << "no maker's name";
    options.frameStyle = FrameStyle::thin;
    EXPECT_FALSE(framePlan({300, 200}, filmOf(), options, {})->print);
}

} // namespace
} // namespace tamlo::test
