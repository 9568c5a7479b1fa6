// Orientation of a frame: the mirror of the source's columns first, then quarter turns clockwise. The order
// is that of the EXIF orientation and of the user's own turn alike.
#pragma once

#include "core/image/rgb_image.h"

namespace tamlo::Orientation {

/// Quarter turns clockwise, 0 to 3, of an orientation in degrees.
int orientQuarter(int rotateDegrees);

/// Mirrors the columns when `mirror` is set, then turns by orientQuarter. An image that stays as it is comes
/// back untouched; a mirror and a half turn work in place on a unique image.
RGBImage orientImage(RGBImage image, int rotateDegrees, bool mirror);

} // namespace tamlo::Orientation
