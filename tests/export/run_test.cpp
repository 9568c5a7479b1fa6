// A run of the export while the world changes under it: what is written is whole, what is not is named, and
// the photographs are what they were.
#include "app/export/export_run.h"
#include "core/profiles/catalogue/profile_store.h"
#include "core/text/loc.h"
#include "tests/support/scratch_folder.h"

#include <gtest/gtest.h>

#include <map>

#include <sys/stat.h>
#include <unistd.h>

namespace tamlo::test {
namespace {

namespace fs = std::filesystem;

class ExportRunTest : public testing::Test {
protected:
    static constexpr std::size_t kFrames = 12;

    ExportRunTest()
    {
        Loc::setOverride(Loc::Lang::en);
        fs::create_directories(photos());
        fs::create_directories(out());
        for (std::size_t i = 1; i <= kFrames; ++i) {
            fs::copy_file(fs::path(TAMLO_SAMPLES) / "color" / "fig-srgb.jpg", photo(i));
            Frame frame;
            frame.id = Uuid::random();
            frame.url = photo(i).string();
            project_.frames.append(frame);
        }
    }
    ~ExportRunTest() override { Loc::setOverride(std::nullopt); }

    fs::path photos() const { return scratch_ / "photos"; }
    fs::path out() const { return scratch_ / "out"; }
    fs::path photo(std::size_t i) const { return photos() / (std::to_string(i) + ".jpg"); }
    fs::path written(std::size_t i) const { return out() / (std::to_string(i) + "_tamlo.jpg"); }
    std::map<std::string, std::string> filesIn(const fs::path& folder) const
    {
        std::map<std::string, std::string> files;
        for (const auto& entry : fs::directory_iterator(folder))
            files[entry.path().filename().string()] = readFile(entry.path());
        return files;
    }

    /// Runs all frames; `at` is called as frame n begins.
    ExportOutcome run(
        const std::function<void(std::size_t n)>& at,
        const std::function<bool()>& cancels = [] { return false; })
    {
        ExportDraft draft;
        draft.setIndex = static_cast<int>(ExportSet::all);
        ExportSettings settings;
        settings.scale = 0.25;
        ExportRun::Events events;
        events.begins = [&](const ExportJob&, std::size_t n) { at(n); };
        events.cancels = cancels;
        events.exists = [](const ExportClash&) {
            return ExportClashReply{ExportExistsAnswer::overwrite, false};
        };
        const Photographs photographs(project_.frames);
        return ExportRun(store_, settings, photographs, events)
            .run(ExportPlan::jobs(project_, draft, draft.frames(project_), out()));
    }

    ScratchFolder scratch_;
    Project project_;
    ProfileStore store_;
};

TEST_F(ExportRunTest, ADamagedAndALostSourceAreNamedAndTheRestIsWritten)
{
    const std::string good = readFile(photo(3));
    writeFile(photo(3), good.substr(0, good.size() / 2));
    const ExportOutcome outcome = run([&](std::size_t n) {
        if (n == 1) fs::remove(photo(7));
    });
    EXPECT_EQ(outcome.written.size(), kFrames - 2);
    ASSERT_EQ(outcome.failed.size(), 2u);
    EXPECT_EQ(outcome.failed[0].frame->fileName(), "3.jpg");
    EXPECT_EQ(outcome.failed[1].frame->fileName(), "7.jpg");
    EXPECT_FALSE(outcome.targetFault);
    EXPECT_EQ(outcome.peakAhead, 1u);
    EXPECT_EQ(filesIn(out()).size(), kFrames - 2) << "nothing half, nothing hidden";
}

TEST_F(ExportRunTest, AFolderThatGoesEndsTheRun)
{
    const ExportOutcome outcome = run([&](std::size_t n) {
        if (n == 4) fs::remove_all(out());
    });
    EXPECT_EQ(outcome.written.size(), 3u);
    EXPECT_TRUE(outcome.failed.empty());
    ASSERT_TRUE(outcome.targetFault);
    EXPECT_FALSE(fs::exists(out())) << "it is not made again";
}

TEST_F(ExportRunTest, AFolderThatIsReadOnlyEndsTheRun)
{
    if (geteuid() == 0) GTEST_SKIP() << "nothing is read-only to root";
    const ExportOutcome outcome = run([&](std::size_t n) {
        if (n == 4) chmod(out().c_str(), 0500);
    });
    chmod(out().c_str(), 0700);
    EXPECT_EQ(outcome.written.size(), 3u);
    EXPECT_TRUE(outcome.targetFault);
    EXPECT_EQ(filesIn(out()).size(), 3u);
}

TEST_F(ExportRunTest, ATargetThatBecomesAPhotographIsLeftAlone)
{
    const auto before = filesIn(photos());
    const ExportOutcome outcome = run([&](std::size_t n) {
        if (n == 2) fs::create_symlink(photo(1), written(5));
        if (n == 3) fs::create_hard_link(photo(2), written(6));
    });
    EXPECT_EQ(outcome.written.size(), kFrames - 2);
    ASSERT_EQ(outcome.failed.size(), 2u);
    EXPECT_NE(outcome.failed[0].why.find("is a photograph"), std::string::npos) << outcome.failed[0].why;
    EXPECT_TRUE(filesIn(photos()) == before);
}

TEST_F(ExportRunTest, ACancelledRunLeavesWholeFilesOnly)
{
    run([](std::size_t) {});
    const auto whole = filesIn(out());
    ASSERT_EQ(whole.size(), kFrames);
    // At every question of a run of its own: before, in and between the frames.
    for (const int last : {0, 1, 5, 17, 40}) {
        fs::remove_all(out());
        fs::create_directories(out());
        std::atomic<int> asked = 0;
        const ExportOutcome outcome = run([](std::size_t) {}, [&] { return asked++ >= last; });
        EXPECT_TRUE(outcome.stopped || outcome.written.size() == kFrames);
        EXPECT_TRUE(outcome.failed.empty());
        const auto files = filesIn(out());
        EXPECT_EQ(files.size(), outcome.written.size());
        for (const auto& [name, bytes] : files) EXPECT_TRUE(whole.at(name) == bytes) << name;
    }
}

} // namespace
} // namespace tamlo::test
