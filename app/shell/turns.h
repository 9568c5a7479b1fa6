// Turns: the user's own orientation of frames.
#pragma once

#include "app/project/frame.h"

#include <vector>

namespace tamlo {

class AppModel;

enum class OrientAction { right, left, flipH, flipV, reset };

/// The orientation after an action, as seen on screen.
Orient oriented(Orient orient, OrientAction action);

class Turns {
public:
    explicit Turns(AppModel& model) : model_(model) {}

    void orient(const std::vector<FrameID>& ids, OrientAction action);
    void orientTarget(OrientAction action);
    /// Nothing is left to reset.
    bool orientTargetIsDefault() const;

private:
    AppModel& model_;
};

} // namespace tamlo
