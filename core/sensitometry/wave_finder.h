// The strongest wave of a picture: its spatial frequency to a hundredth of a cycle a picture, and how much of
// the picture it is. Printing screens are measured with it.
#pragma once

#include "core/image/plane.h"

#include <optional>

namespace tamlo::Sensitometry {

/// A wave in cycles a pixel, and the share that it and what repeats it holds of the variance.
struct Wave {
    double fx = 0.0;
    double fy = 0.0;
    double share = 0.0;
};

/// Nothing for an even picture. Waves of less than three cycles a picture are not looked for: they are what a
/// picture's edges leave. Shape: both sides at least 16 pixels.
std::optional<Wave> strongestWave(const Plane& picture);

} // namespace tamlo::Sensitometry
