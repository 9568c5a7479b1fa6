// Pictures and comparisons that tests share.
#pragma once

#include "core/image/rgb_image.h"
#include "platform/worker_pool.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>

#include <gtest/gtest.h>

namespace tamlo::test {

/// Repeatable values in 0...1, independent of the program's own generators.
class Lcg {
public:
    explicit Lcg(std::uint32_t seed) : state_(seed) {}
    float next()
    {
        state_ = state_ * 1664525u + 1013904223u;
        return static_cast<float>(state_ >> 8) / 16777216.0f;
    }

private:
    std::uint32_t state_;
};

/// A picture of noise over `stops` stops round middle grey.
inline RGBImage noisePicture(std::int64_t width, std::int64_t height, std::uint32_t seed, float stops = 16.0f)
{
    Lcg random(seed);
    RGBImage image(width, height);
    float* p = image.mutableData();
    for (std::size_t i = 0; i < image.data.size(); ++i)
        p[i] = 0.18f * std::exp2((random.next() - 0.5f) * stops);
    return image;
}

inline bool sameBytes(const FloatBuffer& a, const FloatBuffer& b)
{
    return a.size() == b.size() && (a.empty() || std::memcmp(a.data(), b.data(), a.size() * 4) == 0);
}

inline float worstDifference(const FloatBuffer& a, const FloatBuffer& b)
{
    float worst = a.size() == b.size() ? 0.0f : 1e9f;
    for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i) {
        const float d = std::abs(a[i] - b[i]);
        worst = std::isnan(d) ? 1e9f : std::max(worst, d);
    }
    return worst;
}

/// Two pictures or planes of one size with the same bytes.
template <typename Image>
bool sameBytes(const Image& a, const Image& b)
{
    return a.size() == b.size() && sameBytes(a.data, b.data);
}

/// make() gives the same picture for 1, 2 and 7 workers.
template <typename Make>
void expectSameForAnyWorkers(const Make& make)
{
    const auto once = [&](int workers) {
        const platform::WorkerLimit limit(workers);
        return make();
    };
    const auto reference = once(1);
    for (const int workers : {2, 7})
        EXPECT_TRUE(sameBytes(reference, once(workers))) << workers << " workers";
}

} // namespace tamlo::test
