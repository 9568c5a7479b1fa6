// Light on the relief of a card, relative to a flat one: the scalar form that its passes share.
#pragma once

#include "core/process/mat/sheet_light.h"

#include <algorithm>

namespace tamlo::CardRelief {

inline constexpr double ambient = 0.55, diffuse = 0.45; // taste
/// Value of a flat surface.
inline constexpr double flat = light[2] * diffuse + ambient;

/// Of a unit normal; 1 on a flat card.
inline double shade(double nx, double ny, double nz)
{
    return (ambient + diffuse * std::max(nx * light[0] + ny * light[1] + nz * light[2], 0.0)) / flat;
}

/// The lattice: distance of the ridges of a family and their width, millimetres.
inline constexpr double embossPitchMm = 1.2, embossRidgeMm = 0.8;
/// Rounding of the rim at the ends and at the sides of the card, millimetres.
inline constexpr double edgeRoundEndsMm = 0.3, edgeRoundSidesMm = 0.15;
/// No band is drawn narrower; it fades instead.
inline constexpr double minBandPx = 0.7;

} // namespace tamlo::CardRelief
