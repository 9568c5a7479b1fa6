// The printer's eye in a session: what it writes, what it leaves alone, and why.
#include "core/image/tamlo_error.h"
#include "tests/shell/session.h"

#include <cmath>

namespace tamlo::test {
namespace {

/// Greys from dark to light, up to `white`.
std::shared_ptr<const FrameSource> wedge(float white)
{
    FrameSource source{RGBImage(240, 160), {}, 6000, 4000, false, WBMode::film, false, {}};
    float* p = source.proxy.mutableData();
    for (std::int64_t i = 0; i < source.proxy.pixelCount(); ++i, p += 3)
        p[0] = p[1] = p[2] = 0.01f * std::pow(white / 0.01f, static_cast<float>(i % 240) / 239.0f);
    return std::make_shared<const FrameSource>(std::move(source));
}

class PrintersEyeTest : public SessionTest {
protected:
    void SetUp() override
    {
        open(4);
        const auto printed = [](Frame& frame) {
            ProcessSettings process = ProcessSettings::fresh();
            process.paper = "color_ra4";
            frame.process = std::move(process);
            frame.crop.reset();
        };
        for (const std::size_t place : {1u, 2u, 3u}) model_.editFrames({"print"}, ids({place}), printed);
        model_.editFrames({"original"}, ids({0}), [](Frame& frame) { frame.process.reset(); });
        for (const FrameID& id : all()) model_.linker.setFileState(id, FileState::ok);
        model_.printersEye.setSource([this](const FrameRef& frame, bool hasFile) {
            if (frame->id == roll()[3].id) throw TamloError::io("gone");
            return hasFile ? wedge(frame->id == roll()[1].id ? 0.9f : 0.6f) : nullptr;
        });
    }
    PrintersEye::Report look(const std::function<void()>& meanwhile = [] {})
    {
        std::optional<PrintersEye::Report> ended;
        EXPECT_TRUE(model_.printersEye.autoPrint(all(), [&](const PrintersEye::Report& r) { ended = r; }));
        EXPECT_FALSE(model_.printersEye.autoPrint(all())) << "one look at a time";
        meanwhile();
        settle([&] { return ended.has_value(); });
        EXPECT_FALSE(model_.printersEye.isLooking());
        return *ended;
    }
};

TEST_F(PrintersEyeTest, WritesPlainValuesInOneStep)
{
    const std::size_t before = steps();
    const PrintersEye::Report report = look();
    EXPECT_EQ(report.changed, 2u);
    EXPECT_EQ(steps(), before + 1);
    EXPECT_EQ(topName(), "Auto Print (2)");
    EXPECT_EQ(model_.status(), "2 prints are exposed for their frames");
    for (const std::size_t place : {1u, 2u}) {
        const RenderOptions& options = roll()[place].process->options;
        EXPECT_EQ(options.printEv, report.seen[place].print.printEv);
        EXPECT_EQ(options.grade, report.seen[place].print.grade);
        EXPECT_LT(options.printEv, 0) << "lighter";
    }
    EXPECT_NE(roll()[1].process->options.printEv, roll()[2].process->options.printEv) << "each for its frame";
    EXPECT_EQ(report.seen[0].why, "the frame has no process");
    EXPECT_FALSE(report.seen[0].failed);
    EXPECT_TRUE(report.seen[3].failed);
    EXPECT_EQ(look().changed, 0u) << "done to its own result it does nothing";
    EXPECT_EQ(steps(), before + 1);
    model_.undo();
    EXPECT_EQ(roll()[1].process->options.printEv, 0);
}

TEST_F(PrintersEyeTest, LeavesAloneWhatItMayNotTouch)
{
    model_.linker.setFileState(roll()[2].id, FileState::missing);
    const PrintersEye::Report report = look([this] {
        model_.editFrames({"turn"}, ids({1}),
                          [](Frame& frame) { frame.orient.mirror = !frame.orient.mirror; });
    });
    EXPECT_EQ(report.changed, 0u);
    EXPECT_EQ(report.seen[1].why, "it was changed meanwhile");
    EXPECT_EQ(report.seen[2].why, "its photograph is not at hand");

    const std::size_t before = steps();
    const PrintersEye::Report stopped = look([this] { model_.printersEye.stop(); });
    EXPECT_TRUE(stopped.stopped);
    EXPECT_EQ(stopped.changed, 0u);
    EXPECT_EQ(steps(), before);
}

} // namespace
} // namespace tamlo::test
