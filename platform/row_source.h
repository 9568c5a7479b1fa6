// Pixels as the PNG and TIFF writers take them: pulled in row bands, so that a large picture is never
// held a second time as a whole.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>

namespace tamlo::platform {

/// Fills `to` with the rows start ... start + rows - 1, top-down, no padding between rows.
template <typename Sample>
using RowSource = std::function<void(std::int64_t start, std::int64_t rows, std::span<Sample> to)>;

/// What a picture file says of its pixels.
struct PictureLayout {
    std::int64_t width = 0;
    std::int64_t height = 0;
    /// 3 for R G B, 4 for R G B and straight alpha.
    int channels = 3;
    /// ICC profile of the samples; empty for none.
    std::span<const std::uint8_t> icc;
    /// Pixels an inch of the printed picture; absent for none told.
    std::optional<double> pixelsPerInch = {};
};

} // namespace tamlo::platform
