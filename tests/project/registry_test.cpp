// The registry of projects: what survives in it, and the list of recent ones.
#include "app/project/project_backups.h"
#include "app/project/project_registry.h"
#include "app/project/recent_titles.h"
#include "tests/support/json_mutator.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/test_seams.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace tamlo {
namespace {

namespace fs = std::filesystem;
using Entries = ProjectRegistry::Entries;

class RegistryTest : public ::testing::Test {
protected:
    RegistryTest() { setenv("XDG_RUNTIME_DIR", (scratch_ / "run").c_str(), 1); }
    ~RegistryTest() override { unsetenv("XDG_RUNTIME_DIR"); }

    test::ScratchFolder scratch_;
    const fs::path file_ = scratch_ / "projects.json";
    ProjectRegistry registry_{scratch_.path()};
};

TEST_F(RegistryTest, RemembersWhatWasOpenedClosedAndWritten)
{
    EXPECT_TRUE(registry_.opened("/r/a.tamlo", 12, 100.5));
    EXPECT_TRUE(registry_.opened("/r/x/../b.tamlo", 3, 101));
    EXPECT_TRUE(registry_.closed("/r/a.tamlo", 14, true, 102));
    EXPECT_TRUE(registry_.update("/r/new.tamlo", 103));
    const Entries entries = ProjectRegistry(scratch_.path()).load();
    ASSERT_EQ(entries.size(), 3u);
    const ProjectRegistry::Entry a = entries.at(ProjectBackups::tag("/r/a.tamlo"));
    EXPECT_EQ(a, (ProjectRegistry::Entry{ProjectBackups::tag("/r/a.tamlo"), "/r/a.tamlo", "a", 100.5, 102.0,
                                         true, 14}));
    EXPECT_EQ(entries.at(ProjectBackups::tag("/r/b.tamlo")).lastClosed, std::nullopt);
    EXPECT_EQ(test::readFile(file_).find("/r/new"), test::readFile(file_).find("/r/")) << "newest first";
    EXPECT_FALSE(registry_.metDamage());
}

TEST_F(RegistryTest, ADamagedFileIsKeptAndWhatItSaysIsSaved)
{
    registry_.opened("/r/a.tamlo", 1, 100);
    std::string text = test::readFile(file_);
    text.insert(text.rfind(']'), ", {\"id\": 5}, null");
    test::writeFile(file_, text);
    EXPECT_EQ(registry_.load().size(), 1u);
    EXPECT_TRUE(registry_.opened("/r/b.tamlo", 1, 101));
    EXPECT_TRUE(registry_.metDamage());
    EXPECT_EQ(test::readFile(scratch_ / "projects.json.damaged"), text);
    EXPECT_EQ(registry_.load().size(), 2u);
    // What the disk doesn't give is not written over.
    fs::remove(file_);
    fs::create_directory(file_);
    EXPECT_FALSE(registry_.opened("/r/c.tamlo", 1, 102));
    EXPECT_TRUE(fs::is_directory(file_));
}

TEST_F(RegistryTest, TenThousandDamagedRegistriesAreReadOrKept)
{
    for (int i = 0; i < 6; ++i) registry_.opened("/r/" + std::to_string(i) + ".tamlo", i, 100.0 + i);
    registry_.closed("/r/3.tamlo", 3, true, 200);
    const std::vector<std::string> corpus{test::readFile(file_),
                                          R"([{"id":"a","path":"b"},{"id":"a","path":"c"}])"};
    test::JsonMutator mutator(17, corpus);
    int understood = 0;
    for (int i = 0; i < 10'000; ++i) {
        const std::string text = mutator.next();
        test::writeFile(file_, text);
        const Entries entries = registry_.load();
        understood += entries.empty() ? 0 : 1;
        ProjectRegistry::recent(
            entries, "/r/1.tamlo", 50.0, [](const std::string&) { return true; }, 10);
        if (i % 250 > 0) continue; // writing flushes the disk
        ProjectRegistry session(scratch_.path());
        ASSERT_TRUE(session.opened("/r/new.tamlo", 1, 300)) << text;
        if (session.metDamage()) {
            EXPECT_EQ(test::readFile(scratch_ / "projects.json.damaged"), text);
        }
        EXPECT_TRUE(session.load().contains(ProjectBackups::tag("/r/new.tamlo"))) << text;
    }
    EXPECT_GT(understood, 3'000);
}

TEST_F(RegistryTest, TheRecentListLeavesOutWhatIsOpenGoneOrCleared)
{
    Entries entries;
    const auto add = [&](const std::string& path, double opened) {
        entries[path] = {path, path, "", opened, {}, false, 0};
    };
    add("/y/Paris/Roll.tamlo", 10);
    add("/z/Paris/Roll.tamlo", 11);
    add("/z/Rome/Roll.tamlo", 12);
    add("/z/Solo.tamlo", 13);
    add("/z/x/../Solo.tamlo", 14);
    add("/gone/Old.tamlo", 15);
    add("/z/Open.tamlo", 16);
    const auto exists = [](const std::string& path) { return !path.starts_with("/gone"); };
    using Items = std::vector<ProjectRegistry::RecentItem>;
    const auto list = [&](std::optional<double> clearedAt, std::size_t limit) {
        return ProjectRegistry::recent(entries, "/z/./Open.tamlo", clearedAt, exists, limit);
    };
    EXPECT_EQ(list({}, 10), (Items{{"Solo", "/z/Solo.tamlo"},
                                   {"Roll — Rome", "/z/Rome/Roll.tamlo"},
                                   {"Roll — z/Paris", "/z/Paris/Roll.tamlo"},
                                   {"Roll — y/Paris", "/y/Paris/Roll.tamlo"}}));
    EXPECT_EQ(list({}, 2).size(), 2u);
    EXPECT_EQ(list(12, 10), (Items{{"Solo", "/z/Solo.tamlo"}}));

    test::MapPreferences preferences;
    const std::string path = scratch_ / "a.tamlo";
    test::writeFile(path, "");
    registry_.opened(path, 1, 100);
    EXPECT_EQ(registry_.recentMenu({}, preferences), (Items{{"a", path}}));
    ProjectRegistry::clearRecent(preferences, 100);
    EXPECT_EQ(registry_.recentMenu({}, preferences), Items{});
    registry_.opened(path, 1, 100.5);
    EXPECT_EQ(registry_.recentMenu({}, preferences).size(), 1u);
}

TEST(RecentTitles, TellFoldersAsFarAsItTakes)
{
    EXPECT_EQ(recentTitles({"/a/b/R.tamlo", "/c/b/R.tamlo", "/R.tamlo", "/c/S.tamlo"}),
              (std::vector<std::string>{"R — a/b", "R — c/b", "R", "S"}));
}

TEST(RegistryId, TwoLivingProjectsOfOneTagAreToldApart)
{
    const std::string mine = "/r/mine.tamlo", tag = ProjectBackups::tag(mine);
    Entries entries;
    EXPECT_EQ(ProjectRegistry::idFor(entries, mine, {}), tag);
    entries[tag] = {tag, "/other/theirs.tamlo", "theirs", 1, {}, false, 0};
    const auto all = [](const std::string&) { return true; };
    const auto none = [](const std::string&) { return false; };
    const std::string longId = ProjectRegistry::idFor(entries, mine, all);
    EXPECT_EQ(longId.size(), 16u);
    EXPECT_TRUE(longId.ends_with(tag));
    EXPECT_EQ(ProjectRegistry::idFor(entries, mine, none), tag); // the other one is gone
    entries[longId] = {longId, mine, "mine", 2, {}, false, 0};
    EXPECT_EQ(ProjectRegistry::idFor(entries, mine, none), longId); // and stays what it is
}

} // namespace
} // namespace tamlo
