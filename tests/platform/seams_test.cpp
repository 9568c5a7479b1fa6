// Preferences, locks, volumes, hashes: what a session asks of the system.
#include "platform/content_hash.h"
#include "platform/desktop.h"
#include "platform/file_lock.h"
#include "platform/platform_error.h"
#include "platform/user_folder.h"
#include "platform/volumes.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/test_seams.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>

#include <sys/wait.h>
#include <unistd.h>

namespace tamlo::platform {
namespace {

class SeamsTest : public ::testing::Test {
protected:
    SeamsTest()
    {
        setenv("TAMLO_USER_DIR", (scratch_ / "user").c_str(), 1);
        setenv("XDG_RUNTIME_DIR", (scratch_ / "run").c_str(), 1);
    }
    ~SeamsTest() override
    {
        unsetenv("TAMLO_USER_DIR");
        unsetenv("XDG_RUNTIME_DIR");
    }
    test::ScratchFolder scratch_;
};

TEST_F(SeamsTest, PreferencesComeBackAsTheyWereStored)
{
    FilePreferences file;
    test::MapPreferences map;
    for (Preferences* stored : {static_cast<Preferences*>(&file), static_cast<Preferences*>(&map)}) {
        const std::vector<std::string> texts{"a,b", "", "line\nfeed=\"x\"", "плёнка", "\\"};
        stored->setList("recent", texts);
        stored->setFlag("flag", false);
        stored->setNumber("cap", 0.1 + 0.2);
        stored->setText("words", "true");
        EXPECT_EQ(stored->list("recent"), texts);
        EXPECT_EQ(stored->flag("flag"), false);
        EXPECT_EQ(stored->number("cap"), 0.1 + 0.2);
        EXPECT_EQ(stored->number("words"), std::nullopt);
        EXPECT_EQ(stored->flag("cap"), std::nullopt);
        EXPECT_EQ(stored->list("cap"), std::nullopt);
        stored->setText("cap", std::nullopt);
        EXPECT_EQ(stored->text("cap"), std::nullopt);
    }
    const std::string kept = test::readFile(scratch_ / "user/preferences");
    std::filesystem::remove(scratch_ / "user/preferences");
    std::filesystem::create_directory(scratch_ / "user/preferences"); // can't be read: not written over
    EXPECT_THROW(file.setText("a", "b"), PlatformError);
    EXPECT_EQ(file.text("words"), std::nullopt);
    EXPECT_NE(kept.find("words=true\n"), std::string::npos);
}

TEST_F(SeamsTest, ProgramsThatWriteAtOnceLoseNoPreference)
{
    constexpr int kPrograms = 4, kKeys = 12;
    for (int p = 0; p < kPrograms; ++p)
        if (fork() == 0) {
            FilePreferences file;
            for (int k = 0; k < kKeys; ++k) file.setNumber(std::to_string(p) + "." + std::to_string(k), k);
            _exit(0);
        }
    while (wait(nullptr) > 0) {}
    FilePreferences file;
    for (int p = 0; p < kPrograms; ++p)
        for (int k = 0; k < kKeys; ++k)
            EXPECT_EQ(file.number(std::to_string(p) + "." + std::to_string(k)), k);
}

TEST_F(SeamsTest, ALockEndsWithItsHolderHoweverItEnds)
{
    const auto held = FileLock::tryTake("/rolls/a.tamlo");
    ASSERT_TRUE(held);
    EXPECT_FALSE(FileLock::tryTake("/rolls/a.tamlo"));
    EXPECT_TRUE(FileLock::tryTake("/rolls/b.tamlo"));
    EXPECT_THROW(FileLock::take("/rolls/a.tamlo", 0.01), PlatformError);

    int ready[2];
    ASSERT_EQ(pipe(ready), 0);
    const pid_t child = fork();
    if (child == 0) {
        const auto lock = FileLock::tryTake("/rolls/c.tamlo");
        (void)!write(ready[1], "x", 1);
        pause();
    }
    char byte = 0;
    ASSERT_EQ(read(ready[0], &byte, 1), 1);
    EXPECT_FALSE(FileLock::tryTake("/rolls/c.tamlo"));
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    EXPECT_TRUE(FileLock::tryTake("/rolls/c.tamlo"));

    // Every name of one file is one lock; where no lock can be had, work goes on.
    test::writeFile(scratch_ / "roll.tamlo", "");
    std::filesystem::create_symlink("roll.tamlo", scratch_ / "link.tamlo");
    EXPECT_EQ(canonicalPath(scratch_ / "link.tamlo"), canonicalPath(scratch_ / "x/../roll.tamlo"));
    EXPECT_EQ(canonicalPath("new.tamlo"), canonicalPath(std::filesystem::current_path() / "./new.tamlo"));
    setenv("XDG_RUNTIME_DIR", "/proc/none", 1);
    EXPECT_TRUE(FileLock::tryTake("/rolls/a.tamlo"));
}

TEST_F(SeamsTest, FoldersFollowTheDesktop)
{
    EXPECT_EQ(lockFolder(), scratch_ / "run/tamlo");
    setenv("XDG_RUNTIME_DIR", "relative", 1);
    EXPECT_EQ(lockFolder(), scratch_ / "user/locks");
    setenv("XDG_CACHE_HOME", "/somewhere/cache", 1);
    EXPECT_EQ(cacheFolder(), "/somewhere/cache/Tamlo");
    unsetenv("XDG_CACHE_HOME");
}

TEST(Volumes, TellsAVolumeByWhereItIsMounted)
{
    const std::set<std::string> mounts{"/media/cdrom", "/media/ann/Card 1", "/mnt/nas"};
    const auto nameAt = [&](const std::string& path) {
        const auto place = volumeOf(
            path, [&](const std::string& root) { return mounts.contains(root); },
            [](const std::string& name) { return name == "ann"; });
        return place ? place->root + "|" + place->name : "";
    };
    const std::vector<std::pair<std::string, std::string>> cases{
        {"/media/ann/Card 1/DCIM/a.nef", "/media/ann/Card 1|Card 1"},
        {"/media/ann/Gone/a.nef", "/media/ann/Gone|Gone"},
        {"/media/cdrom/DCIM/a.nef", "/media/cdrom|cdrom"},
        {"/media/floppy/DCIM/a.nef", "/media/floppy|floppy"},
        {"/media/a.nef", ""},
        {"/media/ann/", ""},
        {"/run/media/ann/Stick/a.nef", "/run/media/ann/Stick|Stick"},
        {"/run/media/ann/a.nef", ""},
        {"/mnt/nas/2024/a.nef", "/mnt/nas|nas"},
        {"/mnt/a.nef", ""},
        {"/run/user/1000/gvfs/smb-share:server=nas/a.nef",
         "/run/user/1000/gvfs/smb-share:server=nas|smb-share:server=nas"},
        {"/home/ann/mnt/nas/a.nef", ""},
        {"/mnt/../home/ann/a.nef", ""},
        {"media/cdrom/a.nef", ""},
        {"", ""},
    };
    for (const auto& [path, expected] : cases) EXPECT_EQ(nameAt(path), expected) << path;
    EXPECT_EQ(
        mountPoints("22 1 8:1 / / rw - ext4 /dev/sda1 rw\n"
                    "90 22 8:17 / /media/ann/Card\\0401 rw,nosuid shared:1 - vfat /dev/sdb1 rw\nbroken\n"),
        (std::vector<std::string>{"/", "/media/ann/Card 1"}));
    const SystemVolumes system;
    EXPECT_TRUE(system.isOffline("/mnt/no such volume/a.nef"));
    EXPECT_EQ(system.name("/mnt/no such volume/a.nef"), "no such volume");
    EXPECT_FALSE(system.isOffline("/usr/share/a.nef"));
}

TEST(Volumes, AWatchEndsWithItsOwner)
{
    test::VirtualLoop loop;
    SystemVolumes volumes;
    for (int i = 0; i < 20; ++i) EXPECT_NE(volumes.watch(loop, [] {}), nullptr); // each joins its thread
}

TEST(HeadlessDesktop, TellsEachPercentOnce)
{
    std::vector<std::string> lines;
    HeadlessDesktop desktop([&](const std::string& line) { lines.push_back(line); });
    for (const double done : {0.0, 0.004, 0.5, 0.5001, 1.0}) desktop.showProgress(done);
    desktop.showProgress({});
    desktop.notify("Export", "3 frames");
    EXPECT_EQ(lines, (std::vector<std::string>{"0 %", "50 %", "100 %", "Export: 3 frames"}));
}

// Published vectors of XXH64 with seed 0.
TEST(XXHash64, GivesThePublishedValuesInAnyPieces)
{
    EXPECT_EQ(xxHash64(""), 17241709254077376921u);
    EXPECT_EQ(xxHash64("a"), 0xD24EC4F1A98C6E5Bu);
    EXPECT_EQ(xxHash64("abc"), 0x44BC2CF5AD770999u);
    const std::string text = "Nobody inspects the spammish repetition";
    EXPECT_EQ(xxHash64(text), 0xFBCEA83C8A378BF1u);
    XXHash64 pieces;
    for (const char c : text) pieces.update(std::string_view(&c, 1));
    EXPECT_EQ(pieces.finish(), xxHash64(text));
}

} // namespace
} // namespace tamlo::platform
