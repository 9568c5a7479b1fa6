// Passes of classic grain: hashed noise, its separable blur and the density envelope, fused so that neither
// the noise nor the field ever stands in memory as a picture.
#pragma once

#include "core/image/plane.h"
#include "core/image/rgb_image.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

namespace tamlo {

/// Dependence of grain on density: Selwyn's law, the root of the share of developed grains, with a floor from
/// fog and a fall in the shoulder. Both constants are taste.
struct GrainEnvelope {
    static constexpr float kFogFloor = 0.06f;
    static constexpr float kShoulder = 0.45f;

    float dmin = 0.0f;
    float invSpan = 1.0f;
    /// Amplitude in density times the factor that gives the envelope its value at dmin + 1.0. 0: no grain.
    float scale = 0.0f;

    /// amplitude × env at a density.
    float at(float density) const
    {
        const float dn = std::min(std::max((density - dmin) * invSpan, 0.0f), 1.0f);
        return scale * std::sqrt((dn + kFogFloor) * (1.0f - kShoulder * dn));
    }
};

/// The virtual noise image of one layer and the half kernel that smooths it.
struct GrainField {
    std::uint32_t seed = 0;
    std::uint32_t layer = 0;
    /// w[0] at the centre, w[radius] at both ends, scaled so that the blurred noise has unit variance.
    std::vector<float> rowKernel{1.0f};
    std::vector<float> columnKernel{1.0f};

    std::int64_t radius() const { return static_cast<std::int64_t>(rowKernel.size()) - 1; }
};

/// Writes the field.
void grain_field(Plane& out, const GrainField& field);

/// D + envelope(D) × field, in place.
void grain_bw(Plane& density, const GrainField& field, const GrainEnvelope& envelope);

struct GrainColorParams {
    std::array<GrainField, 3> fields;
    std::array<GrainEnvelope, 3> envelopes;
};

/// The same on three layers; a layer whose scale is 0 stays untouched.
void grain_color(RGBImage& density, const GrainColorParams& params);

} // namespace tamlo
