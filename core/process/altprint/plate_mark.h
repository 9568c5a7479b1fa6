// The edge of a printing plate pressed into the sheet: a shadow on the inner side of the line and a light on
// the outer, on the finished sheet with its border.
// Units: marginPx and the result in pixels from the edge of the sheet, pxUm micrometres of print a pixel.
#pragma once

#include "core/image/rgb_image.h"
#include "core/profiles/formats/paper_profile.h"
#include "core/profiles/options/render_options.h"

#include <optional>

namespace tamlo::AltPrint {

/// Share of the margin that the line lies outside the picture, and the least it does, millimetres.
inline constexpr double plateMarginFrac = 0.35;
inline constexpr double plateMinMm = 1.2;

/// A paper of a handmade process can take a plate mark.
bool plateAvailable(const PaperProfile& paper);
/// The option `plate_mark` goes before the profile.
bool plateEnabled(const PaperProfile& paper, const RenderOptions& options);

/// Where the line lies in a margin; absent where none fits or none is wanted.
std::optional<double> plateEdgePx(const PaperProfile& paper, const RenderOptions& options, double marginPx,
                                  double pxUm);

/// Presses the line at options.plateInsetPx. Does nothing where that is below a pixel or almost at the middle
/// of the sheet. Domain: display-linear positive, clamped to 0...1.
RGBImage embossPlate(RGBImage sheet, const PaperProfile& paper, const RenderOptions& options);

} // namespace tamlo::AltPrint
