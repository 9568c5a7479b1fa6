// Adjacency: at an edge, fresh developer drifts over from the thin side and spent developer from the dense
// side, so that both sides draw apart. It acts on absolute density, after the curve, uneven development and
// the couplers, and ahead of the grain. The developer's effect runs first, the film's own on its result.
#pragma once

#include "core/image/plane.h"
#include "core/image/rgb_image.h"
#include "core/profiles/formats/developed_film.h"

namespace tamlo::Film {

/// D' = D + k × sat × tanh((D - blur(D)) / sat), which nears k × sat at a hard edge; plain unsharp masking,
/// D + k × (D - blur(D)), where sat is 5 or more. Each channel by itself, edges repeated.
/// Units: reach in micrometres, raised to 0.8 pixel; pxUm micrometres of film per pixel; k a number, sat in
/// density. A k of 0.0001 or less and a sat of 0 or less skip a pass, a reach below one pixel the film's own.
/// Absent numbers of a film: 150 µm, sat 0.6.
RGBImage applyAdjacency(RGBImage density, const DevelopedFilm& film, double pxUm);
Plane applyAdjacency(Plane density, const DevelopedFilm& film, double pxUm);

} // namespace tamlo::Film
