// Pixel passes of the resampler (resample.h): weighted sums along a row and across rows, in 64-bit floats,
// tap by tap from the first to the last, so that a sample's value depends on its taps alone.
#pragma once

#include "core/image/resample.h"

#include <cstdint>

namespace tamlo {

/// Four samples lie side by side at each position of a row: the three channels of a pixel and one sample that
/// nobody reads, or the same column of four rows of a plane.
inline constexpr std::int64_t kResampleLanes = 4;

struct ResampleRow {
    const float* row;    ///< readable for 4 samples at every position
    std::int64_t stride; ///< samples from one position to the next, 3 or 4
    float* out;          ///< outputs with the same stride; 4 samples are written at every position
};

/// Sums along a row: one output of four lanes for each entry of the table.
void resample_row(const ResampleRow& row, const ResampleCoeffs& coeffs) noexcept;

struct ResampleColumn {
    const float* const* rows; ///< the input rows of the taps
    const double* weights;
    std::int64_t taps;
    std::int64_t samples; ///< of a row
    float* out;
};

/// Sums across rows: one output row.
void resample_column(const ResampleColumn& column) noexcept;

} // namespace tamlo
