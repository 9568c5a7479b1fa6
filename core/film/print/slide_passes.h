// Passes of positives: density to transmission, the transparency onto positive paper, the scanner's reading.
// One per-pixel function each, in place, in vector code with run-time dispatch.
#pragma once

#include "core/film/emulsion/hd_curve.h"
#include "core/film/print/look.h"
#include "core/film/print/scan_positive.h"
#include "core/image/rgb_image.h"

namespace tamlo {

/// 10^-(D - reference), the look, clamp to 0...1.
void positive_out(RGBImage& density, float reference, const Film::LookOp& look);

struct SlidePrintParams {
    HDCurve curve;
    float printEvTerm = 0.0f;
    /// Factor on the layers' distance from their mean in density; 1 is none.
    float dyePurity = 1.0f;
    Vec3f tone{1.0f, 1.0f, 1.0f};
};

/// Transmission to the display-linear print on a positive paper.
void slide_print(RGBImage& transmission, const SlidePrintParams& params);

/// Stray light, black point, exposure, gamma and the two knobs of a scanner, in this order; clamp to 0...1.
void scan_positive(RGBImage& image, const Film::ScanPositive& params);

} // namespace tamlo
