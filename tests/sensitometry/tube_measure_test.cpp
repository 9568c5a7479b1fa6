// The catalogue's tubes as a bench reads them: lines, mask and tone.
#include "core/profiles/catalogue/profile_store.h"
#include "core/sensitometry/tube_measure.h"

#include <gtest/gtest.h>

namespace tamlo::test {
namespace {

TEST(TubeMeasure, ReadsLinesMaskAndTone)
{
    struct Case {
        const char* paper;
        double pitchMm, maskPerMm, least, most, grey;
    };
    for (const Case& c :
         {Case{"crt_tv", 0.556, 1.604, 0.1, 0.4, 0.28}, Case{"crt_trinitron", 0.253, 3.846, 0.05, 0.45, 0.21},
          Case{"crt_mono", 0.523, 0.0, 0.2, 0.5, 0.18}}) {
        const auto report = Sensitometry::measureTube(ProfileStore::shared().paper(c.paper), RenderOptions());
        ASSERT_TRUE(report) << c.paper;
        EXPECT_NEAR(report->linePitchMm, c.pitchMm, 0.01 * c.pitchMm) << c.paper;
        EXPECT_TRUE(report->ripple > c.least && report->ripple < c.most) << c.paper << " " << report->ripple;
        if (c.maskPerMm > 0.0) {
            EXPECT_NEAR(report->maskCyclesPerMm.value_or(0.0), c.maskPerMm, 0.01 * c.maskPerMm) << c.paper;
        }
        EXPECT_NEAR(report->light[1], c.grey, 0.03) << c.paper;
    }
    EXPECT_FALSE(Sensitometry::measureTube(ProfileStore::shared().paper("color_ra4"), RenderOptions()));
}

} // namespace
} // namespace tamlo::test
