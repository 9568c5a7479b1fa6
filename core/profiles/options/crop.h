// Crop: a rectangle in the unit square of the source with a small tilt, origin at top left, in the axes of
// the straightened picture.
#pragma once

namespace tamlo {

struct Crop {
    double x = 0;
    double y = 0;
    double w = 1;
    double h = 1;
    double angle = 0; ///< degrees

    /// The whole source; an absent crop means the same.
    static Crop full() { return {}; }

    bool operator==(const Crop&) const = default;
};

} // namespace tamlo
