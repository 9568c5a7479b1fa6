// History: undo by snapshots. A step holds the whole project as it was before a change, which costs little,
// since frames are shared with the present one. A drag of one knob is one step, by a key and a time limit.
// What has no place in a project travels as closures beside the snapshot. Rendered pixels are never kept.
// Main thread only.
#pragma once

#include "app/project/project.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tamlo {

class History {
public:
    static constexpr std::size_t kMostSteps = 200;
    /// Changes of one gesture that lie closer than this are one step.
    static constexpr double kGestureSeconds = 0.4;

    struct Step {
        std::string name; ///< in the user's language
        Project snapshot; ///< before the change
        std::optional<std::string> key;
        double stamp = 0; ///< seconds of a clock that only goes forward
        std::function<void()> action;
        std::function<void()> inverse;
        bool linksFiles = false;
    };

    /// What a change tells of itself.
    struct Change {
        std::string name;
        std::optional<std::string> key = {}; ///< of the gesture; absent for a change that stands alone
        std::function<void()> action = {};   ///< runs when the step is undone
        std::function<void()> inverse = {};  ///< and when it is redone
        bool linksFiles =
            false; ///< what was found out about files is the change itself, and goes back with it
    };

    /// Adds a step, or lets the open gesture's step stand for this change too. `before`: the project before
    /// the change; recorded before anything changes. now: seconds of a clock that only goes forward.
    void record(Change change, const Project& before, double now);
    void endGesture() { openKey_.reset(); }
    /// The last change may go on.
    bool gestureIsOpen() const { return openKey_.has_value(); }
    /// Takes the top of the undo stack, leaving its opposite for redo; none when there is nothing to undo.
    std::optional<Step> undo(const Project& current, double now);
    std::optional<Step> redo(const Project& current, double now);
    void clear();

    const std::vector<Step>& undoStack() const { return undoStack_; }
    const std::vector<Step>& redoStack() const { return redoStack_; }

private:
    static std::optional<Step> move(std::vector<Step>& from, std::vector<Step>& to, const Project& current,
                                    double now);

    std::vector<Step> undoStack_, redoStack_; ///< the last is the top
    std::optional<std::string> openKey_;
};

} // namespace tamlo
