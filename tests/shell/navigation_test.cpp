// Moving about: selection, marks that go on, order, two sides, zoom, going back several steps.
#include "tests/shell/session.h"

#include <algorithm>
#include <cmath>

namespace tamlo::test {
namespace {

class NavigationTest : public SessionTest {
protected:
    std::size_t cursor() const { return *roll().find(*model_.selection.cursor()); }
    std::vector<std::size_t> selected() const
    {
        std::vector<std::size_t> out;
        for (const FrameID& id : model_.selection.selected()) out.push_back(*roll().find(id));
        std::ranges::sort(out);
        return out;
    }
    std::vector<std::size_t> order(const std::vector<FrameID>& before) const
    {
        std::vector<std::size_t> out;
        for (const Frame& frame : roll())
            out.push_back(static_cast<std::size_t>(std::ranges::find(before, frame.id) - before.begin()));
        return out;
    }
    ProcessSettings graded(double grade) const
    {
        ProcessSettings settings = model_.rack.rackSettings();
        settings.options.grade = grade;
        return settings;
    }
};

using Places = std::vector<std::size_t>;

TEST_F(NavigationTest, KeysWalkTheVisibleFrames)
{
    open(12); // every third is rejected
    Selection& s = model_.selection;
    s.setFilter(GridFilter::hideRejected);
    s.step(1);
    s.step(1);
    EXPECT_EQ(cursor(), 3u) << "over a hidden frame";
    s.step(-9);
    EXPECT_EQ(cursor(), 3u) << "nothing beyond the ends";
    s.setGridColumns(3);
    s.stepRow(1, true);
    EXPECT_EQ(selected(), (Places{3, 4, 6, 7}));
    s.stepRow(9, false);
    EXPECT_EQ(cursor(), 10u);
    s.moveCursorToEdge(true, true);
    EXPECT_EQ(selected().size(), 8u);
    s.toggleSelection(roll()[4].id);
    EXPECT_EQ(selected().size(), 7u);
    s.selectMarquee(ids({0}), ids({1, 2}));
    EXPECT_EQ(selected(), (Places{0, 1})) << "a hidden frame is never selected";
    s.selectAllVisible();
    s.openFrame(roll()[1].id);
    s.step(1);
    EXPECT_EQ(s.screen(), Screen::develop);
    EXPECT_EQ(cursor(), 3u);
    EXPECT_EQ(s.actionTargets(), ids({3}));
    model_.marks.markCurrent(Mark::rejected); // and out of sight, under the eyes
    EXPECT_EQ(cursor(), 3u);
    s.step(-1);
    EXPECT_EQ(cursor(), 1u);
    s.openFrame(roll()[3].id);
    s.step(1);
    EXPECT_EQ(cursor(), 4u);
}

TEST_F(NavigationTest, TheDevelopScreenGoesOnWhenItsFrameGoes)
{
    open(3);
    model_.selection.openFrame(roll()[1].id);
    model_.sides.enterAB();
    const FrameID next = roll()[2].id;
    model_.removal.removeSelected(false);
    EXPECT_EQ(views_.opened, next);
    EXPECT_FALSE(model_.sides.abEnabled());
    model_.removal.removeSelected(false);
    EXPECT_EQ(views_.opened, roll()[0].id) << "the nearest before";
    model_.removal.removeSelected(false);
    EXPECT_EQ(views_.opened, std::nullopt);
    EXPECT_EQ(model_.selection.screen(), Screen::grid);
    model_.undoTo(1);
    model_.selection.openFrame(next);
    model_.sides.enterAB();
    model_.undoTo(2); // forward: it is removed again
    EXPECT_EQ(roll().size(), 1u);
    EXPECT_FALSE(model_.sides.abEnabled()) << "its two sides go with it";
}

TEST_F(NavigationTest, AMarkGoesOnWhereTheUserWantsIt)
{
    open(6);
    preferences_.setFlag("advanceAfterMark", true);
    model_.marks.markCurrent(Mark::selected);
    EXPECT_EQ(cursor(), 1u);
    model_.selection.setFilter(GridFilter::hideRejected);
    model_.marks.markCurrent(Mark::rejected);
    EXPECT_EQ(cursor(), 3u) << "the filter moved it already";
}

TEST_F(NavigationTest, AnOrderByHandIsOneStepWithItsMode)
{
    open(6);
    model_.ordering.setSortMode(SortMode::name);
    const std::size_t sorted = steps();
    const auto before = all();
    model_.ordering.setSortMode(SortMode::name);
    EXPECT_EQ(steps(), sorted) << "nothing to move";
    model_.ordering.moveAfter({before[0], before[2]}, before[4]);
    EXPECT_EQ(order(before), (Places{1, 3, 4, 0, 2, 5}));
    EXPECT_EQ(model_.project().sortMode, SortMode::manual);
    EXPECT_EQ(topName(), "Reorder 2 frames");
    model_.ordering.moveBefore({before[3]}, before[4]);
    EXPECT_EQ(steps(), sorted + 1) << "it lies there already";
    model_.ordering.moveBefore({before[3], before[4]}, before[3]);
    EXPECT_EQ(steps(), sorted + 1) << "beside itself";
    model_.ordering.setSortMode(SortMode::manual);
    EXPECT_EQ(steps(), sorted + 1);
    model_.undo();
    EXPECT_EQ(all(), before);
    EXPECT_EQ(model_.project().sortMode, SortMode::name);
    model_.ordering.reverseFrames();
    EXPECT_EQ(order(before), (Places{5, 4, 3, 2, 1, 0}));
    EXPECT_EQ(topName(), "Order: Reverse");
}

TEST_F(NavigationTest, SideBLeavesNoStepUntilItIsTaken)
{
    open(4);
    model_.sides.enterAB();
    EXPECT_FALSE(model_.sides.abEnabled()) << "on the grid";
    model_.selection.openFrame(roll()[1].id);
    model_.sides.enterAB();
    model_.sides.focusAB(Sides::ABSide::b);
    const ProcessSettings a = *roll()[1].process;
    model_.rack.setRackSettings(graded(4.5));
    model_.rack.rerollRack(Seeds::SeedStream::film);
    model_.rack.resetRackBlock("FILM", {PresetBlock::film});
    EXPECT_EQ(steps(), 0u);
    EXPECT_EQ(*roll()[1].process, a);
    EXPECT_EQ(views_.renderedB, 4u);
    EXPECT_EQ(model_.rack.rackSettings().options.grade, 4.5);
    model_.sides.focusAB(Sides::ABSide::a);
    EXPECT_EQ(model_.rack.rackSettings(), a);
    model_.sides.exitAB(Sides::ABSide::b);
    EXPECT_EQ(steps(), 1u);
    EXPECT_EQ(roll()[1].process->options.grade, 4.5);
    EXPECT_FALSE(model_.sides.abEnabled());
    model_.undo();
    model_.sides.enterAB();
    model_.sides.focusAB(Sides::ABSide::b);
    model_.rack.setRackSettings(graded(1));
    model_.copying.copySettings();
    model_.rack.resetSettingsOfTargets();
    EXPECT_EQ(model_.rack.rackSettings(), ProcessSettings::fresh());
    model_.copying.pasteSettings();
    EXPECT_EQ(model_.rack.rackSettings().options.grade, 1)
        << "what is seen is copied, and pasted where it is seen";
    model_.copying.copyBlock("PRINTING", {PresetBlock::print});
    model_.rack.setRackSettings(graded(3));
    model_.copying.pasteBlock();
    EXPECT_EQ(model_.rack.rackSettings().options.grade, 1);
    model_.selection.step(1);
    EXPECT_FALSE(model_.sides.abEnabled()) << "another frame keeps A";
    EXPECT_EQ(steps(), 0u);
    model_.sides.enterAB();
    model_.sides.focusAB(Sides::ABSide::b);
    model_.presets.applyToTargets(store_.preset("tintype"), "tintype");
    model_.sides.exitAB(Sides::ABSide::b);
    EXPECT_EQ(model_.selection.currentProcess().stock, "collodion_wet");
    EXPECT_FALSE(model_.selection.currentProcess().modified) << "nothing has moved since the recipe";
}

TEST_F(NavigationTest, ARerollIsAStepOfItsOwn)
{
    open(3);
    EXPECT_EQ(model_.rack.reroll(ids({1, 2}), Seeds::SeedStream::film), 2u);
    model_.rack.reroll(ids({1}), Seeds::SeedStream::film);
    EXPECT_EQ(roll()[1].process->options.seedVariants->at("film"), 2);
    EXPECT_EQ(topName(), "Reroll grain and film texture");
    EXPECT_EQ(steps(), 2u);
    model_.rack.change(ids({1}), [](ProcessSettings& p) { p.options.grade = 1; });
    model_.rack.change(ids({1}), [](ProcessSettings& p) { p.options.grade = 3; });
    model_.undoTo(1);
    EXPECT_EQ(roll()[1].process->options.seedVariants->at("film"), 1);
    EXPECT_EQ(model_.history().redoStack().size(), 3u);
}

TEST_F(NavigationTest, ZoomGoesByRungsAndKeepsWithinThePicture)
{
    open(2);
    Zoom& zoom = model_.zoom;
    EXPECT_EQ(zoom.oneToOneZoom(), 1);
    zoom.setFit({600, 900}, {1600, 900}, 1);
    zoom.setDetailLong(6000);
    EXPECT_NEAR(zoom.oneToOneZoom(), 6.667, 0.001);
    EXPECT_EQ(zoom.zoomLabel(), "Fit");
    zoom.stepZoom(1);
    EXPECT_EQ(zoom.zoom(), 1) << "only on the develop screen";
    model_.selection.openFrame(roll()[0].id);
    zoom.stepZoom(1);
    EXPECT_EQ(zoom.zoomLabel(), "25%");
    zoom.stepZoom(-1);
    EXPECT_EQ(zoom.zoomLabel(), "Fit") << "15% is a rung too";
    zoom.stepZoom(-1);
    EXPECT_EQ(zoom.zoom(), 1) << "the ladder's end";
    zoom.toggleOneToOne();
    EXPECT_EQ(zoom.zoomLabel(), "100%");
    EXPECT_EQ(views_.zoom, zoom.zoom()) << "the tiers follow";
    zoom.setPan({9000, -9000});
    EXPECT_NEAR(zoom.pan().x, (600 * zoom.zoom() - 1600) / 2, 1e-6);
    zoom.setZoomPercent(100.3);
    zoom.stepZoom(1);
    EXPECT_EQ(zoom.zoomLabel(), "120%") << "a rung half a percent away is where we are, and 8 is the end";
    zoom.setFit({1000, 700}, {1000, 700}, 1);
    zoom.setDetailLong(11'600);
    zoom.setZoomPercent(100);
    EXPECT_NEAR(zoom.zoom(), 11.6, 1e-9) << "the range always holds 1:1";
    zoom.toggleOneToOne();
    EXPECT_EQ(zoom.zoom(), 1);
    EXPECT_EQ(zoom.pan(), PanPoints());
}

} // namespace
} // namespace tamlo::test
