// printSizeText: how large a frame's print comes out.
#pragma once

#include "ui/screens/desk.h"

#include <QString>

namespace tamlo::ui {

/// "6545 × 4363 · 28.6 MP". Empty where the source was not looked at yet, or a
/// profile is not there.
QString printSizeText(const Desk& desk, const Frame& frame);

} // namespace tamlo::ui
