// How a source is recognised and found again.
#include "app/project/file_fields.h"
#include "app/project/file_resolver.h"
#include "app/project/file_search.h"
#include "platform/content_hash.h"
#include "platform/file_info.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/test_seams.h"

#include <gtest/gtest.h>

#include <chrono>

namespace tamlo {
namespace {

namespace fs = std::filesystem;
using FileResolver::Look;
using test::ScratchFolder;
using test::writeFile;

/// Bytes that no other seed gives.
std::string bytes(std::size_t count, unsigned seed)
{
    std::string out(count, '\0');
    std::uint32_t state = seed * 2654435761u + 1;
    for (char& c : out) c = static_cast<char>((state = state * 1664525u + 1013904223u) >> 24);
    return out;
}

void touch(const fs::path& file, int hours)
{
    fs::last_write_time(file, fs::last_write_time(file) + std::chrono::hours(hours));
}

class FileIdentity : public ::testing::Test {
protected:
    Frame frameOf(const fs::path& file) const
    {
        return newFrame(FileFields::read(file, scratch_.path() / "project"));
    }
    FileState stateOf(const Frame& frame, Look look = Look::quick) const
    {
        return FileResolver::resolve(frame, scratch_.path() / "project", volumes_, look).state;
    }
    std::string in(const std::string& name) const
    {
        fs::create_directories((scratch_ / name).parent_path());
        return scratch_ / name;
    }

    ScratchFolder scratch_;
    test::FakeVolumes volumes_;
};

TEST_F(FileIdentity, TheSampleIsTheHeadAndOfALargeFileTheTail)
{
    for (const std::size_t size : {0, 1, 31, 1'048'575, 1'048'576, 1'114'112, 1'114'113, 3'000'000}) {
        std::string content = bytes(size, 7);
        writeFile(in("a"), content);
        const auto print = Fingerprint::read(in("a"));
        ASSERT_TRUE(print);
        std::string sample = content.substr(0, 1'048'576);
        if (size > 1'114'112) sample += content.substr(size - 65'536);
        EXPECT_EQ(print->size, static_cast<std::int64_t>(size));
        EXPECT_EQ(print->hash, platform::xxHash64(sample)) << size;
    }
    EXPECT_EQ((writeFile(in("empty"), ""), Fingerprint::read(in("empty"))->hash), 17241709254077376921u);
    EXPECT_FALSE(Fingerprint::read(in("none")));
    EXPECT_FALSE(Fingerprint::read(scratch_.path()));
}

TEST_F(FileIdentity, StatesOfAFileThatStaysOrGoes)
{
    const std::string file = in("photos/a.nef");
    writeFile(file, bytes(2'000'000, 1));
    const Frame frame = frameOf(file);
    EXPECT_EQ(stateOf(frame), FileState::ok);

    touch(file, 1); // the time alone: ok, and the new time is told so that it isn't read again
    const auto touched = FileResolver::resolve(frame, {}, volumes_);
    EXPECT_EQ(touched.state, FileState::ok);
    ASSERT_TRUE(touched.renewed);
    EXPECT_EQ(touched.renewed->mtime, platform::fileInfo(file)->mtime);

    std::string content = bytes(2'000'000, 1);
    content[1'500'000] ^= 1; // in the middle: nobody looks there
    writeFile(file, content);
    touch(file, 2);
    EXPECT_EQ(stateOf(frame), FileState::ok);
    content[5] ^= 1;
    writeFile(file, content);
    touch(file, 3);
    EXPECT_EQ(stateOf(frame), FileState::changed);
    // Another picture of the same size and time is met by the thorough look alone.
    Frame fooled = frame;
    fooled.fingerprint->mtime = platform::fileInfo(file)->mtime;
    EXPECT_EQ(stateOf(fooled), FileState::ok);
    EXPECT_EQ(stateOf(fooled, Look::thorough), FileState::changed);
    fooled.fingerprint.reset();
    EXPECT_EQ(stateOf(fooled, Look::thorough), FileState::ok);

    fs::remove(file);
    EXPECT_EQ(stateOf(frame), FileState::missing);
    fs::create_directory(file);
    EXPECT_EQ(stateOf(frame), FileState::missing);
    volumes_.away = {scratch_ / "photos"};
    EXPECT_EQ(stateOf(frame), FileState::offline);
}

TEST_F(FileIdentity, AMovedFolderIsFoundBesideTheProjectByItsContent)
{
    const std::string old = in("old/a.nef"), beside = in("project/raw/a.nef");
    writeFile(old, "the picture");
    Frame frame = frameOf(old);
    frame.relPath = "raw/../raw/a.nef";
    writeFile(beside, "another picture of that name");
    EXPECT_EQ(stateOf(frame), FileState::ok);
    fs::remove(old);
    EXPECT_EQ(stateOf(frame), FileState::missing); // cameras use their names again
    writeFile(beside, "the picture");
    const auto moved = FileResolver::resolve(frame, scratch_ / "project", volumes_);
    EXPECT_EQ(moved.state, FileState::moved);
    EXPECT_EQ(moved.url, beside);
    EXPECT_EQ(FileResolver::resolve(frame, {}, volumes_).state, FileState::missing);
    writeFile(old, "a card put in again with new pictures");
    EXPECT_EQ(stateOf(frame), FileState::moved); // the right one, not the one at the old place
    frame.relPath.reset();
    EXPECT_EQ(stateOf(frame), FileState::changed);
}

TEST(RelativePath, GoesUpThreeFoldersAtMost)
{
    const auto relative = [](const char* file, const char* folder) {
        return FileResolver::relativePath(file, folder).value_or("none");
    };
    EXPECT_EQ(relative("/a/b/x.nef", "/a/b"), "x.nef");
    EXPECT_EQ(relative("/a/b/x.nef", "/a/b/"), "x.nef");
    EXPECT_EQ(relative("/a/c/x.nef", "/a/b"), "../c/x.nef");
    EXPECT_EQ(relative("/a/x.nef", "/a/1/2/3"), "../../../x.nef");
    EXPECT_EQ(relative("/a/x.nef", "/a/1/2/3/4"), "none");
    EXPECT_EQ(relative("/a/x.nef", "/a/1/../1/2/3/."), "../../../x.nef");
    EXPECT_EQ(relative("/ab/x.nef", "/a"), "../ab/x.nef");
    EXPECT_EQ(relative("/a/\xFF.nef", "/a"), "none"); // no text
    EXPECT_EQ(relative("/\xFF/x.nef", "/\xFF"), "x.nef");
    EXPECT_EQ(relative("x.nef", "/a"), "none");
}

TEST_F(FileIdentity, ASearchGivesEachFileToOneFrame)
{
    for (int i = 0; i < 4; ++i) writeFile(in("was/" + std::to_string(i) + ".nef"), bytes(5'000, 10u + i % 3));
    Roll roll;
    for (int i = 0; i < 4; ++i) roll.append(frameOf(in("was/" + std::to_string(i) + ".nef")));
    Frame unread = roll[0];
    unread.id = Uuid::random();
    unread.fingerprint.reset();
    unread.url = in("was/ПЛЁНКА.nef");
    roll.append(unread);
    writeFile(in("kept.nef"), bytes(5'000, 11));
    Frame present = frameOf(in("kept.nef"));
    roll.append(present);

    fs::create_directories(scratch_ / "now/1/2/3/4/5/6");
    fs::rename(in("was/0.nef"), in("now/1/2/3/4/5/other name.tif")); // five folders down
    fs::rename(in("was/1.nef"), in("now/1/2/3/4/5/6/1.nef"));        // six: too deep
    fs::rename(in("was/2.nef"), in("now/b.nef"));
    writeFile(in("now/плёнка.NEF"), "any");
    writeFile(in("now/z/Плёнка.nef"), "any");
    writeFile(in("now/3.nef"), bytes(5'000, 99)); // its name and size, another picture
    writeFile(in("now/.hidden/b.nef"), bytes(5'000, 10));
    fs::create_hard_link(in("kept.nef"), in("now/a copy of a frame's own.nef"));
    fs::create_directory_symlink(scratch_.path(), in("now/again"));
    fs::remove(in("was/3.nef"));

    std::vector<FrameRef> lost(roll.refs().begin(), roll.refs().begin() + 5);
    const auto matches = FileSearch::matches(scratch_ / "now", lost, roll);
    std::map<FrameID, std::string> found(matches.begin(), matches.end());
    EXPECT_EQ(found.size(), matches.size());
    EXPECT_EQ(found[roll[0].id], in("now/1/2/3/4/5/other name.tif"));
    EXPECT_FALSE(found.contains(roll[1].id));
    EXPECT_EQ(found[roll[2].id], in("now/b.nef"));
    EXPECT_FALSE(found.contains(roll[3].id));            // the same content as frame 0: one file, one frame
    EXPECT_EQ(found[unread.id], in("now/z/Плёнка.nef")); // sorted by the bytes of the names
}

TEST_F(FileIdentity, ALinkToAnotherPictureMakesTheExportOutOfDate)
{
    writeFile(in("a.nef"), "a");
    writeFile(in("b.nef"), "b");
    writeFile(in("project/copy of a.nef"), "a");
    Frame frame = frameOf(in("a.nef"));
    frame.exportedAt = Date{1};
    frame.process = ProcessSettings();
    const Frame before = frame;
    link(frame, FileFields::read(in("project/copy of a.nef"), scratch_ / "project"));
    EXPECT_EQ(frame.exportedAt, before.exportedAt);
    EXPECT_EQ(frame.relPath, "copy of a.nef");
    EXPECT_EQ(stateOf(frame, Look::thorough), FileState::ok);
    link(frame, FileFields::read(in("b.nef"), {}));
    EXPECT_EQ(frame.exportedAt, std::nullopt);
    EXPECT_EQ(frame.relPath, std::nullopt);
    EXPECT_EQ(frame.process, before.process);
    EXPECT_EQ(frame.id, before.id);
}

TEST_F(FileIdentity, MissingFieldsAreFilledOnceAndNeverReplaced)
{
    writeFile(in("project/a.nef"), "a");
    Frame frame;
    frame.url = in("project/a.nef");
    frame.fingerprint = Fingerprint{77, 1, 5}; // of the picture that was there
    const auto fields = missingFileFields(frame, scratch_ / "project");
    ASSERT_TRUE(fields);
    fillFileFields(frame, *fields);
    EXPECT_EQ(frame.fingerprint, (Fingerprint{77, 1, 5}));
    EXPECT_EQ(frame.relPath, "a.nef");
    ASSERT_TRUE(frame.shot); // empty, and known to be
    EXPECT_FALSE(missingFileFields(frame, scratch_ / "project"));
    EXPECT_FALSE(missingFileFields(frame, {}));
    ASSERT_TRUE(missingFileFields(frame, scratch_.path())); // the project has been moved
    EXPECT_EQ(missingFileFields(frame, scratch_.path())->relPath, "project/a.nef");
    frame.url = in("gone.nef");
    EXPECT_FALSE(missingFileFields(frame, scratch_.path()));
    Frame linked = frame;
    fillFileFields(linked, *fields); // of the file that it had before
    EXPECT_EQ(linked, frame);
}

} // namespace
} // namespace tamlo
