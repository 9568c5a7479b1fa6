// Passes of the silver chain, in row bands; curve and print in vector code with run-time dispatch. Their
// scalar forms are HDCurve, Film::logExposure and Print::positive.
#pragma once

#include "core/film/emulsion/hd_curve.h"
#include "core/image/rgb_image.h"

namespace tamlo {

/// Sum of weights × (channel - offset) into a plane of the image's size.
void dot3(Plane& out, const RGBImage& image, const Vec3f& weights, const Vec3f& offsets);

/// Light to absolute density, in place. negate: a direct positive, the curve at -x.
void curve_bw(Plane& light, const HDCurve& curve, float evTerm, bool negate = false);

struct PrintBWParams {
    HDCurve curve;
    float d0 = 0.0f;
    float printEvTerm = 0.0f;
    float flareAdd = 0.0f;
    Vec3f tone{1.0f, 1.0f, 1.0f};
};

/// Density to the display-linear positive in three channels: flare, paper curve, knobs, tone, clamp to 0...1.
void print_bw(RGBImage& out, const Plane& density, const PrintBWParams& params);

} // namespace tamlo
