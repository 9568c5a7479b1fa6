#include "core/image/bands.h"

#include "platform/worker_pool.h"

#include <algorithm>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace tamlo {
namespace {

using Range = std::pair<std::int64_t, std::int64_t>;

std::vector<Range> bandsOf(std::int64_t rows, std::int64_t rowCost, int workers,
                           std::int64_t threshold = kBandCostThreshold)
{
    const platform::WorkerLimit limit(workers);
    std::mutex mutex;
    std::vector<Range> ranges;
    parallelBands(
        rows, rowCost,
        [&](std::int64_t start, std::int64_t end) {
            const std::lock_guard lock(mutex);
            ranges.emplace_back(start, end);
        },
        threshold);
    std::sort(ranges.begin(), ranges.end());
    return ranges;
}

TEST(ParallelBands, SplitsByRowsCostAndWorkers)
{
    EXPECT_EQ(bandsOf(0, 1'000'000, 8), (std::vector<Range>{{0, 0}}));
    EXPECT_EQ(bandsOf(1, 1'000'000, 8), (std::vector<Range>{{0, 1}}));
    EXPECT_EQ(bandsOf(65'535, 1, 8).size(), 1u);
    EXPECT_EQ(bandsOf(65'536, 1, 8).size(), 8u);
    EXPECT_EQ(bandsOf(65'536, 0, 8).size(), 8u); // a row costs at least 1
    EXPECT_EQ(bandsOf(65'536, 1, 1).size(), 1u);
    EXPECT_EQ(bandsOf(65'536, 1, 8, 0x40000).size(), 1u);
    EXPECT_EQ(bandsOf(10, 1'000'000, 8), (std::vector<Range>{{0, 2}, {2, 4}, {4, 6}, {6, 8}, {8, 10}}));
}

TEST(ParallelBands, CoversEveryRowOnce)
{
    for (const int workers : {1, 2, 3, 7, 64})
        for (const std::int64_t rows : {2, 3, 63, 64, 65, 1001}) {
            std::int64_t next = 0;
            for (const auto& [start, end] : bandsOf(rows, 100'000, workers)) {
                EXPECT_EQ(start, next);
                EXPECT_LT(start, end);
                next = end;
            }
            EXPECT_EQ(next, rows);
        }
}

TEST(ParallelBands, SmallWorkStaysOnTheCallingThread)
{
    const auto caller = std::this_thread::get_id();
    parallelBands(100, 600,
                  [&](std::int64_t, std::int64_t) { EXPECT_EQ(std::this_thread::get_id(), caller); });
}

TEST(ParallelBands, AnExceptionCrossesToTheCaller)
{
    const platform::WorkerLimit limit(4);
    EXPECT_THROW(parallelBands(100, 10'000,
                               [](std::int64_t start, std::int64_t) {
                                   if (start > 0) throw std::runtime_error("row");
                               }),
                 std::runtime_error);
}

TEST(ParallelBands, MayBeNested)
{
    const platform::WorkerLimit limit(4);
    std::vector<int> rows(4 * 64, 0);
    parallelBands(4, 100'000, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t i = start; i < end; ++i)
            parallelBands(64, 10'000, [&](std::int64_t first, std::int64_t last) {
                for (std::int64_t j = first; j < last; ++j) ++rows[static_cast<std::size_t>(i * 64 + j)];
            });
    });
    EXPECT_EQ(std::count(rows.begin(), rows.end(), 1), 4 * 64);
}

} // namespace
} // namespace tamlo
