// Passes of a table: its grid, its linen, the shadow of what lies on it, and the canvas of both.
#pragma once

#include "core/image/rgb_image.h"
#include "core/process/mat/linen.h"
#include "core/process/mat/table_shadow.h"
#include "core/process/mat/table_surface.h"

#include <cstdint>
#include <span>

namespace tamlo::Table {

/// A field and what brings it to its deviation.
struct ScaledField {
    const Plane& field;
    float scale;
};
/// grid = 1 + grid × scale + the slow field read at the grid's nodes.
void add_zoomed(Plane& grid, float scale, const ScaledField& slow, std::span<const AxisTap> across,
                std::span<const AxisTap> down);

/// Two rows of a grid and how far a row between them lies from the first.
struct GridRows {
    const float* upper;
    const float* lower;
    float fraction;
    float* between; ///< scratch for one row of the grid
};
/// out[0...x1 - x0) = the grid at x0 ... x1 - 1.
void zoomed_row(const GridRows& rows, std::span<const AxisTap> across, std::int64_t x0, std::int64_t x1,
                float* out);

/// out[0...x1 - x0) = weave × slubs × nap at row y.
void linen_row(const Linen& linen, const float* nap, std::size_t y, std::int64_t x0, std::int64_t x1,
               float* out);

/// The plane moved; 0 comes in from beyond its edges.
Plane shifted(const Plane& plane, const ShiftPlan& shift);

/// cast = both shadows together, from the coverage under each blur.
void combine_shadows(Plane& cast, const Plane& contact);

/// The sheet at (x, y) of a canvas, shadows and surface round it.
RGBImage lay_sheet(const RGBImage& sheet, Size canvas, std::int64_t x, std::int64_t y, const Surface& surface,
                   const RectShadow& shadow);

/// The same of a sheet with a coverage of the canvas's size: the surface shows where it is less than 1.
RGBImage lay_masked(const RGBImage& sheet, std::int64_t x, std::int64_t y, const Surface& surface,
                    const Plane& coverage, const Plane& shadow);

} // namespace tamlo::Table
