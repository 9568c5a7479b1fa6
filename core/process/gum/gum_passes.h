// Passes of a print in several coats (gum_layers.h), in row bands; the exponentials in vector code.
#pragma once

#include "core/image/rgb_image.h"

#include <cstdint>

namespace tamlo {

/// Moves a plane by whole pixels, its edge repeated.
void plane_shift_edge(Plane& out, const Plane& plane, std::int64_t dy, std::int64_t dx);

/// Adds a coat: density of channel c += t × pigment c, sum += t.
void gum_accum(RGBImage& density, Plane& sum, const Plane& amount, const Vec3f& pigment);

/// Density to colour on the base, 10^-density × base, in place; sum becomes clamp(sum × perLayer, 0, 1).
void gum_finish(RGBImage& density, Plane& sum, const Vec3f& base, float perLayer);

} // namespace tamlo
