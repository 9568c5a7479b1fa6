#include "core/process/crt/scan_lines.h"

#include "core/image/gaussian.h"
#include "core/image/rounding.h"

namespace tamlo {

std::int64_t CRTScreen::lineCount(std::int64_t height, double linePx)
{
    constexpr double kMost = 1e9;
    return std::max<std::int64_t>(pyRound(std::min(static_cast<double>(height) / linePx, kMost)), 1);
}

CRTScreen::DrawnLines::DrawnLines(std::int64_t lines, double linePx, double spot)
    : lines_(lines), linePx_(linePx)
{
    constexpr double kLeastSigmaPx = 0.3;
    kernel_ = gaussianHalfKernel(std::max(linePx * spot, kLeastSigmaPx));
}

CRTScreen::LineMix CRTScreen::DrawnLines::row(std::int64_t y) const
{
    const auto radius = static_cast<std::int64_t>(kernel_.size()) - 1;
    const auto at = [&](std::int64_t distance) {
        const std::int64_t d = std::abs(distance);
        return d <= radius ? kernel_[static_cast<std::size_t>(d)] : 0.0;
    };
    const auto lineOf = [&](std::int64_t row) {
        return static_cast<std::int64_t>(std::floor((static_cast<double>(row) + 0.5) / linePx_ - 0.5));
    };
    LineMix out;
    const std::int64_t from = lineOf(y - radius - 1), to = lineOf(y + radius + 1) + 1;
    out.first = std::clamp<std::int64_t>(from, 0, lines_ - 1);
    const std::int64_t last = std::clamp<std::int64_t>(to, 0, lines_ - 1);
    out.weights.resize(static_cast<std::size_t>(last - out.first + 1));
    for (std::int64_t k = from; k <= to; ++k) {
        const double a = linePx_ * (static_cast<double>(k) + 0.5) - 0.5;
        const double i = std::floor(a), f = a - i;
        const std::int64_t distance = y - static_cast<std::int64_t>(i);
        const double weight = linePx_ * ((1.0 - f) * at(distance) + f * at(distance - 1));
        out.weights[static_cast<std::size_t>(std::clamp<std::int64_t>(k, 0, lines_ - 1) - out.first)] +=
            static_cast<float>(weight);
    }
    return out;
}

} // namespace tamlo
