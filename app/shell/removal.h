// Removal: frames leave the roll. Their files stay where they are.
#pragma once

#include "app/project/frame.h"

#include <vector>

namespace tamlo {

class AppModel;

class Removal {
public:
    using FrameIDs = std::vector<FrameID>;

    explicit Removal(AppModel& model) : model_(model) {}

    /// Takes the frames out as one step. With `confirm`, picked ones among them are asked about first.
    void remove(const FrameIDs& ids, bool confirm);
    void removeSelected(bool confirm);

private:
    void take(const FrameIDs& ids);

    AppModel& model_;
};

} // namespace tamlo
