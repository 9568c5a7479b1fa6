#include "core/image/orient.h"

#include "core/image/bands.h"
#include "core/image/rounding.h"

#include <algorithm>

namespace tamlo::Orientation {
namespace {

struct Pixel {
    float r, g, b;
};
static_assert(sizeof(Pixel) == 3 * sizeof(float));

Pixel* pixels(RGBImage& image)
{
    return reinterpret_cast<Pixel*>(image.mutableData());
}

void mirrorColumns(RGBImage& image)
{
    Pixel* p = pixels(image);
    const std::int64_t w = image.width;
    parallelBands(image.height, w, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t y = start; y < end; ++y) std::reverse(p + y * w, p + (y + 1) * w);
    });
}

void mirrorRows(RGBImage& image)
{
    Pixel* p = pixels(image);
    const std::int64_t w = image.width, h = image.height;
    parallelBands(h / 2, w, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t y = start; y < end; ++y)
            std::swap_ranges(p + y * w, p + (y + 1) * w, p + (h - 1 - y) * w);
    });
}

void halfTurn(RGBImage& image)
{
    Pixel* p = pixels(image);
    const std::int64_t w = image.width, h = image.height;
    parallelBands(h / 2, w, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t y = start; y < end; ++y)
            std::swap_ranges(p + y * w, p + (y + 1) * w, std::reverse_iterator(p + (h - y) * w));
    });
    if (h % 2 == 1) std::reverse(p + h / 2 * w, p + (h / 2 + 1) * w);
}

/// Destination (row i, column j) takes source (row j, column i), each counted from the far end where told.
RGBImage transposed(const RGBImage& image, bool fromLastRow, bool fromLastColumn)
{
    constexpr std::int64_t kTile = 32; // a tile of source and one of destination fit the first-level cache
    const std::int64_t w = image.width, h = image.height;
    RGBImage out(h, w);
    const auto* from = reinterpret_cast<const Pixel*>(image.data.data());
    Pixel* to = pixels(out);
    parallelBands((w + kTile - 1) / kTile, h * kTile, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t i0 = start * kTile; i0 < std::min(w, end * kTile); i0 += kTile)
            for (std::int64_t j0 = 0; j0 < h; j0 += kTile)
                for (std::int64_t i = i0; i < std::min(w, i0 + kTile); ++i)
                    for (std::int64_t j = j0; j < std::min(h, j0 + kTile); ++j) {
                        const std::int64_t row = fromLastRow ? h - 1 - j : j;
                        const std::int64_t column = fromLastColumn ? w - 1 - i : i;
                        to[i * h + j] = from[row * w + column];
                    }
    });
    return out;
}

} // namespace

int orientQuarter(int rotateDegrees)
{
    return static_cast<int>(roundAway(rotateDegrees / 90.0) & 3);
}

RGBImage orientImage(RGBImage image, int rotateDegrees, bool mirror)
{
    switch (orientQuarter(rotateDegrees)) {
    case 1:
        return transposed(image, true, mirror);
    case 2:
        // A half turn of mirrored columns is a mirror of the rows.
        mirror ? mirrorRows(image) : halfTurn(image);
        return image;
    case 3:
        return transposed(image, false, !mirror);
    default:
        if (mirror) mirrorColumns(image);
        return image;
    }
}

} // namespace tamlo::Orientation
