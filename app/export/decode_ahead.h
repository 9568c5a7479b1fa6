// DecodeAhead: a list of sources made in advance, one after the other on a thread of their own, so that the
// next is being decoded while one is printed. It never holds more than `depth` beside the one in hand.
#pragma once

#include "platform/job_queue.h"

#include <algorithm>
#include <condition_variable>
#include <cstddef>
#include <exception>
#include <functional>
#include <map>
#include <mutex>
#include <utility>

namespace tamlo {

template <typename Value>
class DecodeAhead {
public:
    /// decode: gives the item of an index, or throws what `take` will throw.
    DecodeAhead(std::size_t count, std::size_t depth, std::function<Value(std::size_t)> decode)
        : count_(count), depth_(depth), decode_(std::move(decode))
    {}
    ~DecodeAhead() { finish(); }
    DecodeAhead(const DecodeAhead&) = delete;
    DecodeAhead& operator=(const DecodeAhead&) = delete;

    /// The next item; waits until it is there, and begins those after it. Errors: what decode threw.
    Value take()
    {
        std::unique_lock lock(mutex_);
        schedule(taken_ + 1);
        arrived_.wait(lock, [&] { return ready_.contains(taken_); });
        Item item = std::move(ready_.extract(taken_).mapped());
        schedule(++taken_ + depth_);
        peakAhead_ = std::max(peakAhead_, scheduled_ - taken_);
        lock.unlock();
        if (item.error) std::rethrow_exception(item.error);
        return std::move(item.value);
    }
    /// The next item is not wanted.
    void skip()
    {
        try {
            take();
        } catch (...) {
            // Nor is what was wrong with it.
        }
    }
    /// Waits out what is running, and drops the rest.
    void finish()
    {
        queue_.dropPending();
        queue_.drain();
        const std::lock_guard lock(mutex_);
        ready_.clear();
        scheduled_ = count_;
    }
    std::size_t peakAhead() const { return peakAhead_; }

private:
    struct Item {
        Value value{};
        std::exception_ptr error;
    };

    /// Begins the items below an index.
    void schedule(std::size_t end)
    {
        for (; scheduled_ < std::min(end, count_); ++scheduled_)
            queue_.submit([this, i = scheduled_] {
                Item item;
                try {
                    item.value = decode_(i);
                } catch (...) {
                    item.error = std::current_exception();
                }
                const std::lock_guard lock(mutex_);
                ready_.emplace(i, std::move(item));
                arrived_.notify_all();
            });
    }

    std::size_t count_, depth_;
    std::function<Value(std::size_t)> decode_;
    std::mutex mutex_; ///< of what follows, but the queue
    std::condition_variable arrived_;
    std::map<std::size_t, Item> ready_;
    std::size_t scheduled_ = 0, taken_ = 0, peakAhead_ = 0;
    platform::SerialQueue queue_{"tamlo.export.decodeAhead"}; // last: joined before the rest goes
};

} // namespace tamlo
