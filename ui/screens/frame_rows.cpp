#include "ui/screens/frame_rows.h"

#include "ui/kit/words.h"

namespace tamlo::ui {

void FrameRows::refresh()
{
    const Project& project = desk_.model.project();
    rows_.clear();
    rowOf_.clear();
    for (std::size_t place = 0; place < project.frames.size(); ++place) {
        const FrameRef& frame = project.frames.ref(place);
        if (!includes(project.filter, frame->mark)) continue;
        rowOf_[frame->id] = rows_.size();
        rows_.push_back({frame, place});
    }
}

QString FrameRows::label(std::size_t row) const
{
    return qt(Project::label(rows_[row].place));
}

std::optional<std::size_t> FrameRows::rowOf(const FrameID& id) const
{
    const auto found = rowOf_.find(id);
    return found == rowOf_.end() ? std::nullopt : std::optional(found->second);
}

std::optional<std::size_t> FrameRows::cursorRow() const
{
    const auto& cursor = desk_.model.selection.cursor();
    return cursor ? rowOf(*cursor) : std::nullopt;
}

FrameCell FrameRows::cell(std::size_t row, bool hasFocus) const
{
    const Selection& selection = desk_.model.selection;
    const FrameID& id = rows_[row].frame->id;
    FrameCell cell;
    cell.frame = rows_[row].frame.get();
    cell.label = label(row);
    cell.tile = desk_.views.tiles().tile(id);
    cell.isStale = desk_.views.tiles().isPending(id);
    cell.state = desk_.model.linker.state(id);
    cell.isSelected = selection.selected().contains(id);
    cell.isCursor = selection.cursor() == id;
    cell.hasFocus = hasFocus;
    return cell;
}

QString FrameRows::description(std::size_t row) const
{
    return describe(frame(row), label(row), desk_.model.linker.state(id(row)), desk_.model.store());
}

} // namespace tamlo::ui
