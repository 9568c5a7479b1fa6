#include "core/profiles/catalogue/profile_ground.h"
#include "core/profiles/formats/decode_error.h"
#include "core/profiles/formats/json_codec.h"
#include "core/profiles/formats/profile_json.h"
#include "core/text/bundled_profiles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>

namespace tamlo {
namespace {

/// What rides along in a file for its readers: where numbers come from, the speed, the published granularity.
bool ridesAlong(std::string_view key)
{
    return key.ends_with("_note") || key.ends_with("iso") || key.ends_with("rms_granularity");
}

Json withoutRiders(const Json& value)
{
    if (value.is_array()) {
        Json out = Json::array();
        for (const Json& item : value) out.push_back(withoutRiders(item));
        return out;
    }
    if (!value.is_object()) return value;
    Json out = Json::object();
    for (const auto& [key, item] : value.items())
        if (!ridesAlong(key)) out[key] = withoutRiders(item);
    return out;
}

template <typename Profile>
Profile expectRoundTrip(std::string_view text)
{
    const auto first = ProfileJSON::decode<Profile>(text);
    const std::string written = ProfileJSON::encode(first);
    EXPECT_EQ(ProfileJSON::decode<Profile>(written), first);
    for (const std::string& key : ProfileJSON::unknownKeys<Profile>(text))
        EXPECT_TRUE(ridesAlong(key)) << key;
    // Nothing of the file is lost on the way: numbers, texts and blocks come out as they went in.
    EXPECT_EQ(Json::parse(written), withoutRiders(Json::parse(text)));
    return first;
}

TEST(ProfileJson, EveryCarriedFileComesBackAsItIs)
{
    int films = 0;
    for (const auto& [key, text] : BundledProfiles::files()) {
        SCOPED_TRACE(key);
        if (key.starts_with("films/")) {
            const FilmProfile film = expectRoundTrip<FilmProfile>(text);
            const bool single = film.isBW() || film.isTricolor() || film.isCollodion();
            EXPECT_TRUE(single ? film.negative.has_value() : film.layers.has_value());
            ++films;
        } else if (key.starts_with("lenses/")) {
            expectRoundTrip<LensProfile>(text);
        } else if (key.starts_with("papers/")) {
            expectRoundTrip<PaperProfile>(text);
        } else if (key.starts_with("filters/")) {
            expectRoundTrip<FilterProfile>(text);
        } else {
            EXPECT_TRUE(key.starts_with("presets/") || key.starts_with("strings/"));
        }
    }
    EXPECT_EQ(films, 74);
    EXPECT_EQ(BundledProfiles::files().size(), 196u);
}

/// The kind of a note that has the particulars of its kind.
std::optional<Ground> wholeGround(const std::string& note)
{
    const auto ground = groundOf(note);
    const bool mayBeBare = ground == Ground::reference;
    const char* form = ground == Ground::dataSheet
                           ? "[^:]+: .+, .+, (19|20)[0-9]{2}(;.*)?" // title, number, year
                       : mayBeBare ? "[^:]+(: .+)?"
                                   : "[^:]+: .+";
    return std::regex_match(note, std::regex(form)) ? ground : std::nullopt;
}

void expectGroundsBelow(const Json& value)
{
    if (!value.is_object()) return;
    for (const auto& [key, entry] : value.items()) {
        expectGroundsBelow(entry);
        if (!key.ends_with("_note")) continue;
        EXPECT_TRUE(wholeGround(entry.get<std::string>())) << key << ": " << entry;
        const std::string what = key.substr(0, key.size() - 5);
        EXPECT_TRUE(what == "source" || value.contains(what)) << key << " is a note on nothing";
    }
}

// A badge is no better than the ground that the profile as a whole stands on.
TEST(ProfileJson, EveryCarriedProfileTellsItsGroundsAndNoMore)
{
    const std::map<Ground, std::set<std::string>> badges{
        {Ground::dataSheet, {"datasheet"}},
        {Ground::published, {"measured"}},
        {Ground::derived, {"physical", "alike", ""}},
        {Ground::reference, {"alike", "revival", ""}},
        {Ground::estimate, {"alike", "revival", "draft", ""}}};
    for (const auto& [key, text] : BundledProfiles::files()) {
        if (key.starts_with("strings/") || key.starts_with("presets/")) continue;
        SCOPED_TRACE(key);
        const Json profile = Json::parse(text);
        expectGroundsBelow(profile);
        const auto ground = wholeGround(profile.value("source_note", ""));
        ASSERT_TRUE(ground) << "where do the numbers come from?";
        EXPECT_TRUE(badges.at(*ground).contains(profile.value("fidelity", "")));
    }
}

TEST(ProfileJson, EveryCarriedProfileSpeaksToThePhotographer)
{
    for (const auto& [key, text] : BundledProfiles::files()) {
        if (key.starts_with("strings/") || key.starts_with("presets/")) continue;
        SCOPED_TRACE(key);
        const Json profile = Json::parse(text);
        for (const char* words : {"name", "notes", "notes_en"})
            EXPECT_NE(profile.value(words, ""), "") << words;
        const std::string name = profile.value("name", "");
        const bool latin =
            std::ranges::all_of(name, [](char c) { return static_cast<unsigned char>(c) < 0xD0; });
        EXPECT_TRUE(latin || profile.contains("name_en")) << "a Russian name needs an English one";
    }
    // A paper that the tables of texts name too has one name.
    for (const auto& [table, key] : {std::pair{"strings/ru.json", "name"}, {"strings/en.json", "name_en"}}) {
        const Json texts = Json::parse(BundledProfiles::files().at(table));
        for (const auto& [id, name] : texts.items()) {
            if (!id.starts_with("paper.")) continue;
            const auto paper = BundledProfiles::files().find("papers/" + id.substr(6) + ".json");
            ASSERT_NE(paper, BundledProfiles::files().end()) << id;
            EXPECT_EQ(Json::parse(paper->second).value(key, ""), name) << id;
        }
    }
}

TEST(ProfileJson, CarriedTextsAreTheFilesOfTheDataFolder)
{
    ASSERT_FALSE(BundledProfiles::files().empty());
    for (const auto& [key, text] : BundledProfiles::files()) {
        std::ifstream file(std::string(TAMLO_PROFILE_DATA "/") + std::string(key));
        std::stringstream content;
        content << file.rdbuf();
        EXPECT_EQ(content.str(), text) << key;
    }
}

template <typename Profile>
void expectEveryFieldRoundTrips()
{
    // One value for each key of the format, by its type: a key that two rows share or that is written under
    // another name would be lost on the way.
    Json document = Json::object();
    std::set<std::string> paths;
    for (const FieldDoc& doc : ProfileJSON::fields<Profile>()) {
        EXPECT_TRUE(paths.insert(doc.path).second) << doc.path;
        EXPECT_NE(doc.meaning, "") << doc.path;
        Json value;
        if (doc.type == "a number") value = 0.25 + static_cast<double>(paths.size());
        if (doc.type == "an integer") value = paths.size();
        if (doc.type == "true or false") value = true;
        if (doc.type == "a text") value = doc.path;
        if (doc.type == "a list of three numbers") value = {paths.size(), 2.5, 3.5};
        if (doc.type == "a list, each a number") value = {paths.size(), 2.5};
        if (doc.type == "a list, each a text") value = {doc.path, "b"};
        if (doc.type == "a list, each a list, each a number") value = {{paths.size(), 0.5}, {1.5}};
        if (doc.type == "an object, each value a number") value = {{"r", paths.size()}};
        if (doc.type == "an object, each value a list of three numbers")
            value = {{"r", {paths.size(), 1, 2}}};
        if (doc.type == "an object") value = Json::object();
        if (doc.type == "a list, each an object") value = Json::array({Json::object()});
        ASSERT_FALSE(value.is_null()) << doc.path << " is " << doc.type;
        std::string pointer = "/" + doc.path;
        for (auto at = pointer.find("[]"); at != std::string::npos; at = pointer.find("[]"))
            pointer.replace(at, 2, ".0");
        std::ranges::replace(pointer, '.', '/');
        document[Json::json_pointer(pointer)] = value;
    }
    const auto profile = ProfileJSON::decode<Profile>(document.dump());
    EXPECT_EQ(Json::parse(ProfileJSON::encode(profile)), document);
}

TEST(ProfileJson, EveryFieldOfEveryFormatRoundTrips)
{
    expectEveryFieldRoundTrips<FilmProfile>();
    expectEveryFieldRoundTrips<LensProfile>();
    expectEveryFieldRoundTrips<PaperProfile>();
    expectEveryFieldRoundTrips<FilterProfile>();
}

struct BadCase {
    char format;
    const char* text;
    DecodeError::Reason reason;
    const char* path;
};

void decodeAs(char format, std::string_view text)
{
    if (format == 'f') ProfileJSON::decode<FilmProfile>(text);
    if (format == 'l') ProfileJSON::decode<LensProfile>(text);
    if (format == 'p') ProfileJSON::decode<PaperProfile>(text);
    if (format == 'c') ProfileJSON::decode<FilterProfile>(text);
}

TEST(ProfileJson, AnErrorNamesThePathAndWhatWasExpected)
{
    using R = DecodeError::Reason;
    const BadCase cases[] = {
        {'f', "{}", R::missingKey, "type"},
        {'f', R"({"type": null})", R::missingKey, "type"},
        {'f', R"({"type": 3})", R::wrongType, "type"},
        {'f', R"({"type": "bw", "negative": {"dmin": 0.1, "dmax": 2}})", R::missingKey, "negative.gamma"},
        {'f', R"({"type": "color", "layers": {"r": {"dmin": 0, "dmax": 1, "gamma": "hard"}}})", R::wrongType,
         "layers.r.gamma"},
        {'f', R"({"type": "color", "look": {"shadow_tint": [1, 2]}})", R::wrongCount, "look.shadow_tint"},
        {'f', R"({"type": "color", "look": {"shadow_tint": [1, 2, null]}})", R::wrongType,
         "look.shadow_tint[2]"},
        {'f', R"({"type": "color", "couplers": {"matrix": [[1], ["x"]]}})", R::wrongType,
         "couplers.matrix[1][0]"},
        {'f', R"({"type": "color", "hidden": 1})", R::wrongType, "hidden"},
        {'f', "[]", R::wrongType, ""},
        {'f', "{\"type\": \"color\"", R::notJson, ""},
        {'f', "\xff\xfe", R::notJson, ""},
        {'l', R"({"name": "x"})", R::missingKey, "optics"},
        {'l', R"({"optics": {}, "discs": [{"id": "a", "name": "b", "glow_mult": 1}]})", R::missingKey,
         "discs[0].glow_radius_mult"},
        {'l', R"({"optics": {"veil": true}})", R::wrongType, "optics.veil"},
        {'p', R"({"layers": [{"pigment": [1, 2, 3]}, {"amount": 1}]})", R::missingKey, "layers[1].pigment"},
        {'p', R"({"scan": {"long_px": 2.5}})", R::wrongType, "scan.long_px"},
        {'p', R"({"scan": {"long_px": 1e300}})", R::wrongType, "scan.long_px"},
        {'p', R"({"dmin": 1e999})", R::notJson, ""},
        {'c', R"({"rays": "six"})", R::wrongType, "rays"},
        {'c', R"({"gains": {"r": 1}})", R::wrongType, "gains"},
    };
    for (const BadCase& bad : cases) {
        SCOPED_TRACE(bad.text);
        try {
            decodeAs(bad.format, bad.text);
            ADD_FAILURE() << "decoded";
        } catch (const DecodeError& error) {
            EXPECT_EQ(error.reason(), bad.reason) << error.what();
            EXPECT_EQ(error.path(), bad.path);
            EXPECT_NE(std::string(error.what()).find(error.key()), std::string::npos);
        }
    }
}

TEST(ProfileJson, ErrorPartsMakeAUsersSentence)
{
    try {
        decodeAs('f', R"({"type": "bw", "negative": {"dmin": 0.1, "dmax": 2}})");
        FAIL();
    } catch (const DecodeError& error) {
        EXPECT_EQ(error.key(), "gamma");
        EXPECT_EQ(error.parentPath(), "negative");
        EXPECT_STREQ(error.what(), "the required key \"negative.gamma\" (a number) is missing");
    }
}

TEST(ProfileJson, NumbersCommentsAndNullsFollowTheConventions)
{
    const auto film = ProfileJSON::decode<FilmProfile>(
        R"({"type": "color", "iso": 400, "halation": {"radius_um": 200, "strength": null, "edge_note": "x"},
            "layers": null})");
    EXPECT_EQ(film.halation->radiusUm, 200.0);
    EXPECT_FALSE(film.halation->strength.has_value());
    EXPECT_FALSE(film.layers.has_value());
    EXPECT_EQ(Json::parse(ProfileJSON::encode(film)),
              Json::parse(R"({"type": "color", "halation": {"radius_um": 200}})"));
    EXPECT_EQ(ProfileJSON::unknownKeys<FilmProfile>(R"({"iso": 400, "halation": {"edge_note": ""}})"),
              (std::vector<std::string>{"halation.edge_note", "iso"}));
    EXPECT_EQ(ProfileJSON::decode<PaperProfile>(R"({"crt": {"lines": 576.0}})").crt->lines, 576);
}

TEST(ProfileJson, ANullCornerIsSquareAndAMissingOneIsNot)
{
    const std::string text =
        R"({"type": "instant", "frame": {"corner": {"style": "round", "mm": 1, "tr": null, "bl": {"mm": 2}}}})";
    const auto film = ProfileJSON::decode<FilmProfile>(text);
    const CornerSpec& corner = *film.frame->corner;
    EXPECT_TRUE(corner.hasTR && !corner.tr);
    EXPECT_TRUE(corner.hasBL && corner.bl->mm == 2.0);
    EXPECT_FALSE(corner.hasTL || corner.hasBR);
    EXPECT_EQ(Json::parse(ProfileJSON::encode(film)), Json::parse(text));

    const std::string square = R"({"type": "instant", "frame": {"corner": null}})";
    const auto cut = ProfileJSON::decode<FilmProfile>(square);
    EXPECT_TRUE(cut.frame->hasCornerKey && !cut.frame->corner);
    EXPECT_EQ(Json::parse(ProfileJSON::encode(cut)), Json::parse(square));
}

TEST(ProfileJson, AMatrixIsTakenOnlyAsThreeByThree)
{
    EXPECT_EQ(asMatrix3({{1, 2, 3}, {4, 5, 6}, {7, 8, 9}}), (Matrix3d{{{1, 2, 3}, {4, 5, 6}, {7, 8, 9}}}));
    EXPECT_FALSE(asMatrix3({{1, 2, 3}, {4, 5, 6}}));
    EXPECT_FALSE(asMatrix3({{1, 2, 3}, {4, 5}, {7, 8, 9}}));
}

TEST(PaperQueries, FollowTypeKindAndBlocks)
{
    PaperProfile paper;
    EXPECT_TRUE(paper.hasSheet());
    paper.process = "";
    EXPECT_FALSE(paper.isAlt());
    paper.type = "bw_paper";
    paper.scan = ScanParams{};
    EXPECT_TRUE(paper.isBW() && paper.scansPositive() && paper.hasSheet() && !paper.isScan());
    paper.sheet = false;
    EXPECT_FALSE(paper.hasSheet());
    paper.sheet = true;
    paper.kind = "scan";
    EXPECT_FALSE(paper.hasSheet());
}

} // namespace
} // namespace tamlo
