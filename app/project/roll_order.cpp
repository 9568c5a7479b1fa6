#include "app/project/roll_order.h"

#include "platform/file_info.h"
#include "platform/unicode.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <string>
#include <utility>

namespace tamlo {

namespace {

/// Seconds since 2001.
double captureDate(const Frame& frame)
{
    if (frame.shot && frame.shot->dateOriginal) return frame.shot->dateOriginal->seconds;
    if (frame.fingerprint && frame.fingerprint->mtime > 0)
        return Date::since1970(frame.fingerprint->mtime).seconds;
    const auto info = platform::fileInfo(frame.url);
    return info ? Date::since1970(info->mtime).seconds : std::numeric_limits<double>::infinity();
}

template <typename KeyOf>
void sortBy(std::vector<std::size_t>& places, const Roll& roll, KeyOf&& keyOf)
{
    std::vector<decltype(keyOf(roll[0]))> keys;
    keys.reserve(roll.size());
    for (const Frame& frame : roll) keys.push_back(keyOf(frame));
    std::ranges::stable_sort(places, [&](std::size_t a, std::size_t b) { return keys[a] < keys[b]; });
}

} // namespace

std::vector<std::size_t> orderedPlaces(const Roll& roll, SortMode mode)
{
    std::vector<std::size_t> places(roll.size());
    std::iota(places.begin(), places.end(), std::size_t{0});
    if (mode == SortMode::shot) sortBy(places, roll, captureDate);
    if (mode == SortMode::name)
        sortBy(places, roll, [](const Frame& frame) {
            std::string name = frame.fileName();
            std::string key = platform::naturalSortKey(name);
            return std::pair(std::move(key), std::move(name));
        });
    return places;
}

} // namespace tamlo
