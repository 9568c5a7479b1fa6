// The session's export: what it tells, asks and notes while files are written elsewhere.
#include "platform/encoded_image.h"
#include "tests/shell/session.h"

namespace tamlo::test {
namespace {

namespace fs = std::filesystem;

class ExporterTest : public SessionTest {
protected:
    void SetUp() override
    {
        Project project;
        project.name = "Roll";
        for (const char* name : {"a.jpg", "b.jpg", "c.jpg"}) {
            const fs::path photo = userFolder_ / name;
            fs::copy_file(fs::path(TAMLO_SAMPLES) / "color" / "fig-srgb.jpg", photo);
            Frame frame;
            frame.id = Uuid::random();
            frame.url = photo.string();
            project.frames.append(frame);
        }
        model_.saver.adopt(std::move(project));
        fs::create_directories(out());
    }
    fs::path out() const { return userFolder_ / "out"; }
    ExportDraft draft() const
    {
        ExportDraft draft = model_.exporter.exportDraft(std::nullopt);
        draft.setIndex = static_cast<int>(ExportSet::all);
        draft.scale = 0.25;
        return draft;
    }
    std::size_t files() const
    {
        return static_cast<std::size_t>(std::distance(fs::directory_iterator(out()), {}));
    }
    ExportReport run()
    {
        std::optional<ExportReport> ended;
        EXPECT_TRUE(
            model_.exporter.startExport(draft(), out(), [&](const ExportReport& report) { ended = report; }));
        EXPECT_FALSE(model_.exporter.startExport(draft(), out())) << "one run at a time";
        settle([&] { return ended.has_value(); });
        EXPECT_FALSE(model_.exporter.isExporting());
        return *ended;
    }
};

TEST_F(ExporterTest, WritesNotesAndTells)
{
    model_.linker.setFileState(roll()[1].id, FileState::missing);
    const ExportReport report = run();
    EXPECT_EQ(report.outcome.peakAhead, 1u);
    EXPECT_EQ(model_.status(), "Developed 2 frames · skipped for want of an original: b.jpg");
    EXPECT_EQ(files(), 2u);
    EXPECT_EQ(roll()[0].exportedName, "a_tamlo.jpg");
    EXPECT_FALSE(roll()[1].exportedAt);
    EXPECT_TRUE(roll()[2].exportedAt);
    EXPECT_EQ(steps(), 0u) << "what was written is no step";
    EXPECT_EQ(preferences_.list("lastExportFolders")->size(), 1u);

    for (const Frame& frame : roll()) model_.linker.setFileState(frame.id, FileState::offline);
    EXPECT_FALSE(model_.exporter.startExport(draft(), out()));
    EXPECT_EQ(model_.status(), "Nothing to export: 3 frames have no original");
}

TEST_F(ExporterTest, TellsDesktopAndObservers)
{
    std::size_t told = 0;
    const Subscription hears = model_.subscribe({Concern::exporting}, [&](const ChangeSet&) { ++told; });
    ExportDraft asked = draft();
    asked.reveal = true;
    std::optional<ExportReport> ended;
    EXPECT_TRUE(
        model_.exporter.startExport(asked, out(), [&](const ExportReport& report) { ended = report; }));
    settle([&] { return ended.has_value(); });
    loop_.runPosted();
    EXPECT_GE(told, 2u);
    ASSERT_FALSE(desktop_.progress.empty());
    EXPECT_EQ(desktop_.progress.front(), 0.0);
    EXPECT_EQ(desktop_.progress.back(), std::nullopt);
    EXPECT_EQ(desktop_.notices.size(), 1u);
    EXPECT_EQ(desktop_.revealed, std::vector<fs::path>{out()});
}

TEST_F(ExporterTest, SizesAreThoseOfTheFiles)
{
    model_.amendProject([](Project& project) {
        project.frames.edit(0).orient.rot = 1;
        project.frames.edit(0).crop = Crop{0.1, 0.2, 0.5, 0.3, 0};
        ProcessSettings framed = ProcessSettings::fresh();
        framed.options.border = 0.05;
        project.frames.edit(1).process = framed;
        project.frames.edit(2).process = ProcessSettings::fresh();
        project.frames.edit(2).crop = Crop{0.1, 0.2, 0.5, 0.6, 2};
    });
    ExportDraft asked = draft();
    asked.scale = 0.5;
    asked.social = true;
    std::optional<ExportReport> ended;
    model_.exporter.startExport(asked, out(), [&](const ExportReport& report) { ended = report; });
    settle([&] { return ended.has_value(); });
    ASSERT_EQ(ended->outcome.written.size(), 3u) << model_.status();
    for (const ExportedFrame& one : ended->outcome.written) {
        const platform::EncodedImage file = platform::readEncodedHead(one.file.string());
        EXPECT_EQ(model_.exporter.outputSize(0.5, *one.frame), (Size{file.width, file.height})) << one.file;
        const auto social = model_.exporter.socialSize(1080, *one.frame);
        EXPECT_EQ(social.has_value(), one.frame->process.operator bool());
        if (!social) continue;
        const platform::EncodedImage copy =
            platform::readEncodedHead(ExportNaming::socialPath(one.file).string());
        EXPECT_EQ(social, (Size{copy.width, copy.height}));
    }
    Frame lost = roll()[1];
    lost.url = "/nowhere.jpg";
    EXPECT_FALSE(model_.exporter.outputSize(1, lost));
}

TEST_F(ExporterTest, AsksWhereAFileStands)
{
    run();
    EXPECT_TRUE(run().outcome.stopped) << "nothing had decided";
    EXPECT_EQ(questions_.cancelled, 1u);
    questions_.exportReply = ExportClashReply{ExportExistsAnswer::keepBoth, true};
    EXPECT_EQ(run().outcome.written.size(), 3u);
    EXPECT_TRUE(fs::exists(out() / "a_tamlo 2.jpg"));
    EXPECT_EQ(roll()[0].exportedName, "a_tamlo 2.jpg");
    questions_.exportReply = ExportClashReply{ExportExistsAnswer::overwrite, true};
    EXPECT_EQ(run().outcome.written.size(), 3u);
    EXPECT_EQ(files(), 6u);
}

TEST_F(ExporterTest, StopsAfterTheFileInHand)
{
    std::optional<ExportReport> ended;
    model_.exporter.startExport(draft(), out(), [&](const ExportReport& report) { ended = report; });
    settle([&] { return model_.exporter.task() && !model_.exporter.task()->currentName.empty(); });
    model_.exporter.stop();
    EXPECT_EQ(model_.exporter.task()->caption(0), "Stopping after this frame…");
    settle([&] { return ended.has_value(); });
    EXPECT_EQ(ended->outcome.stopped, files() < 3);
    EXPECT_EQ(ended->outcome.written.size(), files());
}

} // namespace
} // namespace tamlo::test
