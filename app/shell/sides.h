// Sides: A/B. A second process beside that of the frame on the develop screen, to be compared and then taken
// or dropped. Side A is the frame's own; side B is nobody's until it is taken, and leaves no undo steps.
#pragma once

#include "core/profiles/presets/process_settings.h"

#include <optional>

namespace tamlo {

class AppModel;

class Sides {
public:
    enum class ABSide { a, b };

    explicit Sides(AppModel& model) : model_(model) {}

    bool abEnabled() const { return b_.has_value(); }
    ABSide abFocus() const { return focus_; }
    /// The process of side B; none outside of A/B.
    const std::optional<ProcessSettings>& abB() const { return b_; }
    /// The rack edits side B.
    bool editsB() const { return abEnabled() && focus_ == ABSide::b; }

    /// On the develop screen: B begins as a copy of A, and A has the rack.
    void enterAB();
    /// The rack edits that side.
    void focusAB(ABSide side);
    void setB(const ProcessSettings& to);
    /// Keeping B makes it the frame's process, as one step.
    void exitAB(ABSide keeping = ABSide::a);

private:
    AppModel& model_;
    std::optional<ProcessSettings> b_;
    ABSide focus_ = ABSide::a;
};

} // namespace tamlo
