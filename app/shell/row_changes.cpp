#include "app/shell/row_changes.h"

#include <algorithm>
#include <cstdint>
#include <unordered_map>

namespace tamlo {

namespace {

using Rows = std::vector<std::int32_t>; ///< each row by its place in the list that is to come

/// Which rows stay where they are relative to each other: the longest rising run among them.
std::vector<bool> staying(const Rows& rows, std::size_t count)
{
    constexpr std::size_t kNone = static_cast<std::size_t>(-1);
    std::vector<std::size_t> tails, previous(rows.size(), kNone); // places in `rows`
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const auto at = std::ranges::lower_bound(tails, rows[i], {}, [&](std::size_t k) { return rows[k]; });
        if (at != tails.begin()) previous[i] = *(at - 1);
        if (at == tails.end())
            tails.push_back(i);
        else
            *at = i;
    }
    std::vector<bool> out(count);
    for (std::size_t i = tails.empty() ? kNone : tails.back(); i != kNone; i = previous[i])
        out[static_cast<std::size_t>(rows[i])] = true;
    return out;
}

void move(Rows& rows, std::size_t from, std::size_t to)
{
    const auto begin = rows.begin();
    const auto at = [&](std::size_t i) { return begin + static_cast<std::ptrdiff_t>(i); };
    if (from < to)
        std::rotate(at(from), at(from + 1), at(to + 1));
    else
        std::rotate(at(to), at(from), at(from + 1));
}

} // namespace

std::vector<RowChange> rowChanges(const std::vector<FrameID>& before, const std::vector<FrameID>& after)
{
    using Kind = RowChange::Kind;
    std::unordered_map<FrameID, std::int32_t> places;
    for (std::size_t i = 0; i < after.size(); ++i) places.emplace(after[i], static_cast<std::int32_t>(i));
    std::vector<RowChange> out;
    Rows rows;
    std::vector<bool> isHere(after.size());
    for (const FrameID& id : before) {
        const auto place = places.find(id);
        if (place == places.end()) {
            out.push_back({Kind::remove, id, rows.size(), 0});
        } else {
            rows.push_back(place->second);
            isHere[static_cast<std::size_t>(place->second)] = true;
        }
    }
    const std::vector<bool> stays = staying(rows, after.size());
    // Each row in its turn goes behind the one that is to stand before it.
    std::size_t next = 0;
    for (std::size_t i = 0; i < after.size(); ++i) {
        const auto row = static_cast<std::int32_t>(i);
        if (!isHere[i]) {
            out.push_back({Kind::insert, after[i], 0, next});
            rows.insert(rows.begin() + static_cast<std::ptrdiff_t>(next), row);
            ++next;
            continue;
        }
        const auto at = static_cast<std::size_t>(std::ranges::find(rows, row) - rows.begin());
        if (stays[i]) {
            next = at + 1;
            continue;
        }
        const std::size_t to = at < next ? next - 1 : next;
        if (at != to) {
            out.push_back({Kind::move, after[i], at, to});
            move(rows, at, to);
        }
        next = to + 1;
    }
    return out;
}

} // namespace tamlo
