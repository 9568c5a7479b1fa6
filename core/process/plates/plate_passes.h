// Passes of the plates, in vector code with run-time dispatch.
#pragma once

#include "core/image/rgb_image.h"

#include <cmath>
#include <cstdint>
#include <span>

namespace tamlo {

/// to[x] = line[first[x]], and towards the next node by fraction[x].
void grid_row(std::span<float> to, const float* line, std::span<const std::int32_t> first,
              std::span<const float> fraction) noexcept;

/// Thickness of a poured layer along one row, without its wander: a slope of 1 to the far corner and a
/// crescent at `kCrescentAt` of the long side from the corner poured at.
struct PourRow {
    static constexpr float kCrescentAt = 0.16f, kCrescentWidth = 0.07f;

    float level = 1.0f, levelStep = 0.0f;   ///< slope at x = 0 and its step a pixel
    float across = 0.0f, acrossStep = 0.0f; ///< distance from the corner along x, in long sides
    float downSquared = 0.0f;               ///< the same along y, squared
    float crescent = 0.0f;

    float at(float x) const
    {
        const float value = level + levelStep * x;
        if (crescent == 0.0f) return value;
        const float v = across + acrossStep * x;
        const float z = (std::sqrt(downSquared + v * v) - kCrescentAt) / kCrescentWidth;
        return value * (1.0f + crescent * std::exp(-z * z));
    }
};

/// max(PourRow::at + wander, 0) along a row.
void pour_thick(std::span<float> thick, const PourRow& row, const float* wander) noexcept;

/// light × thick.
void multiply_row(std::span<float> light, const float* thick) noexcept;

/// Veil along one row: it gathers toward the plate's edge.
struct VeilRow {
    static constexpr float kEdgeGain = 1.1f;

    float veil = 0.0f;     ///< density
    float edgePx = 0.0f;   ///< distance of the row from the nearer of top and bottom
    float perReach = 1.0f; ///< 1 / reach of the edge, per pixel

    float at(float fromSide, float field, float thick) const
    {
        const float u = std::fmin(std::fmax(1.0f - std::fmin(edgePx, fromSide) * perReach, 0.0f), 1.0f);
        return veil * std::fmax(1.0f + field + kEdgeGain * (u * u * (3.0f - 2.0f * u)), 0.0f) * thick;
    }
};

/// density += VeilRow::at along a whole row of the plate.
void plate_veil(std::span<float> density, const VeilRow& row, const float* field,
                const float* thick) noexcept;

/// A plate as the eye sees it: light that its silver scatters over what lies behind.
struct PlateViewParams32 {
    float dmin = 0.0f;
    float scatter = 0.3f;
    float norm = 1.0f; ///< brings the densest silver to 1
    Vec3f base{};
    Vec3f silver{};
    float gain = 1.0f;
};

/// Density to the display-linear positive in three channels, each at least 0.
void plate_view(RGBImage& out, const Plane& density, const PlateViewParams32& params);

} // namespace tamlo
