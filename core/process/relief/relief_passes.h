// Passes of the relief (relief.h), a row at a time, in vector code with run-time dispatch.
#pragma once

#include <cstdint>

namespace tamlo {

/// Direction of the light times the scale of the slope.
struct ReliefLight {
    float x = 0.0f;
    float y = 0.0f;
};

/// Three rows of the height: above and below are the row itself at the edges of the picture, where the slope
/// is one-sided, and `down` is then 1 in place of 1/2.
struct ReliefRows {
    const float* above;
    const float* here;
    const float* below;
    float down = 0.5f;
    std::int64_t width = 0;
};

/// lit = -(gradient · light) along a row.
void alt_lit(float* lit, const ReliefRows& rows, ReliefLight light) noexcept;

/// In place: lit becomes tanh(lit × invScale) × weight, and weight = clamp(amount, 0, 1)^0.7.
void relief_weigh(float* lit, float* weight, const float* amount, float invScale,
                  std::int64_t width) noexcept;

struct ReliefShade {
    float invScale = 1.0f;
    float gain = 0.0f; // 0: no light and shade
    float bias = 0.0f;
    float sheen = 0.0f;
};

/// Shades a row of three channels in place: × (1 + gain (tanh(lit × invScale) - bias) v^0.7) + sheen v²,
/// clamped to 0...1.
void alt_relief(float* pixels, const float* lit, const float* amount, const ReliefShade& shade,
                std::int64_t width) noexcept;

} // namespace tamlo
