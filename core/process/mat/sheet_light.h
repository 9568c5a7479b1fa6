// The one light over a sheet, from the upper left, and how dark the two shadows of a lying sheet are. A card
// and its table stand under the same light, so it stands apart from both.
#pragma once

#include "core/image/rgb_image.h"

namespace tamlo::CardRelief {

/// Direction to the light, a unit vector: x to the right, y down, z up from the sheet. Taste.
inline constexpr Vec3d light{-0.25916053767152686, -0.43193422945254476, 0.8638684589050895};

/// Opacity of the contact shadow and of the cast shadow; taste.
inline constexpr double shadowAoOpacity = 0.35;
inline constexpr double shadowDirOpacity = 0.50;

} // namespace tamlo::CardRelief
