// Softness of the emulsion: light scatters in the coating before it is recorded. It acts first in every
// negative, on scene light, linear, ahead of halation and the curve. Its reach comes from the film's MTF in
// cycles per millimetre, so that it does not depend on the resolution of the source.
#pragma once

#include "core/image/plane.h"
#include "core/image/rgb_image.h"
#include "core/profiles/formats/film_profile.h"

namespace tamlo::Film {

/// Sigma in micrometres of the Gaussian spot whose MTF falls to one half at f50CycMm.
/// Source: MTF(f) = exp(-2 π² s² f²), the Fourier transform of a Gaussian.
double softenSigmaUm(double f50CycMm);

/// Units: pxUm micrometres of film per pixel. The image comes back unchanged without an MTF, and where the
/// spot's sigma is below 0.18 pixel. Edges are repeated.
RGBImage emulsionSoften(RGBImage image, const FilmProfile& film, double pxUm);
Plane emulsionSoften(Plane image, const FilmProfile& film, double pxUm);

} // namespace tamlo::Film
