// A render that nobody waits for ends between two bands, on whichever thread they run.
#include "core/image/bands.h"
#include "core/image/cancellation.h"
#include "core/image/gaussian.h"
#include "core/image/tamlo_error.h"
#include "platform/worker_pool.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace tamlo {
namespace {

constexpr std::int64_t kRows = 4000, kRowCost = 18'000; // 24 megapixels

bool isCancelled(const std::function<void()>& work)
{
    try {
        work();
    } catch (const TamloError& error) {
        return error.kind() == TamloError::Kind::cancelled;
    }
    return false;
}

class Cancellation : public ::testing::TestWithParam<int> {
protected:
    platform::WorkerLimit limit_{GetParam()};
    std::atomic<bool> stop_{false};
    std::function<bool()> asked_ = [this] { return stop_.load(); };
};

TEST_P(Cancellation, EndsSoonAfterTheAnswerChanges)
{
    const CancellationScope scope(asked_);
    std::atomic<std::int64_t> rows{0};
    const bool cancelled = isCancelled([&] {
        parallelBands(kRows, kRowCost, [&](std::int64_t start, std::int64_t end) {
            rows += end - start;
            if (rows >= 500) stop_ = true;
        });
    });
    EXPECT_TRUE(cancelled);
    EXPECT_LE(rows, 500 + 64 * (GetParam() + 1)); // the bands under way were finished
}

TEST_P(Cancellation, ReachesALoopInsideALoop)
{
    const CancellationScope scope(asked_);
    EXPECT_TRUE(isCancelled([&] {
        parallelBands(kRows, kRowCost, [&](std::int64_t, std::int64_t) {
            stop_ = true;
            parallelBands(kRows, kRowCost, [](std::int64_t, std::int64_t) { FAIL() << "a band began"; });
        });
    }));
    EXPECT_TRUE(isCancelled([&] { gaussianFilter(Plane(64, 64), 2.0, EdgeMode::nearest); }));
}

TEST_P(Cancellation, BelongsToTheThreadAndTheScope)
{
    stop_ = true;
    const auto run = [] { parallelBands(kRows, kRowCost, [](std::int64_t, std::int64_t) {}); };
    {
        const CancellationScope outer(asked_);
        std::jthread([&] { EXPECT_FALSE(isCancelled(run)); }).join();
        {
            const CancellationScope wanted([] { return false; });
            EXPECT_FALSE(isCancelled(run));
            const CancellationScope empty({}); // the innermost question still holds
            EXPECT_FALSE(isCancelled(run));
        }
        EXPECT_TRUE(isCancelled(run));
    }
    EXPECT_FALSE(isCancelled(run));
}

INSTANTIATE_TEST_SUITE_P(Workers, Cancellation, ::testing::Values(1, 4));

} // namespace
} // namespace tamlo
