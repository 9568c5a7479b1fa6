// The plan of the lens's field (Optics::fieldPSF). The smear runs along circles round the centre, so the work
// is done on a small proxy in polar coordinates, where a circle is a row and a separable Gaussian gives the
// smear; what it changes is enlarged and added to the frame, which is itself never resampled. The proxy holds
// the largest sigma at 12 pixels: the cost does not grow with the frame.
#pragma once

#include "core/image/plane.h"
#include "core/profiles/formats/lens_profile.h"

#include <array>
#include <cstdint>
#include <optional>

namespace tamlo::Optics {

inline constexpr int kFieldBands = 6; // rings with a sigma of their own

/// Sigmas of one ring, in samples of the polar grid.
struct FieldRing {
    double alongAngle = 0.0, alongRadius = 0.0;
};

struct FieldPlan {
    Size proxy;
    double scale = 1.0;       ///< frame pixels to a proxy pixel
    double largestPx = 0.0;   ///< largest sigma in frame pixels
    double power = 2.0;       ///< growth of sigma with the radius
    double radius = 0.0;      ///< half the proxy's diagonal, in its pixels
    std::int64_t angles = 0;  ///< columns of the polar image
    std::int64_t radii = 0;   ///< rows of the polar image
    double defocusBias = 0.0; ///< share of the smear that detail takes away; 0 when off
    std::array<FieldRing, kFieldBands> rings{};
};

/// Absent when the field is sharp at this size: the largest sigma is below 0.6 pixel.
std::optional<FieldPlan> planField(Size frame, const OpticsParams& params, double swGain, double saGain);

} // namespace tamlo::Optics
