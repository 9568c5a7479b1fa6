// One row of an offset print: the coverages of its inks become dots under their screens, the inks are laid
// over the paper one after another, each letting 1 - a (1 - rel) through, and the drawn pixels are averaged
// into printed ones. In vector code with run-time dispatch.
#pragma once

#include "core/image/rgb_image.h"

#include <array>
#include <cstdint>
#include <span>

namespace tamlo {

/// Most drawn pixels a side of a printed one that the screens are drawn at.
inline constexpr int kScreenSide = 2;

/// Samples that are readable on either side of the rows below, beyond what their shifts reach.
inline constexpr std::int64_t kPressPad = 64;

/// Cosine and sine of the two phases u and v of a screen.
struct ScreenTerms {
    float cosU = 1.0f, sinU = 0.0f, cosV = 1.0f, sinV = 0.0f;
};

/// One ink of a printed row; by drawn rows and columns of it.
struct ScreenInk {
    std::array<const float*, kScreenSide> coverage{}; ///< at each drawn row
    std::array<std::int64_t, kScreenSide> shift{}; ///< printed pixel that a drawn column reads, less its own
    std::array<std::int64_t, kScreenSide> neighbour{}; ///< -1 or 1: the pixel that it takes a quarter from
    std::array<ScreenTerms, kScreenSide> row{};
    /// cosU, sinU, cosV, sinV of each printed pixel, at each drawn column.
    std::array<std::array<const float*, 4>, kScreenSide> columns{};
    Vec3f stop{}; ///< 1 - rel
};

struct ScreenRow {
    std::span<const ScreenInk> inks;
    Vec3f base{};
    const float* cdf = nullptr; ///< amCDF; null for inks that lie continuous
    float edge = 0.0f;
    int side = 1; ///< drawn pixels a side of a printed one
};

/// Writes `width` interleaved pixels.
void repro_ink_am(float* to, std::int64_t width, const ScreenRow& row) noexcept;

/// to = a × wa + b × wb.
void blend_rows(float* to, const float* a, float wa, const float* b, float wb, std::int64_t count) noexcept;

} // namespace tamlo
