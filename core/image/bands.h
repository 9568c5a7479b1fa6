// The band executor: splits rows over the worker pool and joins before it returns.
#pragma once

#include <cstdint>
#include <functional>

namespace tamlo {

/// Below this many units of rows × rowCost a loop stays on the calling thread.
inline constexpr std::int64_t kBandCostThreshold = 65'536;

/// Runs work(start, end) over half-open row ranges that cover 0...rows exactly once. rowCost is the
/// caller's measure of one row, as a rule its width. Bands differ with the number of cores: a result must
/// not depend on where a band starts, and a callback writes its own rows only. Errors: cancelled, before a
/// band begins, when the caller's CancellationScope says so.
void parallelBands(std::int64_t rows, std::int64_t rowCost,
                   const std::function<void(std::int64_t start, std::int64_t end)>& work,
                   std::int64_t costThreshold = kBandCostThreshold);

} // namespace tamlo
