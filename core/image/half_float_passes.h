// The passes of half_float.h.
#pragma once

#include <cstdint>

namespace tamlo {

void half_encode(const float* floats, std::uint16_t* halves, std::int64_t count) noexcept;
void half_decode(const std::uint16_t* halves, float* floats, std::int64_t count) noexcept;

} // namespace tamlo
