#include "core/process/press/coverage_rows.h"

#include "core/process/press/separation_passes.h"

#include <algorithm>

namespace tamlo {
namespace {

/// A vector of any target reads this far past a row's last sample.
constexpr std::int64_t kVectorReach = 64;

} // namespace

CoverageRows::CoverageRows(const GrownRows& picture, const ReproPrint::Separation& separation,
                           std::int64_t first, std::int64_t held, std::int64_t margin)
    : reader_(picture),
      separation_(separation),
      width_(picture.size().width),
      next_(first),
      held_(held),
      margin_(margin),
      stride_(width_ + 2 * margin + kVectorReach),
      ring_(static_cast<std::size_t>(held * stride_) * ReproPrint::kInkCount)
{}

float* CoverageRows::at(std::size_t ink, std::int64_t y) const
{
    const auto slot = static_cast<std::int64_t>(ink) * held_ + y % held_;
    return ring_.data() + slot * stride_ + margin_;
}

const float* CoverageRows::row(std::size_t ink, std::int64_t y) const
{
    return at(ink, y);
}

void CoverageRows::ensure(std::int64_t y)
{
    for (; next_ <= y; ++next_) make(next_);
}

void CoverageRows::make(std::int64_t y)
{
    CoverageRow rows{};
    for (std::size_t ink = 0; ink < ReproPrint::kInkCount; ++ink) rows[ink] = at(ink, y);
    repro_separate(reader_.row(y), rows, width_, separation_);
    for (std::size_t ink = separation_.blackOnly ? ReproPrint::kBlack : 0; ink < ReproPrint::kInkCount;
         ++ink) {
        std::fill_n(rows[ink] - margin_, margin_, rows[ink][0]);
        std::fill_n(rows[ink] + width_, margin_ + kVectorReach, rows[ink][width_ - 1]);
    }
}

} // namespace tamlo
