// Noise along a closed line: the ragged edge of a brushed coat, the filed edge of a negative carrier. A line
// has the same number of draws whatever its length in pixels, so that a preview has the edges of the file.
#pragma once

#include "core/image/plane.h"
#include "core/image/random.h"

#include <cstdint>
#include <vector>

namespace tamlo {

/// Normals of a line.
inline constexpr std::int64_t kLineDraws = 2048;

/// Normals round a closed line under a Gaussian. Shape: kLineDraws × 1. Units: sigma in draws.
Plane smoothNormals(double sigma, GrainRNG& rng);

/// The line read at each of `length` pixels, times scale.
std::vector<float> readAlong(const Plane& line, std::int64_t length, double scale);

/// Smooth normals at unit deviation, read at each of `length` pixels; an even line stays as it is.
std::vector<float> unitNoise1D(std::int64_t length, double sigma, GrainRNG& rng);

} // namespace tamlo
