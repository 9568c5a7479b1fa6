// Ordering: the order of the roll, by a rule or by hand.
#pragma once

#include "app/project/project.h"

#include <vector>

namespace tamlo {

class AppModel;

class Ordering {
public:
    using FrameIDs = std::vector<FrameID>;

    explicit Ordering(AppModel& model) : model_(model) {}

    /// Sorts by a rule, once now and whenever frames come in. manual: leaves all where it is.
    void setSortMode(SortMode mode);
    void reverseFrames();
    /// Puts frames, in their order, before or after another one; the order is one made by hand from then on.
    /// Nothing where they would be put beside one of themselves.
    void moveBefore(const FrameIDs& ids, const FrameID& target) { move(ids, target, 0); }
    void moveAfter(const FrameIDs& ids, const FrameID& target) { move(ids, target, 1); }

private:
    void move(const FrameIDs& ids, const FrameID& target, std::size_t beyond);

    AppModel& model_;
};

} // namespace tamlo
