#include "app/shell/selection.h"

#include "app/shell/app_model.h"

#include <algorithm>
#include <iterator>
#include <utility>

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
    if (id != cursor_) model_.cropping.applyCropAndExit();
    setCursor(id);
    screen_ = Screen::develop;
    model_.observers.note(Concern::selection);
    model_.seams().views.openedFrame(id);
}

void Selection::setCursor(std::optional<FrameID> id)
{
    if (id != cursor_) {
        model_.endGesture(); // the same knob on another frame is another step
        model_.sides.exitAB();
    }
    cursor_ = std::move(id);
    model_.observers.note(Concern::selection);
}

void Selection::select(const FrameIDs& ids)
{
    selected_ = {ids.begin(), ids.end()};
    if (!ids.empty()) {
        anchor_ = ids.front();
        if (screen_ == Screen::grid) setCursor(ids.front());
    }
    normalize();
}

void Selection::setFilter(GridFilter filter)
{
    model_.amendProject([&](Project& project) { project.filter = filter; });
    if (cursor_ && screen_ == Screen::grid) setCursor(nearestVisibleID(*cursor_));
    normalize();
}

void Selection::normalize()
{
    const Project& project = model_.project();
    model_.observers.note(Concern::selection);
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

void Selection::goTo(std::ptrdiff_t visibleIndex, bool extend)
{
    const FrameIDs visible = visibleIDs();
    if (visibleIndex < 0 || visibleIndex >= std::ssize(visible)) return;
    const FrameID id = visible[static_cast<std::size_t>(visibleIndex)];
    if (extend && screen_ == Screen::grid) return extendSelection(id);
    if (screen_ == Screen::develop) openFrame(id);
    select({id});
}

void Selection::step(int delta, bool extend)
{
    if (const auto from = placeToStepFrom(visibleIDs(), delta)) goTo(*from + delta, extend);
}

std::optional<std::ptrdiff_t> Selection::placeToStepFrom(const FrameIDs& visible, int delta) const
{
    if (!cursor_) return std::nullopt;
    const auto at = std::ranges::find(visible, *cursor_);
    if (at != visible.end()) return at - visible.begin();
    // The frame that is looked at has just been hidden by its mark: it stands between its neighbours.
    const auto places = model_.project().frames.places();
    const auto here = places.find(*cursor_);
    if (here == places.end()) return std::nullopt;
    const auto before =
        std::ranges::count_if(visible, [&](const FrameID& id) { return places.at(id) < here->second; });
    return delta > 0 ? before - 1 : before;
}

void Selection::stepRow(int delta, bool extend)
{
    const FrameIDs visible = visibleIDs();
    const auto from = placeToStepFrom(visible, delta);
    if (!from || visible.empty()) return;
    const std::ptrdiff_t to = *from + std::ptrdiff_t{delta} * gridColumns_;
    goTo(std::clamp<std::ptrdiff_t>(to, 0, std::ssize(visible) - 1), extend);
}

void Selection::moveCursorToEdge(bool first, bool extend)
{
    goTo(first ? 0 : std::ssize(visibleIDs()) - 1, extend);
}

void Selection::extendSelection(const FrameID& to)
{
    const FrameIDs visible = visibleIDs();
    const FrameID from = anchor_ ? *anchor_ : cursor_.value_or(to);
    auto a = std::ranges::find(visible, from), b = std::ranges::find(visible, to);
    if (a == visible.end() || b == visible.end()) return;
    if (b < a) std::swap(a, b);
    selected_ = {a, b + 1};
    anchor_ = from;
    model_.observers.note(Concern::selection);
    if (screen_ == Screen::grid) setCursor(to);
}

void Selection::toggleSelection(const FrameID& id)
{
    if (selected_.erase(id) == 0) selected_.insert(id);
    anchor_ = id;
    if (screen_ == Screen::grid) setCursor(id);
    normalize();
}

void Selection::selectAllVisible()
{
    const FrameIDs visible = visibleIDs();
    selected_ = {visible.begin(), visible.end()};
    model_.observers.note(Concern::selection);
}

void Selection::selectMarquee(const FrameIDs& base, const FrameIDs& ids)
{
    selected_ = {base.begin(), base.end()};
    selected_.insert(ids.begin(), ids.end());
    normalize();
}

void Selection::backToGrid()
{
    model_.beginAction();
    model_.cropping.applyCropAndExit();
    model_.sides.exitAB();
    model_.endGesture();
    screen_ = Screen::grid;
    normalize();
    model_.seams().views.backToGrid();
}

} // namespace tamlo
