// The examples of docs/profiles.md are read as a reader would try them. That its tables are those of the
// program is held by tests/tools/profile_reference_test.py.
#include "core/film/emulsion/hd_curve.h"
#include "core/profiles/catalogue/profile_store.h"
#include "core/profiles/catalogue/profile_validator.h"
#include "core/profiles/formats/json_codec.h"
#include "core/profiles/formats/profile_json.h"
#include "core/profiles/presets/preset_document.h"
#include "core/text/bundled_profiles.h"
#include "core/text/fmt.h"

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <set>
#include <sstream>

namespace tamlo {
namespace {

using Kind = ProfileKind;

struct Example {
    std::string marks; ///< what follows on "```json "
    std::string text;
};

std::vector<std::string> documentLines()
{
    std::ifstream file(TAMLO_PROFILE_REFERENCE);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) lines.push_back(line);
    return lines;
}

std::vector<Example> examples()
{
    constexpr std::string_view kFence = "```json";
    std::vector<Example> out;
    bool inside = false;
    for (const std::string& line : documentLines()) {
        if (inside && line == "```")
            inside = false;
        else if (inside)
            out.back().text += line + '\n';
        else if (line.starts_with(kFence)) {
            inside = true;
            out.push_back({line.substr(std::min(kFence.size() + 1, line.size())), ""});
        }
    }
    return out;
}

/// Keys that the format does not know, but for those that the document says ride along.
std::vector<std::string> misspelled(Kind kind, const std::string& text)
{
    std::vector<std::string> keys;
    if (kind == Kind::films) keys = ProfileJSON::unknownKeys<FilmProfile>(text);
    if (kind == Kind::lenses) keys = ProfileJSON::unknownKeys<LensProfile>(text);
    if (kind == Kind::papers) keys = ProfileJSON::unknownKeys<PaperProfile>(text);
    if (kind == Kind::filters) keys = ProfileJSON::unknownKeys<FilterProfile>(text);
    std::erase_if(keys, [](const std::string& key) {
        return key == "format" || key == "iso" || key == "rms_granularity" || key.ends_with("note");
    });
    return keys;
}

TEST(ProfileReference, EveryExampleIsWhatItIsSaidToBe)
{
    const std::map<std::string, Kind> kinds{{"film", Kind::films},
                                            {"lens", Kind::lenses},
                                            {"paper", Kind::papers},
                                            {"filter", Kind::filters},
                                            {"preset", Kind::presets}};
    const ProfileStore store;
    std::map<Kind, int> seen;
    for (const Example& example : examples()) {
        SCOPED_TRACE(example.marks + ":\n" + example.text);
        ASSERT_NO_THROW(parseJsonText(example.text));
        const auto kind = kinds.find(example.marks.substr(0, example.marks.find(' ')));
        ASSERT_NE(kind, kinds.end());
        EXPECT_NO_THROW(ProfileValidator::validate(kind->second, example.text, store));
        // An import finds the kind by itself.
        EXPECT_EQ(ProfileValidator::guessKind(example.text), kind->second);
        EXPECT_EQ(misspelled(kind->second, example.text), std::vector<std::string>{});
        if (kind->second == Kind::presets) {
            const JSONValue json = PresetDocument::decode(example.text);
            EXPECT_EQ(PresetDocument::validate(json, store, false).warnings, std::vector<std::string>{});
        }
        ++seen[kind->second];
    }
    EXPECT_EQ(seen.size(), kinds.size()) << "each kind has an example";
}

std::vector<std::string> cellsOf(const std::string& line)
{
    std::vector<std::string> cells;
    std::istringstream stream(line.substr(1));
    for (std::string cell; std::getline(stream, cell, '|');) cells.push_back(cell);
    return cells;
}

// The column "In use" against a walk of its own through three keys that stand at different depths.
TEST(ProfileReference, TellsTheNumbersInUse)
{
    double low = 1e9, high = -1e9, thickest = 0.0;
    std::set<double> glowMults;
    for (const auto& [key, text] : BundledProfiles::files()) {
        const Json profile = Json::parse(text);
        if (key.starts_with("films/") && profile.contains("layers"))
            for (const char* layer : {"r", "g", "b"}) {
                low = std::min(low, profile["layers"][layer]["gamma"].get<double>());
                high = std::max(high, profile["layers"][layer]["gamma"].get<double>());
            }
        if (key.starts_with("lenses/") && profile.contains("discs"))
            for (const Json& disc : profile["discs"]) glowMults.insert(disc["glow_mult"].get<double>());
        if (key.starts_with("papers/")) thickest = std::max(thickest, profile.value("thickness_mm", 0.0));
    }
    std::map<std::string, std::string> cells;
    for (const std::string& line : documentLines())
        if (line.starts_with("| `") && cellsOf(line).size() > 4) cells[cellsOf(line)[0]] = cellsOf(line)[3];
    const auto range = [](double a, double b) {
        return " " + Fmt::number(a, 4) + " to " + Fmt::number(b, 4) + " ";
    };
    EXPECT_EQ(cells[" `layers.{r,g,b}.gamma` "], range(low, high));
    EXPECT_EQ(cells[" `discs[].glow_mult` "], range(*glowMults.begin(), *glowMults.rbegin()));
    EXPECT_TRUE(cells[" `thickness_mm` "].ends_with(" to " + Fmt::number(thickest, 4) + " "));
    EXPECT_EQ(cells[" `couplers.matrix` "], " none ");
}

/// The layer of the worked example with one number changed, told as "`gamma` 0.75".
NegativeLayer changed(Json layer, const std::string& label)
{
    const auto open = label.find('`'), close = label.find('`', open + 1);
    if (close != std::string::npos)
        layer[label.substr(open + 1, close - open - 1)] = std::stod(label.substr(close + 1));
    const Json film{{"type", "bw"}, {"negative", layer}};
    return *ProfileJSON::decodeObject<FilmProfile>(film).negative;
}

TEST(ProfileReference, TheWorkedCurveHasTheDensitiesOfTheTable)
{
    Json layer;
    for (const Example& example : examples())
        if (example.marks == "film worked") layer = parseJsonText(example.text)["layers"]["g"];
    ASSERT_TRUE(layer.is_object());
    constexpr double kStops[] = {-6, -4, -2, -1, 0, 1, 2, 4, 6};
    int rows = 0;
    bool inside = false;
    for (const std::string& line : documentLines()) {
        if (line.empty()) inside = false;
        if (inside && !line.starts_with("|--")) {
            const std::vector<std::string> cells = cellsOf(line);
            ASSERT_EQ(cells.size(), 1 + std::size(kStops)) << line;
            const NegativeLayer is = changed(layer, cells.front());
            const HDCurve curve(is.dmin, is.dmax, is.gamma, *is.toe, *is.midDensity);
            for (std::size_t i = 0; i < std::size(kStops); ++i)
                EXPECT_NEAR(curve.density(static_cast<float>(kStops[i] * 0.30103)), std::stod(cells[i + 1]),
                            0.00501)
                    << line << " at " << kStops[i];
            ++rows;
        }
        if (line.starts_with("| Density at ")) inside = true;
    }
    EXPECT_EQ(rows, 5);
}

} // namespace
} // namespace tamlo
