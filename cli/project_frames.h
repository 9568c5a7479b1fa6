// FRAMES of `tamlo project`: which frames of a roll a text means.
#pragma once

#include "app/project/file_state.h"
#include "app/project/project.h"

#include <functional>
#include <string>
#include <vector>

namespace tamlo::cli {

/// Places or ranges from 1 ("3", "2-7", "1,5"), a file name or a pattern of one with * and ?, or all, picked,
/// rejected, unmarked or lost; several with commas between them. In the order of the roll.
/// stateOf: how a frame's source stands, asked for "lost" alone.
/// Errors: UsageError for a text that means no frame.
std::vector<FrameID> framesMeant(const std::string& text, const Project& project,
                                 const std::function<FileState(const Frame&)>& stateOf);

/// The same for a text that must mean one frame.
FrameID frameMeant(const std::string& text, const Project& project,
                   const std::function<FileState(const Frame&)>& stateOf);

/// * stands for any characters, ? for one byte.
bool matchesPattern(std::string_view name, std::string_view pattern);

} // namespace tamlo::cli
