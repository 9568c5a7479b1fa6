#include "platform/worker_pool.h"

#include "platform/checkpoint.h"

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

#ifdef __SANITIZE_THREAD__
extern "C" void __tsan_acquire(void*);
extern "C" void __tsan_release(void*);
#endif

/// The order that the pool keeps between its caller and its iterations, told to the thread sanitizer, which
/// can't see it inside a library that is not instrumented.
struct Handover {
#ifdef __SANITIZE_THREAD__
    void give()
    {
        __tsan_release(this);
    }
    void take()
    {
        __tsan_acquire(this);
    }
#else
    void give()
    {}
    void take()
    {}
#endif
};

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
        for (int i = 0; i < iterations; ++i) {
            checkpoint();
            work(i);
        }
        return;
    }
    const std::function<void()>* const question = currentCheckpoint();
    // Grain 1 and the simple partitioner: an iteration is a large piece of a picture.
    Handover begin, end;
    begin.give();
    tbb::parallel_for(
        0, iterations, 1,
        [&](int i) {
            begin.take();
            // A worker that waits in one loop may run an iteration of another: each brings its own question.
            const CheckpointScope scope(question);
            checkpoint();
            work(i);
            end.give();
        },
        tbb::simple_partitioner{});
    end.take();
}

WorkerLimit::WorkerLimit(int count) : previous_(workerLimit.exchange(std::max(count, 1)))
{}

WorkerLimit::~WorkerLimit()
{
    workerLimit.store(previous_);
}

} // namespace tamlo::platform
