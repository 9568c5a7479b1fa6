#include "app/preview/proxy_trim.h"

#include <algorithm>
#include <limits>
#include <tuple>

namespace tamlo {
namespace {

using ProxyTrim::Input;
using ProxyTrim::Temperature;
using Project = ProjectRegistry::Entry;

constexpr double kWarmSeconds = 30 * 86'400.0;
constexpr double kNeverClosed = std::numeric_limits<double>::infinity();

std::vector<const Project*> liveOwners(const ProxyIndex::Entry& entry, const Input& input)
{
    std::vector<const Project*> out;
    for (const std::string& id : entry.projects) {
        const auto found = input.projects.find(id);
        if (found != input.projects.end() && input.live.contains(id)) out.push_back(&found->second);
    }
    return out;
}

/// It was left unfinished or in haste, or not long ago.
bool keepsWarm(const Project& project, double now)
{
    return !project.settledAtClose || !project.lastClosed || project.lastOpened > *project.lastClosed ||
           now - *project.lastClosed <= kWarmSeconds;
}

/// The place of an entry in the order of going. Of its projects the last to go decides.
using Place = std::tuple<Temperature, double, std::string, double, std::string>;

Place placeOf(const ProxyIndex::Entry& entry, const Input& input)
{
    const Temperature t = ProxyTrim::temperature(entry, input);
    std::pair<double, std::string> last{kNeverClosed, ""};
    if (t == Temperature::orphan) last.first = 0;
    const auto owners = liveOwners(entry, input);
    for (std::size_t i = 0; i < owners.size(); ++i) {
        const std::pair own{owners[i]->lastClosed.value_or(kNeverClosed), owners[i]->id};
        last = i == 0 ? own : std::max(last, own);
    }
    return {t, last.first, last.second, entry.lastUsed, entry.key};
}

} // namespace

Temperature ProxyTrim::temperature(const ProxyIndex::Entry& entry, const Input& input)
{
    if (input.dead.contains(entry.key)) return Temperature::dead;
    const bool isOpenOnes =
        input.open && std::ranges::find(entry.projects, *input.open) != entry.projects.end();
    if (isOpenOnes || (input.sessionStart > 0 && entry.lastUsed >= input.sessionStart))
        return Temperature::working;
    const auto owners = liveOwners(entry, input);
    if (owners.empty() && input.judgesOrphans) return Temperature::orphan;
    const bool isWarm =
        std::ranges::any_of(owners, [&](const Project* owner) { return keepsWarm(*owner, input.now); });
    return isWarm ? Temperature::warm : Temperature::cold;
}

std::vector<std::string> ProxyTrim::plan(const Input& input)
{
    std::vector<std::string> out = keysOf(input, {Temperature::dead});
    std::vector<Place> places;
    std::int64_t used = 0;
    for (const auto& [key, entry] : input.entries) {
        Place place = placeOf(entry, input);
        if (std::get<Temperature>(place) == Temperature::dead) continue;
        used += entry.bytes;
        if (std::get<Temperature>(place) != Temperature::working) places.push_back(std::move(place));
    }
    std::int64_t target = std::numeric_limits<std::int64_t>::max();
    if (input.capBytes && used > *input.capBytes)
        target = *input.capBytes / 10 * 9 + *input.capBytes % 10 * 9 / 10;
    if (input.freeBytes && *input.freeBytes < kFreeBytes)
        target = std::min(target, used - (kFreeBytes - *input.freeBytes));
    std::sort(places.begin(), places.end());
    for (const Place& place : places) {
        if (used <= target) break;
        const std::string& key = std::get<4>(place);
        used -= input.entries.at(key).bytes;
        out.push_back(key);
    }
    return out;
}

std::vector<std::string> ProxyTrim::keysOf(const Input& input, const std::set<Temperature>& temperatures)
{
    std::vector<std::string> out;
    for (const auto& [key, entry] : input.entries)
        if (temperatures.contains(temperature(entry, input))) out.push_back(key);
    return out;
}

} // namespace tamlo
