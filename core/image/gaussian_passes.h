// Pixel passes of the separable Gaussian (gaussian.h): a fold down a block of columns and a fold along a row.
// Both work on 32-bit samples through scratch lines of 64-bit floats. Interleaved channels are folded
// together: a neighbour along the row lies `channels` samples away.
#pragma once

#include "core/image/gaussian.h"

#include <cstdint>
#include <span>

namespace tamlo {

/// Samples that the passes write and read in one piece: rows of scratch are padded to a multiple of it.
inline constexpr std::int64_t kGaussBlock = 32;

/// Half of a symmetric kernel: w[0] at the centre, w[radius] at both ends.
struct GaussHalfKernel {
    std::span<const double> w;
    std::int64_t radius() const noexcept { return static_cast<std::int64_t>(w.size()) - 1; }
};

constexpr std::int64_t gaussPadded(std::int64_t n)
{
    return (n + kGaussBlock - 1) / kGaussBlock * kGaussBlock;
}

/// Index of the sample that stands at i under the edge rule; -1 where the edge reads 0.
std::int64_t edgeIndex(std::int64_t i, std::int64_t n, EdgeMode mode);

/// Doubles of scratch that gauss_columns needs for blocks of up to outRows rows.
std::size_t gaussStripDoubles(std::int64_t outRows, std::int64_t radius);

struct GaussColumns {
    const float* const* rows; ///< outRows + 2 × radius source rows, top to bottom
    std::int64_t outRows;
    std::int64_t width;     ///< samples of a row
    float* out;             ///< outRows rows, outStride apart
    std::int64_t outStride; ///< at least gaussPadded(width)
    double* strip;          ///< gaussStripDoubles
};

/// Folds the kernel down the columns.
void gauss_columns(const GaussColumns& block, GaussHalfKernel kernel) noexcept;

struct GaussRow {
    const float* row;      ///< readable up to gaussPadded(width × channels)
    std::int64_t width;    ///< pixels
    std::int64_t channels; ///< samples a pixel
    float* out;            ///< exactly width × channels samples are written
    double* line;          ///< gaussPadded(width × channels) + 2 × radius × channels doubles
};

/// Folds the kernel along one row, with the edge rule at both ends.
void gauss_row(const GaussRow& row, GaussHalfKernel kernel, EdgeMode mode) noexcept;

/// The same of a row that begins a radius ahead of its first pixel and ends as far behind its last.
void gauss_row_inside(const GaussRow& row, GaussHalfKernel kernel) noexcept;

} // namespace tamlo
