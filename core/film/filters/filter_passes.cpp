#include "core/film/filters/filter_passes.h"

#include "core/image/bands.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace tamlo {
namespace {

/// Transmission of the three channels at distance u from the line, above it negative.
Vec3f gradTransmission(float u, const GradParams& params)
{
    const float t = std::clamp(0.5f - u / params.twoEdge, 0.0f, 1.0f);
    float f = t * t * (3.0f - 2.0f * t);
    if (f == 0.0f) return {1.0f, 1.0f, 1.0f};
    if (params.reverse) {
        const float q = std::max(-u, 0.0f) / params.revSigma;
        f *= params.far + (1.0f - params.far) * std::exp(-q * q);
    }
    const float first = std::exp2(-f * params.stops[0]);
    if (params.stops[1] == params.stops[0] && params.stops[2] == params.stops[0])
        return {first, first, first};
    return {first, std::exp2(-f * params.stops[1]), std::exp2(-f * params.stops[2])};
}

/// A row along which the filter is of one density.
void gradEvenRow(float* p, std::int64_t width, const Vec3f& transmission)
{
    for (const float* last = p + width * 3; p != last; p += 3)
        for (std::size_t c = 0; c < 3; ++c) p[c] *= transmission[c];
}

void gradRow(float* p, std::int64_t width, float yy, const GradParams& params)
{
    const float base = yy * params.ca;
    const auto distance = [&](std::int64_t x) {
        const float xx = (static_cast<float>(x) - params.centreX) / params.half;
        return base - xx * params.sa - params.pos;
    };
    if (params.sa == 0.0f) return gradEvenRow(p, width, gradTransmission(distance(0), params));

    // Clear glass and, but for a reverse filter, full density need no power for each pixel.
    const Vec3f full = gradTransmission(-params.twoEdge, params);
    for (std::int64_t x = 0; x < width; ++x, p += 3) {
        const float u = distance(x);
        if (0.5f - u / params.twoEdge <= 0.0f) continue;
        const bool isFull = !params.reverse && 0.5f - u / params.twoEdge >= 1.0f;
        const Vec3f transmission = isFull ? full : gradTransmission(u, params);
        for (std::size_t c = 0; c < 3; ++c) p[c] *= transmission[c];
    }
}

} // namespace

void in_grad(RGBImage& image, const GradParams& params)
{
    float* data = image.mutableData();
    const std::int64_t width = image.width;
    parallelBands(image.height, width * 3, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t y = start; y < end; ++y)
            gradRow(data + y * width * 3, width, (static_cast<float>(y) - params.centreY) / params.half,
                    params);
    });
}

void ray_apply(float* light, const float* add, std::int64_t pixels, const RayParams& params)
{
    for (std::int64_t i = 0; i < pixels; ++i, light += 3, add += 3)
        for (std::size_t c = 0; c < 3; ++c) {
            const float taken = params.strength[c] * std::max(light[c] - params.threshold, 0.0f);
            const float v = light[c] - taken + params.strength[c] * add[c];
            light[c] = std::max(v, params.floor[c]);
        }
}

void diffusion_bloom(float* light, const float* glow, std::int64_t count, float gain)
{
    for (std::int64_t i = 0; i < count; ++i) light[i] += gain * glow[i];
}

void diffusion_haze(RGBImage& image, float keep, float add)
{
    float* data = image.mutableData();
    const std::int64_t samples = image.width * 3;
    parallelBands(image.height, samples, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t i = start * samples; i < end * samples; ++i) data[i] = data[i] * keep + add;
    });
}

float peak_of(const float* values, std::int64_t count)
{
    constexpr std::int64_t kLanes = 16; // side by side, since the compiler may not reorder one maximum
    std::array<float, kLanes> lanes{};
    std::int64_t i = 0;
    for (; i + kLanes <= count; i += kLanes)
        for (std::int64_t k = 0; k < kLanes; ++k) {
            float& lane = lanes[static_cast<std::size_t>(k)];
            lane = lane < values[i + k] ? values[i + k] : lane;
        }
    float peak = *std::max_element(lanes.begin(), lanes.end());
    for (; i < count; ++i) peak = peak < values[i] ? values[i] : peak;
    return peak;
}

} // namespace tamlo
