// The printing structure as a measure: where it resolves, how far a picture grows for it, what the user is
// told.
#include "core/process/raster/raster.h"

#include "core/process/raster/raster_note.h"
#include "core/process/raster/tube_geometry.h"
#include "core/profiles/catalogue/profile_store.h"
#include "core/text/loc.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace tamlo::test {
namespace {

using namespace ReproPrint;

constexpr double kPrintUm = 300'000.0; // 30 cm

RasterPlan planAt(const char* paper, std::int64_t longPx, const RenderOptions& options = {})
{
    return planRaster(ProfileStore::shared().paper(paper), options, kPrintUm / static_cast<double>(longPx),
                      {longPx, longPx * 2 / 3});
}

TEST(Raster, GrowsAPrintOfThirtyCentimetres)
{
    struct Case {
        const char* paper;
        std::int64_t longPx;
        double grow;
        int ss;
    };
    constexpr double kAny = 0.0;
    for (const Case& c : std::initializer_list<Case>{
             {"offset_newsprint", 6545, 1.0, 1},
             {"offset_newsprint", 2048, 2.0, 2},
             {"offset_newsprint", 6000, 1.0, 1}, // would grow by 0.4 %
             {"offset_coated", 6000, kAny, 1},
             {"offset_book", 6000, 2.0, 2},
             {"inkjet_plain", 6000, kAny, 1},
             {"inkjet_photo", 6000, 1.0, 1},
             {"offset_coated", 2048, 1.0, 1},
             {"offset_book", 2048, 1.0, 1},
             {"inkjet_plain", 2048, 1.0, 1},
             {"inkjet_photo", 2048, 1.0, 1},
             {"color_ra4", 6000, 1.0, 1},
         }) {
        const RasterPlan plan = planAt(c.paper, c.longPx);
        if (c.grow != kAny) {
            EXPECT_DOUBLE_EQ(plan.grow, c.grow) << c.paper << c.longPx;
        }
        EXPECT_EQ(plan.ss, c.ss) << c.paper << c.longPx;
    }
    EXPECT_NEAR(planAt("offset_coated", 6000).grow, 1.772, 5e-4);
    EXPECT_NEAR(planAt("inkjet_plain", 6000).grow, 4.0 / 3.0, 1e-12);
    RenderOptions off;
    off.reproRaster = "off";
    EXPECT_EQ(planAt("offset_newsprint", 2048, off).grow, 1.0);
    EXPECT_EQ(planAt("offset_newsprint", 2048, off).ss, 1);
}

/// What growth promises, at sizes where the plan's comparisons meet their limits by rounding alone.
TEST(Raster, ReachesItsTargetAtAnySize)
{
    std::mt19937 engine(7);
    const PaperProfile offset = ProfileStore::shared().paper("offset_coated");
    const PaperProfile inkjet = ProfileStore::shared().paper("inkjet_plain");
    for (int round = 0; round < 20'000; ++round) {
        const std::int64_t longPx = 500 + static_cast<std::int64_t>(engine() % 17'000);
        const double pxUm =
            (50'000.0 + static_cast<double>(engine() % 1'500'000)) / static_cast<double>(longPx);
        const bool drops = round % 2 == 1;
        const PaperProfile& paper = drops ? inkjet : offset;
        const RasterPlan plan = planRaster(paper, {}, pxUm, {longPx * 2 / 3, longPx});
        ASSERT_GE(plan.grow, 1.0);
        ASSERT_LE(plan.grow, growMax);
        const Size grown = grownSize({longPx * 2 / 3, longPx}, plan.grow);
        ASSERT_LE(plan.grow > 1.0 ? grown.height : 0, growLongMax);
        ASSERT_EQ(plan.longPx, grown.height);
        const double free = std::min(plan.target / plan.cell0,
                                     static_cast<double>(growLongMax) / static_cast<double>(longPx));
        if (free <= 1.01 || free > growMax) continue;
        // Nothing but its target limits this print: it grows, and needs no factor above.
        if (plan.target / plan.cell0 <= free) {
            ASSERT_NEAR(plan.cell, plan.target, 1e-8) << longPx << " " << pxUm;
            ASSERT_EQ(plan.ss, 1) << longPx << " " << pxUm;
        }
    }
}

TEST(Raster, ScreensAndDropsHaveTheirSize)
{
    const auto of = [](const char* paper, double pxUm) {
        return *raster(ProfileStore::shared().paper(paper), pxUm, {});
    };
    EXPECT_NEAR(of("offset_newsprint", 1.0).sizeUm, 298.8235, 1e-4);
    EXPECT_TRUE(of("offset_newsprint", 99.6).resolved);
    EXPECT_FALSE(of("offset_newsprint", 99.7).resolved);
    EXPECT_EQ(of("inkjet_photo", 1.0).sizeUm, 23.0);
    EXPECT_TRUE(of("inkjet_photo", 23.0).resolved);
    EXPECT_FALSE(of("inkjet_photo", 23.1).resolved);
    EXPECT_EQ(of("crt_mono", 1.0).cellPx, 0.0); // no mask
    EXPECT_FALSE(raster(ProfileStore::shared().paper("bw_neutral"), 50.0, {}));

    // Profiles that pass for profiles: finite sizes and plans, whatever they say.
    for (const double value : {0.0, -1.0, 1e-9, 1e9, 1e300}) {
        PaperProfile paper = ProfileStore::shared().paper("offset_newsprint");
        paper.offset->lpi = value;
        const RasterPlan plan = planRaster(paper, {}, 1e-9, {1, 30'000});
        EXPECT_TRUE(std::isfinite(plan.cell) && plan.grow == 1.0 && plan.ss >= 1 && plan.ss <= ssMax);
    }
}

TEST(Raster, TubesCountTheLinesInView)
{
    const PaperProfile tube = ProfileStore::shared().paper("crt_tv");
    RenderOptions near;
    near.crtZoom = 4.0;
    const double lines = CRTScreen::screen(tube, {}).lines;
    EXPECT_EQ(CRTScreen::screen(tube, near).lines, lines / 4.0);
    EXPECT_NEAR(CRTScreen::screen(tube, {}).heightMm, CRTScreen::screen(tube, {}).longCm * 7.5, 1e-9); // 4:3
    RenderOptions old;
    old.crtSizeIn = 7.0;
    EXPECT_NEAR(CRTScreen::screen(tube, old).zoom, 3.0, 1e-12);

    // A mono tube grows for its lines alone; a tenth is not worth it, and nothing is computed above it.
    PaperProfile mono = ProfileStore::shared().paper("crt_mono");
    mono.crt->lines = 350;
    EXPECT_EQ(planRaster(mono, {}, 100.0, {2048, 1365}).grow, 1.0);
    EXPECT_NEAR(planRaster(mono, {}, 100.0, {1500, 1000}).grow, 1.4, 1e-12);
    EXPECT_EQ(planRaster(mono, near, 100.0, {1500, 1000}).grow, 1.0);
    EXPECT_EQ(planRaster(tube, {}, 200.0, {2048, 1365}).ss, 1);
}

TEST(Raster, TellsTheUser)
{
    Loc::setOverride(Loc::Lang::en);
    const auto note = [](const char* paper, std::int64_t longPx) {
        return rasterNote(ProfileStore::shared().paper(paper), {}, kPrintUm / static_cast<double>(longPx),
                          {longPx, longPx * 2 / 3})
            .value_or("");
    };
    EXPECT_EQ(note("offset_newsprint", 6545),
              "Screen 85 lpi — cell 6.5 px of the master: the dots show on the master");
    EXPECT_EQ(note("offset_coated", 6000),
              "Screen 150 lpi — the master grows to 10630 px, cell 6: the dots show on the master");
    EXPECT_EQ(note("inkjet_photo", 6000),
              "Drop 18 µm — 0.5 px of the master: at this print size the dots are "
              "not resolved, only the colour of the inks stays");
    EXPECT_EQ(note("color_ra4", 6000), "");
    Loc::setOverride(std::nullopt);
}

} // namespace
} // namespace tamlo::test
