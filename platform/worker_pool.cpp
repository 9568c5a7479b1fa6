#include "platform/worker_pool.h"

#include <sched.h>

#include <algorithm>
#include <atomic>

#include <oneapi/tbb/parallel_for.h>

namespace tamlo::platform {
namespace {

int availableCores()
{
    cpu_set_t set;
    CPU_ZERO(&set);
    if (sched_getaffinity(0, sizeof set, &set) != 0) return 1;
    return std::max(CPU_COUNT(&set), 1);
}

std::atomic<int> workerLimit{0}; // 0: none

} // namespace

int activeWorkers()
{
    static const int cores = availableCores();
    const int limit = workerLimit.load(std::memory_order_relaxed);
    return limit > 0 ? limit : cores;
}

void runConcurrently(int iterations, const std::function<void(int)>& work)
{
    if (iterations <= 0) return;
    if (iterations == 1 || activeWorkers() == 1) {
        for (int i = 0; i < iterations; ++i) work(i);
        return;
    }
    // Grain 1 and the simple partitioner: an iteration is a large piece of a picture.
    tbb::parallel_for(
        0, iterations, 1, [&](int i) { work(i); }, tbb::simple_partitioner{});
}

WorkerLimit::WorkerLimit(int count) : previous_(workerLimit.exchange(std::max(count, 1)))
{}

WorkerLimit::~WorkerLimit()
{
    workerLimit.store(previous_);
}

} // namespace tamlo::platform
