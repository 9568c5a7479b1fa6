// Halation: light that passes the emulsion, comes back from the film base and glows round the highlights. It
// stands after the emulsion's softness and ahead of the curve, on scene light, linear. Only light above a
// threshold feeds it, and it only adds: light above 1 is left to the shoulder of the curve.
#pragma once

#include "core/image/plane.h"
#include "core/image/rgb_image.h"
#include "core/profiles/formats/film_profile.h"

#include <optional>

namespace tamlo::Film {

/// E_c += strength × mult × tint_c × blur(max(source - threshold, 0)), edges repeated. `source` is the
/// luminance of the image.
/// Shape: planes of one size, changed in place. Units: pxUm micrometres of film per pixel; the profile's
/// radius is a sigma in micrometres, raised to one pixel; mult is the option halationMult.
/// Absent numbers of a profile: strength 0, radius 200 µm, threshold 0.8, tint 1, 0.3, 0.08. Nothing happens
/// when strength × mult is 1e-5 or less.
RGBImage applyHalation(RGBImage image, const Plane& source, const std::optional<HalationParams>& params,
                       double pxUm, double mult);

/// The same with the image's own luminance, which is never held as a plane.
RGBImage applyHalation(RGBImage image, const std::optional<HalationParams>& params, double pxUm, double mult);

/// On a single layer the light is its own source, and the tint has no effect.
Plane applyHalation(Plane image, const std::optional<HalationParams>& params, double pxUm, double mult);

} // namespace tamlo::Film
