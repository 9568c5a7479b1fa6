// Sums and extremes over a whole frame: 64 chunks of fixed borders, each worked on by one thread, joined in
// chunk order, so that the result is the same for any number of cores (docs/decisions/fixed-chunk-sums.md).
#pragma once

#include "platform/worker_pool.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace tamlo {

inline constexpr int kChunks = 64;

/// What part(start, end) returns for each of 64 half-open ranges that cover 0...n; the last ones may be
/// empty.
template <typename Part>
auto inChunks(std::int64_t n, const Part& part)
{
    std::array<decltype(part(n, n)), kChunks> parts{};
    const std::int64_t chunk = (n + kChunks - 1) / kChunks;
    platform::runConcurrently(kChunks, [&](int i) {
        const std::int64_t start = std::min(n, i * chunk);
        parts[static_cast<std::size_t>(i)] = part(start, std::min(n, start + chunk));
    });
    return parts;
}

/// Mean over n items whose part(start, end) sums items start...end - 1 in 64-bit floats; 0 for none.
template <typename Part>
double meanInChunks(std::int64_t n, const Part& part)
{
    double total = 0.0;
    for (const double sum : inChunks(n, part)) total += sum;
    return total / static_cast<double>(std::max<std::int64_t>(n, 1));
}

} // namespace tamlo
