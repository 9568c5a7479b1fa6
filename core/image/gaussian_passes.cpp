#include "core/image/gaussian_passes.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "core/image/gaussian_passes.cpp"
#include <hwy/foreach_target.h>

#include "core/image/vector_fold-inl.h"

#include <hwy/highway.h>

#include <algorithm>
#include <cstring>

#ifndef TAMLO_GAUSSIAN_PASSES_ONCE
#define TAMLO_GAUSSIAN_PASSES_ONCE
namespace tamlo {

inline constexpr std::int64_t kStripDoubles = 3584; // 28 KiB, within the first-level cache

// Columns of a strip, so that its rows in 64-bit floats stay in the cache.
inline std::int64_t gaussStripColumns(std::int64_t rows)
{
    return std::clamp(kStripDoubles / rows / kGaussBlock * kGaussBlock, kGaussBlock, 8 * kGaussBlock);
}

} // namespace tamlo
#endif

HWY_BEFORE_NAMESPACE();
namespace tamlo::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

using D = hn::CappedTag<double, 8>;
using DF = hn::Rebind<float, D>;
using V = hn::Vec<D>;

HWY_INLINE void widen(const float* from, double* to, std::int64_t n)
{
    const D d;
    const DF df;
    const std::int64_t lanes = static_cast<std::int64_t>(hn::Lanes(d));
    std::int64_t i = 0;
    for (; i + lanes <= n; i += lanes) hn::StoreU(hn::PromoteTo(d, hn::LoadU(df, from + i)), d, to + i);
    for (; i < n; ++i) to[i] = from[i]; // exact, so the same bits as the vector form
}

/// out[0...4 vectors): the kernel folded over samples `step` apart, centred on `centre`, in SciPy's order.
HWY_INLINE void foldBlock(const double* centre, std::int64_t step, const double* w, std::int64_t radius,
                          float* out)
{
    const DF df;
    foldFour(
        D(), w, static_cast<std::size_t>(radius),
        [=](std::size_t j) HWY_ATTR { return centre - static_cast<std::int64_t>(j) * step; },
        [=](std::size_t j) HWY_ATTR { return centre + static_cast<std::int64_t>(j) * step; },
        [=](std::size_t k, V sum)
            HWY_ATTR { hn::StoreU(hn::DemoteTo(df, sum), df, out + k * hn::Lanes(df)); });
}

void gaussColumns(const GaussColumns& block, GaussHalfKernel kernel)
{
    const std::int64_t step = 4 * static_cast<std::int64_t>(hn::Lanes(D()));
    const std::int64_t radius = kernel.radius();
    const std::int64_t rows = block.outRows + 2 * radius;
    const std::int64_t columns = gaussStripColumns(rows);
    for (std::int64_t x0 = 0; x0 < block.width; x0 += columns) {
        const std::int64_t n = std::min(columns, block.width - x0);
        const std::int64_t padded = gaussPadded(n);
        for (std::int64_t i = 0; i < rows; ++i) {
            double* to = block.strip + i * columns;
            widen(block.rows[i] + x0, to, n);
            std::fill(to + n, to + padded, 0.0);
        }
        for (std::int64_t y = 0; y < block.outRows; ++y) {
            const double* centre = block.strip + (y + radius) * columns;
            float* out = block.out + y * block.outStride + x0;
            for (std::int64_t x = 0; x < padded; x += step)
                foldBlock(centre + x, columns, kernel.w.data(), radius, out + x);
        }
    }
}

/// The outputs of a row whose line is filled.
HWY_INLINE void foldLine(const GaussRow& r, GaussHalfKernel kernel)
{
    const std::int64_t step = 4 * static_cast<std::int64_t>(hn::Lanes(D()));
    const std::int64_t radius = kernel.radius(), n = r.width * r.channels;
    const double* centre = r.line + radius * r.channels;
    std::int64_t x = 0;
    for (; x + step <= n; x += step) foldBlock(centre + x, r.channels, kernel.w.data(), radius, r.out + x);
    if (x == n) return;
    float tail[kGaussBlock];
    foldBlock(centre + x, r.channels, kernel.w.data(), radius, tail);
    std::copy_n(tail, n - x, r.out + x);
}

void gaussRow(const GaussRow& r, GaussHalfKernel kernel, EdgeMode mode)
{
    const std::int64_t radius = kernel.radius();
    const std::int64_t n = r.width * r.channels;
    double* centre = r.line + radius * r.channels;
    widen(r.row, centre, n);
    for (std::int64_t i = 1; i <= radius; ++i) {
        const std::int64_t left = edgeIndex(-i, r.width, mode);
        const std::int64_t right = edgeIndex(r.width - 1 + i, r.width, mode);
        for (std::int64_t c = 0; c < r.channels; ++c) {
            centre[-i * r.channels + c] = left < 0 ? 0.0 : r.row[left * r.channels + c];
            centre[n + (i - 1) * r.channels + c] = right < 0 ? 0.0 : r.row[right * r.channels + c];
        }
    }
    std::fill(centre + n + radius * r.channels, centre + gaussPadded(n) + radius * r.channels, 0.0);
    foldLine(r, kernel);
}

void gaussRowInside(const GaussRow& r, GaussHalfKernel kernel)
{
    const std::int64_t n = r.width * r.channels, reach = kernel.radius() * r.channels;
    widen(r.row, r.line, n + 2 * reach);
    std::fill(r.line + n + 2 * reach, r.line + gaussPadded(n) + 2 * reach, 0.0);
    foldLine(r, kernel);
}

} // namespace tamlo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tamlo {

HWY_EXPORT(gaussColumns);
HWY_EXPORT(gaussRow);
HWY_EXPORT(gaussRowInside);

std::int64_t edgeIndex(std::int64_t i, std::int64_t n, EdgeMode mode)
{
    if (i >= 0 && i < n) return i;
    switch (mode) {
    case EdgeMode::nearest:
        return i < 0 ? 0 : n - 1;
    case EdgeMode::wrap:
        return (i % n + n) % n;
    case EdgeMode::reflect:
        return reflectIndex(i, n);
    case EdgeMode::constant:
        break;
    }
    return -1;
}

std::size_t gaussStripDoubles(std::int64_t outRows, std::int64_t radius)
{
    // A shorter block has wider strips, so its need may be the larger.
    return static_cast<std::size_t>(std::max(kStripDoubles, (outRows + 2 * radius) * kGaussBlock));
}

void gauss_columns(const GaussColumns& block, GaussHalfKernel kernel) noexcept
{
    HWY_DYNAMIC_DISPATCH(gaussColumns)(block, kernel);
}

void gauss_row(const GaussRow& row, GaussHalfKernel kernel, EdgeMode mode) noexcept
{
    HWY_DYNAMIC_DISPATCH(gaussRow)(row, kernel, mode);
}

void gauss_row_inside(const GaussRow& row, GaussHalfKernel kernel) noexcept
{
    HWY_DYNAMIC_DISPATCH(gaussRowInside)(row, kernel);
}

} // namespace tamlo
#endif
