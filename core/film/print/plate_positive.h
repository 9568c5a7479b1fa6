// The plate view: a wet plate exposed for a positive, and looked at. The silver chain makes its density;
// where the plate is clear is measured, since grain keeps the clear plate off its dmin and the view must
// begin at what the plate reaches. Domain: light at the emulsion in, display-linear positive out.
#pragma once

#include "core/image/rgb_image.h"
#include "core/profiles/formats/developed_film.h"
#include "core/profiles/formats/paper_profile.h"
#include "core/profiles/options/render_options.h"

#include <cstdint>

namespace tamlo::Film {

/// Longest side in pixels of the black frame that plateFloor renders.
inline constexpr std::int64_t kPlateFloorPx = 256;

/// The options of that frame: no pour, no halation, grain at its size; longIn and side in pixels.
RenderOptions plateFloorOptions(RenderOptions options, std::int64_t longIn, std::int64_t side);

/// Mean density of a black frame through the same negative; dmin where there is no grain.
/// Units: pxUm micrometres of plate a pixel; longIn the picture's long side in pixels.
double plateFloor(const DevelopedFilm& film, const RenderOptions& options, double pxUm, double dmin,
                  std::int64_t longIn);

/// Errors: those of bwNegativeDb.
RGBImage renderPlateView(RGBImage light, const DevelopedFilm& film, const PaperProfile& paper,
                         RenderOptions options, double pxUm);

} // namespace tamlo::Film
