// Passes of a handmade print (alt_steps.h), in row bands and vector code with run-time dispatch.
#pragma once

#include "core/film/emulsion/hd_curve.h"
#include "core/image/rgb_image.h"

#include <cstdint>

namespace tamlo {

/// Density to the amount of colourant, in place. The scalar form is Print::amount.
void alt_amount(Plane& density, const HDCurve& curve, float d0, float printEvTerm);

/// clamp((t - inkFloor) / (1 - inkFloor), 0, 1), then 1 - (1 - t)^(1 + plug); a step of 1e-4 or less is left
/// out.
void alt_shape(Plane& amount, float inkFloor, float plug);

/// t (1 - (1 - pickup) t) / pickup.
void alt_pickup(Plane& amount, float pickup);

void alt_clamp(Plane& amount);
void alt_clamp(RGBImage& image);

/// t × mask + band × (1 - mask).
void alt_window(Plane& amount, const Plane& mask, float band);

struct ColorizeParams {
    bool ink = false;
    Vec3f base{};
    Vec3f density{}; // of a stain
    Vec3f rgb{};     // of an ink
    float opacity = 1.0f;
};
void alt_colorize(RGBImage& out, const Plane& amount, const ColorizeParams& params);

/// image × mask + colour × (1 - mask).
void composite_mask(RGBImage& image, const Plane& mask, const Vec3f& colour);
/// The same along a run of pixels.
void composite_run(float* pixels, const float* mask, std::int64_t count, const Vec3f& colour) noexcept;

} // namespace tamlo
