// Separation (separation.h) along rows, in vector code with run-time dispatch.
#pragma once

#include "core/process/press/separation.h"

#include <array>
#include <cstdint>

namespace tamlo {

/// One row of coverage for each ink.
using CoverageRow = std::array<float*, ReproPrint::kInkCount>;

/// Separates `count` interleaved pixels. Of a blackOnly separation the black row alone is written.
void repro_separate(const float* positive, CoverageRow to, std::int64_t count,
                    const ReproPrint::Separation& separation) noexcept;

} // namespace tamlo
