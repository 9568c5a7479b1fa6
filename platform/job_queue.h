// Queues of work beside the main thread: jobs start in the order in which they were given, as many at once as
// the queue is wide. For jobs that wait for disks or for a render; inside a render the worker pool divides.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace tamlo::platform {

/// utility: yields the processor to everything else.
enum class Niceness { normal, utility };

class JobQueue {
public:
    /// name: of its threads, as debuggers show it.
    JobQueue(std::string name, std::size_t width, Niceness niceness = Niceness::normal);
    /// Drops what has not begun and waits for what has.
    ~JobQueue();
    JobQueue(const JobQueue&) = delete;
    JobQueue& operator=(const JobQueue&) = delete;

    /// A job must not throw. From any thread, a job's own among them.
    void submit(std::function<void()> job);
    /// Forgets the jobs that have not begun.
    void dropPending();
    /// Waits until nothing is pending or running. Not from a job.
    void drain();

private:
    void work();

    std::string name_;
    std::size_t width_;
    Niceness niceness_;
    std::mutex mutex_;
    std::condition_variable given_, idle_;
    std::deque<std::function<void()>> pending_;
    std::size_t running_ = 0, waiting_ = 0;
    bool ends_ = false;
    std::vector<std::jthread> threads_; // last: joined before the rest goes
};

/// One job at a time.
class SerialQueue : public JobQueue {
public:
    explicit SerialQueue(std::string name, Niceness niceness = Niceness::normal)
        : JobQueue(std::move(name), 1, niceness)
    {}
};

} // namespace tamlo::platform
