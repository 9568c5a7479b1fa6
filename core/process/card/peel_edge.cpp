#include "core/process/card/peel_edge.h"

#include "core/image/gaussian.h"

#include <algorithm>
#include <cmath>

namespace tamlo {
namespace {

/// Deviation round the mean.
double deviationOf(const std::vector<float>& line)
{
    double sum = 0.0, squares = 0.0;
    for (const float v : line) sum += v;
    const double mean = sum / static_cast<double>(line.size());
    for (const float v : line) squares += (v - mean) * (v - mean);
    return std::sqrt(squares / static_cast<double>(line.size()));
}

/// The line under a Gaussian; only what lies `pad` inside its ends.
std::vector<float> smoothed(const std::vector<float>& noise, double sigma, std::int64_t pad)
{
    const std::vector<double> half = gaussianHalfKernel(sigma);
    const auto radius = static_cast<std::int64_t>(half.size()) - 1;
    const auto n = static_cast<std::int64_t>(noise.size());
    const auto at = [&](std::int64_t i) { return noise[static_cast<std::size_t>(reflectIndex(i, n))]; };
    std::vector<float> out(static_cast<std::size_t>(n - 2 * pad));
    for (std::size_t i = 0; i < out.size(); ++i) {
        const std::int64_t centre = static_cast<std::int64_t>(i) + pad;
        double sum = half[0] * at(centre);
        for (std::int64_t k = 1; k <= radius; ++k)
            sum += half[static_cast<std::size_t>(k)] * (at(centre - k) + at(centre + k));
        out[i] = static_cast<float>(sum);
    }
    return out;
}

struct Bite {
    double atMm = 0.0, halfMm = 0.0, deepMm = 0.0;
};

void take(std::vector<float>& offsets, double pxMm, const Bite& bite)
{
    const double last = static_cast<double>(offsets.size()) - 1.0;
    const double from = std::max(std::floor(pxMm * (bite.atMm - bite.halfMm) - 0.5), 0.0);
    const double to = std::min(std::ceil(pxMm * (bite.atMm + bite.halfMm) - 0.5), last);
    for (double i = from; i <= to; ++i) {
        const double t = ((i + 0.5) / pxMm - bite.atMm) / bite.halfMm;
        if (1.0 - t * t > 0.0)
            offsets[static_cast<std::size_t>(i)] +=
                static_cast<float>(pxMm * bite.deepMm * std::sqrt(1.0 - t * t));
    }
}

} // namespace

std::vector<float> Pipeline::mmLine(double lengthMm, double ppmm, double sigmaMm, std::int64_t into,
                                    GrainRNG& rng)
{
    constexpr double kLeastNodes = 4.0, kLeastSigma = 0.5, kEven = 1e-6;
    // A length of whole nodes must not come to one more by a rounding.
    const auto n = static_cast<std::int64_t>(std::max(std::ceil(lengthMm * ppmm - 1e-9), kLeastNodes));
    const double sigma = std::max(ppmm * sigmaMm, kLeastSigma);
    const auto pad = static_cast<std::int64_t>(std::ceil(4.0 * sigma));
    std::vector<float> noise(static_cast<std::size_t>(n + 2 * pad));
    for (float& v : noise) v = rng.nextNormal();
    std::vector<float> line = smoothed(noise, sigma, pad);
    const double sd = deviationOf(line);
    for (float& v : line) v = static_cast<float>(v * (sd > kEven ? 1.0 / sd : 1.0 / kEven));

    std::vector<float> out(static_cast<std::size_t>(into));
    const auto node = [&](double i) {
        return line[static_cast<std::size_t>(std::clamp(i, 0.0, static_cast<double>(n - 1)))];
    };
    for (std::size_t i = 0; i < out.size(); ++i) {
        const double at =
            (static_cast<double>(i) + 0.5) / static_cast<double>(into) * static_cast<double>(n) - 0.5;
        const double below = std::floor(at);
        out[i] = node(below) + (node(below + 1.0) - node(below)) * static_cast<float>(at - below);
    }
    return out;
}

std::vector<float> Pipeline::peelEdgeOffsets(std::int64_t length, double pxMm, GrainRNG& rng, double chips,
                                             double lengthMm)
{
    // Measures of the edge of torn packs; millimetres.
    constexpr double kFinePpmm = 20.0, kFineMm = 0.15, kFineDeep = 0.015;
    constexpr double kSlowPpmm = 2.0, kSlowMm = 8.0, kSlowDeep = 0.04;
    constexpr double kGroupsPerMm = 0.06, kSpread = 0.8, kMoreBites = 1.2;
    std::vector<float> offsets = mmLine(lengthMm, kFinePpmm, kFineMm, length, rng);
    const std::vector<float> slow = mmLine(lengthMm, kSlowPpmm, kSlowMm, length, rng);
    for (std::size_t i = 0; i < offsets.size(); ++i)
        offsets[i] = static_cast<float>(pxMm * (kFineDeep * offsets[i] + kSlowDeep * slow[i]));

    const double bad = std::exp(kSpread * rng.nextNormal()); // some edges are clean and some torn
    const std::int64_t groups = poisson(lengthMm * chips * kGroupsPerMm * bad, rng);
    for (std::int64_t g = 0; g < groups; ++g) {
        double at = lengthMm * rng.random();
        const std::int64_t bites = poisson(kMoreBites, rng) + 1;
        for (std::int64_t b = 0; b < bites; ++b) {
            Bite bite{at};
            bite.halfMm = 0.5 * (0.1 + 0.2 * rng.random());
            bite.deepMm = 0.08 + 0.12 * rng.random();
            take(offsets, pxMm, bite);
            at += 0.15 + 0.45 * rng.random();
        }
    }
    return offsets;
}

} // namespace tamlo
