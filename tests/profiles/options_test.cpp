#include "core/profiles/options/option_table.h"

#include "core/image/tamlo_error.h"
#include "core/profiles/formats/decode_error.h"
#include "core/profiles/formats/json_codec.h"
#include "core/profiles/formats/nearest_text.h"
#include "core/text/loc.h"

#include <gtest/gtest.h>

#include <set>

namespace tamlo {
namespace {

TEST(OptionTable, Has97RowsWithKeysOfTheirOwn)
{
    std::set<std::string> keys;
    for (const OptionRow& row : optionTable()) {
        EXPECT_TRUE(keys.insert(row.key).second) << row.key;
        for (const Loc::Lang lang : {Loc::Lang::en, Loc::Lang::ru})
            EXPECT_NE(Loc::value("option." + std::string(row.key), lang).value_or(""), "") << row.key;
        EXPECT_EQ(findOption(row.key), &row);
    }
    EXPECT_EQ(keys.size(), 97u);
}

/// A value that is not the default, one for each row.
Json otherValue(const OptionRow& row)
{
    Json now;
    row.write(RenderOptions(), now);
    if (row.type == OptionType::boolean) return now.is_null() || !now.get<bool>();
    if (row.type == OptionType::numbers) return {0.1, 0.2, 0.3};
    if (row.type == OptionType::seeds) return {{"film", 3}};
    if (row.type == OptionType::crop) return {{"x", 0.1}, {"y", 0.2}, {"w", 0.3}, {"h", 0.4}, {"angle", 1.5}};
    if (row.type == OptionType::integer && !row.allowed.empty()) return 90;
    if (row.type == OptionType::integer) return 77;
    if (row.type == OptionType::number) return row.low + 0.375 * (row.high - row.low);
    if (row.allowed.empty()) return "some_text";
    return std::string(now == row.allowed.back() ? row.allowed.front() : row.allowed.back());
}

TEST(OptionsJson, EveryKeyRoundTripsUnderItsNameAndItsOlderName)
{
    const RenderOptions defaults;
    EXPECT_EQ(decodeOptions(encodeOptions(defaults)), defaults);
    EXPECT_EQ(decodeOptions("{}"), defaults);
    for (const OptionRow& row : optionTable()) {
        SCOPED_TRACE(row.key);
        const Json value = otherValue(row);
        const RenderOptions changed = optionsFromJson({{row.key, value}});
        EXPECT_NE(changed, defaults);
        EXPECT_EQ(optionsToJson(changed).at(row.key), value);
        EXPECT_EQ(decodeOptions(encodeOptions(changed)), changed);
        const std::string older = legacyCodingName(row.key);
        EXPECT_EQ(optionsFromJson({{older, value}}), changed);
        EXPECT_NO_THROW(checkOptions(changed));
        if (older == row.key) continue;
        Json now;
        row.write(defaults, now);
        const RenderOptions both = optionsFromJson({{row.key, value}, {older, now}});
        EXPECT_EQ(both, changed) << "the snake_case key must win";
    }
    EXPECT_NO_THROW(checkOptions(defaults));
}

TEST(OptionsJson, OlderNames)
{
    EXPECT_EQ(legacyCodingName("print_cm"), "printCm");
    EXPECT_EQ(legacyCodingName("format_120_cm"), "format_120Cm");
    EXPECT_EQ(legacyCodingName("c41_temp_c"), "c41TempC");
    EXPECT_EQ(legacyCodingName("social_crop45"), "socialCrop45");
    EXPECT_EQ(legacyCodingName("ev"), "ev");
}

TEST(OptionsJson, UnknownTextsOfThreeKeysFallBackInSilence)
{
    const RenderOptions options =
        decodeOptions(R"({"src_exposure": "bright", "wb_mode": "sun", "format": "110", "grade": 3})");
    RenderOptions expected;
    expected.grade = 3;
    EXPECT_EQ(options, expected);
}

TEST(OptionsJson, ANullFormatIsTheFilmsOwnAndSurvivesARoundTrip)
{
    const RenderOptions options = decodeOptions(R"({"format": null, "grade": null, "sheet_cm": null})");
    EXPECT_FALSE(options.format.has_value());
    EXPECT_EQ(options.grade, 2);
    EXPECT_EQ(decodeOptions(encodeOptions(options)), options);
}

TEST(OptionsJson, RenderTimeFieldsAreNeverWritten)
{
    RenderOptions options;
    options.sourceGain = 2;
    options.formatLongUm = 3;
    options.grainZone = Grain::GrowthZone::full;
    options.borderPx = options.borderPxBottom = options.plateInsetPx = 4;
    options.frameWhitePx = options.matGripsPx = options.picInsetPx = std::vector<double>{1};
    options.blackProbe = true;
    options.printPxUm = 5;
    EXPECT_EQ(optionsToJson(options), optionsToJson(RenderOptions()));
}

TEST(OptionsJson, WrongTypesNameTheirKey)
{
    const std::pair<const char*, const char*> cases[] = {
        {R"({"grade": "hard"})", "grade"},
        {R"({"seed": 2.5})", "seed"},
        {R"({"mirror": 1})", "mirror"},
        {R"({"dev": "rodinal"})", "dev"},
        {R"({"wb_mode": 4})", "wb_mode"},
        {R"({"crop": {"x": 0, "y": 0, "w": 1}})", "crop.h"},
        {R"({"seed_variants": {"film": "a"}})", "seed_variants.film"},
        {R"({"card_outside": [1, "b"]})", "card_outside[1]"},
        {R"([1])", ""},
        {R"({"ev": )", ""},
    };
    for (const auto& [text, path] : cases) {
        try {
            decodeOptions(text);
            ADD_FAILURE() << text;
        } catch (const DecodeError& error) {
            EXPECT_EQ(error.path(), path) << text;
        }
    }
    EXPECT_EQ(decodeOptions(R"({"crop": {"x": 0, "y": 0, "w": 0.5, "h": 1}})").crop, (Crop{0, 0, 0.5, 1, 0}));
}

TEST(SetOption, TakesEveryTypeOfText)
{
    RenderOptions options;
    const std::pair<const char*, const char*> settings[] = {{"ev", "+1.5"},
                                                            {"grade", "3"},
                                                            {"mirror", "yes"},
                                                            {"dev", "stand"},
                                                            {"format", "plate"},
                                                            {"rotate", "270"},
                                                            {"seed", "-7"},
                                                            {"filter_cut", "red_29"},
                                                            {"card_outside", "0.1,0.2,0.3"},
                                                            {"crop", "0,0.25,0.5,0.75,-2"},
                                                            {"seed_variants", "film=1,table=2"}};
    for (const auto& [key, value] : settings) setOption(options, key, value);

    RenderOptions expected;
    expected.ev = 1.5;
    expected.grade = 3;
    expected.mirror = true;
    expected.dev = Development::stand;
    expected.format = FilmFormat::plate;
    expected.rotate = 270;
    expected.seed = -7;
    expected.filterCut = "red_29";
    expected.cardOutside = std::vector<double>{0.1, 0.2, 0.3};
    expected.crop = Crop{0, 0.25, 0.5, 0.75, -2};
    expected.seedVariants = SeedVariants{{"film", 1}, {"table", 2}};
    EXPECT_EQ(options, expected);

    setOption(options, "filter_cut", "");
    setOption(options, "format", "");
    EXPECT_FALSE(options.filterCut || options.format);
}

TEST(SetOption, RefusesInOneSentenceThatNamesWhatIsAllowed)
{
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"grade", "9", R"(the option “grade” must be a number from 0 to 5, not “9”)"},
        {"grade", "hard", R"(the option “grade” must be a number from 0 to 5, not “hard”)"},
        {"grade", "3x", "from 0 to 5"},
        {"grade", "", "from 0 to 5"},
        {"grade", "nan", "from 0 to 5"},
        {"ev", "inf", "from -6 to 6"},
        {"ev", "1,5", "from -6 to 6"},
        {"seed", "2.5", "an integer"},
        {"seed", "99999999999999999999", "an integer"},
        {"rotate", "45", R"("0", "90", "180" or "270")"},
        {"mirror", "maybe", "true or false"},
        {"wb_mode", "sun", R"("film", "asshot" or "custom")"},
        {"dev", "rodinal", R"("standard", "acutance")"},
        {"card_outside", "1,2", "three numbers"},
        {"card_outside", "1,,2", "three numbers"},
        {"crop", "0,0,1", "x,y,w,h"},
        {"crop", "0,0,0,1", "size above 0"},
        {"seed_variants", "film", "STREAM=COUNT"},
        {"seed_variants", "grain=1", R"("film", "frame")"},
        {"gradee", "2", R"(there is no option “gradee”; the nearest is “grade”)"},
        {"printCm", "20", "“print_cm”"},
    };
    for (const auto& [key, value, part] : cases) {
        RenderOptions options;
        try {
            setOption(options, key, value);
            ADD_FAILURE() << key << "=" << value;
        } catch (const TamloError& error) {
            EXPECT_EQ(error.kind(), TamloError::Kind::invalidArgument);
            EXPECT_NE(std::string(error.what()).find(part), std::string::npos) << error.what();
        }
        EXPECT_EQ(options, RenderOptions());
    }
}

TEST(CheckOptions, FindsAValueOutOfItsRange)
{
    RenderOptions options;
    options.pickup = 0.01;
    EXPECT_THROW(checkOptions(options), TamloError);
    options.pickup = 0.05;
    EXPECT_NO_THROW(checkOptions(options));
    options.stampSize = "xxl";
    EXPECT_THROW(checkOptions(options), TamloError);
}

TEST(NearestText, IsByEditsAndSilentWhenNothingIsNear)
{
    EXPECT_EQ(editDistance("kitten", "sitting"), 3u);
    EXPECT_EQ(editDistance("", "abc"), 3u);
    const std::vector<std::string> known{"portra400", "portra160", "trix400"};
    EXPECT_EQ(nearestText("Portra 400", known), "portra400");
    EXPECT_EQ(nearestText("zzzzzzzz", known), std::nullopt);
    EXPECT_EQ(nearestText(std::string(100000, 'a'), known), std::nullopt);
}

} // namespace
} // namespace tamlo
