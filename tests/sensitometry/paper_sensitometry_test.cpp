// What handmade papers measure under a step tablet, against the papers' known tones and against each other.
#include "core/image/tamlo_error.h"
#include "core/profiles/catalogue/profile_store.h"
#include "core/sensitometry/paper_sensitometry.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace tamlo::test {
namespace {

Sensitometry::PaperReport measured(const char* id, const RenderOptions& options = {})
{
    return Sensitometry::measurePaper(ProfileStore::shared().paper(id), options);
}

TEST(PaperSensitometry, ReadsTheTabletsTonesOfAPaper)
{
    RenderOptions smooth;
    smooth.printTexture = 0.0;
    const auto soft = measured("platinum", smooth);
    ASSERT_EQ(soft.density.size(), 21u);
    EXPECT_TRUE(std::is_sorted(soft.density.rbegin(), soft.density.rend()))
        << "more density holds light back";
    EXPECT_NEAR(soft.dmax - soft.dmin, 1.34, 0.01);
    EXPECT_NEAR(soft.density[10], 0.745, 0.01) << "the middle step is a grey card";
    EXPECT_FALSE(soft.structure);

    smooth.grade = 4.0;
    const auto hard = measured("platinum", smooth);
    EXPECT_GT(*hard.gamma, 1.2 * *soft.gamma);
    EXPECT_LT(*hard.isoRange, *soft.isoRange);
    smooth.paperBase = "buff";
    EXPECT_GT(measured("platinum", smooth).dmin, soft.dmin + 0.03);
}

TEST(PaperSensitometry, ReadsTheStructureOfAnEvenSheet)
{
    const auto plain = measured("platinum").structure.value();
    RenderOptions rough;
    rough.printTexture = 2.0;
    const auto twice = measured("platinum", rough).structure.value();
    for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(twice.rms[i] / plain.rms[i], 2.0, 0.1) << i;
    EXPECT_GT(plain.rms[0], 1.2 * plain.rms[2]) << "fibre averages out";
    const auto brushed = measured("bromoil").structure.value();
    EXPECT_GT(brushed.sizeMm, 3.0 * plain.sizeMm) << "a brush is no fibre";
    EXPECT_TRUE(measured("gum_tricolor").structure);
}

TEST(PaperSensitometry, RefusesWhatIsNotMadeByHand)
{
    EXPECT_THROW(measured("color_ra4"), TamloError);
}

} // namespace
} // namespace tamlo::test
