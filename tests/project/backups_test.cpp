// Copies of a project's file, and which of them stay.
#include "app/project/project_backups.h"
#include "app/project/project_file.h"
#include "core/image/tamlo_error.h"
#include "core/profiles/catalogue/profile_store.h"
#include "platform/file_info.h"
#include "platform/file_lock.h"
#include "tests/support/rolls.h"
#include "tests/support/scratch_folder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <random>

namespace tamlo {
namespace {

namespace fs = std::filesystem;
using ProjectBackups::Item;
using ProjectBackups::keepers;

constexpr double kNow = 1'800'000'000; // a whole number of all bucket widths but the week

std::vector<double> datesKept(const std::vector<double>& ages, std::int64_t bytes = 1)
{
    std::vector<Item> items;
    for (const double age : ages) items.push_back({"x", kNow - age, {}, bytes});
    std::vector<double> kept;
    for (const Item& item : keepers(items, kNow)) kept.push_back(kNow - item.date);
    return kept;
}

TEST(Backups, EachAgeKeepsItsShare)
{
    using Ages = std::vector<double>;
    EXPECT_EQ(datesKept({0, 1, 1'799, 1'800}), (Ages{0, 1, 1'799, 1'800}));
    EXPECT_EQ(datesKept({2'401, 2'500, 2'999}), (Ages{2'999})); // one bucket of ten minutes: the earliest
    EXPECT_EQ(datesKept({2'399, 2'401}), (Ages{2'399, 2'401}));
    EXPECT_EQ(datesKept({7'776'000, 7'776'001}), (Ages{7'776'000}));
    EXPECT_EQ(datesKept({-600}), (Ages{-600})); // written by a clock that was ahead
    EXPECT_EQ(datesKept({10}, 150 << 20), (Ages{10}));
    EXPECT_EQ(datesKept({10, 20}, 150 << 20), (Ages{10}));
    EXPECT_EQ(datesKept({10, 20}, 50 << 20), (Ages{10, 20}));
    Ages many(104);
    for (std::size_t i = 0; i < many.size(); ++i) many[i] = static_cast<double>(i);
    const Ages kept = datesKept(many);
    EXPECT_EQ(kept, Ages(many.begin(), many.begin() + 103));
}

// A year of saves every few minutes, thinned after each: what stays is bounded, sorted, and never a loss of
// the newest; thinning twice is thinning once.
TEST(Backups, ThinningIsStableOverAYear)
{
    std::mt19937 random(3);
    std::vector<Item> items;
    double now = kNow;
    for (int save = 0; save < 4'000; ++save) {
        now += 60.0 + static_cast<double>(random() % 3'000) + (random() % 40 == 0 ? 400'000.0 : 0.0);
        items.insert(items.begin(), {std::to_string(save), now - 30, {}, 1'000});
        items = keepers(items, now);
        ASSERT_EQ(items.front().date, now - 30);
        ASSERT_LE(items.size(), 103u);
        ASSERT_EQ(keepers(items, now), items);
        ASSERT_TRUE(std::is_sorted(items.rbegin(), items.rend(),
                                   [](const Item& a, const Item& b) { return a.date < b.date; }));
        ASSERT_LE(now - items.back().date, 7'776'000);
    }
}

class BackupFiles : public ::testing::Test {
protected:
    BackupFiles()
    {
        setenv("TAMLO_USER_DIR", (scratch_ / "user").c_str(), 1);
        setenv("XDG_RUNTIME_DIR", (scratch_ / "run").c_str(), 1);
        fs::create_directory(scratch_ / "rolls");
    }
    ~BackupFiles() override
    {
        unsetenv("TAMLO_USER_DIR");
        unsetenv("XDG_RUNTIME_DIR");
    }
    static double now() { return static_cast<double>(std::time(nullptr)); }
    static void age(const fs::path& file, double seconds)
    {
        fs::last_write_time(file, fs::file_time_type::clock::now() -
                                      std::chrono::milliseconds(static_cast<long>(seconds * 1000)));
    }

    test::ScratchFolder scratch_;
    const std::string roll_ = scratch_ / "rolls/Ночь.tamlo";
};

TEST_F(BackupFiles, EachWriteKeepsTheVersionBeforeIt)
{
    ProjectFile file(roll_);
    EXPECT_EQ(file.write("first", now()), ProjectFile::Written::done);
    const fs::path folder = ProjectBackups::dir(roll_);
    EXPECT_TRUE(ProjectBackups::list(folder, false).empty()); // there was nothing to keep
    age(roll_, 100);
    const double written = std::floor(platform::fileInfo(roll_)->mtime);
    file.write("second", now());
    auto items = ProjectBackups::list(folder, true);
    ASSERT_EQ(items.size(), 1u);
    EXPECT_EQ(test::readFile(items[0].url), "first");
    EXPECT_EQ(items[0].date, written); // when that version was made, not when it was copied
    EXPECT_EQ(items[0].url.filename(), ProjectBackups::stamp(written) + ".tamlo");
    EXPECT_EQ(items[0].bytes, 5);
    EXPECT_EQ(items[0].frames, std::nullopt);
    age(roll_, 100); // the same second again: one copy
    const auto before = items;
    file.write("third", now());
    EXPECT_EQ(ProjectBackups::list(folder, true).size(), 1u);

    test::writeFile(folder / "2024-01-01T00-00-00 copy.tamlo", "");
    test::writeFile(folder / "notes.tamlo", "");
    test::writeFile(folder / "2024-13-01T00-00-00.tamlo", "");
    EXPECT_EQ(ProjectBackups::list(folder, false).size(), 1u);
    test::writeFile(folder / "2020-01-02T03-04-05.tamlo", "old");
    EXPECT_EQ(ProjectBackups::usage().files, 2u);
    EXPECT_EQ(ProjectBackups::usage().bytes, 8);
    EXPECT_EQ(ProjectBackups::purge(90, now()), 1u);
    EXPECT_EQ(fs::exists(folder / "notes.tamlo"), true);
    // A folder that can't be made stops no save.
    fs::remove_all(scratch_ / "user/backups");
    test::writeFile(scratch_ / "user/backups", "");
    age(roll_, 5);
    EXPECT_EQ(file.write("fourth", now()), ProjectFile::Written::done);
    EXPECT_EQ(test::readFile(roll_), "fourth");
}

TEST_F(BackupFiles, ACopyOpensAsANewProject)
{
    const Project roll = test::rollOf(3);
    const fs::path copy = scratch_ / "2024-05-17T21-04-09.tamlo";
    test::writeFile(copy, roll.encoded());
    const auto items = ProjectBackups::list(scratch_.path(), true);
    ASSERT_EQ(items.size(), 1u);
    EXPECT_EQ(items[0].frames, 3u);
    const Project opened = ProjectBackups::restored(items[0], ProfileStore::shared());
    EXPECT_NE(opened.name.find("Roll"), std::string::npos);
    EXPECT_NE(opened.name.find("21:04"), std::string::npos) << opened.name;
    EXPECT_EQ(opened.frames, roll.frames);
    test::writeFile(copy, "{");
    EXPECT_THROW(ProjectBackups::restored(items[0], ProfileStore::shared()), TamloError);
}

TEST_F(BackupFiles, AnotherTimeZoneMakesNoCopyOlder)
{
    const double made = std::floor(now() - 3'000);
    const fs::path copy = scratch_ / (ProjectBackups::stamp(made + 5.75 * 3'600) + ".tamlo");
    test::writeFile(copy, "");
    age(copy, 3'000);
    const double own = std::floor(platform::fileInfo(copy)->mtime);
    fs::rename(copy, scratch_ / (ProjectBackups::stamp(own + 5.75 * 3'600) + ".tamlo"));
    EXPECT_EQ(ProjectBackups::list(scratch_.path(), false).at(0).date, own);
    const fs::path touched = scratch_ / (ProjectBackups::stamp(own - 1'000'000) + ".tamlo");
    test::writeFile(touched, ""); // copied by hand: the name tells
    EXPECT_EQ(ProjectBackups::date(touched), own - 1'000'000);
}

TEST_F(BackupFiles, PlacesOfProjectsAreToldApart)
{
    EXPECT_NE(ProjectBackups::dir("/a/Roll.tamlo"), ProjectBackups::dir("/b/Roll.tamlo"));
    EXPECT_EQ(ProjectBackups::dir("/a/x/../Roll.tamlo"), ProjectBackups::dir("/a/Roll.tamlo"));
    std::string name;
    for (int i = 0; i < 124; ++i) name += "я";
    const std::string folder = ProjectBackups::dir("/a/" + name + ".tamlo").filename().string();
    EXPECT_EQ(folder.size(), 255u);
    EXPECT_EQ(ProjectBackups::tag("/a/Roll.tamlo").size(), 6u);
}

TEST_F(BackupFiles, AProjectIsOpenInOneProgramAndNeverWrittenOverUnseen)
{
    test::writeFile(roll_, "mine");
    ProjectFile file(roll_);
    EXPECT_THROW(ProjectFile second(scratch_ / "rolls/../rolls/Ночь.tamlo"), TamloError);
    EXPECT_EQ(file.write("over a file that was never read", now()), ProjectFile::Written::changedOnDisk);
    EXPECT_EQ(file.read(), "mine");
    age(roll_, 50); // touched, not changed
    EXPECT_EQ(file.write("mine, edited", now()), ProjectFile::Written::done);
    const auto time = fs::last_write_time(roll_);
    test::writeFile(roll_, "mine, altered");
    fs::last_write_time(roll_, time); // the same size and time
    EXPECT_EQ(file.write("mine again", now()), ProjectFile::Written::changedOnDisk);
    EXPECT_EQ(test::readFile(roll_), "mine, altered");
    fs::remove(roll_);
    EXPECT_EQ(file.write("mine again", now()), ProjectFile::Written::done);
    fs::remove_all(scratch_ / "rolls");
    try {
        file.write("nowhere", now());
        FAIL();
    } catch (const TamloError& error) {
        EXPECT_NE(std::string(error.what()).find(roll_), std::string::npos) << error.what();
    }
}

} // namespace
} // namespace tamlo
