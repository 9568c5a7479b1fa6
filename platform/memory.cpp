#include "platform/memory.h"

#include <sys/mman.h>
#include <unistd.h>

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

} // namespace tamlo::platform
