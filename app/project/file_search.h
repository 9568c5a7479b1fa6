// FileSearch: a folder is looked through for the lost files of a roll. A frame that knows its file's content
// takes the file of that content, whatever its name; one that doesn't takes the file of its name. Reads
// files: a background job, on copies.
#pragma once

#include "app/project/roll.h"

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace tamlo::FileSearch {

/// A frame and the file that is its.
using Match = std::pair<FrameID, std::string>;

/// The files of a folder, down to five folders below it and at most 20,000 of them, for the lost frames of a
/// roll. One file goes to one frame, the first of the roll; files that other frames of the roll have are
/// nobody's. In the order in which they were found.
std::vector<Match> matches(const std::filesystem::path& folder, const std::vector<FrameRef>& lost,
                           const Roll& roll);

} // namespace tamlo::FileSearch
