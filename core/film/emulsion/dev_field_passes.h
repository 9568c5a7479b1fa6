// Passes of uneven development: the field laid onto density, in place.
#pragma once

#include "core/image/rgb_image.h"

namespace tamlo {

/// D' = dmin + (D - dmin) × (1 + field × weight) in each layer. Domain: absolute density.
void dev_uneven(RGBImage& density, const Vec3f& dmins, const Plane& field, const Vec3f& weights);

/// The same of one silver layer, with a weight of 1.
void dev_uneven(Plane& density, float dmin, const Plane& field);

} // namespace tamlo
