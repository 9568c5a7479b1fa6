// How a list of rows becomes another one: rows that go, that move and that come in, so that a list on screen
// can follow the roll without being built anew.
#pragma once

#include "app/project/frame.h"

#include <cstddef>
#include <vector>

namespace tamlo {

struct RowChange {
    enum class Kind { remove, move, insert };
    Kind kind = Kind::insert;
    FrameID id;
    std::size_t from = 0; ///< of what goes or moves: its place just before this change
    std::size_t to = 0;   ///< of what moves or comes in: its place just after it

    bool operator==(const RowChange&) const = default;
};

/// The changes that, made one after the other, turn `before` into `after`. Ids are unique in each. As few
/// rows move as can be.
std::vector<RowChange> rowChanges(const std::vector<FrameID>& before, const std::vector<FrameID>& after);

} // namespace tamlo
