#include "app/shell/removal.h"

#include "app/shell/app_model.h"
#include "core/text/loc.h"

#include <algorithm>
#include <unordered_set>

namespace tamlo {

namespace {

std::string framesText(std::size_t n)
{
    return Loc::string("project.frames", static_cast<std::int64_t>(n));
}

} // namespace

void Removal::remove(const FrameIDs& ids, bool confirm)
{
    FrameIDs there;
    std::int64_t picked = 0;
    for (const FrameID& id : ids)
        if (const FrameRef frame = model_.project().frame(id)) {
            there.push_back(id);
            picked += frame->mark == Mark::selected;
        }
    if (there.empty()) return;
    if (!confirm || picked == 0) return take(there);
    QuestionText text{T("remove.oneTitle", {{"label", model_.project().label(there.front())}}),
                      T("remove.oneNote")};
    if (there.size() > 1)
        text = {T("remove.manyTitle", {{"frames", framesText(there.size())}}),
                Loc::string("remove.picked", picked, {{"tail", T("remove.tail")}})};
    model_.seams().questions.remove(text, Answer<bool>([this, there](std::optional<bool> yes) {
                                        if (yes.value_or(false)) take(there);
                                    }));
}

void Removal::removeSelected(bool confirm)
{
    remove(model_.selection.actionTargets(), confirm);
}

void Removal::take(const FrameIDs& ids)
{
    const std::unordered_set<FrameID> leaving(ids.begin(), ids.end());
    Selection& selection = model_.selection;
    std::optional<FrameID> cursor = selection.cursor();
    if (cursor && leaving.contains(*cursor)) cursor = selection.nextVisibleID(*cursor, ids);
    History::Change step{ids.size() == 1 ? T("undo.removeFrame")
                                         : T("undo.removeMany", {{"frames", framesText(ids.size())}})};
    const bool changed = model_.editProject(std::move(step), [&](Project& project) {
        std::vector<std::size_t> places;
        for (std::size_t i = 0; i < project.frames.size(); ++i)
            if (!leaving.contains(project.frames[i].id)) places.push_back(i);
        project.frames.arrange(places);
    });
    if (!changed) return;
    if (cursor != selection.cursor()) {
        model_.cropping.leaveCropMode();
        model_.sides.exitAB();
    }
    for (const FrameID& id : ids) model_.seams().views.evict(id);
    if (selection.screen() == Screen::develop && cursor != selection.cursor())
        cursor ? selection.openFrame(*cursor) : selection.backToGrid();
    else
        selection.setCursor(cursor);
    selection.normalize();
}

} // namespace tamlo
