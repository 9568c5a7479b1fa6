#include "core/profiles/catalogue/profile_store.h"

#include "core/profiles/formats/profile_error.h"
#include "core/text/loc.h"
#include "tests/profiles/user_root.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace tamlo {
namespace {

namespace fs = std::filesystem;
using Kind = ProfileStore::Kind;

class ProfileStoreTest : public UserRootTest {};

constexpr const char* kFilm = R"({"name": "Mine", "type": "color"})";

TEST_F(ProfileStoreTest, TheNeutralTripleAndEveryListedNameLoad)
{
    const ProfileStore store;
    EXPECT_EQ(store.film("digital_negative").neutral, true);
    EXPECT_EQ(store.lens("modern_clean").optics.bloom, 0.03);
    EXPECT_EQ(store.paper("color_scan").scan->positiveGamma, 0.78);
    EXPECT_EQ(store.filterProfile("star_6").rays, 6);
    for (const std::string& name : store.list(Kind::films)) EXPECT_NO_THROW(store.film(name)) << name;
    for (const std::string& name : store.list(Kind::papers)) EXPECT_NO_THROW(store.paper(name)) << name;
    EXPECT_EQ(store.list(Kind::films, true).size(), 74u);
    EXPECT_EQ(store.list(Kind::films).size(), 72u) << "two data-sheet variants are hidden";
    EXPECT_EQ(store.list(Kind::lenses).size(), 12u);
    EXPECT_EQ(store.list(Kind::papers).size(), 41u);
    EXPECT_EQ(store.list(Kind::filters).size(), 20u);
    EXPECT_EQ(store.list(Kind::presets).size(), 47u);
}

TEST_F(ProfileStoreTest, OverrideThenCarriedThenUser)
{
    write("user/profiles/films/portra400.tprofile", kFilm);
    write("user/profiles/films/mine.tprofile", kFilm);
    EXPECT_EQ(ProfileStore().film("portra400").name, "Kodak Portra 400");
    EXPECT_EQ(ProfileStore().film("mine").name, "Mine");

    write("override/films/portra400.json", kFilm);
    EXPECT_EQ(ProfileStore(root_ / "override").film("portra400").name, "Mine");
    EXPECT_EQ(ProfileStore(root_ / "override").film("trix400").type, "bw");

    setenv("TAMLO_PROFILES", (root_ / "override").c_str(), 1);
    EXPECT_EQ(ProfileStore().film("portra400").name, "Mine");
    setenv("TAMLO_PROFILES", (root_ / "nowhere").c_str(), 1);
    EXPECT_EQ(ProfileStore().film("portra400").name, "Kodak Portra 400");
}

TEST_F(ProfileStoreTest, ListsWhatCanBeRendered)
{
    write("user/profiles/films/mine.tprofile", kFilm);
    write("user/profiles/films/broken.tprofile", "{");
    write("user/profiles/films/list.tprofile", "[1]");
    write("user/profiles/films/alien.tprofile", R"({"type": "hologram"})");
    write("user/profiles/films/secret.tprofile", R"({"type": "color", "hidden": true})");
    write("user/profiles/films/notes.txt", "x");
    write("user/profiles/papers/odd.tprofile", R"({"kind": "stone"})");
    fs::create_directories(root_ / "user/profiles/films/folder.tprofile");
    const ProfileStore store;
    const auto names = store.list(Kind::films);
    EXPECT_TRUE(std::ranges::is_sorted(names));
    EXPECT_EQ(std::ranges::count(names, "mine"), 1);
    for (const char* left : {"broken", "list", "alien", "secret", "notes", "folder"})
        EXPECT_EQ(std::ranges::count(names, left), 0) << left;
    EXPECT_EQ(std::ranges::count(store.list(Kind::films, true), "secret"), 1);
    EXPECT_EQ(std::ranges::count(store.list(Kind::papers), "odd"), 0);
}

TEST_F(ProfileStoreTest, AMissingNameTellsWhatThereIs)
{
    try {
        ProfileStore().lens("sonnar");
        FAIL();
    } catch (const ProfileError& error) {
        EXPECT_EQ(error.kind(), ProfileError::Kind::notFound);
        EXPECT_STREQ(error.what(), "No lenses profile 'sonnar'. Available: dagor1892, imagon, m_glow, "
                                   "modern_clean, petzval1900, pinhole, summilux35_fle, summilux50_asph, "
                                   "swirl58, uncoated50s, verito, wollaston1812");
    }
    EXPECT_EQ(ProfileStore().nearestName(Kind::films, "porta400"), "portra400");
}

TEST_F(ProfileStoreTest, ANameStaysInItsFolder)
{
    write("override/secret.json", kFilm);
    write("override/films/sub/deep.json", kFilm);
    const ProfileStore store(root_ / "override");
    for (const std::string& name :
         {std::string("../secret"), std::string("sub/deep"), std::string(".."), std::string(),
          std::string("a\\b"), (root_ / "override/secret").string(), std::string("portra400\0", 10)})
        EXPECT_THROW(store.data(Kind::films, name), ProfileError) << name;
}

TEST_F(ProfileStoreTest, ABrokenProfileIsInvalidAndNamesTheKey)
{
    Loc::setOverride(Loc::Lang::en);
    write("user/profiles/films/half.tprofile", R"({"type": "bw", "negative": {"dmin": 0}})");
    try {
        ProfileStore().film("half");
        FAIL();
    } catch (const ProfileError& error) {
        EXPECT_EQ(error.kind(), ProfileError::Kind::invalid);
        EXPECT_STREQ(error.what(),
                     "Invalid profile: films/half: the required key \"negative.dmax\" (a number) "
                     "is missing");
    }
}

TEST_F(ProfileStoreTest, AFrameStartsOnThePaperOfItsFilm)
{
    const ProfileStore store;
    const std::pair<const char*, const char*> cases[] = {{"collodion_wet", "ambrotype"},
                                                         {"three_plates_1909", "scan_film"},
                                                         {"trix400", "bw_neutral"},
                                                         {"portra400", "color_scan"},
                                                         {"fp100c", "color_scan"}};
    for (const auto& [film, paper] : cases)
        EXPECT_EQ(ProfileStore::defaultPaperName(store.film(film)), paper) << film;
}

} // namespace
} // namespace tamlo
