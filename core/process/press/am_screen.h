// The amplitude-modulated screen: a coverage becomes a dot whose area in its cell is that coverage. The two
// cosines of a cell make a hill from its centre; the table below tells for every height how much of the cell
// lies under it, so that the threshold is uniform and a share a inks the share a.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

namespace tamlo::ReproPrint {

/// Entries of amCDF: heights from -2 to 2 in steps of 4 / 4096.
inline constexpr std::int64_t kScreenEntries = 4097;
inline constexpr float kScreenLastIndex = 4095.999f;
inline constexpr float kScreenPerHeight = 1024.0f;

/// Distribution of cos(2π (i + 0.5) / 1024) + cos(2π (j + 0.5) / 1024) over all i and j: entry n is the share
/// of pairs with a sum of at most -2 + n × 4 / 4096.
const std::vector<float>& amCDF();

/// Width of the soft edge of a dot in shares of the cell, for cells of that many pixels: about the change of
/// the threshold over 0.6 pixels.
inline float screenEdge(double cellPx)
{
    return cellPx > 1e-9 ? static_cast<float>(std::max(0.6 / cellPx, 0.0001)) : 6e8f;
}

/// The ink at a point of the screen where the two cosines add to w. The edge narrows towards both ends, so
/// that paper without ink stays bare and a solid is full.
inline float screenInk(float a, float w, float edge, const std::vector<float>& cdf)
{
    if (a <= 0.0f) return 0.0f;
    const float at = std::clamp((w + 2.0f) * kScreenPerHeight, 0.0f, kScreenLastIndex);
    const auto n = static_cast<std::size_t>(at);
    const float under = cdf[n] + (at - static_cast<float>(n)) * (cdf[n + 1] - cdf[n]);
    const float soft = std::max(std::min({edge, 2.0f * a, 2.0f * (1.0f - a)}), 0.0001f);
    return std::clamp((a - (1.0f - under)) / soft + 0.5f, 0.0f, 1.0f);
}

} // namespace tamlo::ReproPrint
