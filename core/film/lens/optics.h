// The lens: what glass does to the scene's linear light before it reaches the film. It stands behind the
// front filters and ahead of the rear ones. A lens is data (OpticsParams): an absent field leaves its effect
// off. The effects act in a fixed order: distortion, veiling glare, bloom, glow, field, lateral colour,
// vignette, softness, colour softness, cast. All lengths are fractions of the frame's long side, so that a
// lens looks the same at every resolution; the stop acts through three gains. Every stage takes an image by
// value: hand it over with std::move and a unique one is changed in place.
#pragma once

#include "core/image/plane.h"
#include "core/image/rgb_image.h"
#include "core/profiles/formats/lens_profile.h"

#include <span>

namespace tamlo::Optics {

/// What the photographer sets on the lens.
struct Controls {
    double stop = 0.0; ///< stops closed down from wide open
    double glowMult = 1.0, glowRadiusMult = 1.0;
    bool distortion = true;
};

/// What is left of the aberrations at a stop; 1 wide open.
struct StopGains {
    double vig = 1.0;   ///< vignette
    double sa = 1.0;    ///< spherical aberration: bloom, glow, softness, colour softness, coma
    double swirl = 1.0; ///< field: curvature and astigmatism
};
StopGains stopGains(double stop, const OpticsParams& params);

/// Light as the lens draws it.
/// Shape: three channels, the size is kept. Domain: scene light, linear; negatives are cut at the end.
/// inputMeans are the channel means of the whole frame as it enters the lens. A lens without effects gives
/// the frame back bit for bit, but for the cut at 0, and copies nothing.
RGBImage apply(RGBImage image, const LensProfile& lens, const Vec3f& inputMeans, const Controls& controls);

// The effects, each alone.

/// Radial distortion about the frame's centre: the light at p is taken from p (1 + k3 r² + k5 r⁴), with p and
/// r in units of half the diagonal. Bilinear, edges repeated.
RGBImage distort(RGBImage image, double k3, double k5);

/// Lateral colour: red is enlarged about the centre by 1 + ca, blue by 1 - ca. Bilinear, edges repeated.
RGBImage lateralColour(RGBImage image, double ca);

/// Veiling glare: a share of the frame's light everywhere, part of it spread from where it came.
RGBImage veil(RGBImage image, double share, const Vec3f& inputMeans);

/// Light above the threshold spread at two radii and added. saGain 0 switches it off.
RGBImage bloom(RGBImage image, const OpticsParams& params, double saGain);

/// The halo of a soft-focus lens: a wide blur mixed in, with the choice of a ring in it.
RGBImage glow(RGBImage image, const OpticsParams& params, double saGain, double mult, double radiusMult);

/// Field curvature, astigmatism and coma: blur along circles round the centre and along the radius, growing
/// outwards. Leaves the frame as it is when its largest sigma is below 0.6 pixel.
RGBImage fieldPSF(RGBImage image, const OpticsParams& params, double swGain, double saGain);

/// Light fall-off; `strength` is the share lost in the corner, r = 1 at the corner whatever the aspect.
RGBImage vignette(RGBImage image, double strength, double power);

/// Softness of the whole frame: the share `mix` of a blur of s thousandths of the long side.
RGBImage soften(RGBImage image, double s, double mix);

/// Each channel softened by its own amount.
RGBImage chromaSoft(RGBImage image, const OpticsParams& params, double saGain);

/// Bilinear sample; the coordinates are held inside the plane, which is not empty.
float sample(const Plane& plane, double x, double y);

/// Percentile p (0...100) of finite values: linear between the order statistics at p × (n - 1) / 100; 0 of
/// none.
double percentile(std::span<const float> values, double p);

} // namespace tamlo::Optics
