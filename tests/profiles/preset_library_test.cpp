#include "core/image/tamlo_error.h"
#include "core/profiles/catalogue/profile_store.h"
#include "core/profiles/catalogue/user_files.h"
#include "core/profiles/formats/profile_error.h"
#include "core/text/loc.h"
#include "tests/profiles/user_root.h"

#include <algorithm>
#include <functional>

namespace tamlo {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using Kind = ProfileKind;

const std::string kFilm =
    R"({"type": "bw", "name": "Mine", "negative": {"dmin": 0.1, "dmax": 2, "gamma": 0.6}})";

class PresetLibraryTest : public UserRootTest {
protected:
    PresetLibraryTest() { Loc::setOverride(Loc::Lang::en); }

    fs::path user() const { return root_ / "user"; }
    fs::path presets() const { return user() / "presets"; }
    /// Every file with its bytes.
    std::map<std::string, std::string> files() const
    {
        auto all = tree();
        std::erase_if(all, [](const auto& entry) { return entry.second == "/"; });
        return all;
    }
    /// A preset with three user profiles inside, one of them named as a carried film.
    fs::path incoming(const std::string& id = "gift") const
    {
        const json embedded = {{"films", {{"portra400", json::parse(kFilm)}}},
                               {"filters", {{"rose", {{"gains", {1, 0.5, 0.6}}}}}},
                               {"papers", {{"my_paper", {{"kind", "silver"}, {"gamma", 1.5}}}}}};
        const json preset = {{"id", id},
                             {"name", "Gift"},
                             {"name_en", "A gift"},
                             {"format", 4},
                             {"stock", "portra400"},
                             {"paper", "my_paper"},
                             {"opts", {{"filter_cut", "rose"}, {"grade", 3}}},
                             {"embedded", embedded}};
        write("inbox/" + id + ".tpreset", preset.dump());
        return root_ / "inbox" / (id + ".tpreset");
    }
    std::string messageOf(const std::function<void()>& work) const
    {
        try {
            work();
        } catch (const std::exception& error) {
            return error.what();
        }
        return "nothing was thrown";
    }

    ProfileStore store_;
};

TEST_F(PresetLibraryTest, AUsersFileTakesTheCarriedOnesPlace)
{
    write("user/presets/tintype.tpreset", R"({"id": "tintype", "name": "Mine"})");
    write("user/presets/older.json", R"({"name": "Older"})");
    write("user/presets/notes.txt", "x");
    fs::create_directories(presets() / "folder.tpreset");
    EXPECT_EQ(store_.listPresets().size(), 48u);
    EXPECT_TRUE(std::ranges::is_sorted(store_.listPresets()));
    EXPECT_EQ(store_.presetDocument("tintype").name(), "Mine");
    EXPECT_FALSE(store_.presetEntry("tintype")->builtin);
    EXPECT_EQ(store_.presetDocument("older").url, presets() / "older.json");
    EXPECT_EQ(store_.preset("manhattan").stock, "doublex5222");
    EXPECT_EQ(messageOf([&] { store_.presetDocument("nothing"); }).substr(0, 31),
              "No presets profile 'nothing'. A");
    EXPECT_EQ(PresetGroups::title("ЧБ", ""), "B&W");
    EXPECT_EQ(PresetGroups::title("Моё", ""), "Моё");
    EXPECT_EQ(PresetGroups::title("Моё", "Mine"), "Mine");
}

TEST_F(PresetLibraryTest, CarriedPresetsCanOnlyBeHidden)
{
    EXPECT_EQ(messageOf([&] { store_.deletePreset("tintype"); }),
              "“tintype” is a built-in preset and cannot be deleted. It can be hidden from the list.");
    EXPECT_EQ(messageOf([&] { store_.renamePreset("tintype", "x"); }),
              "“tintype” is a built-in preset and cannot be renamed. Make a copy instead.");
    EXPECT_EQ(messageOf([&] { store_.deletePreset("ghost"); }), "There is no preset “ghost”.");
    store_.setPresetHidden("tintype", true);
    store_.setPresetHidden("ghost", true);
    EXPECT_EQ(store_.listPresets().size(), 46u);
    EXPECT_EQ(store_.presetEntries(true).size(), 47u);
    store_.pruneHiddenPresets();
    EXPECT_EQ(json::parse(UserFiles::read(user() / "hidden_presets.json")), json::parse(R"(["tintype"])"));
    const auto before = fs::last_write_time(user() / "hidden_presets.json");
    store_.pruneHiddenPresets();
    EXPECT_EQ(fs::last_write_time(user() / "hidden_presets.json"), before)
        << "nothing to change, nothing written";
    store_.setPresetHidden("tintype", false);
    EXPECT_EQ(store_.listPresets().size(), 47u);
    for (const char* broken : {"{", "{\"a\": 1}", "[1, null]"}) {
        write("user/hidden_presets.json", broken);
        EXPECT_EQ(store_.listPresets().size(), 47u) << broken;
    }
}

TEST_F(PresetLibraryTest, SavesDeletesAndRestores)
{
    store_.saveUserProfile(Kind::films, "my_film", kFilm);
    PresetRecipe recipe{"my_film", "imagon", "", {}, {PresetBlock::print, PresetBlock::film}, "dim light"};
    RenderOptions options;
    options.grade = 4;
    options.ev = 1;
    recipe.opts = presetOpts(options);
    const fs::path file = store_.savePreset("Мой взгляд", recipe, "Мой взгляд");
    EXPECT_EQ(file, presets() / "мой_взгляд.tpreset");
    const json saved = json::parse(UserFiles::read(file));
    EXPECT_EQ(saved.at("blocks"), json::parse(R"(["film", "print"])"));
    EXPECT_EQ(saved.at("opts"), json::parse(R"({"grade": 4.0})"))
        << "the light is of no block that is covered";
    EXPECT_FALSE(saved.contains("lens"));
    EXPECT_EQ(saved.at("embedded").at("films").at("my_film").at("name"), "Mine");
    EXPECT_EQ(store_.presetsUsing(Kind::films, "my_film"), (std::vector<std::string>{"мой_взгляд"}));
    EXPECT_EQ(store_.presetsUsing(Kind::lenses, "wollaston1812").size(), 2u);

    const fs::path trash = store_.deletePreset("мой_взгляд");
    EXPECT_EQ(trash.parent_path(), user() / "trash" / "presets");
    EXPECT_TRUE(trash.filename().string().ends_with("_мой_взгляд.tpreset"));
    EXPECT_EQ(store_.listPresets().size(), 47u);
    store_.restorePreset("мой_взгляд", trash);
    EXPECT_EQ(json::parse(UserFiles::read(file)), saved);

    store_.renamePreset("мой_взгляд", "Другой");
    EXPECT_EQ(store_.presetDocument("мой_взгляд").nameRu(), "Другой");

    const fs::path elsewhere =
        store_.savePreset((root_ / "out" / "Two Words.json").string(), recipe, std::nullopt);
    EXPECT_EQ(json::parse(UserFiles::read(elsewhere)).at("id"), "two_words");
    EXPECT_EQ(json::parse(UserFiles::read(elsewhere)).at("name"), "Two Words");
}

TEST_F(PresetLibraryTest, CopiesAndExportsFindTheirNames)
{
    EXPECT_EQ(store_.duplicatePreset("tintype"), "tintype_copy");
    EXPECT_EQ(store_.duplicatePreset("tintype"), "tintype_copy_2");
    store_.setPresetHidden("tintype_copy_2", true);
    EXPECT_EQ(store_.duplicatePreset("tintype", "tintype_copy"), "tintype_copy_3") << "hidden ones count";
    EXPECT_EQ(store_.duplicatePreset("tintype", "Ночь день"), "ночь_день");
    EXPECT_EQ(store_.presetDocument("ночь_день").nameRu(),
              store_.presetDocument("tintype").nameRu() + " (copy)");
    EXPECT_EQ(store_.presetDocument("ночь_день").opts(), store_.presetDocument("tintype").opts());

    fs::create_directories(root_ / "out");
    EXPECT_EQ(store_.exportPreset("tintype", root_ / "out"), root_ / "out" / "tintype.tpreset");
    EXPECT_EQ(store_.exportPreset("tintype", root_ / "out" / "a.json"), root_ / "out" / "a.json");
    EXPECT_EQ(store_.exportPreset("tintype", root_ / "out" / "a.txt"), root_ / "out" / "a.txt.tpreset");
    const PresetImportResult back = store_.importPreset(root_ / "out" / "a.json", PresetConflict::replace);
    EXPECT_EQ(back.action, PresetImportResult::Action::replaced);
    EXPECT_EQ(store_.presetDocument("tintype").json, ProfileStore().presetDocument("tintype").json);
    EXPECT_FALSE(store_.presetEntry("tintype")->builtin) << "a user's file now takes its place";
}

TEST_F(PresetLibraryTest, AnImportBringsItsProfiles)
{
    using Action = PresetImportResult::Action;
    const PresetImportResult added = store_.importPreset(incoming(), PresetConflict::ask);
    EXPECT_EQ(added.action, Action::added);
    EXPECT_EQ(added.url, presets() / "gift.tpreset");
    EXPECT_EQ(
        added.warnings,
        (std::vector<std::string>{
            "The profile “portra400” (films) clashed by name with a built-in one — the incoming file was "
            "saved as “portra400__gift” and the built-in one is untouched."}));
    const PresetDocument document = store_.presetDocument("gift");
    EXPECT_EQ(document.stock(), "portra400__gift");
    EXPECT_EQ(document.paper(), "my_paper");
    EXPECT_TRUE(document.embedded().at("films").contains("portra400__gift"));
    EXPECT_EQ(store_.film("portra400__gift").type, "bw");
    EXPECT_EQ(store_.film("portra400").name, "Kodak Portra 400");
    EXPECT_EQ(json::parse(store_.data(Kind::papers, "my_paper")).at("format"), 1);
    EXPECT_EQ(store_.filterProfile("rose").gains, (Vec3d{1, 0.5, 0.6}));

    try {
        store_.importPreset(incoming(), PresetConflict::ask);
        FAIL();
    } catch (const PresetError& error) {
        EXPECT_TRUE(error.idTaken());
        EXPECT_EQ(error.message(),
                  "A preset with the id “gift” already exists. Replace it, add a copy, or cancel?");
    }
    const auto before = files();
    EXPECT_EQ(store_.importPreset(incoming(), PresetConflict::cancel).action, Action::cancelled);
    EXPECT_EQ(files(), before);
    EXPECT_EQ(store_.importPreset(incoming(), PresetConflict::copy).id, "gift_2");
    store_.setPresetHidden("gift_2", true);
    const PresetImportResult third = store_.importPreset(incoming(), PresetConflict::copy);
    EXPECT_EQ(third.id, "gift_3");
    EXPECT_EQ(third.action, Action::copied);
    EXPECT_EQ(store_.presetDocument("gift_3").nameRu(), "Gift (3)");
    EXPECT_EQ(store_.presetDocument("gift_3").stock(), "portra400__gift_3");
}

// A fault at each step of an import: whatever was there before is there after, byte for byte.
TEST_F(PresetLibraryTest, AFailedImportLeavesNothingBehind)
{
    store_.saveUserProfile(Kind::filters, "rose", R"({"gains": [1, 1, 1]})");
    struct Fault {
        const char* name;
        std::string blocked;                    ///< a folder where a file should go
        std::function<void(json&)> change = {}; ///< of the incoming preset
    };
    const Fault faults[] = {
        {"the film can't be written", "profiles/films/portra400__gift.tprofile"},
        {"the paper can't be written", "profiles/papers/my_paper.tprofile"},
        {"the filter can't be written", "profiles/filters/new_rose.tprofile",
         [](json& p) { p["embedded"]["filters"]["new_rose"] = p["embedded"]["filters"]["rose"]; }},
        {"the document can't be written", "presets/gift.tpreset"},
        {"a film is no film", "",
         [](json& p) { p["embedded"]["films"]["portra400"]["negative"]["gamma"] = 0; }},
        {"a filter is a list", "", [](json& p) { p["embedded"]["filters"]["wrong"] = json::array({1}); }},
        {"a name leads out of its folder", "",
         [](json& p) { p["embedded"]["filters"]["../../../escape"] = p["embedded"]["filters"]["rose"]; }},
    };
    for (const Fault& fault : faults) {
        SCOPED_TRACE(fault.name);
        if (!fault.blocked.empty()) fs::create_directories(user() / fault.blocked);
        const fs::path file = incoming();
        if (fault.change) {
            json preset = json::parse(UserFiles::read(file));
            fault.change(preset);
            UserFiles::write(file, preset.dump());
        }
        const auto before = files();
        const std::string message = messageOf([&] { store_.importPreset(file, PresetConflict::replace); });
        EXPECT_TRUE(message.starts_with("“gift.tpreset”: the import did not happen — ")) << message;
        EXPECT_TRUE(message.ends_with(". Nothing was added.")) << message;
        EXPECT_EQ(files(), before);
        EXPECT_FALSE(fs::exists(root_ / "escape.tprofile"));
        if (!fault.blocked.empty()) fs::remove_all(user() / fault.blocked);
    }
    EXPECT_EQ(messageOf([&] { store_.importPreset(root_ / "none.tpreset", PresetConflict::ask); }),
              "“none.tpreset”: the file cannot be read.");
    EXPECT_EQ(store_.importPreset(incoming(), PresetConflict::ask).action, PresetImportResult::Action::added);
}

} // namespace
} // namespace tamlo
