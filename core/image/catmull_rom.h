// The bicubic kernel by which pictures are read at places between their pixels (crops, warped plates, the
// curved face of a tube): Catmull-Rom, Keys 1981 with a = -0.5.
#pragma once

#include <array>

namespace tamlo {

/// Weights of four taps at a fraction t behind the second.
inline std::array<float, 4> catmullRom(float t)
{
    const float t2 = t * t, t3 = t2 * t;
    return {-0.5f * t3 + t2 - 0.5f * t, 1.5f * t3 - 2.5f * t2 + 1.0f, -1.5f * t3 + 2.0f * t2 + 0.5f * t,
            0.5f * t3 - 0.5f * t2};
}

} // namespace tamlo
