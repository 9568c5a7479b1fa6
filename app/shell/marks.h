// Marks: picking and rejecting frames.
#pragma once

#include "app/project/project.h"

#include <vector>

namespace tamlo {

class AppModel;

class Marks {
public:
    explicit Marks(AppModel& model) : model_(model) {}

    /// The key of a mark on one frame: pressed on a frame that bears it, it clears it.
    void setMark(const FrameID& id, Mark mark);
    /// The key of a mark on the targets of an action: when all bear it already, it clears them all.
    void markCurrent(Mark mark);
    /// Gives the frames this mark, as one step.
    void assign(const std::vector<FrameID>& ids, Mark mark);

private:
    AppModel& model_;
};

} // namespace tamlo
