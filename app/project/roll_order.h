// The order of a roll: by name as people count, or by the time of the shot.
#pragma once

#include "app/project/project.h"

#include <vector>

namespace tamlo {

/// Places of the frames in the order of a mode; frames that are equal by it keep theirs. manual: as they are.
/// A frame without a date of its shot takes that of its file; one without either goes last.
std::vector<std::size_t> orderedPlaces(const Roll& roll, SortMode mode);

} // namespace tamlo
