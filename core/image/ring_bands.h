// What is drawn along the sides of a picture alone: coats, rebates, cards.
#pragma once

#include "core/image/bands.h"
#include "core/image/plane.h"

#include <cstdint>

namespace tamlo {

/// work(y, first, end) on the columns of a canvas that lie within reach of its sides, in row bands.
template <typename Work>
void inRing(Size canvas, std::int64_t reach, const Work& work)
{
    parallelBands(canvas.height, canvas.width, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t y = start; y < end; ++y) {
            const bool whole = y < reach || y >= canvas.height - reach || canvas.width <= 2 * reach;
            if (whole) {
                work(y, std::int64_t{0}, canvas.width);
                continue;
            }
            work(y, std::int64_t{0}, reach);
            work(y, canvas.width - reach, canvas.width);
        }
    });
}

} // namespace tamlo
