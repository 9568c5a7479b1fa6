// The border of a print: paper left clear round the picture.
#pragma once

#include "core/image/rgb_image.h"

namespace tamlo::Finishing {

/// The picture with marginPx of colour on all four sides; unchanged for a margin of 0 or less.
/// Domain: display-linear positive.
RGBImage addBorder(RGBImage image, std::int64_t marginPx, const Vec3f& colour);

} // namespace tamlo::Finishing
