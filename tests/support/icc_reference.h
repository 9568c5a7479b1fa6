// A screen's profile, and what the colour engine itself makes of a colour with it, without our layer between.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace tamlo::test {

/// Wide primaries and a gamma of 2.2.
std::vector<std::uint8_t> wideScreenProfile();
/// An sRGB pixel on that screen, relative colorimetric with black point compensation, in floating point.
std::array<double, 3> onWideScreen(const std::array<int, 3>& rgb);

} // namespace tamlo::test
