// Passes of the filters: plain arithmetic on the floats of a row or a picture, in place, in 32-bit floats.
#pragma once

#include "core/image/rgb_image.h"

#include <cstdint>

namespace tamlo {

/// A graduated filter at one place. Lengths are in halves of the picture's long side.
struct GradParams {
    float centreX, centreY; ///< pixels
    float half;             ///< pixels of half the long side
    float ca, sa, pos;      ///< the line: u = y × ca - x × sa - pos
    float twoEdge;          ///< width of the smooth step
    bool reverse;
    float far;      ///< density left far above the line of a reverse filter
    float revSigma; ///< how it thins away
    Vec3f stops;
};

/// E_c ×= 2^(-f × stops_c), f by the distance from the line.
void in_grad(RGBImage& image, const GradParams& params);

struct RayParams {
    float threshold;
    Vec3f strength; ///< 0 leaves a channel alone
    Vec3f floor;    ///< 0, or the lowest float for a channel that is left alone
};

/// E_c = max(E_c - s_c × max(E_c - threshold, 0) + s_c × add_c, floor_c) on a row of pixels.
void ray_apply(float* light, const float* add, std::int64_t pixels, const RayParams& params);

/// E += gain × glow, for `count` floats.
void diffusion_bloom(float* light, const float* glow, std::int64_t count, float gain);

/// E = E × keep + add for every sample.
void diffusion_haze(RGBImage& image, float keep, float add);

/// Largest of `count` floats, at least 0.
float peak_of(const float* values, std::int64_t count);

} // namespace tamlo
