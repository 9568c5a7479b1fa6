#include "app/project/process_rules.h"
#include "core/profiles/catalogue/profile_store.h"
#include "core/text/loc.h"

#include <gtest/gtest.h>

namespace tamlo {
namespace {

class ProcessRulesTest : public testing::Test {
protected:
    ProcessRulesTest() { Loc::setOverride(Loc::Lang::en); }
    ~ProcessRulesTest() override { Loc::setOverride(std::nullopt); }

    std::string inForce(const std::string& stock, const std::string& paper) const
    {
        ProcessSettings settings;
        settings.stock = stock;
        settings.paper = paper;
        return resolvedPaper(settings, store_);
    }

    ProfileStore store_;
};

TEST_F(ProcessRulesTest, APaperStandsWhereTheFilmCanPrintOnIt)
{
    EXPECT_EQ(inForce("portra400", "color_ra4"), "color_ra4");
    EXPECT_EQ(inForce("portra400", ""), "color_scan");
    EXPECT_EQ(inForce("trix400", ""), "bw_neutral");
    EXPECT_EQ(inForce("portra400", "ambrotype"), "color_scan") << "a plate's paper under a negative";
    EXPECT_EQ(inForce("collodion_wet", "ambrotype"), "ambrotype");
    EXPECT_EQ(inForce("portra400", "gone"), "gone") << "the error appears where it is used";
    EXPECT_EQ(inForce("gone", ""), "color_scan");
    EXPECT_EQ(inForce("gone", "ambrotype"), "ambrotype");
}

TEST_F(ProcessRulesTest, ABlockGoesBackAloneAndAllBlocksGoBackToAFreshProcess)
{
    ProcessSettings settings;
    settings.stock = "trix400";
    settings.paper = "bw_neutral";
    settings.options.grade = 4;
    settings.options.sheetCm = 50;
    settings.options.push = 1;
    ProcessSettings printed = settings;
    resetBlocks(printed, {PresetBlock::print});
    EXPECT_EQ(printed.paper, "color_scan");
    EXPECT_EQ(printed.stock, "trix400");
    EXPECT_EQ(printed.options.grade, 2);
    EXPECT_EQ(printed.options.sheetCm, 30) << "as a frame's first change has it";
    EXPECT_EQ(printed.options.push, 1);
    resetBlocks(settings, PresetSchema::order());
    ProcessSettings fresh = ProcessSettings::fresh();
    fresh.options.srcLights = 0; // belongs to the source: no block touches it
    EXPECT_EQ(settings, fresh);
}

TEST_F(ProcessRulesTest, EveryPresetStampsAndClearsItsScreenSize)
{
    for (const std::string& id : store_.listPresets()) {
        const PresetDocument document = store_.presetDocument(id);
        ProcessSettings settings = ProcessSettings::fresh();
        settings.paper = "carbon";
        applyPreset(settings, document.typed(document.blocks()), "name", store_);
        EXPECT_EQ(settings.options.crtSizeIn, std::nullopt) << id;
        EXPECT_FALSE(settings.modified) << id;
        EXPECT_FALSE(summary(settings, store_).empty()) << id;
    }
}

TEST_F(ProcessRulesTest, ShortTexts)
{
    ProcessSettings settings = ProcessSettings::fresh();
    settings.paper = "cyanotype";
    EXPECT_EQ(summary(settings, store_), "Neutral · Cyanotype");
    EXPECT_EQ(devSummary(settings), "");
    settings.options.dev = Development::stand;
    settings.options.push = 1.5;
    EXPECT_EQ(devSummary(settings), "Stand, push +1.5");
}

} // namespace
} // namespace tamlo
