#include "platform/console.h"
#include "platform/main_loop.h"
#include "platform/wake_event.h"

#include <algorithm>
#include <chrono>
#include <deque>
#include <mutex>
#include <thread>

namespace tamlo::platform {

/// What other threads reach.
struct HeadlessLoop::Inbox {
    std::thread::id thread = std::this_thread::get_id();
    WakeEvent wake;
    std::mutex mutex;
    std::deque<std::function<void()>> posted;
    bool quits = false;
};

HeadlessLoop::HeadlessLoop() : inbox_(std::make_unique<Inbox>())
{}

HeadlessLoop::~HeadlessLoop() = default;

void HeadlessLoop::post(std::function<void()> work)
{
    {
        const std::lock_guard lock(inbox_->mutex);
        inbox_->posted.push_back(std::move(work));
    }
    inbox_->wake.set();
}

Timer HeadlessLoop::after(double seconds, std::function<void()> work)
{
    return timers_.add(now() + std::max(seconds, 0.0), std::nullopt, std::move(work));
}

Timer HeadlessLoop::every(double seconds, std::function<void()> work)
{
    return timers_.add(now() + seconds, seconds, std::move(work));
}

double HeadlessLoop::now() const
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

double HeadlessLoop::date() const
{
    return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

bool HeadlessLoop::isMainThread() const
{
    return std::this_thread::get_id() == inbox_->thread;
}

void HeadlessLoop::quit()
{
    {
        const std::lock_guard lock(inbox_->mutex);
        inbox_->quits = true;
    }
    inbox_->wake.set();
}

void HeadlessLoop::run()
{
    runUntil([this] {
        const std::lock_guard lock(inbox_->mutex);
        return inbox_->quits && inbox_->posted.empty();
    });
    const std::lock_guard lock(inbox_->mutex);
    inbox_->quits = false;
}

bool HeadlessLoop::runUntil(const std::function<bool()>& done)
{
    while (!done()) {
        if (stopRequested()) return false;
        if (!runReady()) sleep();
    }
    return true;
}

/// One timer and one piece of posted work, so that neither kind keeps the other waiting.
bool HeadlessLoop::runReady()
{
    std::function<void()> work;
    {
        const std::lock_guard lock(inbox_->mutex);
        if (!inbox_->posted.empty()) {
            work = std::move(inbox_->posted.front());
            inbox_->posted.pop_front();
        }
    }
    const bool timerRan = timers_.runNext(now());
    if (work) work();
    return work || timerRan;
}

void HeadlessLoop::sleep()
{
    const std::optional<double> due = timers_.nextDue();
    inbox_->wake.wait(due ? std::optional(std::max(*due - now(), 0.0)) : std::nullopt, stopDescriptor());
}

} // namespace tamlo::platform
