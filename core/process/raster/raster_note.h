// What the printing structure of a reproduction comes to, in a sentence for the user: its ruling or drop, how
// far the picture grows for it, and whether its dots will show.
#pragma once

#include "core/process/raster/raster.h"

#include <optional>
#include <string>

namespace tamlo::ReproPrint {

/// The sentence for a press or a tube; nothing for other papers. Units: pxUm micrometres of print a pixel of
/// a picture of that size, before it grows.
std::optional<std::string> rasterNote(const PaperProfile& paper, const RenderOptions& options, double pxUm,
                                      Size size);

} // namespace tamlo::ReproPrint
