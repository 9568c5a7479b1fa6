#include "app/project/process_rules.h"
#include "app/project/settings_clipboard.h"
#include "core/profiles/catalogue/profile_store.h"
#include "core/text/loc.h"
#include "tests/support/json_mutator.h"
#include "tests/support/rolls.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace tamlo::test {
namespace {

using Json = nlohmann::json;

class ClipboardTest : public testing::Test {
protected:
    ClipboardTest() { Loc::setOverride(Loc::Lang::en); }
    ~ClipboardTest() override { Loc::setOverride(std::nullopt); }

    auto settings(const std::string& text) const { return SettingsClipboard::decode(text, store_); }
    static Json envelope(const Json& process = Json::object(), const Json& version = 1)
    {
        return {{"tamloSettings", version}, {"process", process}};
    }
    static Json block(const Json& preset, const Json& version = 1)
    {
        return {{"tamloBlock", version}, {"title", "FILM"}, {"preset", preset}};
    }

    ProfileStore store_;
    ProcessSettings process_ = *frameNumber(1).process;
};

TEST_F(ClipboardTest, AnEnvelopeBringsWhatWasCopiedAndNoGeometry)
{
    EXPECT_EQ(settings(SettingsClipboard::encode(process_))->process, process_);
    ProcessSettings turned = process_;
    turned.options.rotate = 90;
    turned.options.crop = Crop{0, 0, 0.5, 0.5, 3};
    Json json = Json::parse(SettingsClipboard::encode(turned));
    EXPECT_EQ(json["process"]["options"]["rotate"], 0);
    EXPECT_EQ(json["app"], "Tamlo");
    json["process"]["options"]["mirror"] = true;
    json["process"]["options"]["crop"] = {{"x", 0}, {"y", 0}, {"w", 0.5}, {"h", 0.5}};
    EXPECT_EQ(settings(json.dump())->process, process_) << "written by hand";
}

TEST_F(ClipboardTest, OtherTextsAreNoEnvelope)
{
    for (const Json& no :
         {Json{{"process", Json::object()}}, envelope(Json::object(), 0), envelope(Json::object(), "1"),
          envelope(Json::object(), 1.5), envelope(3), Json{{"tamloSettings", 1}}, Json::array(),
          envelope({{"options", {{"grade", "x"}}}})})
        EXPECT_FALSE(settings(no.dump())) << no;
    EXPECT_FALSE(settings("grade=3"));
    EXPECT_FALSE(settings(""));
    EXPECT_TRUE(settings(envelope(Json::object(), 7).dump())) << "of a later version";
    EXPECT_TRUE(settings(envelope(Json::object(), 2.0).dump()));
    const std::string blocks =
        BlockClipboard::encode("FILM", BlockClipboard::preset("FILM", {PresetBlock::film}, process_));
    EXPECT_FALSE(settings(blocks)) << "each ignores the other";
    EXPECT_TRUE(BlockClipboard::decode(blocks));
    EXPECT_FALSE(BlockClipboard::decode(SettingsClipboard::encode(process_)));
    for (const Json& no : {block({{"blocks", Json::array()}}), block({{"blocks", {"roof"}}}), block(1),
                           block({{"blocks", "film"}}), block({{"blocks", {"film"}}}, -1),
                           Json{{"tamloBlock", 1}, {"preset", {{"blocks", {"film"}}}}}})
        EXPECT_FALSE(BlockClipboard::decode(no.dump())) << no;
}

TEST_F(ClipboardTest, ValuesComeIntoTheirRangeWithANote)
{
    const auto pasted =
        settings(envelope({{"options", {{"grade", 99}, {"social_px", 3}, {"crt_size_in", 10.5}}}}).dump());
    ASSERT_TRUE(pasted);
    EXPECT_EQ(pasted->process.options.grade, 5);
    EXPECT_EQ(pasted->process.options.socialPx, 16);
    EXPECT_EQ(pasted->process.options.crtZoom, 2);
    ASSERT_EQ(pasted->notes.size(), 1u);
    EXPECT_NE(pasted->notes[0].find("grade: 99 → 5; social_px: 3 → 16"), std::string::npos)
        << pasted->notes[0];
    EXPECT_TRUE(settings(envelope().dump())->notes.empty());
    const auto stamped = BlockClipboard::decode(
        block({{"blocks", {"print"}}, {"opts", {{"grade", -3}, {"push", 9}, {"border", "wide"}}}}).dump());
    ASSERT_TRUE(stamped);
    EXPECT_EQ(stamped->preset.opts.json(), Json({{"grade", 0.0}})) << "of its block, and of its type";
    EXPECT_EQ(stamped->notes.size(), 1u);
}

TEST_F(ClipboardTest, ABlockHoldsItsOwnValuesAlone)
{
    process_.options.push = 1;
    process_.paper = "bw_neutral";
    const Preset preset = BlockClipboard::preset("PRINTING", {PresetBlock::print}, process_);
    EXPECT_EQ(preset.name, "The PRINTING block");
    EXPECT_EQ(preset.paper, "bw_neutral");
    EXPECT_EQ(preset.stock, std::nullopt);
    EXPECT_FALSE(preset.opts.values.contains("push"));
    EXPECT_TRUE(preset.opts.values.contains("grade"));
    for (const PresetBlock one : PresetSchema::order()) {
        const auto read =
            BlockClipboard::decode(BlockClipboard::encode("T", BlockClipboard::preset("T", {one}, process_)));
        ASSERT_TRUE(read);
        ProcessSettings twice = process_;
        applyPreset(twice, read->preset, "T", store_);
        twice.presetName = process_.presetName;
        EXPECT_EQ(twice, process_) << "a block pasted where it came from";
    }
}

TEST_F(ClipboardTest, DamagedEnvelopesAreReadOrIgnored)
{
    const std::vector<std::string> corpus{
        SettingsClipboard::encode(process_),
        BlockClipboard::encode(
            "FILM", BlockClipboard::preset("FILM", {PresetBlock::film, PresetBlock::print}, process_))};
    const char* wanted = std::getenv("TAMLO_MUTATIONS");
    const std::uint64_t count = wanted ? std::strtoull(wanted, nullptr, 10) : 1000;
    std::uint64_t read = 0;
    for (std::uint64_t seed = 1; seed <= count; ++seed) {
        const std::string text = JsonMutator(seed, corpus).next();
        if (const auto pasted = settings(text)) {
            ++read;
            EXPECT_EQ(settings(SettingsClipboard::encode(pasted->process))->process, pasted->process) << seed;
        }
        if (const auto stamped = BlockClipboard::decode(text)) {
            ++read;
            ProcessSettings target;
            applyPreset(target, stamped->preset, stamped->title, store_);
        }
    }
    EXPECT_GT(read, count / 10);
}

} // namespace
} // namespace tamlo::test
