// Pictures that come late and out of order: whatever the user does meanwhile, what is on screen is of the
// frame that is on screen, and in the end everything shows the last word. Under the thread sanitizer the same
// walks tell of races. TAMLO_LATE_OPERATIONS sets how many operations.
#include "app/shell/live_views.h"
#include "core/image/cancellation.h"
#include "tests/shell/session.h"

#include <cstdlib>
#include <random>

namespace tamlo::test {
namespace {

constexpr std::size_t kFrames = 12;

std::size_t operationCount()
{
    const char* asked = std::getenv("TAMLO_LATE_OPERATIONS");
    return asked ? static_cast<std::size_t>(std::strtoull(asked, nullptr, 10)) : 400;
}

/// In pixels: so far apart that a tile is told from its neighbours after a JPEG too.
constexpr int kNumberStep = 20, kGradeStep = 40, kOriginal = 250, kTolerance = 9;

/// The number that a picture's file has for its name.
int numberOf(const std::filesystem::path& file)
{
    return std::stoi(file.stem().string());
}

/// Decodes and renders take their time, each another one; pixels tell of what frame and grade they are.
class LateSources {
public:
    FrameStore::Decoders decoders()
    {
        FrameStore::Decoders d;
        d.proxy = [this](const std::filesystem::path& file, WBMode wb) {
            dawdle();
            return FrameSource{picture(file, 24, 16), {}, 6000, 4000, false, wb, false};
        };
        d.full = d.detail = [this](const std::filesystem::path& file, std::int64_t, WBMode) {
            dawdle();
            return picture(file, 24, 2);
        };
        return d;
    }
    KeyedRenderer::Render render()
    {
        return [this](const std::string&, KeyedRenderer::Request request, const auto& shouldCancel) {
            const CancellationScope scope(shouldCancel);
            dawdle();
            cancellationPoint();
            const RGBImage from = request.source ? request.source() : std::move(request.image);
            const float number = from.pixel(0, 0)[0] * 256 * kNumberStep;
            const double grade = request.process ? request.process->options.grade * kGradeStep : kOriginal;
            return ReadyImage{
                1,
                1,
                {static_cast<std::uint8_t>(number + 0.5f), static_cast<std::uint8_t>(grade + 0.5), 0, 255}};
        };
    }
    std::atomic<bool> hurries{false};

private:
    static RGBImage picture(const std::filesystem::path& file, std::int64_t width, std::int64_t height)
    {
        const float number = static_cast<float>(numberOf(file)) / 256;
        return RGBImage(width, height, Vec3f{number, number, number});
    }
    void dawdle()
    {
        const unsigned turn = turn_.fetch_add(1);
        if (!hurries) std::this_thread::sleep_for(std::chrono::microseconds(turn * 2654435761u % 3000));
    }

    std::atomic<unsigned> turn_{1};
};

class LateAnswers : public testing::TestWithParam<unsigned> {
protected:
    LateAnswers()
    {
        views_.attach(model_);
        views_.screen().setFit({3000, 2000}, 1);
        Project project;
        for (std::size_t i = 0; i < kFrames; ++i) {
            Frame frame;
            frame.id = Uuid::random();
            frame.url = (folder_ / (std::to_string(i + 1) + ".jpg")).string();
            writeFile(frame.url, frame.url);
            frame.fingerprint = Fingerprint::read(frame.url);
            frame.process = ProcessSettings::fresh();
            project.frames.append(frame);
        }
        model_.saver.adopt(project);
        random_.seed(GetParam());
    }
    ~LateAnswers() override { sources_.hurries = true; }

    std::size_t below(std::size_t n) { return n == 0 ? 0 : random_() % n; }
    const Roll& roll() const { return model_.project().frames; }
    FrameID anyFrame() { return roll().empty() ? Uuid::random() : roll()[below(roll().size())].id; }

    void turn()
    {
        ProcessSettings to = model_.rack.rackSettings();
        to.options.grade = 0.5 * static_cast<double>(below(11));
        model_.rack.setRackSettings(to);
    }
    /// A picture that is looked at and left: it is of the frame that was on screen when it was asked for.
    void look()
    {
        const FrameRef frame = model_.selection.currentFrame();
        if (!frame || model_.selection.screen() != Screen::develop) return;
        const int number = numberOf(frame->url);
        ProcessSettings other = model_.rack.rackSettings();
        other.options.grade = 5;
        views_.screen().peek(other, 512, [number, this](const KeyedRenderer::Outcome& outcome) {
            const auto* output = std::get_if<KeyedRenderer::Output>(&outcome);
            if (!output) return;
            EXPECT_EQ(output->image->rgba[0], number * kNumberStep);
            EXPECT_EQ(output->image->rgba[1], 5 * kGradeStep);
            const FrameRef now = model_.selection.currentFrame();
            EXPECT_TRUE(now && numberOf(now->url) == number) << "nobody looks at it any more";
        });
        if (below(2) == 0) views_.screen().endPeek();
    }
    void operate()
    {
        Sides& sides = model_.sides;
        switch (below(14)) {
        case 0:
        case 1:
        case 2:
            return model_.selection.openFrame(anyFrame());
        case 3:
            return model_.selection.step(below(2) ? 1 : -1);
        case 4:
        case 5:
        case 6:
            return turn();
        case 7:
            return look();
        case 8:
            return views_.screen().setZoom(0.5 + static_cast<double>(below(8)));
        case 9:
            if (!sides.abEnabled()) return sides.enterAB();
            return below(2) ? sides.focusAB(Sides::ABSide::b) : sides.exitAB(Sides::ABSide::b);
        case 10:
            return static_cast<void>(below(2) ? model_.undo() : model_.redo());
        case 11:
            return model_.marks.markCurrent(Mark::rejected);
        case 12:
            return model_.selection.setFilter(static_cast<GridFilter>(below(2)));
        default:
            if (below(4) == 0) model_.removal.remove({anyFrame()}, false);
            return below(2) ? model_.selection.backToGrid() : loop_.advance(0.3);
        }
    }
    void expectOwnPictures()
    {
        const FrameScreen& screen = views_.screen();
        const FrameRef frame = model_.selection.currentFrame();
        for (const auto& image : {screen.image(), screen.abImage()}) {
            if (!image) continue;
            ASSERT_TRUE(frame);
            ASSERT_EQ(image->rgba[0], numberOf(frame->url) * kNumberStep);
        }
        for (const Frame& one : roll())
            if (const auto tile = views_.tiles().tile(one.id)) {
                ASSERT_NEAR(tile->rgba[0], numberOf(one.url) * kNumberStep, kTolerance);
            }
    }
    void settle()
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (!views_.isSettled()) {
            ASSERT_LT(std::chrono::steady_clock::now(), end) << "it never came";
            loop_.advance(0.1);
            ASSERT_NO_FATAL_FAILURE(expectOwnPictures());
            std::this_thread::yield();
        }
    }

    UserRoot folder_;
    VirtualLoop loop_;
    ProfileStore store_;
    HeadlessQuestions questions_;
    platform::SessionClipboard clipboard_;
    FakeVolumes volumes_;
    MapPreferences preferences_;
    LateSources sources_;
    std::mt19937 random_;
    LiveViews views_{{loop_, store_, nullptr, folder_ / "cache", "1.0", std::int64_t{8} << 30,
                      sources_.decoders(), sources_.render()}};
    AppModel model_{{loop_, store_, questions_, views_, clipboard_, volumes_, preferences_}};
};

TEST_P(LateAnswers, NeverShowAnotherFrameAndEndWithTheLastWord)
{
    for (std::size_t i = 0; i < operationCount(); ++i) {
        operate();
        ASSERT_NO_FATAL_FAILURE(expectOwnPictures()) << "operation " << i;
        if (below(3) == 0) loop_.runPosted();
        ASSERT_NO_FATAL_FAILURE(expectOwnPictures()) << "operation " << i;
        if (below(8) == 0) loop_.advance(0.05 * static_cast<double>(below(20)));
        ASSERT_NO_FATAL_FAILURE(expectOwnPictures()) << "operation " << i;
    }
    sources_.hurries = true;
    if (roll().empty()) return;
    model_.sides.exitAB();
    model_.selection.openFrame(roll()[0].id);
    ASSERT_NO_FATAL_FAILURE(settle());
    const auto gradeOf = [](const Frame& frame) {
        return frame.process ? frame.process->options.grade * kGradeStep : kOriginal;
    };
    ASSERT_TRUE(views_.screen().image());
    EXPECT_NEAR(views_.screen().image()->rgba[1], gradeOf(roll()[0]), 1);
    model_.selection.setFilter(GridFilter::all);
    model_.selection.backToGrid();
    ASSERT_NO_FATAL_FAILURE(settle());
    for (const Frame& frame : roll()) {
        const auto tile = views_.tiles().tile(frame.id);
        ASSERT_TRUE(tile) << frame.url;
        EXPECT_NEAR(tile->rgba[1], gradeOf(frame), kTolerance) << frame.url;
    }
}

INSTANTIATE_TEST_SUITE_P(Walks, LateAnswers, testing::Values(1u, 2u, 3u));

} // namespace
} // namespace tamlo::test
