// What assistive programs see of the roll: a list, and each frame as an item of it with its number, its name
// and how it is marked. The item under the cursor has the focus.
#pragma once

#include <cstddef>

namespace tamlo::ui {

class GridView;

/// Once a process, after QApplication.
void installGridAccessibility();

/// The cursor stands on another row of a list that has the focus.
void tellCursor(GridView& grid, std::size_t row);

} // namespace tamlo::ui
