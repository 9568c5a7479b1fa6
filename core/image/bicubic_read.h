// A picture read at any place by the Catmull-Rom kernel (catmull_rom.h) with its edge repeated: four samples
// of a row, or one pixel, at a time in a register of four, which every target of this program has. A position
// is told in pixel numbers: the centre of pixel x lies at x. The result is not clamped.
#pragma once

#include "core/image/catmull_rom.h"
#include "core/image/rgb_image.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace tamlo {

using Float4 = float __attribute__((vector_size(16)));

inline Float4 load4(const float* from)
{
    Float4 out;
    std::memcpy(&out, from, sizeof out);
    return out;
}

/// Where a read begins, and the weights of its four taps.
struct BicubicTap {
    std::int64_t first = 0;
    std::array<float, 4> weights{};

    BicubicTap() = default;
    /// Held a little beyond the edge, where every tap reads the edge itself; NaN reads the first sample.
    BicubicTap(float at, std::int64_t last)
    {
        const float held = at > -4.0f ? std::min(at, static_cast<float>(last) + 4.0f) : -4.0f;
        const float below = std::floor(held);
        first = static_cast<std::int64_t>(below) - 1;
        weights = catmullRom(held - below);
    }
    bool inside(std::int64_t last) const { return first >= 0 && first + 3 <= last; }
};

inline float readBicubic(const Plane& plane, float x, float y)
{
    const std::int64_t lastX = plane.width - 1, lastY = plane.height - 1;
    const BicubicTap across(x, lastX), down(y, lastY);
    Float4 sum{};
    for (std::int64_t j = 0; j < 4; ++j) {
        const float* row = plane.row(std::clamp<std::int64_t>(down.first + j, 0, lastY));
        const float weight = down.weights[static_cast<std::size_t>(j)];
        if (across.inside(lastX)) {
            sum += weight * load4(row + across.first);
            continue;
        }
        Float4 four{};
        for (std::int64_t i = 0; i < 4; ++i)
            four[i] = row[std::clamp<std::int64_t>(across.first + i, 0, lastX)];
        sum += weight * four;
    }
    sum *= load4(across.weights.data());
    return (sum[0] + sum[1]) + (sum[2] + sum[3]);
}

inline Vec3f readBicubic(const RGBImage& image, float x, float y)
{
    const std::int64_t lastX = image.width - 1, lastY = image.height - 1;
    const BicubicTap across(x, lastX), down(y, lastY);
    // A register reads one sample of the next pixel, which must be there.
    const bool inside = across.first >= 0 && across.first + 4 <= lastX;
    Float4 sum{};
    for (std::int64_t j = 0; j < 4; ++j) {
        const float* row = image.row(std::clamp<std::int64_t>(down.first + j, 0, lastY));
        const float weight = down.weights[static_cast<std::size_t>(j)];
        Float4 line{};
        for (std::int64_t i = 0; i < 4; ++i) {
            const float share = across.weights[static_cast<std::size_t>(i)];
            if (inside) {
                line += share * load4(row + (across.first + i) * 3);
                continue;
            }
            const float* p = row + std::clamp<std::int64_t>(across.first + i, 0, lastX) * 3;
            line += share * Float4{p[0], p[1], p[2], 0.0f};
        }
        sum += weight * line;
    }
    return {sum[0], sum[1], sum[2]};
}

} // namespace tamlo
