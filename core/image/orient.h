// Quarter turns and mirroring of a picture: how a file says it is to be held, and how a user turns it.
#pragma once

#include "core/image/rgb_image.h"

namespace tamlo::Pipeline {

/// Mirrors the columns first, if asked to, then turns by round(rotateDegrees / 90) quarter turns clockwise.
/// Shape: width and height are exchanged by an odd number of turns. No turn and no mirror gives the image
/// back as it is.
RGBImage orientImage(RGBImage image, double rotateDegrees, bool mirror);

} // namespace tamlo::Pipeline
