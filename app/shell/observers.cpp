#include "app/shell/observers.h"

#include "app/shell/app_model.h"

#include <algorithm>
#include <tuple>
#include <unordered_set>
#include <utility>

namespace tamlo {

namespace {

std::vector<std::string> stepNames(const AppModel& model)
{
    const History& history = model.history();
    const auto top = [](const auto& stack) { return stack.empty() ? std::string() : stack.back().name; };
    return {std::to_string(history.undoStack().size()), top(history.undoStack()),
            std::to_string(history.redoStack().size()), top(history.redoStack())};
}

/// Everything of a crop being made that can be seen.
using CropSeen = std::optional<std::tuple<double, double, double, double, double, std::optional<double>>>;

CropSeen cropSeen(const AppModel& model)
{
    const auto& draft = model.cropping.draft();
    if (!draft) return std::nullopt;
    const RectPx& rect = draft->rect();
    return std::tuple(rect.x, rect.y, rect.w, rect.h, draft->angle(), draft->aspectOf(draft->aspectKind()));
}

std::vector<FrameID> visibleIDs(const Project& project)
{
    std::vector<FrameID> out;
    out.reserve(project.frames.size());
    for (const Frame& frame : project.frames)
        if (includes(project.filter, frame.mark)) out.push_back(frame.id);
    return out;
}

/// Frames of `now` that are not what they were.
std::vector<FrameID> framesThatDiffer(const Roll& before, const Roll& now)
{
    std::vector<FrameID> out;
    std::optional<std::unordered_map<FrameID, std::size_t>> places;
    for (std::size_t i = 0; i < now.size(); ++i) {
        if (i < before.size() && before.ref(i) == now.ref(i)) continue;
        if (!places) places = before.places();
        const auto place = places->find(now[i].id);
        const bool isSame = place != places->end() &&
                            (before.ref(place->second) == now.ref(i) || before[place->second] == now[i]);
        if (!isSame) out.push_back(now[i].id);
    }
    return out;
}

} // namespace

struct Observers::Told {
    Project project;
    std::optional<std::filesystem::path> url;
    std::vector<std::string> steps;
    Screen screen;
    std::optional<FrameID> cursor;
    std::unordered_set<FrameID> selected;
    double zoom;
    PanPoints pan;
    std::string status;
    bool failed;
    std::int64_t fileStateGen, listsGen, pictureGen;
    CropSeen crop;
    std::optional<ProcessSettings> sideB;
    Sides::ABSide focus;
};

Observers::Told Observers::present() const
{
    const AppModel& m = model_;
    return {m.project(),
            m.projectURL(),
            stepNames(m),
            m.selection.screen(),
            m.selection.cursor(),
            m.selection.selected(),
            m.zoom.zoom(),
            m.zoom.pan(),
            m.status(),
            m.lastActionFailed(),
            m.linker.fileStateGen(),
            m.lists.gen(),
            m.seams().views.pictureGen(),
            cropSeen(m),
            m.sides.abB(),
            m.sides.abFocus()};
}

Subscription Observers::subscribe(ConcernSet concerns, Tell tell)
{
    auto observer = std::make_shared<Observer>(Observer{concerns, std::move(tell)});
    if (!told_ || !isObserved()) told_ = std::make_shared<const Told>(present());
    observers_.push_back(observer);
    return Subscription(std::move(observer));
}

bool Observers::isObserved()
{
    std::erase_if(observers_, [](const auto& observer) { return observer.expired(); });
    return !observers_.empty();
}

void Observers::noteTile(const FrameID& id)
{
    if (!isObserved()) return;
    tiles_.push_back(id);
    note(Concern::tiles);
}

void Observers::note(Concern concern)
{
    if (observers_.empty()) return;
    noted_.add(concern);
    if (std::exchange(isPosted_, true)) return;
    model_.seams().loop.post([this, alive = std::weak_ptr(alive_)] {
        if (alive.lock()) tellAll();
    });
}

ChangeSet Observers::changes(const Told& before, const Told& now) const
{
    ChangeSet out;
    const auto compare = [&](Concern concern, bool differs) {
        if (differs) out.concerns.add(concern);
    };
    compare(Concern::document,
            before.url != now.url || before.steps != now.steps || before.project.name != now.project.name);
    if (noted_.has(Concern::roll) && !(before.project == now.project)) {
        out.frames = framesThatDiffer(before.project.frames, now.project.frames);
        out.rows = rowChanges(visibleIDs(before.project), visibleIDs(now.project));
        out.concerns.add(Concern::roll);
    }
    compare(Concern::selection,
            before.screen != now.screen || before.cursor != now.cursor || before.selected != now.selected);
    compare(Concern::frameView,
            before.zoom != now.zoom || !(before.pan == now.pan) || before.pictureGen != now.pictureGen);
    compare(Concern::status, before.status != now.status || before.failed != now.failed);
    compare(Concern::fileStates, before.fileStateGen != now.fileStateGen);
    compare(Concern::lists, before.listsGen != now.listsGen);
    compare(Concern::exporting, noted_.has(Concern::exporting));
    compare(Concern::crop, before.crop != now.crop);
    compare(Concern::ab, before.sideB != now.sideB || before.focus != now.focus);
    return out;
}

void Observers::tellAll()
{
    isPosted_ = false;
    if (!isObserved()) return;
    const auto now = std::make_shared<const Told>(present());
    ChangeSet whole = changes(*told_, *now);
    noted_ = {};
    whole.tiles = std::exchange(tiles_, {});
    std::ranges::sort(whole.tiles);
    whole.tiles.erase(std::ranges::unique(whole.tiles).begin(), whole.tiles.end());
    if (!whole.tiles.empty()) whole.concerns.add(Concern::tiles);
    told_ = now;
    const auto observers = observers_; // one may come or go while they are told
    for (const auto& weak : observers) {
        const auto observer = weak.lock();
        if (!observer || (observer->concerns & whole.concerns).empty()) continue;
        ChangeSet part = whole;
        part.concerns = observer->concerns & whole.concerns;
        observer->tell(part);
    }
}

} // namespace tamlo
