#include "core/process/press/am_screen.h"

#include <array>
#include <cmath>
#include <numbers>

namespace tamlo {
namespace {

constexpr std::size_t kSteps = 1024;

/// The cosines in rising order. Their halves mirror each other to the bit, so that pairs that add to 0 do.
std::array<double, kSteps> sortedCosines()
{
    std::array<double, kSteps> out{};
    for (std::size_t i = 0; i < kSteps / 4; ++i) {
        const double value = std::cos(2.0 * std::numbers::pi * (static_cast<double>(i) + 0.5) / kSteps);
        // Each value stands four times in a turn: at i and kSteps - 1 - i, and negated in the other half.
        out[2 * i] = out[2 * i + 1] = -value;
        out[kSteps - 1 - 2 * i] = out[kSteps - 2 - 2 * i] = value;
    }
    return out;
}

std::vector<float> distribution()
{
    const std::array<double, kSteps> cosines = sortedCosines();
    std::vector<float> out(static_cast<std::size_t>(ReproPrint::kScreenEntries));
    for (std::size_t n = 0; n < out.size(); ++n) {
        const double height = -2.0 + static_cast<double>(n) * 4.0 / 4096.0;
        std::size_t pairs = 0, below = kSteps;
        for (const double first : cosines) {
            while (below > 0 && first + cosines[below - 1] > height) --below;
            pairs += below;
        }
        out[n] = static_cast<float>(static_cast<double>(pairs) / (kSteps * kSteps));
    }
    return out;
}

} // namespace

const std::vector<float>& ReproPrint::amCDF()
{
    static const std::vector<float> kTable = distribution();
    return kTable;
}

} // namespace tamlo
