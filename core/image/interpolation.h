// Linear interpolation, in the one form that every pass shares: its last bit is part of a picture.
#pragma once

namespace tamlo {

/// a at a share of 0; within a rounding of b at 1.
inline float lerp(float a, float b, float share)
{
    return a + (b - a) * share;
}

} // namespace tamlo
