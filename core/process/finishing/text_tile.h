// A line of type as a relief: coverage of the carried bold face, softened as a press softens it.
#pragma once

#include "core/image/plane.h"

#include <cstdint>
#include <string_view>

namespace tamlo::Finishing {

struct TextTile {
    Plane mask; ///< 0...1; what a sheet of the given size can't show of a long line is left out
    std::int64_t w = 0, h = 0; ///< the whole tile with its padding
    std::int64_t pad = 0;
};

/// Units: capPx the size of the letters, blur the softness, both pixels; sheet the most that can be seen.
TextTile rasterize(std::string_view text, std::int64_t capPx, double blur, Size sheet);

} // namespace tamlo::Finishing
