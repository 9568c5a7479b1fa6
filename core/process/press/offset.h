// Offset: four plates, or black's alone, each under a screen of its own angle, out of register by a little,
// and composed over the paper. A cell finer than the pixels is not drawn; its ink lies continuous. Domain:
// display-linear positive in, reflectance out, clamped to 0...1.
#pragma once

#include "core/image/rgb_image.h"
#include "core/process/press/press_plan.h"

namespace tamlo::ReproPrint {

/// The print of a positive, at the plan's size: the positive is enlarged on the way.
/// The inks are separated at the printed size; a screen that is drawn finer reads coverages raised bilinearly
/// and is averaged at once, ahead of the spread of light. A drawn picture never stands in memory.
RGBImage applyOffset(RGBImage positive, Size printed, const OffsetPlan& plan);

} // namespace tamlo::ReproPrint
