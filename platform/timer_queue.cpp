#include "platform/timer_queue.h"

#include <algorithm>
#include <cmath>

namespace tamlo::platform {

struct TimerQueue::Entry {
    double due;
    std::optional<double> period;
    std::uint64_t number;
    std::function<void()> work; ///< none: cancelled
};

bool TimerQueue::isLater(const std::shared_ptr<Entry>& a, const std::shared_ptr<Entry>& b)
{
    return std::pair(a->due, a->number) > std::pair(b->due, b->number);
}

void TimerQueue::push(std::shared_ptr<Entry> entry)
{
    heap_.push_back(std::move(entry));
    std::push_heap(heap_.begin(), heap_.end(), isLater);
}

std::shared_ptr<TimerQueue::Entry> TimerQueue::pop()
{
    std::pop_heap(heap_.begin(), heap_.end(), isLater);
    std::shared_ptr<Entry> entry = std::move(heap_.back());
    heap_.pop_back();
    return entry;
}

Timer TimerQueue::add(double due, std::optional<double> period, std::function<void()> work)
{
    auto entry = std::make_shared<Entry>(Entry{due, period, count_++, std::move(work)});
    const std::weak_ptr<Entry> held = entry;
    push(std::move(entry));
    return Timer([held] {
        if (const auto alive = held.lock()) alive->work = nullptr;
    });
}

std::optional<double> TimerQueue::nextDue()
{
    while (!heap_.empty() && !heap_.front()->work) pop();
    return heap_.empty() ? std::nullopt : std::optional(heap_.front()->due);
}

bool TimerQueue::runNext(double now)
{
    const std::optional<double> due = nextDue();
    if (!due || *due > now) return false;
    const std::shared_ptr<Entry> entry = pop();
    const std::function<void()> work = entry->work; // the timer may be cancelled by its own work
    if (entry->period) {
        const double missed = *entry->period > 0 ? std::floor((now - entry->due) / *entry->period) : 0.0;
        entry->due += (missed + 1.0) * *entry->period;
        entry->number = count_++;
        push(entry);
    }
    work();
    return true;
}

} // namespace tamlo::platform
