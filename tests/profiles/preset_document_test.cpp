#include "core/profiles/presets/preset_document.h"

#include "core/profiles/catalogue/profile_store.h"
#include "core/profiles/presets/process_settings.h"
#include "core/text/loc.h"

#include <gtest/gtest.h>

namespace tamlo {
namespace {

using nlohmann::json;

class PresetDocumentTest : public testing::Test {
protected:
    PresetDocumentTest() { Loc::setOverride(Loc::Lang::en); }
    ~PresetDocumentTest() override { Loc::setOverride(std::nullopt); }

    PresetDocument validated(const std::string& text, bool allowEmbedded = false) const
    {
        return PresetDocument::validate(PresetDocument::decode(text), store_, allowEmbedded);
    }

    ProfileStore store_;
};

TEST(PresetSchema, HoldsEveryKeyOnceAndTheTablesAreWhole)
{
    using namespace PresetSchema;
    std::vector<std::string> all;
    int ranges = 0, booleans = 0, choices = 0, profiles = 0;
    for (const PresetBlock block : order())
        for (std::string_view key : keys(block)) all.emplace_back(key);
    std::ranges::sort(all);
    EXPECT_EQ(std::ranges::adjacent_find(all), all.end()) << "one key in two blocks";
    EXPECT_EQ(all.size(), 85u);
    for (const std::string& key : all) {
        EXPECT_FALSE(isNever(key)) << key;
        const OptionRow* row = findOption(key);
        if (!row) {
            ++profiles; // stock, lens and paper are no options
            continue;
        }
        ranges += row->hasRange;
        booleans += row->type == OptionType::boolean;
        choices += !row->allowed.empty();
    }
    EXPECT_EQ(profiles, 3);
    EXPECT_EQ(ranges, 48);
    EXPECT_EQ(booleans, 9);
    EXPECT_EQ(choices, 17);
    // What no preset stores is all that is left of the options.
    for (const OptionRow& row : optionTable())
        EXPECT_NE(std::ranges::binary_search(all, std::string(row.key)), isNever(row.key)) << row.key;
    EXPECT_EQ(blocks(3).size(), 7u);
    EXPECT_EQ(blocks(4), order());
}

TEST(PresetSchema, SlugsAreFileNames)
{
    const std::pair<std::string, std::string> cases[] = {
        {"  Мой Уличный Взгляд ", "мой_уличный_взгляд"},
        {"Night / Day: \"No. 5\"?", "night__day_no._5"},
        {"...", "preset"},
        {"", "preset"},
        {"../../etc/passwd", "etcpasswd"},
        {"a....b", "a.b"},
        {"__.x._", "x"},
        {"tab\there\nand\u00A0there", "tab_here_and_there"},
        {std::string("nul\0byte", 8), "nulbyte"},
        {std::string(100, 'x'), std::string(80, 'x')},
    };
    for (const auto& [text, slug] : cases) EXPECT_EQ(PresetSchema::slug(text), slug) << text;
    std::string kept;
    for (int i = 0; i < 80; ++i) kept += "ё";
    EXPECT_EQ(PresetSchema::slug(kept + "ёёё"), kept) << "characters, not bytes";
}

struct Refusal {
    const char* text;
    const char* message;
};

TEST_F(PresetDocumentTest, RefusesInWords)
{
    const Refusal refusals[] = {
        {"[1]", "The file does not look like a preset: a JSON object was expected."},
        {R"({"format": "4"})", "The format field must be a number."},
        {R"({"format": 2.5})", "The format field must be a number."},
        {R"({"opts": [1]})", "The opts field must be an object."},
        {R"({"blocks": "print"})", "The blocks field must be a list."},
        {R"({"blocks": ["lab", 3]})", "The preset covers no block of the rack."},
        {R"({"opts": {"redscale": 1}})", "“redscale” must be true or false."},
        {R"({"opts": {"redscale": null}})", "“redscale” must be true or false."},
        {R"({"opts": {"grade": "hard"}})", "“grade” must be a number."},
        {R"({"opts": {"grade": null}})", "“grade” must be a number."},
        {R"({"opts": {"mat_core": "black"}})",
         "“mat_core”: the value “black” is not allowed. Allowed: cream, white"},
        {R"({"opts": {"coat": 1.50}})",
         "“coat”: the value “1.5” is not allowed. Allowed: brush, clean, none"},
        {R"({"opts": {"coat": true}})",
         "“coat”: the value “true” is not allowed. Allowed: brush, clean, none"},
        {R"({"opts": {"coat": []}})", "“coat”: the value “?” is not allowed. Allowed: brush, clean, none"},
        {R"({"opts": {"emboss_line": "none"}})",
         "“emboss_line”: the value “none” is not allowed. Allowed: double, double_tb, single, single_tb"},
        {R"({"opts": {"format": "120", "frame_size": "xpan"}})",
         "“frame_size”: the size “xpan” does not exist for the format “120”. Allowed: 645, 6x6, 6x7, 6x8, "
         "6x9, "
         "6x12, custom."},
        {R"({"stock": "kodak_nothing", "paper": "bw_neutral", "opts": {"filter_cut": "ultraviolet"}})",
         "The preset points at profiles that are not here: kodak_nothing (films), ultraviolet (filters). Ask "
         "the "
         "sender to save the preset again — user profiles must travel inside the file."},
        {R"({"stock": "portra400_ds"})",
         "The preset points at profiles that are not here: portra400_ds (films). Ask the sender to save the "
         "preset again — user profiles must travel inside the file."},
    };
    for (const Refusal& refusal : refusals) {
        SCOPED_TRACE(refusal.text);
        try {
            validated(refusal.text);
            ADD_FAILURE() << "accepted";
        } catch (const PresetError& error) {
            EXPECT_EQ(error.message(), refusal.message);
            EXPECT_FALSE(error.idTaken());
        }
    }
    try {
        PresetDocument::decode("{\"id\": ");
        FAIL();
    } catch (const PresetError& error) {
        EXPECT_TRUE(error.message().starts_with("The file cannot be read as JSON (")) << error.message();
    }
}

TEST_F(PresetDocumentTest, NotesWhatItChangesAndKeepsWhatItDoesNotKnow)
{
    const PresetDocument document = validated(
        R"({"format": 7, "name": "Later", "blocks": ["print", "hologram", "film"], "future": {"a": [1, 2]},
            "opts": {"seed": 5, "grade": 9, "print_ev": -4.5, "border": 0.1, "wobble": "yes", "push": 1}})");
    EXPECT_EQ(
        document.warnings,
        (std::vector<std::string>{
            "The preset was made in a newer version (format 7), and some settings will not be applied here. "
            "The file is not damaged: unknown fields are kept.",
            "Unknown blocks, skipped: hologram", "“seed” is not stored in presets, the value was dropped.",
            "Values outside this version's range, clamped: grade: 9 → 5; print_ev: -4.5 → -4",
            "Unknown settings are kept in the file but not applied: push, wobble"}));
    const json saved = json::parse(document.encoded());
    EXPECT_EQ(saved.at("future"), json::parse(R"({"a": [1, 2]})"));
    EXPECT_EQ(saved.at("format"), 7);
    EXPECT_EQ(saved.at("blocks"), json::parse(R"(["film", "print"])")) << "in the order of the darkroom";
    EXPECT_EQ(saved.at("opts"),
              json::parse(R"({"grade": 5.0, "print_ev": -4.0, "border": 0.1, "wobble": "yes",
                                                "push": 1})"));
    EXPECT_EQ(document.opts().json(), json::parse(R"({"grade": 5.0, "print_ev": -4.0, "border": 0.1})"));
    EXPECT_TRUE(document.partial());
}

struct Migration {
    const char* text;
    const char* blocks; ///< of the cleaned document
    const char* opts;   ///< what is applied
    bool unknown;       ///< a note tells of settings that are not applied
};

TEST_F(PresetDocumentTest, BringsOlderFormatsUpToDate)
{
    const Migration cases[] = {
        {R"({"format": 1, "blocks": ["print"], "opts": {"mat": "classic"}})", R"(["print", "finish"])",
         R"({"mat": "classic"})", false},
        {R"({"blocks": ["print"], "opts": {"mat": "classic"}})", R"(["print", "finish"])",
         R"({"mat": "classic"})", false},
        {R"({"format": 2, "blocks": ["print"], "opts": {"mat": "classic"}})", R"(["print"])", "{}", true},
        {R"({"format": 1, "blocks": ["film"]})", R"(["film"])", "{}", false},
        {R"({"format": 2, "opts": {"emboss_line": true}})",
         R"(["source", "light", "optics", "filter", "film", "develop", "print", "finish"])",
         R"({"emboss_line": "double"})", false},
        {R"({"format": 2, "blocks": ["finish"], "opts": {"emboss_line": false}})", R"(["finish"])", "{}",
         false},
        {R"({"format": 3, "blocks": ["filter", "finish"], "opts": {"wb_temp": 40}})",
         R"(["filter", "finish"])", R"({"wb_temp": 40})", false},
        {R"({"format": 4, "blocks": ["filter", "finish"], "opts": {"wb_temp": 40}})",
         R"(["filter", "finish"])", "{}", true},
        {R"({"format": 3, "blocks": ["filter", "print"], "opts": {"wb_temp": 40}})", R"(["filter", "print"])",
         R"({"wb_temp": 40})", false},
        {R"({"format": 3, "blocks": ["print"], "opts": {"wb_temp": 40}})", R"(["print"])", "{}", true},
        {R"({"format": 4, "blocks": ["finish"], "opts": {"border": 0.1}})", R"(["finish"])",
         R"({"border": 0.1})", false},
        {R"({"format": 4, "blocks": [], "opts": {}})", nullptr, nullptr, false},
        {R"({"opts": null, "blocks": null})",
         R"(["source", "light", "optics", "filter", "film", "develop", "print", "finish"])", "{}", false},
        {R"({"format": 4, "blocks": ["film"], "opts": {"frame_size": "custom", "format": "135"}})",
         R"(["film"])", R"({"frame_size": "custom", "format": "135"})", false},
        {R"({"format": 4, "blocks": ["film"], "opts": {"frame_size": "8x10", "format": "sheet"}})",
         R"(["film"])", R"({"frame_size": "8x10", "format": "sheet"})", false},
    };
    for (const Migration& c : cases) {
        SCOPED_TRACE(c.text);
        if (!c.blocks) {
            EXPECT_THROW(validated(c.text), PresetError);
            continue;
        }
        const PresetDocument document = validated(c.text);
        EXPECT_EQ(document.json.at("blocks"), json::parse(c.blocks));
        EXPECT_EQ(document.opts().json(), json::parse(c.opts));
        const bool told = std::ranges::any_of(
            document.warnings, [](const std::string& note) { return note.starts_with("Unknown settings"); });
        EXPECT_EQ(told, c.unknown);
        // What was cleaned once stays as it is.
        const PresetDocument again = validated(document.encoded());
        EXPECT_EQ(again.json, document.json);
    }
}

TEST_F(PresetDocumentTest, EmbeddedProfilesCountOnlyWhereAllowed)
{
    const std::string text =
        R"({"stock": "my_film", "embedded": {"films": {"my_film": {"type": "bw"}}}, "opts": {"filter_cut": "mine"}})";
    EXPECT_THROW(validated(text, false), PresetError);
    try {
        validated(text, true);
        FAIL() << "the filter does not travel";
    } catch (const PresetError& error) {
        EXPECT_NE(error.message().find("mine (filters)"), std::string::npos);
        EXPECT_EQ(error.message().find("my_film"), std::string::npos);
    }
}

TEST_F(PresetDocumentTest, EveryCarriedPresetIsWhole)
{
    const std::vector<std::string> ids = store_.listPresets();
    ASSERT_EQ(ids.size(), 47u);
    std::set<double> orders;
    for (const std::string& id : ids) {
        SCOPED_TRACE(id);
        const PresetDocument document = store_.presetDocument(id);
        EXPECT_EQ(document.warnings, std::vector<std::string>{});
        EXPECT_TRUE(document.builtin);
        EXPECT_EQ(document.id(), id);
        EXPECT_TRUE(orders.insert(document.order()).second);
        const auto& groups = PresetGroups::order();
        const auto group = std::ranges::find(groups, document.group());
        ASSERT_NE(group, groups.end());
        EXPECT_EQ(std::floor(document.order() / 100), static_cast<double>(group - groups.begin()));
        EXPECT_FALSE(document.partial());
        EXPECT_EQ(document.opts().json(), document.optsJSON()) << "each key is of a block and has its type";
        for (const auto& [key, value] : document.optsJSON().items()) {
            if (id == "tintype") continue; // says its values in full
            EXPECT_TRUE(presetOpts(RenderOptions{}).values.empty());
            RenderOptions options;
            apply(options, document.opts(), {});
            EXPECT_TRUE(presetOpts(options).values.contains(key)) << key << " is what it is anyway";
        }
        for (const char* key : {"name", "name_en", "notes", "notes_en"})
            EXPECT_FALSE(document.json.at(key).get<std::string>().empty()) << key;
        const FilmProfile film = store_.film(document.stock());
        const PaperProfile paper = store_.paper(document.paper());
        if (paper.filmTypes) {
            EXPECT_NE(std::ranges::find(*paper.filmTypes, film.type), paper.filmTypes->end());
        }
        const json& format = memberOf(document.optsJSON(), "format");
        if (film.formats && format.is_string()) {
            EXPECT_NE(std::ranges::find(*film.formats, format.get<std::string>()), film.formats->end());
        }
    }
    const json tintype = store_.presetDocument("tintype").optsJSON();
    EXPECT_EQ(tintype, json::parse(R"({"stop": 0.5, "ev": 0, "format": "plate", "frame_size": "sixth_plate",
                                       "dev": "iron", "intensify": 0, "plate_pour": 1.4, "print_ev": 0.3})"));
}

TEST_F(PresetDocumentTest, ApplyingIsAStampOnItsBlocks)
{
    ProcessSettings frame;
    frame.options.grade = 4;
    frame.options.push = 2;
    frame.options.wbTemp = 30;
    frame.options.seed = 7;
    frame.options.paperBase = "cream";
    frame.modified = true;
    const PresetDocument document =
        validated(R"({"id": "p", "blocks": ["print", "film"], "stock": "trix400", "lens": "imagon",
                      "opts": {"print_ev": 0.5, "format": "120", "push": 1, "stamp_text": "x"}})");
    frame.apply(document.typed(document.blocks()), "P");
    EXPECT_EQ(frame.stock, "trix400");
    EXPECT_EQ(frame.lens, "modern_clean") << "the lens is of no block of the preset";
    EXPECT_EQ(frame.paper, "") << "a print block without a paper leaves the choice to the film";
    EXPECT_EQ(frame.options.printEv, 0.5);
    EXPECT_EQ(frame.options.grade, 2) << "a block that is stamped is set to its defaults first";
    EXPECT_EQ(frame.options.paperBase, std::nullopt);
    EXPECT_EQ(frame.options.format, FilmFormat::f120);
    EXPECT_EQ(frame.options.push, 2) << "development is left alone";
    EXPECT_EQ(frame.options.wbTemp, 30);
    EXPECT_EQ(frame.options.seed, 7);
    EXPECT_EQ(frame.presetName, "p");
    EXPECT_FALSE(frame.modified);
}

TEST(PresetOpts, AreSparseAndComeBack)
{
    RenderOptions options;
    options.grade = 3.5;
    options.filterCut = "red_29";
    options.stampText = "";
    options.plateMark = false;
    options.dev = Development::bleachBypass;
    options.seed = 5;
    options.rotate = 90;
    options.sheetCm = 40;
    const PresetOpts opts = presetOpts(options);
    EXPECT_EQ(opts.json(), json::parse(R"({"grade": 3.5, "filter_cut": "red_29", "plate_mark": false,
                                           "dev": "bleach_bypass", "sheet_cm": 40.0})"));
    RenderOptions back;
    apply(back, opts, {"grade"});
    EXPECT_EQ(back.grade, 2) << "what the user set by hand stays";
    apply(back, opts, {});
    EXPECT_EQ(presetOpts(back), opts);
    reset(back, {PresetBlock::print, PresetBlock::finish});
    EXPECT_EQ(presetOpts(back).json(), json::parse(R"({"filter_cut": "red_29", "dev": "bleach_bypass"})"));
    // A value of another type says nothing.
    EXPECT_EQ(presetOptsFrom(json::parse(R"({"stamp_text": 5, "paper_base": null, "relief": 1})"),
                             PresetSchema::keys(PresetSchema::order()))
                  .json(),
              json::parse(R"({"relief": 1})"));
}

} // namespace
} // namespace tamlo
