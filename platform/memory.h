// Memory as the operating system gives it: anonymous private pages for the largest buffers, and the size
// of the machine.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>

namespace tamlo::platform {

/// Maps zeroed, private, read-write pages; the block is told to use huge pages where the system has them.
/// Returns null when the system has no such block.
void* mapPages(std::size_t byteCount) noexcept;

/// Gives the pages of mapPages back to the system at once.
void unmapPages(void* base, std::size_t byteCount) noexcept;

/// Physical memory of the machine in GiB (bytes / 2^30).
double physicalMemoryGB();

/// Bytes that this process may use at most: the machine's, or the limit of the control group that it runs in
/// where that is less.
std::int64_t memoryLimitBytes();

/// Bytes that may still be written to the volume of a folder; absent where the system does not say.
std::optional<std::int64_t> freeBytes(const std::filesystem::path& folder);

} // namespace tamlo::platform
