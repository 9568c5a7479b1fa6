// Rows of an inkjet: coverages become drops by the thresholds of the table, the drops get their soft edge,
// and the inks are laid over the paper. In vector code with run-time dispatch.
#pragma once

#include "core/process/press/separation.h"

#include <cstdint>
#include <span>

namespace tamlo {

/// Ink along a row of one colour.
struct DropRow {
    const float* coverage = nullptr;
    const float* band = nullptr; ///< factor of each pixel; null for `rowBand`
    float rowBand = 1.0f;
    ReproPrint::GainCurve curve;
    const float* thresholds = nullptr;     ///< the table's row; null for ink without drops
    const std::int32_t* columns = nullptr; ///< of the table, for each pixel
};

/// The dot gain acts on the banded coverage, and a drop falls where it reaches the threshold.
void repro_ink_fm(float* to, std::int64_t count, const DropRow& row) noexcept;

/// Gaussian along a row that is readable w.size() - 1 samples beyond both ends; w is the half kernel.
void soften_row(float* to, const float* from, std::int64_t count, std::span<const float> w) noexcept;
/// The same across rows, rows[radius] being the centre.
void soften_column(float* to, const float* const* rows, std::int64_t count,
                   std::span<const float> w) noexcept;

/// One ink over `count` interleaved pixels: each channel × (1 - a × stop).
void lay_ink(float* pixels, const float* ink, std::int64_t count, const Vec3f& stop) noexcept;

} // namespace tamlo
