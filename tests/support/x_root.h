// The root window of the X server that the tests run on, spoken to as another program would.
#pragma once

#include <cstdint>
#include <vector>

namespace tamlo::test {

/// Sets, or with no bytes removes, the profile of the first screen.
void setRootProfile(const std::vector<std::uint8_t>& bytes);

} // namespace tamlo::test
