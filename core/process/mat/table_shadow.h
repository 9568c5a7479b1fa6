// The shadow of a lying sheet on its table: a contact shadow all round and a cast shadow to the lower right,
// combined as two translucent layers. A sheet without a mask is a rectangle, whose blur is a product of two
// lines, so that its shadow needs no plane.
// Units: thicknessPx pixels; light the direction to the light.
#pragma once

#include "core/image/plane.h"
#include "core/image/rgb_image.h"

#include <cstdint>
#include <vector>

namespace tamlo::Table {

struct ShadowPlan {
    double dy = 0.0, dx = 0.0;    ///< how far the cast shadow lies from the sheet
    double sAo = 0.0, sDir = 0.0; ///< blurs of both
};
ShadowPlan shadowPlan(double thicknessPx, const Vec3d& light);

/// A shift by whole pixels and the weights of the four pixels that a shifted one reads.
struct ShiftPlan {
    std::int64_t iy = 0, ix = 0;
    double w00 = 1.0, w01 = 0.0, w10 = 0.0, w11 = 0.0;
};
ShiftPlan shiftPlan(double dy, double dx);

/// The shadow, 0...1, of a coverage.
Plane dropShadow(const Plane& coverage, double thicknessPx, const Vec3d& light);

/// The two shadows of a rectangle, each a product of a value for the column and one for the row.
struct RectShadow {
    std::vector<float> aoX, aoY, dirX, dirY;
};
/// The sheet lies at (x, y) on the canvas.
RectShadow rectShadow(Size canvas, Size sheet, std::int64_t x, std::int64_t y, double thicknessPx,
                      const Vec3d& light);

} // namespace tamlo::Table
