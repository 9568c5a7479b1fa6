// The scan lines: the picture sampled into the lines that the beam draws, and how much of which lines each
// row of pixels gets. A line is a Gaussian spot as bright as the rows that it stands for together; the first
// and the last line go on beyond the frame, which lies inside the screen.
#pragma once

#include "core/image/plane.h"

#include <cstdint>
#include <vector>

namespace tamlo::CRTScreen {

/// Lines first ... first + weights.size() - 1 that make a row.
struct LineMix {
    std::int64_t first = 0;
    std::vector<float> weights;
};

/// Lines in a picture of that height, at least 1.
std::int64_t lineCount(std::int64_t height, double linePx);

/// Weights of `lines` drawn lines on row y of a picture. Units: linePx pixels a line; spot the sigma of the
/// beam in lines, drawn at 0.3 pixels at least.
class DrawnLines {
public:
    DrawnLines(std::int64_t lines, double linePx, double spot);
    LineMix row(std::int64_t y) const;

private:
    std::int64_t lines_;
    double linePx_;
    std::vector<double> kernel_; ///< half, from the centre on
};

/// The row at a place between rows, by Catmull-Rom on the rows of `mix(y)` with the edge repeated.
template <typename Mix>
LineMix between(const Mix& mix, double y, std::int64_t height);

} // namespace tamlo::CRTScreen

#include "core/image/catmull_rom.h"

#include <algorithm>
#include <cmath>

namespace tamlo::CRTScreen {

template <typename Mix>
LineMix between(const Mix& mix, double y, std::int64_t height)
{
    const double held = std::clamp(y, -4.0, static_cast<double>(height) + 3.0);
    const double below = std::floor(held);
    const auto taps = catmullRom(static_cast<float>(held - below));
    std::vector<LineMix> rows;
    for (std::int64_t j = -1; j <= 2; ++j)
        rows.push_back(mix(std::clamp<std::int64_t>(static_cast<std::int64_t>(below) + j, 0, height - 1)));
    LineMix out;
    std::int64_t end = 0;
    out.first = rows[0].first;
    for (const LineMix& row : rows) {
        out.first = std::min(out.first, row.first);
        end = std::max(end, row.first + static_cast<std::int64_t>(row.weights.size()));
    }
    out.weights.resize(static_cast<std::size_t>(end - out.first));
    for (std::size_t j = 0; j < rows.size(); ++j)
        for (std::size_t k = 0; k < rows[j].weights.size(); ++k)
            out.weights[k + static_cast<std::size_t>(rows[j].first - out.first)] +=
                taps[j] * rows[j].weights[k];
    return out;
}

} // namespace tamlo::CRTScreen
