// The pass of a lens's fall-off towards the corners.
#pragma once

#include <cstdint>

namespace tamlo {

/// Light left at r = sqrt(dx² + dy²): 1 - strength × min(r, 1)^power, where scale brings x and y from the
/// centre to corners at r = 1.
struct VignettePlan {
    float cx, cy, scaleX, scaleY, strength, power;
};
inline constexpr std::int64_t kVignettePad = 16; // floats of the longest vector
/// `falloff` holds width samples, padded to a multiple of kVignettePad.
void vignette_row(float* row, std::int64_t y, std::int64_t width, const VignettePlan& plan, float* falloff);

} // namespace tamlo
