#include "app/shell/spreading.h"

#include "app/shell/app_model.h"
#include "core/text/loc.h"

#include <algorithm>

namespace tamlo {

void Spreading::applyToAll(const FrameID& from)
{
    const FrameRef source = model_.project().frame(from);
    if (!source || !source->process) return;
    const Roll& roll = model_.project().frames;
    const auto others = std::count_if(roll.begin(), roll.end(), [&](const Frame& frame) {
        return frame.process && !(frame.process == source->process);
    });
    if (others == 0) return spread(*source, ApplyTo::every);
    const QuestionText text{T("applyAll.title", {{"label", model_.project().label(from)}}),
                            Loc::string("applyAll.note", others)};
    model_.seams().questions.applyToAll(text, Answer<ApplyTo>([this, source](std::optional<ApplyTo> choice) {
                                            if (choice) spread(*source, *choice);
                                        }));
}

void Spreading::spread(const Frame& from, ApplyTo to)
{
    std::vector<FrameID> ids;
    for (const Frame& frame : model_.project().frames)
        if (frame.id != from.id && (to == ApplyTo::every || !frame.process)) ids.push_back(frame.id);
    model_.editFrames({T("undo.applyAll")}, ids,
                      [&](Frame& frame) { model_.rack.give(frame, from.process); });
    model_.tell(T(to == ApplyTo::every ? "status.appliedAll" : "status.appliedEmpty"));
}

} // namespace tamlo
