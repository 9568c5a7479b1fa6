// Row passes of the emulsion effects (halation.h, adjacency.h): the light that feeds halation, and the
// additions of a blurred row to the picture.
#pragma once

#include "core/image/rgb_image.h"

#include <cmath>
#include <cstdint>

namespace tamlo {

/// light += gain × glow.
void halation_add(float* light, const float* glow, std::int64_t count, float gain) noexcept;

/// Each channel of interleaved pixels by its gain; count is in pixels, glow has one sample a pixel.
void halation_add_color(float* pixels, const float* glow, std::int64_t count, const Vec3f& gains) noexcept;

/// Local exhaustion of the developer at an edge.
struct AdjacencyParams {
    /// Factor of the difference from the neighbourhood; k × sat where the effect has a ceiling.
    float gain = 0.0f;
    /// 1 / sat; 0 leaves the effect without a ceiling.
    float invSat = 0.0f;

    /// D' of a density and its neighbourhood's mean.
    float at(float density, float blurred) const
    {
        const float difference = density - blurred;
        if (invSat == 0.0f) return density + gain * difference;
        return density + gain * std::tanh(difference * invSat);
    }
};

/// AdjacencyParams::at on a row of samples, in place.
void adjacency_row(float* density, const float* blurred, std::int64_t count,
                   const AdjacencyParams& params) noexcept;

} // namespace tamlo
