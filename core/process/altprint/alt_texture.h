// Texture of a handmade print: the fibre of the paper that takes the sensitiser unevenly, the brush or roller
// of a hand-inked print, the reticulated gelatine of a collotype. It acts on the amount of colourant, 0...1.
// Units: every structure in micrometres of print; options.printPxUm a pixel. The strength follows the print
// and not the pixel: a pixel too coarse for a structure shows as much of it as its own area averages.
#pragma once

#include "core/image/plane.h"
#include "core/profiles/formats/paper_profile.h"
#include "core/profiles/options/render_options.h"

#include <cstdint>

namespace tamlo::AltPrint {

/// The amount with the paper's texture on it, clamped to 0...1; unchanged without one and at print_texture 0.
/// Fields take the low 32 bits of the seed.
Plane applyTexture(Plane amount, const PaperProfile& paper, const RenderOptions& options, std::uint64_t seed);

} // namespace tamlo::AltPrint
