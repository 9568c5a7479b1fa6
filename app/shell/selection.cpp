#include "app/shell/selection.h"

#include "app/shell/app_model.h"

#include <algorithm>

namespace tamlo {

namespace {

/// The first frame from a place on that passes, else the nearest before it.
template <typename Passes>
std::optional<FrameID> nearestFrom(const Roll& roll, std::size_t place, Passes&& passes)
{
    for (std::size_t i = place; i < roll.size(); ++i)
        if (passes(roll[i])) return roll[i].id;
    for (std::size_t i = place; i-- > 0;)
        if (passes(roll[i])) return roll[i].id;
    return std::nullopt;
}

} // namespace

Selection::FrameIDs Selection::visibleIDs() const
{
    FrameIDs out;
    for (const FrameRef& frame : model_.project().visibleFrames()) out.push_back(frame->id);
    return out;
}

Selection::FrameIDs Selection::actionTargets() const
{
    FrameIDs out;
    if (screen_ == Screen::grid && !selected_.empty()) {
        out = visibleIDs();
        std::erase_if(out, [&](const FrameID& id) { return !selected_.contains(id); });
    }
    if (out.empty() && cursor_) out.push_back(*cursor_);
    return out;
}

FrameRef Selection::currentFrame() const
{
    return cursor_ ? model_.project().frame(*cursor_) : nullptr;
}

ProcessSettings Selection::currentProcess() const
{
    const FrameRef frame = currentFrame();
    return frame && frame->process ? *frame->process : ProcessSettings::fresh();
}

void Selection::begin()
{
    screen_ = Screen::grid;
    selected_.clear();
    anchor_.reset();
    cursor_.reset();
    normalize();
}

void Selection::openFrame(const FrameID& id)
{
    if (!model_.project().frame(id)) return;
    model_.beginAction();
    setCursor(id);
    screen_ = Screen::develop;
    model_.seams().views.openedFrame(id);
}

void Selection::backToGrid()
{
    model_.beginAction();
    screen_ = Screen::grid;
    model_.seams().views.backToGrid();
}

void Selection::setCursor(std::optional<FrameID> id)
{
    if (id != cursor_) model_.endGesture(); // the same knob on another frame is another step
    cursor_ = std::move(id);
}

void Selection::select(const FrameIDs& ids)
{
    selected_ = {ids.begin(), ids.end()};
    if (!ids.empty()) {
        anchor_ = ids.front();
        setCursor(ids.front());
    }
    normalize();
}

void Selection::setFilter(GridFilter filter)
{
    model_.amendProject([&](Project& project) { project.filter = filter; });
    if (screen_ != Screen::grid) return;
    if (cursor_) setCursor(nearestVisibleID(*cursor_));
    normalize();
}

void Selection::normalize()
{
    const Project& project = model_.project();
    std::unordered_set<FrameID> visible;
    for (const Frame& frame : project.frames)
        if (includes(project.filter, frame.mark)) visible.insert(frame.id);
    std::erase_if(selected_, [&](const FrameID& id) { return !visible.contains(id); });
    if (anchor_ && !selected_.contains(*anchor_)) anchor_.reset();
    const bool stays = cursor_ && (screen_ == Screen::develop ? project.frame(*cursor_) != nullptr
                                                              : visible.contains(*cursor_));
    if (stays) return;
    const auto first = std::find_if(project.frames.begin(), project.frames.end(),
                                    [&](const Frame& frame) { return visible.contains(frame.id); });
    setCursor(first == project.frames.end() ? std::nullopt : std::optional(first->id));
    if (!cursor_) screen_ = Screen::grid;
}

std::optional<FrameID> Selection::nearestVisibleID(const FrameID& id) const
{
    const Project& project = model_.project();
    const auto place = project.frames.find(id);
    if (!place) return std::nullopt;
    return nearestFrom(project.frames, *place,
                       [&](const Frame& frame) { return includes(project.filter, frame.mark); });
}

std::optional<FrameID> Selection::nextVisibleID(const FrameID& id, const FrameIDs& leaving) const
{
    const Project& project = model_.project();
    const auto place = project.frames.find(id);
    if (!place) return std::nullopt;
    const std::unordered_set<FrameID> out(leaving.begin(), leaving.end());
    return nearestFrom(project.frames, *place, [&](const Frame& frame) {
        return frame.id != id && !out.contains(frame.id) && includes(project.filter, frame.mark);
    });
}

} // namespace tamlo
