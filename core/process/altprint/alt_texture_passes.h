// Passes of the texture (alt_texture.h): one row of the amount, in place, with the rows of its unit fields.
// Vector code with run-time dispatch.
#pragma once

#include <cstdint>

namespace tamlo {

/// Two unit fields and what each adds to the texture.
struct FieldMix {
    float amp = 0.0f;
    float gainA = 1.0f;
    float gainB = 0.0f;
};

/// v + amp f sqrt(v (1 - v)): strongest in the midtones, none at paper white and in full colourant.
void texture_fibre(float* amount, const float* a, const float* b, const FieldMix& mix,
                   std::int64_t count) noexcept;

/// v + amp (f env(v) + max(f, 0) specks exp(-(v / 0.14)²)), with f raised by `row` along the whole row: ink
/// beaten in long and hard grows into the shadows, and stands in single points in the highlights.
void texture_ink(float* amount, const float* a, const float* b, const FieldMix& mix, float row, float specks,
                 std::int64_t count) noexcept;

/// v + amp tanh(1.6 f) clamp(v / 0.06, 0, 1): cracks are narrow bridges and no Gaussian.
void texture_reticulation(float* amount, const float* a, const FieldMix& mix, std::int64_t count) noexcept;

} // namespace tamlo
