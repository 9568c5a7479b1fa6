// The profiles that the program carries inside: the JSON files of data/, embedded when it is built.
#pragma once

#include <map>
#include <string_view>

namespace tamlo::BundledProfiles {

/// "films/portra400.json" to its JSON text.
const std::map<std::string_view, std::string_view>& files();

} // namespace tamlo::BundledProfiles
