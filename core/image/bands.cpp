#include "core/image/bands.h"

#include "platform/worker_pool.h"

#include <algorithm>

namespace tamlo {

void parallelBands(std::int64_t rows, std::int64_t rowCost,
                   const std::function<void(std::int64_t, std::int64_t)>& work, std::int64_t costThreshold)
{
    if (rows < 2 || rows * std::max<std::int64_t>(rowCost, 1) < costThreshold) return work(0, rows);
    const std::int64_t workers = std::min<std::int64_t>(rows, platform::activeWorkers());
    const std::int64_t chunk = (rows + workers - 1) / workers;
    const std::int64_t bands = (rows + chunk - 1) / chunk;
    if (bands < 2) return work(0, rows);
    platform::runConcurrently(static_cast<int>(bands), [&](int i) {
        const std::int64_t start = i * chunk;
        work(start, std::min(rows, start + chunk));
    });
}

} // namespace tamlo
