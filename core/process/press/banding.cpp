#include "core/process/press/banding.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tamlo {
namespace {

constexpr double kMostPx = 1e9; // where a length that a profile names stops to grow
constexpr double kMostFactor = 1e6;
constexpr double kSeamDrops = 0.6; // sigma of a seam in drops
constexpr double kTurn = 6.28;     // range of the ripple's phase

} // namespace

std::vector<float> ReproPrint::banding(std::int64_t lines, double pxUm, const InkjetParams& inkjet,
                                       GrainRNG& rng, double amount)
{
    const double p = std::max(pxUm, 1e-6), a = std::max(amount, 0.0);
    const double swathPx = std::clamp(inkjet.swathMm.value_or(6.0) * 1000.0 / p, 2.0, kMostPx);
    const double dropPx = std::clamp(inkjet.dropUm.value_or(45.0) / p, 1.0, kMostPx);
    const double nozzlePx = std::clamp(inkjet.nozzleMm.value_or(0.35) * 1000.0 / p, 1.0, kMostPx);
    const double seamAmp = inkjet.seamAmp.value_or(0.08), ripple = inkjet.ripple.value_or(0.006);
    const auto passOf = [&](std::int64_t line) {
        return static_cast<std::size_t>(std::floor(static_cast<double>(line) / swathPx));
    };

    std::vector<double> gains(lines > 0 ? passOf(lines - 1) + 1 : 0), signs(gains.size(), 0.0);
    for (double& gain : gains) gain = 1.0 + inkjet.passVar.value_or(0.015) * a * rng.nextNormal();
    if (seamAmp > 0.0)
        for (double& sign : signs) sign = rng.random() < 0.5 ? -1.0 : 1.0;
    const double phase = ripple > 0.0 ? kTurn * rng.random() : 0.0;

    std::vector<float> out(static_cast<std::size_t>(lines));
    for (std::int64_t i = 0; i < lines; ++i) {
        const std::size_t pass = passOf(i);
        double factor = gains[pass];
        const double z =
            (static_cast<double>(i) - swathPx * static_cast<double>(pass)) / (kSeamDrops * dropPx);
        factor *= 1.0 + seamAmp * a * signs[pass] * std::exp(-0.5 * z * z);
        if (ripple > 0.0)
            factor *= 1.0 + a * ripple *
                                std::sin(phase + 2.0 * std::numbers::pi * static_cast<double>(i) / nozzlePx);
        out[static_cast<std::size_t>(i)] =
            factor > 0.0 ? static_cast<float>(std::min(factor, kMostFactor)) : 0.0f;
    }
    return out;
}

} // namespace tamlo
