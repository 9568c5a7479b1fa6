// Timers in the order in which they fall due: what every form of the main loop has inside. One thread's own.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace tamlo::platform {

/// Holds a timer that was set; its end is the timer's end. An empty one holds none.
class Timer {
public:
    Timer() = default;
    ~Timer() { cancel(); }
    Timer(Timer&& other) noexcept : cancel_(std::exchange(other.cancel_, nullptr)) {}
    Timer& operator=(Timer&& other) noexcept
    {
        if (this == &other) return *this;
        cancel();
        cancel_ = std::exchange(other.cancel_, nullptr);
        return *this;
    }
    explicit Timer(std::function<void()> cancel) : cancel_(std::move(cancel)) {}

    /// Its work runs no more. May be called from inside that work.
    void cancel()
    {
        if (const auto cancel = std::exchange(cancel_, nullptr)) cancel();
    }
    /// Lets it run on its own.
    void release() { cancel_ = nullptr; }

private:
    std::function<void()> cancel_;
};

class TimerQueue {
public:
    /// period: absent for a timer that runs once.
    Timer add(double due, std::optional<double> period, std::function<void()> work);
    /// When the next one falls due.
    std::optional<double> nextDue();
    /// Runs the next one if it is due at `now`; timers of one moment run in the order in which they were
    /// set. A repeated timer that has fallen behind leaves out what it missed. Returns whether one ran.
    bool runNext(double now);

private:
    struct Entry;
    static bool isLater(const std::shared_ptr<Entry>& a, const std::shared_ptr<Entry>& b);
    void push(std::shared_ptr<Entry> entry);
    std::shared_ptr<Entry> pop();

    std::vector<std::shared_ptr<Entry>> heap_;
    std::uint64_t count_ = 0;
};

} // namespace tamlo::platform
