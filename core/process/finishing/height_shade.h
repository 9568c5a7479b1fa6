// Marks pressed into a sheet have no colour of their own: each is a height field, and the sheet's own light
// is shaded by its slope and curvature, with the light from the upper left. Here is the plan of that shading,
// and the shading itself for whatever gives heights row by row. Domain: display-linear, in place.
#pragma once

#include "core/image/bands.h"
#include "core/image/rgb_image.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace tamlo::Finishing {

/// Largest slope and curvature of a mark's cross-section: what makes a depth mean the same at every width.
struct ReferenceNorms {
    double grad = 0.0;
    double lap = 0.0;
};
/// Measured on parallel grooves of half-width `feature` at the offsets, all in pixels.
ReferenceNorms referenceNorms(std::span<const double> offsets, double feature);

/// What slope and curvature do to the light.
struct ShadeParams {
    float dir = 0.0f;
    float amb = 0.0f;
};
/// depth: how far the brightest and the darkest point of a mark stray from 1. Absent for a mark too flat to
/// see.
std::optional<ShadeParams> planShade(double depth, double feature, std::span<const double> offsets);

/// A rectangle of a sheet, end-exclusive.
struct SheetRect {
    std::int64_t x0 = 0, y0 = 0, x1 = 0, y1 = 0;
    bool isEmpty() const { return x1 <= x0 || y1 <= y0; }
};

/// Three rows of heights round the row that is shaded.
struct HeightRows {
    const float *above, *middle, *below; ///< the same row twice at the sheet's first and last row
    std::int64_t firstX;                 ///< the sheet's column of their first sample
    std::int64_t sheetWidth;
    bool onRim; ///< the sheet's first or last row
};
/// Shades columns x0 ... x1 - 1 of a row. The rim of the sheet has no curvature and one-sided slopes.
void shade_row(float* row, std::int64_t x0, std::int64_t x1, const HeightRows& rows,
               const ShadeParams& params);

/// Shades the rectangle by heights that are 0 outside it. heightRow(y, x0, x1, out) gives the heights of a
/// row of the sheet at x0 ... x1 - 1; it must be a function of its arguments alone.
template <typename HeightRow>
void height_shade(RGBImage& image, const SheetRect& rect, const ShadeParams& params,
                  const HeightRow& heightRow)
{
    if (rect.isEmpty()) return;
    float* data = image.mutableData();
    const std::int64_t x0 = std::max<std::int64_t>(rect.x0 - 1, 0), x1 = std::min(rect.x1 + 1, image.width);
    const std::int64_t n = x1 - x0, last = image.height - 1;
    parallelBands(rect.y1 - rect.y0, n * 16, [&](std::int64_t start, std::int64_t end) {
        std::vector<float> ring(static_cast<std::size_t>(n) * 3);
        const auto slot = [&](std::int64_t y) { return ring.data() + (y % 3) * n; };
        const auto make = [&](std::int64_t y) {
            if (y >= 0 && y <= last) heightRow(y, x0, x1, slot(y));
        };
        make(rect.y0 + start - 1);
        make(rect.y0 + start);
        for (std::int64_t y = rect.y0 + start; y < rect.y0 + end; ++y) {
            make(y + 1);
            const HeightRows rows{slot(std::max<std::int64_t>(y - 1, 0)),
                                  slot(y),
                                  slot(std::min(y + 1, last)),
                                  x0,
                                  image.width,
                                  y == 0 || y == last};
            shade_row(data + y * image.width * 3, rect.x0, rect.x1, rows, params);
        }
    });
}

} // namespace tamlo::Finishing
