// The environment of the process.
#pragma once

#include <optional>
#include <string>

namespace tamlo::platform {

/// The value of an environment variable; absent when it is not set.
std::optional<std::string> environmentVariable(const std::string& name);

} // namespace tamlo::platform
