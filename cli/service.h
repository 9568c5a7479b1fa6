// Service mode: the session without a user, driven by the environment.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tamlo::cli {

/// The exit status of a headless run, where the environment asks for one; none where the program goes on as
/// usual, with "--service" taken out of the arguments.
std::optional<int> serviceRun(std::vector<std::string>& arguments);

} // namespace tamlo::cli
