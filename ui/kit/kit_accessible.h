// What assistive programs see of the kit's own controls: a knob is a slider that takes values, a selector a
// group, the head of a card a button that expands.
#pragma once

namespace tamlo::ui {

/// To be called once the application object is there: a factory from before it is not asked.
void installKitAccessibility();

} // namespace tamlo::ui
