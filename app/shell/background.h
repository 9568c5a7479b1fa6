// Background: work that waits for disks, away from the main thread, and its results back on it. The work gets
// copies; a result that comes when its receiver has gone is dropped.
#pragma once

#include "platform/job_queue.h"
#include "platform/main_loop.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace tamlo {

class Background {
public:
    Background(platform::MainLoop& loop, std::string name,
               platform::Niceness niceness = platform::Niceness::normal)
        : loop_(loop), queue_(std::move(name), niceness)
    {}

    /// One after the other: `work` on the queue, then `take` with what it gave on the main thread. `work`
    /// must not throw.
    template <typename Work, typename Take>
    void run(Work work, Take take)
    {
        queue_.submit([&loop = loop_, work = std::move(work), take = std::make_shared<Take>(std::move(take)),
                       alive = std::weak_ptr<bool>(alive_)] {
            using Result = decltype(work());
            auto result = std::make_shared<Result>(work());
            loop.post([result, take, alive] {
                if (!alive.expired()) (*take)(std::move(*result));
            });
        });
    }

    /// Waits until the work that was given is done; its results are still to be taken.
    void drain() { queue_.drain(); }

private:
    platform::MainLoop& loop_;
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
    platform::SerialQueue queue_; // last: joined before the rest goes
};

} // namespace tamlo
