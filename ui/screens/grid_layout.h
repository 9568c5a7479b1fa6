// GridLayout: where the cells of the grid stand, by arithmetic alone: as many columns as fit, the room that
// is left spread between them. All lengths in points of the screen, from the top left of the whole roll.
#pragma once

#include <QRect>

#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

namespace tamlo::ui {

class GridLayout {
public:
    static constexpr int kGapPx = 10;     ///< around each cell
    static constexpr int kCaptionPx = 22; ///< below each tile
    static constexpr int kLeastTile = 96, kMostTile = 480;

    GridLayout() = default;
    GridLayout(std::size_t count, int width, int tile);

    std::size_t count() const { return count_; }
    int columns() const { return columns_; }
    int tile() const { return tile_; }
    int rowHeight() const { return tile_ + kCaptionPx + kGapPx; }
    int height() const;

    /// Tile and caption.
    QRect cell(std::size_t index) const;
    std::optional<std::size_t> cellAt(QPoint at) const;
    /// From the first to one past the last cell that has a part between two heights.
    std::pair<std::size_t, std::size_t> cellsBetween(int top, int bottom) const;
    std::vector<std::size_t> cellsIn(const QRect& rect) const;
    /// Where what is dropped at a point would go: before this cell; one past the last for the end.
    std::size_t gapAt(QPoint at) const;

private:
    int rows() const;
    int columnAt(int x) const;

    std::size_t count_ = 0;
    int columns_ = 1, tile_ = kLeastTile, pitch_ = kLeastTile + kGapPx, left_ = kGapPx;
};

} // namespace tamlo::ui
