#include "ui/screens/grid_layout.h"

#include <algorithm>

namespace tamlo::ui {

GridLayout::GridLayout(std::size_t count, int width, int tile)
    : count_(count), tile_(std::clamp(tile, kLeastTile, kMostTile))
{
    const int room = std::max(width - kGapPx, 0);
    columns_ = std::max(room / (tile_ + kGapPx), 1);
    pitch_ = std::max(room / columns_, tile_ + kGapPx);
    left_ = kGapPx / 2 + (pitch_ - tile_) / 2;
}

int GridLayout::rows() const
{
    return static_cast<int>((count_ + static_cast<std::size_t>(columns_) - 1) /
                            static_cast<std::size_t>(columns_));
}

int GridLayout::height() const
{
    return count_ == 0 ? 0 : kGapPx + rows() * rowHeight();
}

QRect GridLayout::cell(std::size_t index) const
{
    const int row = static_cast<int>(index) / columns_, column = static_cast<int>(index) % columns_;
    return {left_ + column * pitch_, kGapPx + row * rowHeight(), tile_, tile_ + kCaptionPx};
}

int GridLayout::columnAt(int x) const
{
    return std::clamp((x - kGapPx / 2) / pitch_, 0, columns_ - 1);
}

std::optional<std::size_t> GridLayout::cellAt(QPoint at) const
{
    if (at.y() < kGapPx) return std::nullopt;
    const int row = (at.y() - kGapPx) / rowHeight();
    const std::size_t index = static_cast<std::size_t>(row * columns_ + columnAt(at.x()));
    return index < count_ && cell(index).contains(at) ? std::optional(index) : std::nullopt;
}

std::pair<std::size_t, std::size_t> GridLayout::cellsBetween(int top, int bottom) const
{
    const int first = std::clamp((top - kGapPx) / rowHeight(), 0, rows());
    const int last = std::clamp((bottom - kGapPx) / rowHeight() + 1, first, rows());
    const auto bounded = [&](int row) { return std::min(static_cast<std::size_t>(row * columns_), count_); };
    return {bounded(first), bounded(last)};
}

std::vector<std::size_t> GridLayout::cellsIn(const QRect& rect) const
{
    std::vector<std::size_t> out;
    const auto [first, last] = cellsBetween(rect.top(), rect.bottom());
    for (std::size_t i = first; i < last; ++i)
        if (cell(i).intersects(rect)) out.push_back(i);
    return out;
}

std::size_t GridLayout::gapAt(QPoint at) const
{
    const int row = std::clamp((at.y() - kGapPx) / rowHeight(), 0, std::max(rows() - 1, 0));
    const int column = columnAt(at.x());
    const std::size_t index = static_cast<std::size_t>(row * columns_ + column);
    if (index >= count_) return count_;
    return at.x() > cell(index).center().x() ? index + 1 : index;
}

} // namespace tamlo::ui
