#include "app/shell/app_model.h"

#include "app/shell/snapshots.h"
#include "core/text/loc.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

namespace tamlo {

namespace {

/// After an edit the frame on screen waits for the next change of the same gesture.
constexpr double kRenderDelaySeconds = 0.25;

/// The picture would come out differently.
bool looksDifferent(const Frame& a, const Frame& b)
{
    return !(a.process == b.process) || a.crop != b.crop || a.orient != b.orient;
}

/// What a crop does to the film decides how every cropped frame looks.
void forgetExportsOfCropped(Roll& roll)
{
    for (std::size_t i = 0; i < roll.size(); ++i)
        if (roll[i].crop && roll[i].process && roll[i].exportedAt) roll.edit(i).exportedAt.reset();
}

/// Frames that show their place in the roll on the film's edge, where it is another one now: their exports
/// are out of date.
std::vector<FrameID> renumber(const Roll& before, Roll& after)
{
    std::vector<FrameID> ids;
    std::unordered_map<FrameID, std::size_t> places;
    for (std::size_t i = 0; i < after.size(); ++i) {
        const Frame& frame = after[i];
        if (!frame.process || !frame.process->options.framePrint || frame.process->options.frameNumber != 0)
            continue;
        if (places.empty()) places = before.places();
        const auto place = places.find(frame.id);
        if (place == places.end() || place->second == i) continue;
        ids.push_back(frame.id);
        if (frame.exportedAt) after.edit(i).exportedAt.reset();
    }
    return ids;
}

} // namespace

AppModel::AppModel(AppSeams seams) : seams_(std::move(seams))
{}

void AppModel::tell(std::string text)
{
    status_ = std::move(text);
    lastActionFailed_ = false;
    observers.note(Concern::status);
}

void AppModel::tellFailure(std::string text)
{
    status_ = std::move(text);
    lastActionFailed_ = true;
    observers.note(Concern::status);
}

std::int64_t AppModel::frameGen(const FrameID& id) const
{
    const auto found = frameGen_.find(id);
    return found == frameGen_.end() ? 0 : found->second;
}

void AppModel::touch(const FrameIDs& ids)
{
    observers.note(Concern::roll);
    for (const FrameID& id : ids) ++frameGen_[id];
    seams_.views.renderThumbs(ids);
    if (selection.screen() == Screen::develop) seams_.views.renderCurrent(kRenderDelaySeconds);
}

AppModel::FrameIDs AppModel::editFrames(History::Change step, const FrameIDs& targets,
                                        const std::function<void(Frame&)>& change)
{
    beginAction();
    const auto places = project_.frames.places();
    std::vector<std::pair<std::size_t, FrameRef>> changed;
    FrameIDs ids;
    for (const FrameID& id : targets) {
        const auto place = places.find(id);
        if (place == places.end()) continue;
        const Frame& before = project_.frames[place->second];
        auto after = std::make_shared<Frame>(before);
        change(*after);
        if (*after == before) continue;
        if (looksDifferent(before, *after)) after->exportedAt.reset();
        changed.emplace_back(place->second, std::move(after));
        ids.push_back(id);
    }
    if (changed.empty()) return ids;
    history_.record(std::move(step), project_, seams_.loop.now());
    for (auto& [place, frame] : changed) project_.frames.replace(place, std::move(frame));
    touch(ids);
    return ids;
}

bool AppModel::editProject(History::Change step, const std::function<void(Project&)>& change)
{
    beginAction();
    Project after = project_;
    change(after);
    if (after == project_) return false;
    if (after.cropGate != project_.cropGate) forgetExportsOfCropped(after.frames);
    history_.record(std::move(step), project_, seams_.loop.now());
    const FrameIDs renumbered = renumber(project_.frames, after.frames);
    project_ = std::move(after);
    ++rollGen_;
    observers.note(Concern::roll);
    if (renumbered.empty()) return true;
    seams_.views.renderThumbs(renumbered);
    const auto cursor = selection.cursor();
    if (selection.screen() == Screen::develop && cursor &&
        std::ranges::find(renumbered, *cursor) != renumbered.end())
        seams_.views.renderCurrent(kRenderDelaySeconds);
    return true;
}

void AppModel::recordBeside(History::Change step)
{
    history_.record(std::move(step), project_, seams_.loop.now());
    observers.note(Concern::document);
}

bool AppModel::undo()
{
    return apply(history_.undo(project_, seams_.loop.now()));
}

bool AppModel::redo()
{
    return apply(history_.redo(project_, seams_.loop.now()));
}

void AppModel::undoTo(std::size_t stepsLeft)
{
    const auto left = [this] { return history_.undoStack().size(); };
    while (left() > stepsLeft && undo()) {}
    while (left() < stepsLeft && redo()) {}
}

bool AppModel::apply(std::optional<History::Step> step)
{
    if (!step) return false;
    beginAction();
    if (step->action) step->action();
    applySnapshot(*step);
    if (!lastActionFailed_) tell(T("status.undone", {{"name", step->name}}));
    return true;
}

void AppModel::applySnapshot(const History::Step& step)
{
    std::unordered_set<FrameID> here;
    for (const Frame& frame : project_.frames) here.insert(frame.id);
    project_ = withPresentFiles(step.snapshot, project_, step.linksFiles);
    ++rollGen_;
    observers.note(Concern::roll);
    seams_.views.cancelPendingRenders();
    for (const Frame& frame : project_.frames)
        if (!here.contains(frame.id)) seams_.views.load(frame.id);
    selection.normalize();
    cropping.refreshCropSession();
    seams_.views.renderAllThumbs();
    if (selection.screen() == Screen::develop) seams_.views.renderCurrent(kRenderDelaySeconds);
}

void AppModel::stayOpen()
{
    linker.keepWatch();
    saver.startAutosave();
}

void AppModel::adopt(Project project, std::optional<Path> url)
{
    cropping.leaveCropMode();
    sides.exitAB();
    sheets.leave();
    seams_.views.clear();
    project_ = std::move(project);
    projectURL_ = std::move(url);
    history_.clear();
    frameGen_.clear();
    ++rollGen_;
    observers.note(Concern::roll);
    linker.begin();
    selection.begin();
    seams_.views.renderAllThumbs();
}

} // namespace tamlo
