// What a screen reader hears of the canvas.
#pragma once

namespace tamlo::ui {

/// A picture view is told as a graphic by its accessible name. Once a process, after QApplication.
void installCanvasAccessibility();

} // namespace tamlo::ui
