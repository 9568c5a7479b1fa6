#include "app/shell/marks.h"

#include "app/shell/app_model.h"
#include "core/text/loc.h"

#include <algorithm>

namespace tamlo {

namespace {

/// A preference: after a mark the cursor goes on.
constexpr const char* kAdvanceKey = "advanceAfterMark";

std::string nameOf(Mark mark)
{
    if (mark == Mark::none) return T("mark.clear");
    return T(mark == Mark::selected ? "mark.selected.title" : "mark.rejected.title");
}

} // namespace

void Marks::setMark(const FrameID& id, Mark mark)
{
    const FrameRef frame = model_.project().frame(id);
    if (frame) assign({id}, frame->mark == mark ? Mark::none : mark);
}

void Marks::markCurrent(Mark mark)
{
    const std::vector<FrameID> targets = model_.selection.actionTargets();
    if (targets.size() == 1) {
        const auto before = model_.selection.cursor();
        setMark(targets.front(), mark);
        const bool stayed = before && model_.selection.cursor() == before;
        if (stayed && model_.seams().preferences.flag(kAdvanceKey).value_or(false)) model_.selection.step(1);
        return;
    }
    const bool allBearIt = std::ranges::all_of(
        targets, [&](const FrameID& id) { return model_.project().frame(id)->mark == mark; });
    assign(targets, allBearIt ? Mark::none : mark);
}

void Marks::assign(const std::vector<FrameID>& ids, Mark mark)
{
    const std::string name =
        ids.size() == 1 ? T("undo.mark") : T("undo.markMany", {{"name", nameOf(mark)}, {"n", ids.size()}});
    const auto cursor = model_.selection.cursor();
    model_.editFrames({name}, ids, [&](Frame& frame) { frame.mark = mark; });
    // Where the filter hides the frame under the cursor, the cursor goes to its neighbour.
    if (cursor && model_.selection.screen() == Screen::grid)
        model_.selection.setCursor(model_.selection.nearestVisibleID(*cursor));
    model_.selection.normalize();
}

} // namespace tamlo
