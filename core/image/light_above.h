// Light above a threshold: what a halo, a bloom, a diffusion filter and the rays of a star take from a
// picture.
#pragma once

#include <cstdint>

namespace tamlo {

/// out = max(light - threshold, 0), no more than 1e30, and 0 for NaN.
void light_above(const float* light, std::int64_t count, float threshold, float* out) noexcept;

/// The same of the luminance of `count` interleaved pixels.
void light_above_luma(const float* pixels, std::int64_t count, float threshold, float* out) noexcept;

} // namespace tamlo
