// Papers and process inks of the presses, and what their colours multiply to. Colours are linear RGB on sRGB
// primaries; an ink is that of a solid patch seen against its paper's white.
#pragma once

#include "core/image/rgb_image.h"

#include <array>
#include <string_view>

namespace tamlo::ReproPrint {

/// Inks in the order that they are printed in.
inline constexpr std::size_t kCyan = 0, kMagenta = 1, kYellow = 2, kBlack = 3, kInkCount = 4;

/// Solid patches of the four inks.
using InkSet = std::array<Vec3d, kInkCount>;

/// Angle of each ink's screen, degrees.
inline constexpr std::array<double, kInkCount> screenAngles{15.0, 75.0, 0.0, 45.0};

/// Reflectance of a named paper; an unknown name answers with the fall-back's.
const Vec3d& bases(std::string_view name, std::string_view fallback);
/// A named set of inks; an unknown name answers with the fall-back's.
const InkSet& inks(std::string_view name, std::string_view fallback);

/// The inks as relative reflectances that can be divided by: 0.0001 to 0.9999.
std::array<Vec3f, kInkCount> relativeInks(const InkSet& set);

} // namespace tamlo::ReproPrint
