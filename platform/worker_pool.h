// The worker pool: runs a number of independent iterations on all cores and joins before it returns.
#pragma once

#include <functional>

namespace tamlo::platform {

/// Number of workers that runConcurrently spreads over: the cores this process may run on, or the limit
/// in force.
int activeWorkers();

/// Runs work(0) ... work(iterations - 1) on the pool and returns when all are done. Iterations run in any
/// order; the first exception thrown by one is rethrown here. May be nested. Each iteration asks the caller's
/// checkpoint before it begins.
void runConcurrently(int iterations, const std::function<void(int)>& work);

/// While it lives, activeWorkers() answers `count` in the whole process. For tests, which prove that a
/// result does not depend on the number of cores, and for benchmarks on one core.
class WorkerLimit {
public:
    explicit WorkerLimit(int count);
    ~WorkerLimit();
    WorkerLimit(const WorkerLimit&) = delete;
    WorkerLimit& operator=(const WorkerLimit&) = delete;

private:
    int previous_;
};

} // namespace tamlo::platform
