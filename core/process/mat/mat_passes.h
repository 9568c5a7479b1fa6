// The pass of a mat. All that the board shows depends on the whole distance from its opening and on the side,
// so it comes as short tables; arithmetic is left for a few corner pixels.
#pragma once

#include "core/image/rgb_image.h"

#include <array>
#include <cstdint>
#include <vector>

namespace tamlo {

/// Sides are in the order top, bottom, left, right. Coordinates are of the canvas.
struct MatParams {
    std::int64_t width = 0, height = 0;  ///< the canvas
    std::int64_t sheetX = 0, sheetY = 0; ///< where the sheet lies
    std::int64_t top = 0, bot = 0, left = 0, right = 0;
    Vec3f surf{}; ///< the board beyond its tables
    /// The board at d pixels from the opening; entry 0 is not used. One length for all sides.
    std::array<std::vector<Vec3f>, 4> board;
    /// Light left by the board's shadow at d pixels inside the opening; 1 beyond the table.
    std::array<std::vector<float>, 4> shade;
    std::int64_t squareFirst = 0, squareLast = -1; ///< corner squares, in distance on both axes
    Vec3f square{};                                ///< colour there, times its share
    float squareKeep = 1.0f;                       ///< share of what lies below
};

/// The sheet under its board. Every pixel ends within 0...1.
RGBImage mat_compose(const RGBImage& sheet, const MatParams& params);

} // namespace tamlo
