// Half floats: 32-bit floats to IEEE 754 binary16 and back, in bulk. What is kept on disk for a preview is
// kept so: half the bytes, eleven bits of precision. Rounds to nearest, ties to even; a value beyond the
// range becomes the largest finite one, since an infinity would spread over its neighbours in a reduction.
#pragma once

#include <cstdint>
#include <span>

namespace tamlo::HalfFloat {

/// The largest finite value.
inline constexpr float kMost = 65'504.0f;

/// Shape: as many halves as floats. NaN stays NaN.
void encode(std::span<const float> floats, std::span<std::uint16_t> halves);
void decode(std::span<const std::uint16_t> halves, std::span<float> floats);

} // namespace tamlo::HalfFloat
