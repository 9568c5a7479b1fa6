// Passes over a printed sheet, in vector code with run-time dispatch: clouds of ink, and the light and shade
// of an embossed surface.
#pragma once

#include <cstdint>

namespace tamlo {

struct MottleRow {
    float amount = 0.0f;
    float baseMean = 1.0f; ///< the bare paper's mean over the channels
    float fineFactor = 0.0f, wideFactor = 0.0f;
};

/// Changes `count` interleaved pixels by clouds that grow with the ink under them; the result is clamped.
void repro_mottle(float* pixels, const float* fine, const float* wide, std::int64_t count,
                  const MottleRow& row) noexcept;

struct SurfaceLight {
    float x = 0.0f, y = 0.0f; ///< factors of the field's differences along x and y
};

/// Light of a row of a field from its neighbours: tanh of the slope towards the light. The rows above and
/// below are the row itself at the edges of the picture; the differences are central, and one-sided at the
/// edges.
struct SurfaceRow {
    const float* above;
    const float* row;
    const float* below;
    float acrossRows; ///< 1 / the distance of `above` and `below` in rows; 0 for a picture of one row
};
void surface_lit(float* to, const SurfaceRow& field, std::int64_t width, SurfaceLight light) noexcept;

/// pixels × (1 + amount × (lit - mean)), clamped.
void surface_apply(float* pixels, const float* lit, std::int64_t count, float amount, float mean) noexcept;

} // namespace tamlo
