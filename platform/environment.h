// The environment of the process.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tamlo::platform {

/// The value of an environment variable; absent when it is not set.
std::optional<std::string> environmentVariable(const std::string& name);

/// The languages that the user prefers, best first, as "ru-RU" or "en": the list of LANGUAGE, else that of
/// the locale (LC_ALL, LC_MESSAGES, LANG). Empty in the locale "C".
std::vector<std::string> preferredLanguages();

} // namespace tamlo::platform
