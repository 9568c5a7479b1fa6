// The printing structure of a reproduction as a measure: the screen of an offset press, the drop of an
// inkjet, the mask of a tube, in micrometres of the print and in pixels of a render. A structure finer than
// the pixels can carry is not faked: the plan here enlarges the picture until it resolves, or leaves it
// undrawn, so that only its colour stays. The output plan and the stages ask the same functions.
#pragma once

#include "core/image/plane.h"
#include "core/profiles/formats/paper_profile.h"
#include "core/profiles/options/render_options.h"

#include <cstdint>
#include <optional>
#include <string>

namespace tamlo::ReproPrint {

/// Least pixels of a screen's cell and of a drop that are drawn.
inline constexpr double rasterMinCellPx = 3.0;
inline constexpr double rasterMinDropPx = 1.0;
/// Pixels that a plan wants for a cell, a scan line and a drop.
inline constexpr double structureTargetPx = 6.0;
inline constexpr double structureTargetLinePx = 4.0;
inline constexpr double inkjetTargetPx = 2.0;
/// Most that a picture is enlarged, the longest side that it is enlarged to, and the most that a structure is
/// computed above the picture.
inline constexpr double growMax = 2.0;
inline constexpr std::int64_t growLongMax = 16'000;
inline constexpr int ssMax = 3;

struct Raster {
    double cellPx = 0.0;
    bool resolved = false; ///< the structure can be drawn in this render
    OptNumber lpi;         ///< of a screen
    OptNumber dropUm;      ///< of an inkjet
    std::string kind;      ///< "offset", "inkjet" or "crt"
    double sizeUm = 0.0;
};

/// The structure in a render; nothing for a paper that is no reproduction.
/// Units: pxUm micrometres of print a pixel.
std::optional<Raster> raster(const PaperProfile& paper, double pxUm, const RenderOptions& options);

struct RasterPlan {
    double grow = 1.0;       ///< how much the picture is enlarged; exactly 1 where it stays
    int ss = 1;              ///< factor by which the structure is computed above the enlarged picture
    double cell0 = 0.0;      ///< cell before the enlargement, pixels
    double cell = 0.0;       ///< after it
    std::int64_t longPx = 0; ///< long side after it
    double target = 0.0;     ///< pixels that the cell should have
};

/// How far a picture of that size is enlarged and how finely its structure is computed.
/// Units: pxUm micrometres of print a pixel before the enlargement.
RasterPlan planRaster(const PaperProfile& paper, const RenderOptions& options, double pxUm, Size size);

/// A size enlarged by a plan's factor: each side rounded, halves away from zero, at least 1.
Size grownSize(Size size, double grow);

} // namespace tamlo::ReproPrint
