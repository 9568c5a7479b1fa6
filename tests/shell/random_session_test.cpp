// A session under random hands: whatever is done in whatever order, its rules hold, undoing everything gives
// the first document and redoing everything the last. TAMLO_RANDOM_OPERATIONS sets how many operations.
#include "tests/shell/session.h"

#include <cstdlib>
#include <random>

namespace tamlo::test {
namespace {

std::size_t operationCount()
{
    const char* asked = std::getenv("TAMLO_RANDOM_OPERATIONS");
    return asked ? static_cast<std::size_t>(std::strtoull(asked, nullptr, 10)) : 3000;
}

class RandomSession : public SessionTest {
protected:
    std::size_t below(std::size_t n) { return n == 0 ? 0 : random_() % n; }
    double fraction() { return static_cast<double>(random_() % 1001) / 1000; }
    bool coin() { return random_() % 2 == 0; }
    FrameID anyFrame() { return roll().empty() ? Uuid::random() : roll()[below(roll().size())].id; }
    std::vector<FrameID> someFrames()
    {
        std::vector<FrameID> out;
        for (const Frame& frame : roll())
            if (random_() % 4 == 0) out.push_back(frame.id);
        return out;
    }

    void turnAKnob()
    {
        ProcessSettings to = model_.rack.rackSettings();
        switch (below(5)) {
        case 0:
            to.options.grade = 0.1 * static_cast<double>(below(50));
            break;
        case 1:
            to.options.printEv = fraction();
            break;
        case 2:
            to.stock = coin() ? "collodion_wet" : "portra400";
            break;
        case 3:
            to.stock = "gone";
            break;
        default:
            to.options.border = 0.1 * fraction();
        }
        model_.rack.setRackSettings(to);
        loop_.advance(fraction());
    }

    void crop()
    {
        if (!model_.cropping.cropMode()) return model_.cropping.cropKey();
        model_.cropping.change([this](CropDraft& draft) {
            const auto handle = static_cast<CropHandle>(below(9));
            if (coin())
                draft.drag(handle, 4000 * (fraction() - 0.5), 4000 * (fraction() - 0.5),
                           {.fromCentre = coin(), .keepsRatio = coin()});
            else
                draft.setAngle(90 * (fraction() - 0.5));
        });
        if (coin()) model_.cropping.applyCropAndExit();
    }

    void sides()
    {
        if (!model_.sides.abEnabled()) return model_.sides.enterAB();
        const auto side = coin() ? Sides::ABSide::a : Sides::ABSide::b;
        coin() ? model_.sides.focusAB(side) : model_.sides.exitAB(side);
    }

    void move()
    {
        Selection& selection = model_.selection;
        switch (below(9)) {
        case 0:
            return selection.openFrame(anyFrame());
        case 1:
            return selection.backToGrid();
        case 2:
            return selection.step(coin() ? 1 : -1, coin());
        case 3:
            return selection.stepRow(coin() ? 1 : -1, coin());
        case 4:
            return selection.moveCursorToEdge(coin(), coin());
        case 5:
            return selection.toggleSelection(anyFrame());
        case 6:
            return selection.selectAllVisible();
        case 7:
            return selection.selectMarquee(someFrames(), someFrames());
        default:
            return selection.setFilter(static_cast<GridFilter>(below(3)));
        }
    }

    void edit()
    {
        switch (below(11)) {
        case 0:
            return model_.marks.markCurrent(static_cast<Mark>(below(3)));
        case 1:
            return model_.marks.setMark(anyFrame(), static_cast<Mark>(below(3)));
        case 2:
            return model_.turns.orientTarget(static_cast<OrientAction>(below(5)));
        case 3:
            return model_.ordering.setSortMode(static_cast<SortMode>(below(3)));
        case 4:
            return model_.ordering.reverseFrames();
        case 5:
            return model_.ordering.moveAfter(someFrames(), anyFrame());
        case 6:
            return model_.copying.copySettings();
        case 7:
            return model_.copying.pasteSettings();
        case 8:
            return model_.rack.rerollRack(Seeds::SeedStream::film);
        case 9:
            return model_.cropping.resetCropOfTargets();
        default:
            model_.rack.resetSettings(model_.selection.actionTargets());
        }
    }

    void operate()
    {
        switch (below(10)) {
        case 0:
        case 1:
            return turnAKnob();
        case 2:
            return crop();
        case 3:
            return sides();
        case 4:
        case 5:
            return move();
        case 6:
        case 7:
            return edit();
        case 8:
            if (random_() % 8 == 0) model_.removal.remove({anyFrame()}, false);
            if (random_() % 8 == 0) model_.spreading.applyToAll(anyFrame());
            return model_.endGesture();
        default:
            coin() ? model_.undo() : model_.redo();
        }
    }

    void expectRules()
    {
        const Selection& selection = model_.selection;
        const auto visible = selection.visibleIDs();
        const std::unordered_set<FrameID> seen(visible.begin(), visible.end());
        for (const FrameID& id : selection.selected()) ASSERT_TRUE(seen.contains(id));
        if (selection.cursor() && selection.screen() == Screen::grid) {
            ASSERT_TRUE(seen.contains(*selection.cursor()));
        }
        if (selection.screen() == Screen::develop) {
            ASSERT_TRUE(selection.currentFrame());
        }
        ASSERT_FALSE(model_.cropping.cropMode() && model_.sides.abEnabled());
        ASSERT_LE(steps(), History::kMostSteps);
        const auto& draft = model_.cropping.draft();
        if (draft) {
            ASSERT_TRUE(draft->rect().w > 0 && draft->rect().h > 0 && std::isfinite(draft->angle()));
        }
    }

    std::mt19937 random_;
};

/// What stands in the file, but for the filter, which is no step.
std::string bytesOf(Project project)
{
    project.filter = GridFilter::all;
    return project.encoded();
}

TEST_F(RandomSession, KeepsItsRulesAndItsHistory)
{
    questions_.applyChoice = ApplyTo::every;
    const std::size_t count = operationCount();
    constexpr std::size_t kPerRoll = 150; // no more steps than the history keeps
    for (std::size_t done = 0; done < count; done += kPerRoll) {
        random_.seed(static_cast<unsigned>(1000 + done));
        open(static_cast<unsigned>(below(51)));
        const std::string first = bytesOf(model_.project());
        for (std::size_t i = 0; i < kPerRoll; ++i) {
            operate();
            ASSERT_NO_FATAL_FAILURE(expectRules()) << "roll " << done << ", operation " << i;
        }
        model_.selection.backToGrid();
        while (model_.redo()) {}
        const std::string last = bytesOf(model_.project());
        const std::size_t depth = steps();
        model_.undoTo(0);
        ASSERT_EQ(bytesOf(model_.project()), first) << "roll " << done;
        while (model_.redo()) {}
        ASSERT_EQ(steps(), depth);
        ASSERT_EQ(bytesOf(model_.project()), last) << "roll " << done;
    }
}

TEST_F(RandomSession, TenThousandTurnsOfAKnobAreOneStepAGesture)
{
    open(3);
    model_.selection.openFrame(roll()[1].id);
    model_.rack.setRackSettings(ProcessSettings::fresh());
    ProcessSettings to = ProcessSettings::fresh();
    to.options.grade = 0;
    model_.rack.setRackSettings(to); // it has a process from here on
    const std::size_t before = steps();
    for (int gesture = 0; gesture < 10; ++gesture) {
        model_.endGesture();
        for (int i = 0; i < 1000; ++i) {
            to.options.grade = 0.001 * ((gesture * 1000 + i) % 4999 + 1);
            model_.rack.setRackSettings(to);
            loop_.advance(0.01);
        }
    }
    EXPECT_EQ(steps() - before, 10u);
}

} // namespace
} // namespace tamlo::test
