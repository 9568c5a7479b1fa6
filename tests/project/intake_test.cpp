// Files and folders on their way into a roll.
#include "app/project/file_resolver.h"
#include "app/project/folder_scan.h"
#include "app/project/intake.h"
#include "core/image/random.h"
#include "core/text/loc.h"
#include "tests/support/scratch_folder.h"

#include <gtest/gtest.h>

#include <fstream>

namespace tamlo {
namespace {

namespace fs = std::filesystem;
using FolderScan::PairChoice;
using Names = std::vector<std::string>;

class IntakeTest : public ::testing::Test {
protected:
    void make(const Names& names) const
    {
        for (const std::string& name : names) {
            fs::create_directories((scratch_ / name).parent_path());
            test::writeFile(scratch_ / name, name);
        }
    }
    Names relative(const Names& paths) const
    {
        Names out;
        for (const std::string& path : paths) out.push_back(path.substr(scratch_.path().string().size() + 1));
        return out;
    }
    test::ScratchFolder scratch_;
};

TEST_F(IntakeTest, AWalkTakesPicturesByNameAtEachLevel)
{
    const std::string odd = "r/line\nfeed.jpg", bytes = "r/\xFF\xFE.JPG", dash = "r/-rf.Heic";
    const std::string longest = "r/" + std::string(251, 'n') + ".nef";
    make({"r/b/2.NEF", "r/b/1.jpeg", "r/a.txt", "r/c.xmp", "r/c.PP3", "r/.hidden.jpg", "r/.h/x.jpg",
          "r/z.3fr", "r/noext", odd, bytes, dash, longest});
    fs::create_directory_symlink("..", scratch_ / "r/loop");
    fs::create_symlink("z.3fr", scratch_ / "r/link.dng");
    fs::create_symlink("nowhere", scratch_ / "r/dead.dng");
    const FolderScan::Walk all = FolderScan::walk(scratch_ / "r", 100);
    Names expected{"r/b/2.NEF", "r/b/1.jpeg", "r/z.3fr", "r/link.dng", odd, bytes, dash, longest};
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(relative(all.files), expected);
    EXPECT_EQ(all.refused, 2u);
    EXPECT_FALSE(all.limitHit);
    // The first of the walk enter, whatever comes later; the limit is hit only when one more is there.
    EXPECT_FALSE(FolderScan::walk(scratch_ / "r", expected.size()).limitHit);
    const FolderScan::Walk some = FolderScan::walk(scratch_ / "r", 2);
    EXPECT_TRUE(some.limitHit);
    EXPECT_EQ(relative(some.files), (Names{dash, "r/b/1.jpeg"}));
    EXPECT_TRUE(FolderScan::walk(scratch_ / "none", 9).files.empty());
}

TEST(Pairs, AreARawFileAndTheCamerasPictureOfOneName)
{
    const Names files{"/r/A.NEF",   "/r/A.JPG", "/r/A.heic",  "/r/A.tif", "/r/a.nef",
                      "/r/B.JPG",   "/q/B.NEF", "/r/C.DNG",   "/r/C.tif", "/r/D.B.NEF",
                      "/r/D.B.jpg", "/r/D.jpg", "/r.x/E.arw", "/r.x/E"};
    EXPECT_EQ(FolderScan::pairCount(files), 2u); // A and D.B
    const auto without = [&](const Names& gone) {
        Names left = files;
        std::erase_if(left, [&](const std::string& f) { return std::count(gone.begin(), gone.end(), f); });
        return left;
    };
    EXPECT_EQ(FolderScan::resolve(files, PairChoice::both), files);
    EXPECT_EQ(FolderScan::resolve(files, PairChoice::raw), without({"/r/A.JPG", "/r/A.heic", "/r/D.B.jpg"}));
    EXPECT_EQ(FolderScan::resolve(files, PairChoice::jpeg), without({"/r/A.NEF", "/r/D.B.NEF"}));
}

TEST_F(IntakeTest, WhatTheRollHasAlreadyIsCounted)
{
    make({"p/1.jpg", "p/2.jpg", "p/3.nef", "p/notes.txt", "loose.txt"});
    fs::copy_file(scratch_ / "p/1.jpg", scratch_ / "p/copy of 1.jpg");
    const std::string folder = scratch_ / "p";
    const Intake::Gathered gathered =
        Intake::gather({folder, folder + "/../p/2.jpg", scratch_ / "loose.txt", scratch_ / "gone.jpg"});
    EXPECT_EQ(gathered.files.size(), 4u);
    EXPECT_EQ(gathered.refused, Names{"loose.txt"});
    EXPECT_EQ(gathered.refusedCount(), 2u);
    EXPECT_EQ(gathered.missing, Names{scratch_ / "gone.jpg"});
    EXPECT_TRUE(Intake::gather({folder, folder}, 3).limitHit);

    Roll roll;
    std::vector<std::size_t> told;
    const Intake::Ingested first =
        Intake::ingest(gathered.files, roll, folder, [&](std::size_t n) { told.push_back(n); });
    EXPECT_EQ(first.frames.size(), 3u);
    EXPECT_EQ(first.already, 1u); // the copy, by its content
    EXPECT_EQ(told, (std::vector<std::size_t>{1, 2, 3, 4}));
    for (const Frame& frame : first.frames) {
        EXPECT_EQ(frame.seed, FrameSeed::crc32(frame.fileName()));
        EXPECT_EQ(frame.relPath, frame.fileName());
        EXPECT_TRUE(frame.fingerprint && frame.shot);
        EXPECT_FALSE(frame.process);
        roll.append(frame);
    }
    const Intake::Ingested again = Intake::ingest(gathered.files, roll, folder);
    EXPECT_TRUE(again.frames.empty());
    EXPECT_EQ(again.already, 4u);

    const auto before = Loc::override();
    Loc::setOverride(Loc::Lang::en);
    EXPECT_EQ(Intake::reportText({3, 1, 2, PairChoice::raw, 1, true}),
              "3 added · 1 already in the project · 2 RAW + JPEG pairs → RAW · 1 passed over, no pictures · "
              "the folder is too large — the first 20000 were taken");
    EXPECT_EQ(Intake::reportText({}), "0 added");
    Loc::setOverride(before);
}

/// Bytes that this process has read by system calls; nothing where the kernel doesn't tell.
std::optional<std::int64_t> bytesRead()
{
    std::ifstream file("/proc/self/io");
    std::string key;
    std::int64_t count = 0;
    file >> key >> count;
    return key == "rchar:" ? std::optional(count) : std::nullopt;
}

// A disk that is asked for every byte twice takes twice as long, and a card reader is slow enough.
TEST_F(IntakeTest, AnImportReadsTheSampleOfAFileAndNothingTwice)
{
    constexpr std::int64_t kFiles = 30, kMostBytes = 1'121'976; // 1.07 MiB
    const char* containers[] = {"metadata/full-exif.jpg", "metadata/full-exif.heic",
                                "patterns/rgb16-linear.png", "patterns/patches.dng",
                                "patterns/rgb16-bigendian.tif"};
    Names files;
    for (int i = 0; i < kFiles; ++i) {
        const fs::path source = fs::path(TAMLO_SAMPLES) / containers[static_cast<std::size_t>(i) % 5];
        files.push_back(scratch_ / (std::to_string(i) + source.extension().string()));
        fs::copy_file(source, files.back());
        std::ofstream(files.back(), std::ios::app)
            << std::string(2'000'000 + static_cast<std::size_t>(i), 'x');
    }
    const auto before = bytesRead();
    if (!before) GTEST_SKIP() << "no /proc/self/io";
    const Intake::Ingested ingested = Intake::ingest(files, {}, scratch_.path());
    EXPECT_LE(*bytesRead() - *before, kFiles * kMostBytes);
    ASSERT_EQ(ingested.frames.size(), static_cast<std::size_t>(kFiles));
    for (int i = 0; i < kFiles; i += 5) {
        EXPECT_EQ(ingested.frames[static_cast<std::size_t>(i)].shot->iso, 200);
        EXPECT_EQ(ingested.frames[static_cast<std::size_t>(i) + 1].shot->iso, 200);
    }
}

} // namespace
} // namespace tamlo
