// Spreading: the settings of one frame for the whole roll.
#pragma once

#include "app/project/frame.h"
#include "app/shell/questions.h"

namespace tamlo {

class AppModel;

class Spreading {
public:
    explicit Spreading(AppModel& model) : model_(model) {}

    /// Gives every frame the process of one that has one. Asks where others have a process of their own.
    void applyToAll(const FrameID& from);

private:
    void spread(const Frame& from, ApplyTo to);

    AppModel& model_;
};

} // namespace tamlo
