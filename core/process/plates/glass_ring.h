// The ring round a light on glass: what passes the emulsion is reflected at the back of the plate, beyond the
// critical angle all of it, and comes back as a circle with a sharp inner edge, 2 t tan(asin(1/n)) from its
// source. A term of halation, in scene light, linear.
// Units: tMm thickness of the glass in millimetres, pxUm micrometres of the plate a pixel.
#pragma once

#include "core/image/plane.h"
#include "core/image/resample_bands.h"

#include <optional>
#include <vector>

namespace tamlo::Glass {

/// Refractive index of plate glass.
inline constexpr double kIndex = 1.52;
/// Light is followed as far as this many thicknesses from its source.
inline constexpr double kRingMaxT = 8.0;

/// Reflectance of unpolarised light inside the glass, at an angle from the normal. Source: Fresnel.
double fresnel(double theta, double n);

/// Share of a point's light that has come back within a radius, at even angles from 0 to atan 4.
struct RingCumulative {
    std::vector<double> radiusMm, share;
};
RingCumulative ringCumulative(double tMm, double n, int samples);

/// Slope of y over x at each sample, second order inside on uneven steps, one-sided at the ends.
std::vector<double> gradient(const std::vector<double>& y, const std::vector<double>& x);

/// Light of a unit pixel over its surroundings, a square of odd side.
Plane ringKernel(double tMm, double pxUm, double n);

/// The ring of a picture's light. It stands reduced by as many pixels as make a sixteenth of the glass.
class Halo {
public:
    /// `light` gives the rows of the light that feeds it. Absent where the glass has no thickness, or one too
    /// small to be seen.
    static std::optional<Halo> of(Size size, double pxUm, double tMm, const SourceRow& light);

    /// Writes row y: as many samples as the picture is wide.
    void row(std::int64_t y, float* to) const;

private:
    Size size_;
    Plane reduced_;
    std::int64_t block_ = 1;
    std::vector<std::int32_t> first_; ///< block to the left of each column, and the share of the next
    std::vector<float> fraction_;
};

} // namespace tamlo::Glass
