// What the program carries inside: the JSON files of core/profiles/data, films to presets and the two tables
// of texts, embedded when it is built. It stands below the texts, which are read from it.
#pragma once

#include <map>
#include <string_view>

namespace tamlo::BundledProfiles {

/// "films/portra400.json" to its JSON text.
const std::map<std::string_view, std::string_view>& files();

} // namespace tamlo::BundledProfiles
