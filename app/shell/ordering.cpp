#include "app/shell/ordering.h"

#include "app/project/roll_order.h"
#include "app/shell/app_model.h"
#include "core/text/loc.h"
#include "platform/unicode.h"

#include <algorithm>
#include <numeric>
#include <unordered_set>

namespace tamlo {

namespace {

const char* titleKey(SortMode mode)
{
    switch (mode) {
    case SortMode::name:
        return "sort.name";
    case SortMode::shot:
        return "sort.shot";
    case SortMode::manual:
        break;
    }
    return "sort.manual";
}

bool isInOrder(const std::vector<std::size_t>& places)
{
    return std::ranges::is_sorted(places);
}

} // namespace

void Ordering::setSortMode(SortMode mode)
{
    const std::string name = T("undo.sort", {{"mode", platform::lowerCased(T(titleKey(mode)))}});
    model_.editProject({name}, [&](Project& project) {
        project.sortMode = mode;
        const auto places = orderedPlaces(project.frames, mode);
        if (!isInOrder(places)) project.frames.arrange(places);
    });
}

void Ordering::reverseFrames()
{
    model_.editProject({T("undo.reverse")}, [](Project& project) {
        std::vector<std::size_t> places(project.frames.size());
        std::iota(places.rbegin(), places.rend(), std::size_t{0});
        project.frames.arrange(places);
        if (places.size() > 1) project.sortMode = SortMode::manual;
    });
}

void Ordering::move(const FrameIDs& ids, const FrameID& target, std::size_t beyond)
{
    const std::unordered_set<FrameID> dragged(ids.begin(), ids.end());
    const auto at = model_.project().frames.find(target);
    if (!at || dragged.contains(target)) return;
    const std::string name =
        ids.size() == 1
            ? T("undo.frameOrder")
            : T("undo.reorder",
                {{"frames", Loc::string("project.frames", static_cast<std::int64_t>(ids.size()))}});
    model_.editProject({name}, [&](Project& project) {
        std::vector<std::size_t> taken, places;
        for (std::size_t i = 0; i < project.frames.size(); ++i)
            (dragged.contains(project.frames[i].id) ? taken : places).push_back(i);
        const auto where = std::ranges::find(places, *at);
        places.insert(where + static_cast<std::ptrdiff_t>(beyond), taken.begin(), taken.end());
        if (isInOrder(places)) return; // they lie there already
        project.frames.arrange(places);
        project.sortMode = SortMode::manual;
    });
}

} // namespace tamlo
