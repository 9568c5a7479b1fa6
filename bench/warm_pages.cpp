// Buffers that keep their pages from one round of a bench to the next. What the kernel takes to hand out
// fresh pages depends on the machine's whole memory and changes severalfold from one minute to the next, so
// that a pass is timed without it: the linker puts these functions in place of the mapping and unmapping of
// large buffers. A block is cleared when it comes back, since a fresh one is zeros, and the time of that is
// told apart (unit_e.h).
#include "bench/unit_e.h"

#include <cstring>
#include <map>
#include <mutex>

namespace {

constexpr std::size_t kMostBytes = std::size_t{3}
                                   << 30; // what is kept; beyond it the system has its pages back

std::mutex guard;
std::multimap<std::size_t, void*> blocks;
std::size_t keptBytes = 0;

double threadSeconds()
{
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) + 1e-9 * static_cast<double>(t.tv_nsec);
}

/// Zeros, not counted as work of the bench.
void clear(void* base, std::size_t byteCount)
{
    const double start = threadSeconds();
    std::memset(base, 0, byteCount);
    const std::lock_guard lock(guard);
    tamlo::bench::clearingSeconds += threadSeconds() - start;
}

} // namespace

extern "C" {

void* __real__ZN5tamlo8platform8mapPagesEm(std::size_t byteCount) noexcept;
void __real__ZN5tamlo8platform10unmapPagesEPvm(void* base, std::size_t byteCount) noexcept;

void* __wrap__ZN5tamlo8platform8mapPagesEm(std::size_t byteCount) noexcept
{
    {
        const std::lock_guard lock(guard);
        if (const auto kept = blocks.find(byteCount); kept != blocks.end()) {
            void* base = kept->second;
            blocks.erase(kept);
            keptBytes -= byteCount;
            return base;
        }
    }
    void* base = __real__ZN5tamlo8platform8mapPagesEm(byteCount);
    if (base) clear(base, byteCount);
    return base;
}

void __wrap__ZN5tamlo8platform10unmapPagesEPvm(void* base, std::size_t byteCount) noexcept
{
    clear(base, byteCount);
    {
        const std::lock_guard lock(guard);
        if (keptBytes + byteCount <= kMostBytes) {
            keptBytes += byteCount;
            blocks.emplace(byteCount, base);
            return;
        }
    }
    __real__ZN5tamlo8platform10unmapPagesEPvm(base, byteCount);
}
}
