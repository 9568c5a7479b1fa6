#include "platform/job_queue.h"

#include "platform/checkpoint.h"
#include "platform/work_arena.h"
#include "platform/worker_pool.h"

#include <gtest/gtest.h>

#include <atomic>
#include <latch>
#include <vector>

namespace tamlo::platform {
namespace {

TEST(SerialQueue, RunsOneAfterTheOtherInOrder)
{
    std::vector<int> order;
    SerialQueue queue("tamlo.test");
    for (int i = 0; i < 1'000; ++i) queue.submit([&, i] { order.push_back(i); });
    queue.submit([&] { queue.submit([&] { order.push_back(1'000); }); });
    queue.drain();
    ASSERT_EQ(order.size(), 1'001u);
    for (int i = 0; i <= 1'000; ++i) EXPECT_EQ(order[static_cast<std::size_t>(i)], i);
}

TEST(JobQueue, RunsAsManyAtOnceAsItIsWide)
{
    std::atomic<int> now{0}, most{0}, done{0};
    std::latch three(3);
    JobQueue queue("tamlo.load", 3, Niceness::utility);
    for (int i = 0; i < 60; ++i)
        queue.submit([&, i] {
            const int running = ++now;
            for (int seen = most; seen < running && !most.compare_exchange_weak(seen, running);) {}
            if (i < 3) three.arrive_and_wait(); // hangs unless three run together
            --now;
            ++done;
        });
    queue.drain();
    EXPECT_EQ(most, 3);
    EXPECT_EQ(done, 60);
}

TEST(JobQueue, DropsWhatHasNotBegunAndJoinsWhatHas)
{
    std::atomic<int> done{0};
    auto held = std::make_shared<int>();
    {
        std::latch begun(1), go(1);
        SerialQueue queue("tamlo.test");
        const auto block = [&, held] {
            begun.count_down();
            go.wait();
            ++done;
        };
        queue.submit(block);
        begun.wait();
        for (int i = 0; i < 10; ++i) queue.submit([&, held] { done += 100; });
        queue.dropPending();
        EXPECT_EQ(held.use_count(), 3); // ours, `block` and the running job
        queue.submit([&] { ++done; });
        go.count_down();
        queue.drain();
        EXPECT_EQ(done, 2);
        queue.submit([&, held] { ++done; });
    } // runs it or drops it; nothing is left either way
    EXPECT_EQ(held.use_count(), 1);
    EXPECT_LE(done, 3);
}

TEST(WorkArena, RunsItsLoopsAndTakesTheQuestionAlong)
{
    struct Unwanted {};
    std::atomic<int> sum{0};
    JobQueue queue("tamlo.test", 4);
    for (int job = 0; job < 8; ++job)
        queue.submit([&, job] {
            runIn(job % 2 == 0 ? WorkArena::view : WorkArena::background,
                  [&] { runConcurrently(100, [&](int i) { sum += i; }); });
        });
    queue.drain();
    EXPECT_EQ(sum, 8 * 4'950);
    const std::function<void()> no = [] { throw Unwanted(); };
    const CheckpointScope scope(&no);
    EXPECT_THROW(runIn(WorkArena::view, [] { runConcurrently(2, [](int) { FAIL(); }); }), Unwanted);
}

} // namespace
} // namespace tamlo::platform
