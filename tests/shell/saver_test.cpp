#include "core/image/tamlo_error.h"
#include "tests/shell/session.h"
#include "tests/support/scratch_folder.h"

#include <filesystem>
#include <fstream>

namespace tamlo::test {
namespace {

namespace fs = std::filesystem;

class SaverTest : public SessionTest {
protected:
    /// The problem of a save, empty for none.
    std::string save(const fs::path& to, Saver::Over over = Saver::Over::expected)
    {
        std::optional<std::string> ended;
        model_.saver.saveProject(
            to, [&](std::optional<std::string> problem) { ended = problem.value_or(""); }, over);
        settle([&] { return ended.has_value(); });
        return *ended;
    }
    void change(double grade)
    {
        model_.rack.change(all(), [=](ProcessSettings& settings) { settings.options.grade = grade; });
    }
    std::vector<ProjectBackups::Item> backups() const
    {
        return ProjectBackups::list(ProjectBackups::dir(file_), false);
    }
    std::string onDisk() const { return readFile(file_); }

    ScratchFolder folder_;
    fs::path file_ = folder_ / "roll.tamlo";
};

TEST_F(SaverTest, WhatIsSavedIsOpenedAgain)
{
    open(5);
    EXPECT_EQ(save(file_), "");
    EXPECT_EQ(model_.projectURL(), file_);
    EXPECT_FALSE(model_.saver.hasChanges());
    model_.amendProject([&](Project& project) { project.frames.edit(0).url = folder_ / "raw" / "0.nef"; });
    fs::create_directory(folder_ / "rolls");
    EXPECT_EQ(save(folder_ / "rolls" / "roll.tamlo"), "");
    EXPECT_EQ(roll()[0].relPath, "../raw/0.nef") << "as seen from where the project stands now";
    EXPECT_EQ(save(file_, Saver::Over::anything), "");
    EXPECT_EQ(roll()[0].relPath, "raw/0.nef");
    EXPECT_FALSE(model_.saver.hasChanges());
    const Project saved = model_.project();
    open(1);
    ASSERT_TRUE(model_.saver.open(file_));
    EXPECT_EQ(model_.project(), saved);
    EXPECT_EQ(model_.status(), "Project opened: 5 frames");
    EXPECT_FALSE(model_.saver.hasChanges()) << "a freshly opened project is no changed one";
    EXPECT_EQ(steps(), 0u);
    EXPECT_EQ(model_.selection.cursor(), saved.frames[0].id);
    EXPECT_TRUE(model_.saver.open(file_)) << "it is open here, and nowhere else";
    EXPECT_THROW(ProjectFile{file_}, TamloError) << "and held";
}

TEST_F(SaverTest, AnIdleProjectIsNotWritten)
{
    model_.saver.startAutosave();
    open(3);
    loop_.advance(300);
    EXPECT_TRUE(folder_.listing().empty()) << "a project without a file is never written by itself";
    ASSERT_EQ(save(file_), "");
    const auto before = fs::last_write_time(file_);
    loop_.advance(300);
    EXPECT_EQ(fs::last_write_time(file_), before);
    EXPECT_TRUE(backups().empty());
    change(4.5);
    loop_.advance(61);
    settle([&] { return !model_.saver.hasChanges(); });
    EXPECT_EQ(onDisk(), model_.project().encoded());
    EXPECT_EQ(backups().size(), 1u);
    model_.undo();
    change(4.5);
    EXPECT_FALSE(model_.saver.hasChanges()) << "equal again, though by other frames";
}

TEST_F(SaverTest, SavesThatOverlapFollowEachOther)
{
    open(50);
    int ended = 0;
    for (int i = 0; i < 5; ++i) {
        change(0.5 * i);
        model_.saver.saveProject(file_, [&](std::optional<std::string> problem) {
            EXPECT_EQ(problem, std::nullopt);
            ++ended;
        });
    }
    settle([&] { return ended == 5; });
    EXPECT_EQ(onDisk(), model_.project().encoded());
}

TEST_F(SaverTest, AFileThatSomebodyElseChangedIsNotWrittenOver)
{
    open(3);
    ASSERT_EQ(save(file_), "");
    const std::string saved = onDisk();
    writeFile(file_, saved + " ");
    change(4.5);
    EXPECT_NE(save(file_).find("was changed by another program"), std::string::npos);
    EXPECT_TRUE(model_.lastActionFailed());
    EXPECT_TRUE(model_.saver.isChangedOnDisk());
    EXPECT_EQ(onDisk(), saved + " ");
    loop_.advance(61);
    EXPECT_EQ(onDisk(), saved + " ") << "nor by itself";
    EXPECT_EQ(save(file_, Saver::Over::anything), "") << "but on purpose";
    EXPECT_EQ(onDisk(), model_.project().encoded());
    ASSERT_EQ(backups().size(), 1u);
    EXPECT_EQ(readFile(backups()[0].url), saved + " ") << "and what stood there is kept";
    EXPECT_FALSE(model_.saver.isChangedOnDisk());
    writeFile(file_, saved + " ");
    EXPECT_NE(save(file_), "");
    EXPECT_EQ(save(folder_ / "copy.tamlo"), "") << "a copy is free";
    EXPECT_FALSE(model_.saver.isChangedOnDisk());
    model_.saver.adopt(Project());
    writeFile(file_, saved);
    ASSERT_TRUE(model_.saver.open(file_));
    change(1.5);
    writeFile(file_, saved); // touched, the same bytes
    EXPECT_EQ(save(file_), "");
    fs::remove(file_);
    EXPECT_EQ(save(file_), "") << "a file that is gone is written again";
    EXPECT_EQ(onDisk(), model_.project().encoded());
}

TEST_F(SaverTest, TheLastProjectOpensUnlessItCannot)
{
    EXPECT_FALSE(model_.recents.openLastProject());
    open(4);
    ASSERT_EQ(save(file_), "");
    {
        model_.saver.adopt(Project());
        const ProjectFile elsewhere(file_);
        EXPECT_FALSE(model_.recents.openLastProject());
    }
    EXPECT_TRUE(model_.recents.openLastProject()) << "another program had it, and nothing was wrong with it";
    EXPECT_EQ(roll().size(), 4u);
    model_.saver.adopt(Project());
    writeFile(file_, "{");
    EXPECT_FALSE(model_.recents.openLastProject());
    EXPECT_TRUE(model_.lastActionFailed());
    EXPECT_EQ(preferences_.text("lastProject"), std::nullopt) << "it is not tried again";
    preferences_.setText("lastProject", (folder_ / "gone.tamlo"));
    EXPECT_FALSE(model_.recents.openLastProject());
    EXPECT_EQ(preferences_.text("lastProject"), std::nullopt);
}

TEST_F(SaverTest, TwoSessionsNeverWriteOverEachOther)
{
    open(3);
    EXPECT_EQ(save(file_), "");
    AppModel other{{loop_, store_, questions_, views_, clipboard_, volumes_, preferences_, &registry_, {}}};
    EXPECT_FALSE(other.saver.open(file_));
    EXPECT_TRUE(other.lastActionFailed());
    EXPECT_NE(other.status().find("The project is open in another program"), std::string::npos)
        << other.status();
    ASSERT_TRUE(other.saver.open(file_, Saver::Access::read)) << "to look at it is allowed";
    EXPECT_EQ(other.project().frames.size(), 3u);
    other.marks.assign({other.project().frames[0].id}, Mark::rejected);
    model_.marks.assign(ids({0}), Mark::selected);
    EXPECT_EQ(save(file_), "");
    std::optional<std::string> problem;
    bool ended = false;
    other.saver.saveProject(file_, [&](std::optional<std::string> why) {
        problem = why;
        ended = true;
    });
    settle([&] { return ended; });
    EXPECT_TRUE(problem.has_value()) << "the one that reads can't write it";
    model_.saver.adopt(Project::untitled()); // the first lets go
    ASSERT_TRUE(other.saver.open(file_));
    EXPECT_EQ(other.project().frames[0].mark, Mark::selected);
}

TEST_F(SaverTest, AFailureKeepsTheFileAndTheWork)
{
    open(3);
    EXPECT_NE(save(folder_ / "no" / "such" / "roll.tamlo").find("could not be saved"), std::string::npos);
    EXPECT_EQ(model_.projectURL(), std::nullopt);
    writeFile(folder_ / "broken.tamlo", "{\"frames\": [{\"url\": 3}]}");
    const Project before = model_.project();
    for (const char* bad : {"broken.tamlo", "none.tamlo", ""}) {
        EXPECT_FALSE(model_.saver.open(folder_ / bad)) << bad;
        EXPECT_NE(model_.status().find("could not be opened"), std::string::npos);
    }
    EXPECT_EQ(model_.project(), before);
}

} // namespace
} // namespace tamlo::test
