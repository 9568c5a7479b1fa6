// A film's data sheet: one page with its characteristic curves, its modulation transfer, the print's tones
// and the figures, as SVG.
#pragma once

#include "core/sensitometry/sensitometry.h"

#include <string>
#include <utility>
#include <vector>

namespace tamlo::cli {

/// Name of a layer, in the user's language.
std::string layerTitle(const Sensitometry::Layer& layer);

/// Name and value of each figure beside the curves, with units.
std::vector<std::pair<std::string, std::string>> dataSheetFigures(const Sensitometry::Report& report);

/// A page of A4's proportions. paper: name of the paper that the print is on; empty without one.
std::string dataSheet(const std::string& film, const std::string& paper, const Sensitometry::Report& report);

} // namespace tamlo::cli
