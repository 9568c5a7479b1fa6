#include "app/project/history.h"

#include <utility>

namespace tamlo {

void History::record(Change change, const Project& before, double now)
{
    redoStack_.clear();
    const bool goesOn = change.key && change.key == openKey_ && !undoStack_.empty() &&
                        undoStack_.back().key == change.key &&
                        now - undoStack_.back().stamp < kGestureSeconds && !change.action;
    if (goesOn) {
        undoStack_.back().stamp = now;
        return;
    }
    openKey_ = change.key;
    undoStack_.push_back({std::move(change.name), before, std::move(change.key), now,
                          std::move(change.action), std::move(change.inverse), change.linksFiles});
    if (undoStack_.size() > kMostSteps)
        undoStack_.erase(undoStack_.begin(), undoStack_.end() - static_cast<std::ptrdiff_t>(kMostSteps));
}

std::optional<History::Step> History::move(std::vector<Step>& from, std::vector<Step>& to,
                                           const Project& current, double now)
{
    if (from.empty()) return std::nullopt;
    Step step = std::move(from.back());
    from.pop_back();
    to.push_back({step.name, current, std::nullopt, now, step.inverse, step.action, step.linksFiles});
    return step;
}

std::optional<History::Step> History::undo(const Project& current, double now)
{
    endGesture();
    return move(undoStack_, redoStack_, current, now);
}

std::optional<History::Step> History::redo(const Project& current, double now)
{
    endGesture();
    return move(redoStack_, undoStack_, current, now);
}

void History::clear()
{
    undoStack_.clear();
    redoStack_.clear();
    endGesture();
}

} // namespace tamlo
