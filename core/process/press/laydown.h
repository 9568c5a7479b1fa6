// What happens to ink on paper once it is down: light that enters beside a dot leaves under it, which blurs
// the print, and the ink lies in clouds, fine ones of the paper's fibre and wide ones of the press. Domain:
// reflectance, clamped to 0...1.
#pragma once

#include "core/image/rgb_image.h"
#include "core/process/press/press_plan.h"

namespace tamlo::ReproPrint {

/// The spread of light, then the clouds. `base` is the bare paper.
RGBImage layDown(RGBImage print, const Vec3f& base, const Laydown& laydown);

} // namespace tamlo::ReproPrint
