// The titles of a list of projects.
#pragma once

#include <string>
#include <vector>

namespace tamlo {

/// Of each file its name without extension; equal names get as many of their folders, the nearest first, as
/// it takes to tell them apart: "Roll — 2024", "Roll — Paris/2024".
std::vector<std::string> recentTitles(const std::vector<std::string>& paths);

} // namespace tamlo
