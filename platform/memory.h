// Memory as the operating system gives it: anonymous private pages for the largest buffers, and the size
// of the machine.
#pragma once

#include <cstddef>

namespace tamlo::platform {

/// Maps zeroed, private, read-write pages; the block is told to use huge pages where the system has them.
/// Returns null when the system has no such block.
void* mapPages(std::size_t byteCount) noexcept;

/// Gives the pages of mapPages back to the system at once.
void unmapPages(void* base, std::size_t byteCount) noexcept;

/// Physical memory of the machine in GiB (bytes / 2^30).
double physicalMemoryGB();

} // namespace tamlo::platform
