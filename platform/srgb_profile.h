// The ICC profile that every written file carries: sRGB (IEC 61966-2-1).
#pragma once

#include <cstdint>
#include <span>

namespace tamlo::platform {

/// Bytes of the sRGB profile; the same in every run, no date of the day in them.
/// Errors: PlatformError when the colour engine cannot make it.
std::span<const std::uint8_t> srgbProfile();

} // namespace tamlo::platform
