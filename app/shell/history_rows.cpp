#include "app/shell/history_rows.h"

#include "app/shell/app_model.h"

namespace tamlo {

namespace {

/// Labels of the frames in which two states of a roll differ: as the later one has them, and those that it
/// lacks as the earlier one had them.
std::vector<std::string> framesBetween(const Project& before, const Project& after)
{
    std::vector<std::string> out;
    const auto wasAt = before.frames.places(), isAt = after.frames.places();
    for (std::size_t i = 0; i < after.frames.size(); ++i) {
        const auto was = wasAt.find(after.frames[i].id);
        const bool isSame = was != wasAt.end() && (before.frames.ref(was->second) == after.frames.ref(i) ||
                                                   before.frames[was->second] == after.frames[i]);
        if (!isSame) out.push_back(Project::label(i));
    }
    for (std::size_t i = 0; i < before.frames.size(); ++i)
        if (!isAt.contains(before.frames[i].id)) out.push_back(Project::label(i));
    return out;
}

} // namespace

std::vector<HistoryRow> historyRows(const AppModel& model)
{
    const auto& done = model.history().undoStack();
    const auto& undone = model.history().redoStack();
    const double offset = model.seams().loop.date() - model.seams().loop.now();
    std::vector<HistoryRow> out;
    for (std::size_t i = 0; i < done.size(); ++i) {
        const Project& after = i + 1 < done.size() ? done[i + 1].snapshot : model.project();
        out.push_back({done[i].name, done[i].stamp + offset, framesBetween(done[i].snapshot, after), false,
                       out.size() + 1});
    }
    for (std::size_t i = undone.size(); i-- > 0;) {
        const Project& before = i + 1 < undone.size() ? undone[i + 1].snapshot : model.project();
        out.push_back({undone[i].name, undone[i].stamp + offset, framesBetween(before, undone[i].snapshot),
                       true, out.size() + 1});
    }
    return out;
}

} // namespace tamlo
