// Presses the marks of a sheet into it: line, stamp, type, each shading the result of the one before.
#pragma once

#include "core/process/finishing/sheet_plan.h"

namespace tamlo::Finishing {

/// Shape: in place. Domain: display-linear. A mark without room is left out.
void applySheetFinish(RGBImage& image, const RenderOptions& options);

} // namespace tamlo::Finishing
