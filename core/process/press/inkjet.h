// Inkjet: four inks laid in drops by the thresholds of a blue-noise table, in swaths that band, a little out
// of place. A drop finer than the pixels is not drawn; its ink lies continuous. Domain: display-linear
// positive in, reflectance out, clamped to 0...1.
#pragma once

#include "core/image/rgb_image.h"
#include "core/process/press/press_plan.h"

namespace tamlo::ReproPrint {

/// The print of a positive, at the plan's size: the positive is enlarged on the way, and drops are held for a
/// few rows only.
RGBImage applyInkjet(RGBImage positive, Size printed, const InkjetPlan& plan);

} // namespace tamlo::ReproPrint
