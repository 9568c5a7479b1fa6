// Frames and their files in a session that stays open.
#include "app/project/file_fields.h"
#include "tests/shell/session.h"

#include <filesystem>
#include <fstream>

namespace tamlo::test {
namespace {

namespace fs = std::filesystem;

class LinkerTest : public SessionTest {
protected:
    LinkerTest()
    {
        fs::create_directory(folder_ / "photos");
        for (int i = 0; i < 4; ++i) writeFile(photo(i), "picture " + std::to_string(i));
    }
    std::string photo(int i) const { return folder_ / "photos" / (std::to_string(i) + ".nef"); }
    /// A roll of the four, in a file of the folder.
    void openFour()
    {
        Project project;
        for (int i = 0; i < 4; ++i) project.frames.append(newFrame(FileFields::read(photo(i), {})));
        model_.saver.adopt(std::move(project), folder_ / "roll.tamlo");
    }
    FileState state(std::size_t place) const { return model_.linker.state(roll()[place].id); }
    /// Both readings of a whole roll have come back.
    void waitForReading()
    {
        bool ended = false;
        model_.linker.examineAll([&] { ended = true; });
        settle([&] { return ended; });
    }
    void hide(const std::string& name) const { fs::rename(folder_ / name, folder_ / "hidden"); }
    void bringBack(const std::string& name) const { fs::rename(folder_ / "hidden", folder_ / name); }

    ScratchFolder folder_;
};

TEST_F(LinkerTest, AnOpenSessionReadsAfterwardsWhatItDidNotWaitFor)
{
    const auto date = fs::last_write_time(photo(1));
    openFour();
    Project old = model_.project();
    old.frames.edit(0).shot.reset();
    old.frames.edit(2).fingerprint.reset();
    writeFile(photo(1), "PICTURE 1"); // its name, size and time, another picture
    fs::last_write_time(photo(1), date);
    fs::last_write_time(photo(3), date + std::chrono::hours(1));

    model_.linker.keepWatch();
    model_.saver.adopt(old, folder_ / "roll.tamlo");
    for (std::size_t i = 0; i < 4; ++i) EXPECT_EQ(state(i), FileState::ok) << "nothing was opened yet";
    EXPECT_FALSE(roll()[2].fingerprint);
    waitForReading();
    EXPECT_TRUE(roll()[0].shot);
    EXPECT_TRUE(roll()[2].fingerprint);
    EXPECT_EQ(roll()[2].relPath, "photos/2.nef");
    EXPECT_EQ(state(1), FileState::changed);
    EXPECT_EQ(roll()[1].fingerprint, old.frames[1].fingerprint) << "it stays that of the old picture";
    EXPECT_EQ(state(3), FileState::ok);
    EXPECT_NE(roll()[3].fingerprint->mtime, old.frames[3].fingerprint->mtime) << "it is not read again";
    EXPECT_EQ(steps(), 0u);

    model_.saver.adopt(old, folder_ / "roll.tamlo");
    open(1);
    loop_.runPosted();
    EXPECT_EQ(state(0), FileState::missing) << "nobody takes what was read for another roll";
}

TEST_F(LinkerTest, VolumesAndWakingBringFramesBack)
{
    openFour();
    model_.linker.keepWatch();
    const auto lost = [&] { return model_.linker.lostFrames().size(); };
    hide("photos");
    model_.saver.adopt(model_.project(), folder_ / "roll.tamlo");
    EXPECT_EQ(lost(), 4u);
    bringBack("photos");
    loop_.advance(600);
    EXPECT_EQ(lost(), 4u) << "nobody told";
    const std::int64_t generation = model_.linker.fileStateGen();
    volumes_.signal();
    loop_.runPosted();
    EXPECT_EQ(lost(), 0u);
    EXPECT_EQ(views_.loaded, 4u);
    EXPECT_GT(model_.linker.fileStateGen(), generation);

    hide("photos");
    model_.saver.adopt(model_.project(), folder_ / "roll.tamlo");
    bringBack("photos");
    loop_.slept = 3'600;
    loop_.advance(61);
    EXPECT_EQ(lost(), 0u);
    waitForReading();
}

TEST_F(LinkerTest, LinkingOneFileOffersTheOthersOfItsFolder)
{
    openFour();
    fs::rename(folder_ / "photos", folder_ / "elsewhere");
    model_.saver.adopt(model_.project(), folder_ / "roll.tamlo");
    ASSERT_EQ(model_.linker.lostFrames().size(), 4u);
    const auto link = [&](std::size_t place, const std::string& name) {
        std::optional<std::size_t> nearby;
        model_.linker.linkFile(roll()[place].id, folder_ / name, true, [&](std::size_t n) { nearby = n; });
        settle([&] { return nearby || questions_.cancelled > 0; });
        return nearby.value_or(99);
    };
    EXPECT_EQ(link(0, "elsewhere/1.nef"), 99u) << "another picture, and nobody agreed";
    questions_.cancelled = 0;
    EXPECT_EQ(link(0, "elsewhere/0.nef"), 3u);
    EXPECT_EQ(model_.linker.lostFrames().size(), 3u) << "an offer is no order";
    EXPECT_EQ(steps(), 1u);
    questions_.linkWhatIsNearby = true;
    EXPECT_EQ(link(1, "elsewhere/1.nef"), 2u);
    EXPECT_TRUE(model_.linker.lostFrames().empty());
    EXPECT_EQ(steps(), 3u);
    EXPECT_EQ(model_.status(), "Files linked: 2");
    EXPECT_EQ(roll()[3].url, folder_ / "elsewhere/3.nef");
    model_.undo();
    EXPECT_EQ(roll()[3].url, photo(3)) << "what was linked by a step goes back with it";
}

} // namespace
} // namespace tamlo::test
