// Pixel passes of the lens's field (optics_field.h): to polar coordinates, the sum of the rings, back, and
// the weight of what comes back. Bilinear throughout.
#pragma once

#include "core/image/plane.h"
#include "core/image/rgb_image.h"

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace tamlo {

using PolarPlanes = std::array<Plane, 3>; // rows are radii, columns are angles, one plane a channel

/// Polar image of an image about its centre. radiusStep is pixels from one row to the next; the first row
/// lies half a step out.
void polar_forward(const RGBImage& image, double radiusStep, PolarPlanes& polar);

/// One ring of the field: half kernels (the centre first) along the angle and along the radius, and the share
/// of the ring in each polar row.
struct SmearRing {
    std::vector<double> alongAngle, alongRadius;
    std::vector<float> weights;
};
/// out = Σ weight × ring, each row blurred along the angle with the turn closed, then along the radius with
/// the ends repeated. Only rows that a ring has a share in are blurred for it.
void smear_rings(const Plane& polar, std::span<const SmearRing> rings, Plane& out);

/// Where the proxy takes the smeared light, and how much of it.
struct FieldMix {
    float radiusStep; ///< proxy pixels from one polar row to the next
    float radius;     ///< half the proxy's diagonal
    float sigmaCoef;  ///< largest sigma over twice the scale
    float power;
};
/// Weight of the smear for each proxy pixel: a smooth step of sigma, since the proxy only holds where sigma
/// is well above its own pixel.
void field_weight(Plane& weight, const FieldMix& mix);

/// |Y - blurred|; what is not a number counts as 0.
void detail_abs(Plane& luma, const Plane& blurred);

/// weight × (1 - bias × min(detail / reference, 1)).
void defocus_weight(Plane& weight, const Plane& detail, float bias, float reference);

/// image becomes (smeared - image) × weight, and exactly 0 where the weight is 0.
void field_delta(RGBImage& image, const PolarPlanes& polar, const Plane& weight, const FieldMix& mix);

/// row + added.
void add_row(float* row, const float* added, std::int64_t samples);

} // namespace tamlo
