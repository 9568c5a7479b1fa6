#include "app/shell/turns.h"

#include "app/shell/app_model.h"
#include "core/text/loc.h"

namespace tamlo {

Orient oriented(Orient orient, OrientAction action)
{
    switch (action) {
    case OrientAction::right:
        return {(orient.rot + 1) % 4, orient.mirror};
    case OrientAction::left:
        return {(orient.rot + 3) % 4, orient.mirror};
    // The mirror stands ahead of the turn: a mirror of what is seen turns the other way round.
    case OrientAction::flipH:
        return {(4 - orient.rot) % 4, !orient.mirror};
    case OrientAction::flipV:
        return {(6 - orient.rot) % 4, !orient.mirror};
    case OrientAction::reset:
        break;
    }
    return {};
}

void Turns::orient(const std::vector<FrameID>& ids, OrientAction action)
{
    const bool flips = action == OrientAction::flipH || action == OrientAction::flipV;
    std::string name = T(flips ? "orient.mirror" : "undo.orient");
    if (ids.size() > 1) name = T("undo.markMany", {{"name", name}, {"n", ids.size()}});
    model_.editFrames({name}, ids, [&](Frame& frame) { frame.orient = oriented(frame.orient, action); });
}

void Turns::orientTarget(OrientAction action)
{
    orient(model_.selection.actionTargets(), action);
}

bool Turns::orientTargetIsDefault() const
{
    for (const FrameID& id : model_.selection.actionTargets())
        if (model_.project().frame(id)->orient != Orient()) return false;
    return true;
}

} // namespace tamlo
