#include "platform/job_queue.h"

#include <pthread.h>
#include <sched.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

namespace tamlo::platform {
namespace {

/// Of the calling thread. What the system refuses is no harm.
void becomeUtility()
{
    constexpr int kNice = 10;
    const sched_param none{};
    ::sched_setscheduler(0, SCHED_BATCH, &none);
    ::setpriority(PRIO_PROCESS, static_cast<id_t>(::gettid()), kNice);
}

void nameThread(const std::string& name)
{
    constexpr std::size_t kLongest = 15;
    ::pthread_setname_np(::pthread_self(), name.substr(0, kLongest).c_str());
}

} // namespace

JobQueue::JobQueue(std::string name, std::size_t width, Niceness niceness)
    : name_(std::move(name)), width_(std::max<std::size_t>(width, 1)), niceness_(niceness)
{}

JobQueue::~JobQueue()
{
    std::deque<std::function<void()>> dropped; // freed outside the lock: a job's captures may submit
    {
        const std::lock_guard lock(mutex_);
        ends_ = true;
        dropped.swap(pending_);
    }
    given_.notify_all();
    threads_.clear();
}

void JobQueue::submit(std::function<void()> job)
{
    {
        const std::lock_guard lock(mutex_);
        if (ends_) return;
        pending_.push_back(std::move(job));
        // Threads begin when they are first needed.
        if (pending_.size() > waiting_ && threads_.size() < width_) threads_.emplace_back([this] { work(); });
    }
    given_.notify_one();
}

void JobQueue::dropPending()
{
    std::deque<std::function<void()>> dropped;
    const std::lock_guard lock(mutex_);
    dropped.swap(pending_);
    if (running_ == 0) idle_.notify_all();
}

void JobQueue::drain()
{
    std::unique_lock lock(mutex_);
    idle_.wait(lock, [this] { return pending_.empty() && running_ == 0; });
}

void JobQueue::work()
{
    nameThread(name_);
    if (niceness_ == Niceness::utility) becomeUtility();
    std::unique_lock lock(mutex_);
    for (;;) {
        ++waiting_;
        given_.wait(lock, [this] { return ends_ || !pending_.empty(); });
        --waiting_;
        if (ends_) return;
        std::function<void()> job = std::move(pending_.front());
        pending_.pop_front();
        ++running_;
        lock.unlock();
        job();
        job = nullptr; // its captures go while it still counts as running
        lock.lock();
        --running_;
        if (pending_.empty() && running_ == 0) idle_.notify_all();
    }
}

} // namespace tamlo::platform
