// DeferredCommit: a change that waits a moment, in which the gesture it came from may turn out to be another
// one: the first click of a double click. Main thread only.
#pragma once

#include "platform/main_loop.h"

#include <functional>
#include <utility>

namespace tamlo {

class DeferredCommit {
public:
    explicit DeferredCommit(platform::MainLoop& loop) : loop_(loop) {}

    /// Runs `action` after so many seconds, instead of what was waiting; never once this object has gone.
    void schedule(double seconds, std::function<void()> action)
    {
        item_ = loop_.after(seconds, std::move(action));
    }
    /// What waits doesn't run.
    void cancel() { item_.cancel(); }

private:
    platform::MainLoop& loop_;
    platform::Timer item_;
};

} // namespace tamlo
