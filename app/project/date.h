// Date: a moment as a document holds it, seconds since 2001-01-01 00:00 UTC.
#pragma once

#include <compare>

namespace tamlo {

struct Date {
    /// Seconds of 1970 at the zero of a Date.
    static constexpr double kZeroAt1970 = 978307200.0;

    double seconds = 0;

    static constexpr Date since1970(double unixSeconds) { return {unixSeconds - kZeroAt1970}; }
    constexpr double unixSeconds() const { return seconds + kZeroAt1970; }

    auto operator<=>(const Date&) const = default;
};

} // namespace tamlo
