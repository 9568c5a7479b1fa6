// Gum bichromate in several coats, as it is done by hand: one negative, each coat exposed on its own curve,
// laid down a little out of register, with a fibre and a brushed edge of its own. The pigments filter each
// other on the paper. It stands where a silver paper stands, for a paper of several layers.
// Domain: a negative in; display-linear positive out, larger than the picture by a brushed coat.
#pragma once

#include "core/process/altprint/render_alt.h"

#include <array>
#include <optional>
#include <utility>
#include <vector>

namespace tamlo {

namespace AltPrint {

/// Solution of a 3 × 3 system, rows augmented by their right-hand sides; absent where a pivot is below 1e-12.
std::optional<Vec3d> solve3x3(std::array<std::array<double, 4>, 3> rows);

/// Strength of each coat. Three colour layers are balanced so that their full coats add up to a neutral of
/// the paper's dmax; a singular set of pigments is taken as it stands.
std::vector<double> layerGains(const PaperProfile& paper);

/// Register of each coat, (dy, dx) in millimetres of print, from the frame's `print` stream. A coat laid in
/// register draws nothing, so that those behind it keep their draws.
std::vector<std::pair<double, double>> layerShiftsMm(const PaperProfile& paper, const RenderOptions& options);

/// A shift in whole pixels of the print, (dy, dx).
std::pair<std::int64_t, std::int64_t> layerShiftPx(std::pair<double, double> shiftMm, double pxUm);

/// The plane moved by (dy, dx), its edge repeated.
Plane shiftEdge(const Plane& plane, std::pair<std::int64_t, std::int64_t> shift);

} // namespace AltPrint

namespace Film {

/// Prints a negative in the paper's layers; empty for a paper without any.
RGBImage renderAltLayers(const AltPrint::Negative& negative, const AltPrint::Job& job);

/// Light at the emulsion to the finished print. Units: pxUm micrometres of film a pixel.
RGBImage renderGum(RGBImage light, const DevelopedFilm& film, const AltPrint::Job& job, double pxUm);

} // namespace Film

} // namespace tamlo
