// Chance that nobody can foretell or repeat: the system's own. For names that must not meet, never for a
// picture.
#pragma once

#include <cstdint>
#include <span>

namespace tamlo::platform {

/// Fills the whole span. Errors: PlatformError with the system's reason.
void fillRandom(std::span<std::uint8_t> bytes);

} // namespace tamlo::platform
