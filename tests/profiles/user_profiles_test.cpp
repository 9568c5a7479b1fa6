#include "core/image/tamlo_error.h"
#include "core/profiles/catalogue/profile_store.h"
#include "core/profiles/catalogue/user_files.h"
#include "core/profiles/formats/profile_error.h"
#include "core/profiles/formats/profile_json.h"
#include "tests/profiles/user_root.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <functional>
#include <set>

#include <sys/stat.h>

namespace tamlo {
namespace {

namespace fs = std::filesystem;
using Kind = ProfileKind;
using Json = nlohmann::json;
using Messages = std::vector<std::string>;

constexpr const char* kFilm = R"({"name": "Mine", "type": "bw",
    "negative": {"dmin": 0.1, "dmax": 2, "gamma": 0.6}})";
constexpr const char* kFilmFile = "user/profiles/films/mine.tprofile";

class UserProfilesTest : public UserRootTest {
protected:
    bool lists(Kind kind, const std::string& name, bool includeHidden = false) const
    {
        return std::ranges::count(store_.list(kind, includeHidden), name) == 1;
    }

    /// An error that the store tells of, and everything stands as it stood. Returns its text.
    template <typename Action>
    std::string refusal(const std::string& what, Action&& action) const
    {
        const auto before = tree();
        std::string text;
        try {
            action();
            ADD_FAILURE() << what << " was not refused";
        } catch (const ProfileValidator::Failure& failure) {
            text = failure.what();
        } catch (const ProfileError& error) {
            text = error.what();
        } catch (const TamloError& error) {
            EXPECT_EQ(error.kind(), TamloError::Kind::io) << what;
            text = error.what();
        }
        EXPECT_EQ(tree(), before) << what;
        return text;
    }

    ProfileStore store_;
};

TEST_F(UserProfilesTest, ASavedProfileIsListedAndLoads)
{
    EXPECT_EQ(store_.saveUserProfile(Kind::films, "mine", kFilm), root_ / kFilmFile);
    EXPECT_EQ(store_.saveUserProfile(Kind::lenses, "моя", R"({"optics": {"glow": 0}})"),
              root_ / "user/profiles/lenses/моя.tprofile");
    store_.saveUserProfile(Kind::papers, "a.b", R"({"kind": "silver", "gamma": 2})");
    store_.saveUserProfile(Kind::filters, "with space", R"({"gains": [1, 0.5, 0.25]})");
    const ProfileStore later;
    EXPECT_EQ(later.film("mine").negative->dmax, 2);
    EXPECT_EQ(later.lens("моя").optics.glow, 0);
    EXPECT_EQ(later.paper("a.b").gamma, 2);
    EXPECT_EQ(later.filterProfile("with space").gains, (Vec3d{1, 0.5, 0.25}));
    EXPECT_TRUE(lists(Kind::films, "mine"));
    EXPECT_TRUE(lists(Kind::lenses, "моя"));
    EXPECT_TRUE(lists(Kind::papers, "a.b"));
    EXPECT_TRUE(lists(Kind::filters, "with space"));

    store_.saveUserProfile(Kind::films, "mine",
                           R"({"type": "bw", "negative": {"dmin": 0.1, "dmax": 3, "gamma": 0.6}})");
    EXPECT_EQ(store_.film("mine").negative->dmax, 3) << "a second save replaces the first";
}

TEST_F(UserProfilesTest, ASavedProfileIsStamped)
{
    const fs::path file = store_.saveUserProfile(
        Kind::papers, "mine",
        R"({"zeta": {"b": [1, null], "a": "x/y"}, "name": "Б/у", "format": null, "dmax": 2.125})");
    EXPECT_EQ(read(file), R"({
  "dmax": 2.125,
  "format": 1,
  "name": "Б/у",
  "zeta": {
    "a": "x/y",
    "b": [
      1,
      null
    ]
  }
})");
}

TEST_F(UserProfilesTest, AnInvalidProfileIsNotSaved)
{
    store_.saveUserProfile(Kind::films, "mine", kFilm);
    for (const char* text :
         {"", "{", "[]", R"({"type": "hologram"})", R"({"type": "bw"})",
          R"({"format": 2, "type": "bw", "negative": {"dmin": 0, "dmax": 2, "gamma": 1}})"}) {
        refusal(text, [&] { store_.saveUserProfile(Kind::films, "mine", text); });
        refusal(text, [&] { store_.saveUserProfile(Kind::films, "other", text); });
    }
}

TEST_F(UserProfilesTest, TheTrashNumbersWhatHasOneName)
{
    const fs::path trash = root_ / "user/trash/lenses";
    const char* names[] = {"mine.tprofile", "mine-1.tprofile", "mine-2.tprofile", "mine-3.tprofile"};
    const auto lens = [](int number) { return R"({"optics": {"veil": )" + std::to_string(number) + "}}"; };
    for (int i = 0; i < 4; ++i) {
        store_.saveUserProfile(Kind::lenses, "mine", lens(i));
        EXPECT_EQ(store_.deleteUserProfile(Kind::lenses, "mine"), trash / names[i]);
        EXPECT_FALSE(lists(Kind::lenses, "mine"));
        EXPECT_THROW(store_.lens("mine"), ProfileError);
    }
    store_.saveUserProfile(Kind::papers, "mine", "{}");
    EXPECT_EQ(store_.deleteUserProfile(Kind::papers, "mine"), root_ / "user/trash/papers/mine.tprofile")
        << "each kind has a trash of its own";

    store_.restoreUserProfile(Kind::lenses, "mine", trash / names[1]);
    EXPECT_TRUE(lists(Kind::lenses, "mine"));
    EXPECT_EQ(store_.lens("mine").optics.veil, 1);
    store_.restoreUserProfile(Kind::lenses, "mine", trash / names[3]);
    EXPECT_EQ(store_.lens("mine").optics.veil, 3) << "what stands in its place is replaced";
    EXPECT_FALSE(fs::exists(trash / names[1]) || fs::exists(trash / names[3]));
    EXPECT_TRUE(fs::exists(trash / names[0]) && fs::exists(trash / names[2]));

    store_.saveUserProfile(Kind::lenses, "mine", lens(9));
    EXPECT_EQ(store_.deleteUserProfile(Kind::lenses, "mine"), trash / names[1]) << "the first free number";
}

TEST_F(UserProfilesTest, OnlyTheUsersOwnIsDeleted)
{
    for (const char* name : {"portra400", "nosuch"})
        EXPECT_EQ(refusal(name, [&] { store_.deleteUserProfile(Kind::films, name); }),
                  "профиль «" + std::string(name) + "» не пользовательский — удалять нечего");
    store_.saveUserProfile(Kind::films, "mine", kFilm);
    refusal("nothing in the trash", [&] {
        store_.restoreUserProfile(Kind::films, "mine", root_ / "user/trash/films/mine.tprofile");
    });
}

TEST_F(UserProfilesTest, Renaming)
{
    const std::string builtin = "встроенный профиль переименовать нельзя — сделайте копию";
    store_.saveUserProfile(Kind::films, "mine", kFilm);
    store_.saveUserProfile(Kind::films, "second", kFilm);
    write("user/profiles/films/broken.tprofile", "{");
    const std::tuple<const char*, const char*, std::string> cases[] = {
        {"portra400", "free", builtin},
        {"nosuch", "free", builtin},
        {"mine", "trix400", "«trix400» уже занято"},
        {"mine", "trix400_ds", "«trix400_ds» уже занято"},
        {"mine", "second", "«second» уже занято"},
        {"mine", "broken", "«broken» уже занято"},
        {"mine", "mine", "«mine» уже занято"},
    };
    for (const auto& [from, to, message] : cases)
        EXPECT_EQ(
            refusal(to, [&, &from = from, &to = to] { store_.renameUserProfile(Kind::films, from, to); }),
            message);

    const std::string text = read(root_ / kFilmFile);
    store_.renameUserProfile(Kind::films, "mine", "modern_clean"); // taken among lenses only
    EXPECT_EQ(read(root_ / "user/profiles/films/modern_clean.tprofile"), text);
    EXPECT_FALSE(fs::exists(root_ / kFilmFile));
    EXPECT_TRUE(lists(Kind::films, "modern_clean"));
    EXPECT_FALSE(lists(Kind::films, "mine"));
}

TEST_F(UserProfilesTest, ACopyIsTheUsers)
{
    Json expected = Json::parse(store_.data(Kind::lenses, "imagon"));
    expected["name"] = "my_imagon";
    expected["format"] = 1;
    const fs::path file = store_.duplicateProfile(Kind::lenses, "imagon", "my_imagon");
    EXPECT_EQ(file, root_ / "user/profiles/lenses/my_imagon.tprofile");
    EXPECT_EQ(Json::parse(read(file)), expected);
    EXPECT_TRUE(lists(Kind::lenses, "my_imagon"));

    write("user/profiles/filters/nameless.tprofile", R"({"bloom": 0.5, "my": "note"})");
    EXPECT_EQ(Json::parse(read(store_.duplicateProfile(Kind::filters, "nameless", "copy"))),
              Json::parse(R"({"bloom": 0.5, "my": "note", "format": 1})"))
        << "a name is not made up";

    for (const auto& id : {"imagon", "my_imagon"})
        EXPECT_EQ(refusal(id, [&] { store_.duplicateProfile(Kind::lenses, "imagon", id); }),
                  "«" + std::string(id) + "» уже занято");
    for (const char* text : {"{", "[1]", R"({"bloom": -1})", R"({"format": 2})"}) {
        write("user/profiles/filters/broken.tprofile", text);
        refusal(text, [&] { store_.duplicateProfile(Kind::filters, "broken", "another"); });
    }
    refusal("nosuch", [&] { store_.duplicateProfile(Kind::filters, "nosuch", "another"); });
}

TEST_F(UserProfilesTest, ExportAndImportAreARoundTrip)
{
    store_.saveUserProfile(Kind::films, "mine", kFilm);
    struct Row {
        Kind kind;
        const char* name;
        const char* file;
        const char* title;
        bool conflicts;
    };
    const Row rows[] = {
        {Kind::films, "mine", "out/mine.tprofile", "Mine", true},
        {Kind::films, "mine", "out/other.tprofile", "Mine", false},
        {Kind::films, "mine", "out/portra400.json", "Mine", true},
        {Kind::films, "portra400", "out/deep/er/p.400.json", "Kodak Portra 400", false},
        {Kind::papers, "gum_tricolor", "out/gum_tricolor.tprofile", "Гумбихромат, трёхцветный", true},
        {Kind::papers, "gum_tricolor", "out/mine.txt", "Гумбихромат, трёхцветный", false},
        {Kind::lenses, "verito", "out/portra400", nullptr, false},
        {Kind::filters, "red_29", "out/red_29.json", nullptr, true},
        {Kind::presets, "manhattan", "out/manhattan.tpreset", nullptr, true}};
    for (const Row& row : rows) {
        const fs::path file = root_ / row.file;
        store_.exportProfile(row.kind, row.name, file);
        const std::string text = store_.data(row.kind, row.name);
        EXPECT_EQ(read(file), text) << row.file;
        const auto before = tree();
        const ProfileStore::Incoming incoming = store_.inspectImport(file);
        EXPECT_EQ(incoming.kind, row.kind) << row.file;
        EXPECT_EQ(incoming.id, file.stem().string());
        EXPECT_EQ(incoming.title, row.title ? row.title : Json::parse(text)["name"].get<std::string>());
        EXPECT_EQ(incoming.data, text) << row.file;
        EXPECT_EQ(incoming.conflicts, row.conflicts) << row.file;
        EXPECT_EQ(tree(), before) << "looking at a file changes nothing";
    }
    refusal("nosuch", [&] { store_.exportProfile(Kind::films, "nosuch", root_ / "out/nosuch.json"); });
}

TEST_F(UserProfilesTest, AFileThatIsNoProfileIsNotTakenIn)
{
    const auto inspected = [&](const std::string& text) {
        write("in.json", text);
        return refusal(text.substr(0, 40), [&] { store_.inspectImport(root_ / "in.json"); });
    };
    EXPECT_EQ(inspected(R"({"name": "x", "type": "bw_paper"})"),
              "Не понимаю, что это за профиль: нет ни optics, ни layers, ни dmax. Профиль Tamlo — это JSON с "
              "этими полями.");
    EXPECT_EQ(inspected(R"({"optics": {"vignette": -1, "soften": -1}})"),
              "Виньетка не может быть отрицательной (vignette -1).\n"
              "Софт не может быть отрицательным (soften -1).");
    EXPECT_EQ(inspected(R"({"dmax": 2, "format": 2})"),
              "Профиль сделан в более новой версии Tamlo (format 2). Этот формат мы прочитать не можем.");
    for (const std::string& text : {std::string(), std::string("{"), std::string("[]"), std::string(4, '\0'),
                                    std::string(100000, '['), std::string("\xff\xd8\xff\xe0 JFIF")})
        EXPECT_NE(inspected(text), "");
    fs::create_directories(root_ / "folder.json");
    for (const char* name : {"nowhere.json", "folder.json", "in.json/below.json"})
        EXPECT_NE(refusal(name, [&] { store_.inspectImport(root_ / name); }).find(name), std::string::npos);
    ASSERT_EQ(mkfifo((root_ / "pipe").c_str(), 0600), 0);
    EXPECT_THROW(store_.inspectImport(root_ / "pipe"), TamloError) << "nothing waits for a pipe's other end";
}

TEST_F(UserProfilesTest, AFileFarTooLargeIsRefused)
{
    const fs::path file = root_ / "user/profiles/films/huge.tprofile";
    write("user/profiles/films/huge.tprofile", kFilm);
    std::string padded = kFilm;
    padded.resize(UserFiles::kLargestFile, ' ');
    std::ofstream(file) << padded;
    EXPECT_EQ(UserFiles::kLargestFile, 16u * 1024 * 1024);
    EXPECT_EQ(store_.inspectImport(file).title, "Mine") << "the largest that is read";
    std::ofstream(file, std::ios::app) << ' ';
    for (const auto& action : {std::function<void()>([&] { store_.inspectImport(file); }),
                               std::function<void()>([&] { store_.data(Kind::films, "huge"); }),
                               std::function<void()>([&] { store_.film("huge"); })}) {
        try {
            action();
            ADD_FAILURE();
        } catch (const TamloError& error) {
            EXPECT_EQ(error.kind(), TamloError::Kind::io);
            EXPECT_NE(std::string(error.what()).find("huge.tprofile"), std::string::npos) << error.what();
        }
    }
    EXPECT_FALSE(lists(Kind::films, "huge"));
    EXPECT_EQ(store_.filmsSorted().size(), 72u);
}

TEST_F(UserProfilesTest, AFreeNameIsTheNextNumber)
{
    EXPECT_EQ(store_.freeName(Kind::films, "mine"), "mine");
    store_.saveUserProfile(Kind::films, "mine", kFilm);
    EXPECT_EQ(store_.freeName(Kind::films, "mine"), "mine_2");
    EXPECT_EQ(store_.freeName(Kind::papers, "mine"), "mine");
    write("user/profiles/films/mine_2.tprofile", "{");
    store_.saveUserProfile(Kind::films, "mine_4", kFilm);
    EXPECT_EQ(store_.freeName(Kind::films, "mine"), "mine_3");
    EXPECT_EQ(store_.freeName(Kind::films, "trix400_ds"), "trix400_ds_2") << "hidden, and still taken";
}

TEST_F(UserProfilesTest, NoNameLeavesItsFolder)
{
    store_.saveUserProfile(Kind::films, "mine", kFilm);
    store_.saveUserProfile(Kind::films, "gone", kFilm);
    const fs::path trashed = store_.deleteUserProfile(Kind::films, "gone");
    // What such a name would reach is there to be reached.
    for (const char* victim : {"user/profiles/x.tprofile", "user/profiles/films/a/b.tprofile",
                               "user/profiles/films/y.tprofile", "user/profiles/films/x/.tprofile"})
        write(victim, kFilm);
    const std::string names[] = {"",
                                 "..",
                                 "../x",
                                 "a/b",
                                 "a\\b",
                                 "a..b",
                                 "x/../y",
                                 "x/",
                                 (root_ / "absolute").string(),
                                 std::string("nul\0x", 5)};
    for (const std::string& name : names) {
        refusal("save " + name, [&] { store_.saveUserProfile(Kind::films, name, kFilm); });
        refusal("delete " + name, [&] { store_.deleteUserProfile(Kind::films, name); });
        refusal("restore " + name, [&] { store_.restoreUserProfile(Kind::films, name, trashed); });
        refusal("rename from " + name, [&] { store_.renameUserProfile(Kind::films, name, "free"); });
        refusal("rename to " + name, [&] { store_.renameUserProfile(Kind::films, "mine", name); });
        refusal("copy of " + name, [&] { store_.duplicateProfile(Kind::films, name, "free"); });
        refusal("copy as " + name, [&] { store_.duplicateProfile(Kind::films, "mine", name); });
        refusal("export " + name, [&] { store_.exportProfile(Kind::films, name, root_ / "out.json"); });
        EXPECT_FALSE(store_.offers(Kind::films, name)) << name;
    }
    EXPECT_EQ(messagesOf([&] { store_.saveUserProfile(Kind::films, "a/b", kFilm); }).size(), 1u);
}

TEST_F(UserProfilesTest, AFailedWriteLeavesWhatWasThere)
{
    // A folder, empty or not, stands where the file should go.
    fs::create_directories(root_ / "user/profiles/films/empty.tprofile");
    write("user/profiles/films/full.tprofile/inside", "x");
    store_.saveUserProfile(Kind::films, "mine", kFilm);
    store_.saveUserProfile(Kind::films, "gone", kFilm);
    const fs::path trashed = store_.deleteUserProfile(Kind::films, "gone");
    for (const std::string name : {"empty", "full"}) {
        refusal("save " + name, [&] { store_.saveUserProfile(Kind::films, name, kFilm); });
        refusal("copy " + name, [&] { store_.duplicateProfile(Kind::films, "trix400", name); });
        refusal("rename " + name, [&] { store_.renameUserProfile(Kind::films, "mine", name); });
        refusal("restore " + name, [&] { store_.restoreUserProfile(Kind::films, name, trashed); });
        refusal("delete " + name, [&] { store_.deleteUserProfile(Kind::films, name); });
        refusal("export " + name, [&] {
            store_.exportProfile(Kind::films, "trix400",
                                 root_ / "user/profiles/films" / (name + ".tprofile"));
        });
        EXPECT_FALSE(lists(Kind::films, name, true)) << "a folder is no profile";
    }
    const std::string longName(300, 'n');
    refusal("a name too long for the disk", [&] { store_.saveUserProfile(Kind::films, longName, kFilm); });
    refusal("the same", [&] { store_.renameUserProfile(Kind::films, "mine", longName); });

    fs::remove_all(root_ / "user/trash");
    write("user/trash", "a file");
    refusal("delete", [&] { store_.deleteUserProfile(Kind::films, "mine"); });
    EXPECT_TRUE(lists(Kind::films, "mine"));
    EXPECT_EQ(store_.film("mine").name, "Mine");
}

TEST_F(UserProfilesTest, AUsersRootThatIsAFileHoldsNothing)
{
    write("user", "a file");
    write("trashed.tprofile", kFilm);
    const ProfileStore store;
    EXPECT_EQ(store.list(Kind::films).size(), 72u);
    EXPECT_EQ(store.filmsSorted().size(), 72u);
    EXPECT_EQ(store.film("portra400").type, "color");
    EXPECT_THROW(store.film("mine"), ProfileError);
    refusal("save", [&] { store_.saveUserProfile(Kind::films, "mine", kFilm); });
    refusal("copy", [&] { store_.duplicateProfile(Kind::films, "trix400", "mine"); });
    refusal("delete", [&] { store_.deleteUserProfile(Kind::films, "mine"); });
    refusal("restore", [&] { store_.restoreUserProfile(Kind::films, "mine", root_ / "trashed.tprofile"); });
}

TEST_F(UserProfilesTest, AMoveToAnotherVolumeIsAMove)
{
    // Memory is a second volume where there is one; a move within one volume must do the same.
    std::error_code none;
    fs::path other = fs::path("/dev/shm") / root_.filename();
    if (!fs::create_directories(other, none)) other = root_ / "other";
    fs::create_directories(other);
    std::ofstream(other / "away.tprofile") << kFilm;
    write("user/profiles/films/folder.tprofile/inside", "x");
    refusal("restore", [&] { store_.restoreUserProfile(Kind::films, "folder", other / "away.tprofile"); });
    EXPECT_EQ(read(other / "away.tprofile"), kFilm) << "what can't be moved stays";
    EXPECT_NO_THROW(store_.restoreUserProfile(Kind::films, "mine", other / "away.tprofile"));
    EXPECT_EQ(read(root_ / kFilmFile), kFilm);
    EXPECT_FALSE(fs::exists(other / "away.tprofile"));
    fs::remove_all(other);
}

TEST_F(UserProfilesTest, WhatAProfileSaysOfItselfFollowsItsFile)
{
    const auto film = [](const char* hidden) {
        Json profile = Json::parse(kFilm);
        profile["hidden"] = Json::parse(hidden);
        return profile.dump();
    };
    EXPECT_FALSE(store_.offers(Kind::films, "mine")) << "nothing is there yet, and that is remembered";
    write(kFilmFile, R"({"type": "hologram"})");
    EXPECT_FALSE(lists(Kind::films, "mine"));
    store_.saveUserProfile(Kind::films, "mine", kFilm);
    EXPECT_TRUE(lists(Kind::films, "mine"));
    EXPECT_TRUE(store_.offers(Kind::films, "mine"));

    for (const bool hidden : {true, false, true}) {
        store_.saveUserProfile(Kind::films, "mine", film(hidden ? "true" : "false"));
        EXPECT_EQ(store_.isMarkedHidden(Kind::films, "mine"), hidden);
        EXPECT_EQ(lists(Kind::films, "mine"), !hidden);
        EXPECT_TRUE(lists(Kind::films, "mine", true));
        EXPECT_EQ(store_.offers(Kind::films, "mine"), !hidden);
    }

    EXPECT_FALSE(store_.isMarkedHidden(Kind::films, "other"));
    store_.renameUserProfile(Kind::films, "mine", "other");
    EXPECT_TRUE(store_.isMarkedHidden(Kind::films, "other"));
    EXPECT_FALSE(store_.isMarkedHidden(Kind::films, "mine"));
    const fs::path trashed = store_.deleteUserProfile(Kind::films, "other");
    EXPECT_FALSE(store_.isMarkedHidden(Kind::films, "other"));
    store_.restoreUserProfile(Kind::films, "other", trashed);
    EXPECT_TRUE(store_.isMarkedHidden(Kind::films, "other"));

    write("user/profiles/papers/mine.tprofile", R"({"kind": "stone"})");
    EXPECT_FALSE(lists(Kind::papers, "mine"));
    store_.saveUserProfile(Kind::papers, "mine", R"({"kind": "plate"})");
    EXPECT_TRUE(lists(Kind::papers, "mine"));
    store_.saveUserProfile(Kind::papers, "mine", R"({"gamma": 2})");
    EXPECT_TRUE(lists(Kind::papers, "mine")) << "a paper that doesn't say is one for the enlarger";
    store_.duplicateProfile(Kind::papers, "platinum", "my_platinum");
    EXPECT_TRUE(lists(Kind::papers, "my_platinum"));
    store_.saveUserProfile(Kind::papers, "mine", R"({"kind": "stone", "gamma": 2})");
    EXPECT_FALSE(lists(Kind::papers, "mine"));
    EXPECT_EQ(store_.paper("mine").gamma, 2) << "and is still there by its name";
}

class FilmsSortedTest : public UserProfilesTest {
protected:
    void save(const char* id, const char* name)
    {
        Json film = Json::parse(kFilm);
        film["name"] = name;
        store_.saveUserProfile(Kind::films, id, film.dump());
    }

    static bool stand(const std::vector<std::string>& films, const std::vector<std::string>& inThisOrder)
    {
        auto at = films.begin();
        for (const std::string& film : inThisOrder) {
            at = std::find(at, films.end(), film);
            if (at == films.end()) return false;
        }
        return true;
    }
};

TEST_F(FilmsSortedTest, GroupsStandInTheirOrder)
{
    const std::vector<std::string> groups{"bw",      "spectral", "color", "slide",
                                          "instant", "tricolor", "plates"};
    const std::set<std::string> spectral{"orthoplus80", "retro80s", "sfx200"};
    const std::vector<std::string> films = store_.filmsSorted();
    ASSERT_EQ(films.size(), 72u);
    EXPECT_EQ(films.front(), "digital_negative");
    std::vector<std::string> found;
    for (const std::string& id : films) {
        if (id == "digital_negative") continue;
        std::string group = spectral.contains(id) ? "spectral" : store_.film(id).type;
        if (id == "collodion_wet" || id == "dryplate_ortho") group = "plates";
        if (found.empty() || found.back() != group) found.push_back(group);
    }
    EXPECT_EQ(found, groups);
    std::vector<std::string> sorted = films;
    std::ranges::sort(sorted);
    EXPECT_EQ(sorted, store_.list(Kind::films));
}

TEST_F(FilmsSortedTest, BrandsStandTogetherAndNumbersCount)
{
    save("u1", "Fujicolor Silver 100");
    save("u2", "Fujifilm Acros 100");
    save("u3", "Fuji Neopan 1600");
    save("u4", "Foma Retropan 320");
    save("u5", "fomapan 200");
    save("u6", "Lomography Berlin 400");
    save("u7", "LOMOCHROME Grey");
    save("u8", "Ilford");
    save("u9", "Fujidol 5");
    save("u10", "Fomalux 5");
    const std::vector<std::string> films = store_.filmsSorted();
    const std::pair<const char*, std::vector<std::string>> cases[] = {
        {"numbers as numbers", {"delta100", "delta400", "delta3200"}},
        {"the word before the number", {"delta3200", "fp4", "hp5", "ilfordpan100", "ilfordpan400", "panf50"}},
        {"a brand alone comes first of its brand", {"agfa_apx100", "u8", "delta100", "trix400"}},
        {"Foma", {"u4", "fomapan100", "u5", "fomapan400", "u10", "u3"}},
        {"Fujifilm", {"u3", "u9", "u1", "u2", "u8"}},
        {"Lomography", {"trix400", "u7", "u6"}},
        {"colours by Lomography",
         {"vision3_500t", "lomochrome_metropolis", "lomochrome_purple", "lomochrome_turquoise",
          "lomo_color92", "lomo_color92_sunkissed", "lomo_cn400", "lucky_color200"}},
        {"portra", {"portra160", "portra400", "portra800", "pro_image100", "ultramax400", "vericolor3"}},
    };
    for (const auto& [what, order] : cases) EXPECT_TRUE(stand(films, order)) << what;

    const auto first = std::ranges::find(films, "lomochrome_metropolis");
    EXPECT_EQ(*(first + 6), "lucky_color200") << "no other brand among them";
}

TEST_F(FilmsSortedTest, NamesAreThoseOfTheLanguage)
{
    EXPECT_TRUE(stand(store_.filmsSorted(), {"vision3_500t", "svema_ds4", "svema_ds5m", "sovcolor_50s"}));
    Loc::setOverride(Loc::Lang::en);
    EXPECT_TRUE(stand(store_.filmsSorted(), {"vision3_500t", "sovcolor_50s", "svema_ds4", "svema_ds5m"}));
}

TEST_F(FilmsSortedTest, AUsersBrokenFilmIsNotAmongThem)
{
    write("user/profiles/films/text.tprofile", "{");
    write("user/profiles/films/alien.tprofile", R"({"type": "hologram"})");
    write("user/profiles/films/half.tprofile", R"({"type": "bw", "negative": {"dmin": 0}})");
    write("user/profiles/films/secret.tprofile", R"({"type": "bw", "hidden": true})");
    write("user/profiles/films/nameless.tprofile", R"({"type": "bw"})");
    std::vector<std::string> films = store_.filmsSorted();
    EXPECT_EQ(films.size(), 73u);
    EXPECT_EQ(std::ranges::count(films, "nameless"), 1);
    for (const char* broken : {"text", "alien", "half", "secret"})
        EXPECT_EQ(std::ranges::count(films, broken), 0) << broken;
    EXPECT_EQ(store_.data(Kind::films, "text"), "{") << "who asks for it by name still gets it";

    fs::resize_file(root_ / "user/profiles/films/nameless.tprofile", UserFiles::kLargestFile + 1);
    EXPECT_EQ(store_.filmsSorted().size(), 72u) << "nor one that was broken since it was first looked at";
}

} // namespace
} // namespace tamlo
