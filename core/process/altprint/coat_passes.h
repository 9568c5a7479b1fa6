// Passes of the brushed coat (brushed_coat.h): runs of one row of the canvas, in vector code with run-time
// dispatch.
#pragma once

#include <cstdint>

namespace tamlo {

/// One row of the canvas as the coat sees it. Pointers are to the canvas's first column.
struct CoatRow {
    const float* top;
    const float* bottom;
    const float* streakX;
    float y = 0.0f;
    float left = 0.0f;
    float right = 0.0f;
    float streakY = 0.0f;
    float band = 0.0f;
    float perMask = 1.0f; // 1 / maskDen
    float perFade = 1.0f; // 1 / fadeDen
    float streakK = 0.0f;
};

/// Columns first...end - 1 of the coat: band × clamp(d / fadeDen, 0, 1)^0.7 × (1 + streaks), with d the
/// distance inside the stroke.
void alt_coat(float* amount, const CoatRow& row, std::int64_t first, std::int64_t end) noexcept;

/// Columns first...end - 1 of the mask: clamp(d / maskDen + 0.5, 0, 1).
void coat_mask(float* mask, const CoatRow& row, std::int64_t first, std::int64_t end) noexcept;

} // namespace tamlo
