#include "core/process/finishing/text_tile.h"

#include "core/image/gaussian.h"
#include "core/image/resample.h"
#include "core/process/finishing/sheet_marks_passes.h"
#include "platform/text_line.h"

#include <algorithm>
#include <cmath>

namespace tamlo::Finishing {
namespace {

/// Larger letters than any sheet shows whole press nothing.
constexpr std::int64_t kLargestPx = 40'000;

/// Pixels a side of one that is drawn: a type softer than any printer could show is drawn coarser and
/// enlarged, so that its kernel stays within reason. What is left of the softness is many drawn pixels wide,
/// and the enlargement smooth: no facet shows in the light on it.
std::int64_t drawnSide(double blur)
{
    constexpr double kLeastSigmaPx = 24.0;
    return std::max<std::int64_t>(static_cast<std::int64_t>(blur / kLeastSigmaPx), 1);
}

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
    if (capPx > kLargestPx) return tile;

    // A sheet's width from the tile's corner, and what the blur reaches beyond it, in whole drawn pixels.
    const std::int64_t side = drawnSide(blur);
    const auto whole = [&](std::int64_t px) { return (px + side - 1) / side * side; };
    const std::int64_t width = whole(std::min(tile.w, sheet.width + 2 * tile.pad));
    const std::int64_t height = whole(std::min(tile.h, sheet.height + 2 * tile.pad));
    const double baseline = static_cast<double>(h) * 0.28 + static_cast<double>(tile.pad);
    Plane drawn(width / side, height / side);
    const double perSide = 1.0 / static_cast<double>(side);
    coverage_mask(drawn,
                  line.draw(static_cast<std::size_t>(drawn.width), static_cast<std::size_t>(drawn.height),
                            {em * perSide, static_cast<double>(tile.pad + 2) * perSide,
                             (baseline - static_cast<double>(tile.h - height)) * perSide}));
    drawn = gaussianFilter(std::move(drawn), blur * perSide, EdgeMode::nearest);
    tile.mask = side == 1 ? std::move(drawn) : pilResize(drawn, {width, height}, Resampling::bicubic);
    return tile;
}

} // namespace tamlo::Finishing
