#include "platform/memory.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <string>
#include <system_error>

namespace tamlo::platform {

void* mapPages(std::size_t byteCount) noexcept
{
    void* base = mmap(nullptr, byteCount, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (base == MAP_FAILED) return nullptr;
    // Faulting in 4 KiB pages costs more than a pass over the buffer. The advice may fail; it is only speed.
    madvise(base, byteCount, MADV_HUGEPAGE);
    return base;
}

void unmapPages(void* base, std::size_t byteCount) noexcept
{
    munmap(base, byteCount);
}

double physicalMemoryGB()
{
    const double pages = static_cast<double>(sysconf(_SC_PHYS_PAGES));
    const double pageSize = static_cast<double>(sysconf(_SC_PAGESIZE));
    return pages * pageSize / (1024.0 * 1024.0 * 1024.0);
}

namespace {

namespace fs = std::filesystem;

/// The number in a file of a control group; absent for "max" and for no such file.
std::optional<std::int64_t> limitIn(const fs::path& file)
{
    std::int64_t value = 0;
    if (std::ifstream in(file); in >> value && value > 0) return value;
    return std::nullopt;
}

/// The smallest limit from this process's control group up to the root of the hierarchy.
std::optional<std::int64_t> groupLimit()
{
    const fs::path root = "/sys/fs/cgroup";
    std::optional<std::int64_t> least = limitIn(root / "memory" / "memory.limit_in_bytes");
    std::ifstream groups("/proc/self/cgroup");
    for (std::string line; std::getline(groups, line);) {
        if (!line.starts_with("0::/")) continue; // the unified hierarchy
        for (fs::path group = line.substr(4);; group = group.parent_path()) {
            if (const auto limit = limitIn(root / group / "memory.max"))
                least = std::min(least.value_or(*limit), *limit);
            if (group.empty()) break;
        }
    }
    return least;
}

} // namespace

std::int64_t memoryLimitBytes()
{
    const auto physical =
        static_cast<std::int64_t>(sysconf(_SC_PHYS_PAGES)) * static_cast<std::int64_t>(sysconf(_SC_PAGESIZE));
    return std::min(physical, groupLimit().value_or(physical));
}

std::optional<std::int64_t> freeBytes(const fs::path& folder)
{
    std::error_code problem;
    const fs::space_info space = fs::space(folder, problem);
    return problem ? std::nullopt : std::optional(static_cast<std::int64_t>(space.available));
}

} // namespace tamlo::platform
