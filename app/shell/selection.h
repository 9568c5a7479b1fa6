// Selection: where the user is in the roll, and which frames an action reaches. The selection holds visible
// frames only; on the grid the cursor is a visible frame.
#pragma once

#include "app/project/project.h"

#include <optional>
#include <unordered_set>
#include <vector>

namespace tamlo {

class AppModel;

enum class Screen { grid, develop };

class Selection {
public:
    using FrameIDs = std::vector<FrameID>;

    explicit Selection(AppModel& model) : model_(model) {}

    Screen screen() const { return screen_; }
    const std::optional<FrameID>& cursor() const { return cursor_; }
    const std::unordered_set<FrameID>& selected() const { return selected_; }

    FrameIDs visibleIDs() const;
    /// The selected frames in the order of the grid, else the one under the cursor. On the develop screen
    /// always that one alone: what can't be seen is not changed.
    FrameIDs actionTargets() const;
    /// The frame under the cursor, or null.
    FrameRef currentFrame() const;
    /// Its process, else a fresh one.
    ProcessSettings currentProcess() const;

    /// A new roll: the grid, the cursor on its first visible frame.
    void begin();
    void openFrame(const FrameID& id);
    void backToGrid();
    void setCursor(std::optional<FrameID> id);
    void select(const FrameIDs& ids);

    // Moving through the visible frames. Nothing happens beyond the ends.

    /// To a neighbour: on the grid it is selected, on the develop screen opened. extend: the selection
    /// reaches from its anchor to there.
    void step(int delta, bool extend = false);
    /// By rows of the grid.
    void stepRow(int delta, bool extend = false);
    void moveCursorToEdge(bool first, bool extend = false);
    void extendSelection(const FrameID& to);
    void toggleSelection(const FrameID& id);
    void selectAllVisible();
    /// What was selected before and what the rubber band touches.
    void selectMarquee(const FrameIDs& base, const FrameIDs& ids);
    int gridColumns() const { return gridColumns_; }
    void setGridColumns(int columns) { gridColumns_ = columns < 1 ? 1 : columns; }

    /// The project's filter. No undo step.
    void setFilter(GridFilter filter);

    /// Makes the rules at the top hold again after the roll or the filter has changed.
    void normalize();
    /// The nearest visible frame, itself where it is visible: after it first, then before it.
    std::optional<FrameID> nearestVisibleID(const FrameID& id) const;
    /// The same without itself and without the frames of `leaving`.
    std::optional<FrameID> nextVisibleID(const FrameID& id, const FrameIDs& leaving) const;

private:
    void goTo(std::ptrdiff_t visibleIndex, bool extend);
    /// The cursor's place among the visible frames; of a hidden one, that beside which a step begins.
    std::optional<std::ptrdiff_t> placeToStepFrom(const FrameIDs& visible, int delta) const;

    AppModel& model_;
    int gridColumns_ = 6;
    Screen screen_ = Screen::grid;
    std::optional<FrameID> cursor_, anchor_;
    std::unordered_set<FrameID> selected_;
};

} // namespace tamlo
