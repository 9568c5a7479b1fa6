// MainLoop: the one thread that a session lives on, as its programs see it. Work elsewhere posts its results
// here; delays and repetitions are timers of it. A desktop brings its own; HeadlessLoop is that of a program
// without a screen, and tests run one whose clock they turn by hand.
#pragma once

#include "platform/timer_queue.h"

#include <functional>
#include <memory>

namespace tamlo::platform {

class MainLoop {
public:
    virtual ~MainLoop() = default;

    /// Runs `work` on the main thread, in the order of posting, never inside this call. From any thread.
    virtual void post(std::function<void()> work) = 0;
    /// Runs `work` once, or again and again, until the timer is cancelled or destroyed. On the main thread.
    [[nodiscard]] virtual Timer after(double seconds, std::function<void()> work) = 0;
    [[nodiscard]] virtual Timer every(double seconds, std::function<void()> work) = 0;
    /// Seconds that never run backwards. From any thread.
    virtual double now() const = 0;
    /// The wall clock, seconds since 1970. From any thread.
    virtual double date() const = 0;
    virtual bool isMainThread() const = 0;
};

/// Ends by quit() or when the user asks the process to stop.
class HeadlessLoop : public MainLoop {
public:
    HeadlessLoop();
    ~HeadlessLoop() override;

    void post(std::function<void()> work) override;
    Timer after(double seconds, std::function<void()> work) override;
    Timer every(double seconds, std::function<void()> work) override;
    double now() const override;
    double date() const override;
    bool isMainThread() const override;

    /// Runs on this thread, the one that made the loop, until quit() or a stop signal; what was posted by
    /// then still runs.
    void run();
    /// Runs until the answer, asked after each piece of work, is yes. Returns false where a stop signal came
    /// first.
    bool runUntil(const std::function<bool()>& done);
    /// From any thread.
    void quit();

private:
    struct Inbox;
    bool runReady();
    void sleep();

    std::unique_ptr<Inbox> inbox_;
    TimerQueue timers_;
};

} // namespace tamlo::platform
