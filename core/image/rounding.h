// The two ways of rounding that the system's sizes are told in.
#pragma once

#include <cmath>
#include <cstdint>

namespace tamlo {

/// "rint": to the nearest integer, ties to the nearest even.
inline std::int64_t pyRound(double v)
{
    return std::llrint(v); // the default rounding mode, which nothing in this program changes
}

/// "round": to the nearest integer, halves away from zero.
inline std::int64_t roundAway(double v)
{
    return std::llround(v);
}

} // namespace tamlo
