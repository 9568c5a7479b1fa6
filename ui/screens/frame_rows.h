// FrameRows: the visible frames in their order, as a list on screen wants them: by place, each with its
// number.
#pragma once

#include "ui/screens/desk.h"
#include "ui/screens/frame_cell.h"

#include <unordered_map>

namespace tamlo::ui {

class FrameRows {
public:
    explicit FrameRows(Desk desk) : desk_(desk) { refresh(); }

    /// After the roll has changed.
    void refresh();
    std::size_t size() const { return rows_.size(); }
    const Frame& frame(std::size_t row) const { return *rows_[row].frame; }
    const FrameID& id(std::size_t row) const { return rows_[row].frame->id; }
    QString label(std::size_t row) const;
    std::optional<std::size_t> rowOf(const FrameID& id) const;
    std::optional<std::size_t> cursorRow() const;
    FrameCell cell(std::size_t row, bool hasFocus) const;
    QString description(std::size_t row) const;

private:
    struct Row {
        FrameRef frame;
        std::size_t place; ///< in the roll, from 0
    };
    Desk desk_;
    std::vector<Row> rows_;
    std::unordered_map<FrameID, std::size_t> rowOf_;
};

} // namespace tamlo::ui
