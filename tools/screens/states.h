// The states of the window that are photographed, in the order in which a person meets them.
#pragma once

#include "tools/screens/stage.h"

#include <span>

namespace tamlo::screens {

struct State {
    const char* name;  ///< of the picture's file
    const char* title; ///< for whoever looks
    void (*enter)(Stage& stage);
};

/// Of an empty window, and of one with a roll.
std::span<const State> emptyStates();
std::span<const State> rollStates();

} // namespace tamlo::screens
