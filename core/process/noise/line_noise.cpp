#include "core/process/noise/line_noise.h"

#include "core/image/gaussian.h"

#include <cmath>

namespace tamlo {

Plane smoothNormals(double sigma, GrainRNG& rng)
{
    Plane line(kLineDraws, 1);
    float* values = line.mutableData();
    for (std::int64_t i = 0; i < kLineDraws; ++i) values[i] = rng.nextNormal();
    return gaussianFilter1D(std::move(line), sigma, FilterAxis::x, EdgeMode::wrap);
}

std::vector<float> readAlong(const Plane& line, std::int64_t length, double scale)
{
    std::vector<float> out(static_cast<std::size_t>(length));
    const auto wrapped = [](std::int64_t i) { return (i % kLineDraws + kLineDraws) % kLineDraws; };
    for (std::size_t i = 0; i < out.size(); ++i) {
        const double at =
            (static_cast<double>(i) + 0.5) / static_cast<double>(length) * static_cast<double>(kLineDraws) -
            0.5;
        const double below = std::floor(at);
        const auto first = static_cast<std::int64_t>(below);
        out[i] = static_cast<float>(scale * std::lerp(static_cast<double>(line.at(wrapped(first), 0)),
                                                      static_cast<double>(line.at(wrapped(first + 1), 0)),
                                                      at - below));
    }
    return out;
}

std::vector<float> unitNoise1D(std::int64_t length, double sigma, GrainRNG& rng)
{
    constexpr double kEven = 1e-6;
    const Plane line = smoothNormals(sigma, rng);
    const double sd = line.std();
    return readAlong(line, length, sd > kEven ? 1.0 / sd : 1.0);
}

} // namespace tamlo
