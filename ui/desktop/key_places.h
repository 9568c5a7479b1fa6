// keyAtPlace: the key that a Latin keyboard has where this one has another letter, so that P picks wherever
// the layout has its П, З or π.
#pragma once

#include <QKeySequence>

#include <optional>

class QKeyEvent;

namespace tamlo::ui {

/// None for keys that are Latin already, and where the place is not known. Source: the evdev key codes that
/// X11 and Wayland number from 8 on.
std::optional<QKeySequence> keyAtPlace(const QKeyEvent& event);

} // namespace tamlo::ui
