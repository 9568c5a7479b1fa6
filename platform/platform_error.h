// The one error of the platform layer: an operation of the system or of a library failed.
// It carries the reason alone; the caller knows the file and the step and says them to the user.
#pragma once

#include <stdexcept>

namespace tamlo::platform {

struct PlatformError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

} // namespace tamlo::platform
