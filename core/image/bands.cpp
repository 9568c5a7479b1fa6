#include "core/image/bands.h"

#include "platform/worker_pool.h"

#include <algorithm>

namespace tamlo {
namespace {

// A band is the longest time for which a render can't be cancelled, and each begins by fetching the rows
// around it. (taste: 24 megapixels make some sixty bands)
constexpr std::int64_t kBandRows = 64;
constexpr std::int64_t kBandCost = 1 << 20;

} // namespace

void parallelBands(std::int64_t rows, std::int64_t rowCost,
                   const std::function<void(std::int64_t, std::int64_t)>& work, std::int64_t costThreshold)
{
    const std::int64_t cost = std::max<std::int64_t>(rowCost, 1);
    if (rows < 2 || rows * cost < costThreshold) return work(0, rows);
    const std::int64_t workers = std::min<std::int64_t>(rows, platform::activeWorkers());
    const std::int64_t share = (rows + workers - 1) / workers;
    const std::int64_t chunk = std::min(share, std::max(kBandRows, kBandCost / cost));
    const std::int64_t bands = (rows + chunk - 1) / chunk;
    if (bands < 2) return work(0, rows);
    platform::runConcurrently(static_cast<int>(bands), [&](int i) {
        const std::int64_t start = i * chunk;
        work(start, std::min(rows, start + chunk));
    });
}

} // namespace tamlo
