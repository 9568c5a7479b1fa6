// Preferences that outlive a run: texts by key in the file "preferences" of the user's folder, a line
// "key=value" each.
#pragma once

#include <optional>
#include <string>

namespace tamlo::platform {

/// The stored text; absent when there is none, or no file that can be read.
std::optional<std::string> preference(const std::string& key);

/// Stores a text, or removes it when absent; all other keys stay. Line feeds in the value become blanks.
/// Errors: PlatformError with the system's reason; the file is then as it was.
void setPreference(const std::string& key, const std::optional<std::string>& value);

} // namespace tamlo::platform
