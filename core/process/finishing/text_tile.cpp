#include "core/process/finishing/text_tile.h"

#include "core/image/gaussian.h"
#include "core/process/finishing/sheet_marks_passes.h"
#include "platform/text_line.h"

#include <algorithm>
#include <cmath>

namespace tamlo::Finishing {
namespace {

/// Larger letters than any sheet shows whole press nothing.
constexpr std::int64_t kLargestPx = 40'000;

} // namespace

TextTile rasterize(std::string_view text, std::int64_t capPx, double blur, Size sheet)
{
    const platform::TextLine line(text);
    const double em = static_cast<double>(capPx);
    const auto textWidth = static_cast<std::int64_t>(std::ceil(line.widthEm() * em));
    const std::int64_t w = std::max<std::int64_t>(textWidth + 4, 4), h = std::max<std::int64_t>(capPx + 6, 6);
    TextTile tile;
    tile.pad = std::max<std::int64_t>(static_cast<std::int64_t>(std::ceil(4.0 * blur)) + 2, 3);
    tile.w = w + 2 * tile.pad;
    tile.h = h + 2 * tile.pad;

    // A sheet's width from the tile's corner, and what the blur reaches beyond it.
    const std::int64_t width = std::min(tile.w, sheet.width + 2 * tile.pad);
    const std::int64_t height = std::min(tile.h, sheet.height + 2 * tile.pad);
    tile.mask = Plane(width, height);
    if (capPx > kLargestPx) return tile;
    const double baseline = static_cast<double>(h) * 0.28 + static_cast<double>(tile.pad);
    coverage_mask(tile.mask, line.draw(static_cast<std::size_t>(width), static_cast<std::size_t>(height),
                                       {em, static_cast<double>(tile.pad + 2),
                                        baseline - static_cast<double>(tile.h - height)}));
    tile.mask = gaussianFilter(std::move(tile.mask), blur, EdgeMode::nearest);
    return tile;
}

} // namespace tamlo::Finishing
