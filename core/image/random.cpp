#include "core/image/random.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <numbers>

namespace tamlo {
namespace {

constexpr std::uint64_t kMixA = 0xBF58476D1CE4E5B9;
constexpr std::uint64_t kMixB = 0x94D049BB133111EB;

// The finaliser's two multiplications. Streams that keep high bits only do without its last xor-shift, which
// changes the low bits alone.
std::uint64_t mix(std::uint64_t z)
{
    z = (z ^ (z >> 30)) * kMixA;
    return (z ^ (z >> 27)) * kMixB;
}

float calibUniform(std::uint64_t seed, std::int64_t index)
{
    const std::uint64_t z = seed + kGoldenStep + static_cast<std::uint64_t>(index) * kGoldenStep;
    return static_cast<float>(mix(z) >> 40) * 0x1p-24f;
}

constexpr std::array<std::uint32_t, 256> kCrcTable = [] {
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t i = 0; i < 256; ++i) {
        std::uint32_t c = i;
        for (int bit = 0; bit < 8; ++bit) c = (c & 1) != 0 ? (c >> 1) ^ 0xEDB88320 : c >> 1;
        table[i] = c;
    }
    return table;
}();

} // namespace

std::uint64_t splitMixFinaliser(std::uint64_t z)
{
    z = mix(z);
    return z ^ (z >> 31);
}

GrainRNG::GrainRNG(std::uint64_t seed)
    : s0_(splitMixFinaliser(seed + 2 * kGoldenStep)),
      s1_(splitMixFinaliser(seed + 3 * kGoldenStep)),
      s2_(splitMixFinaliser(seed + 4 * kGoldenStep)),
      s3_(splitMixFinaliser(seed + 5 * kGoldenStep))
{}

std::uint64_t GrainRNG::nextUInt64()
{
    const std::uint64_t result = std::rotl(s1_ * 5, 7) * 9;
    const std::uint64_t t = s1_ << 17;
    s2_ ^= s0_;
    s3_ ^= s1_;
    s1_ ^= s2_;
    s0_ ^= s3_;
    s2_ ^= t;
    s3_ = std::rotl(s3_, 45);
    return result;
}

double GrainRNG::random()
{
    return static_cast<double>((nextUInt64() >> 11) + 1) * 0x1p-53;
}

double GrainRNG::uniform(double a, double b)
{
    return a + (b - a) * random();
}

std::int64_t GrainRNG::integers(std::int64_t lo, std::int64_t hi)
{
    if (hi - lo < 2) return lo;
    return lo + static_cast<std::int64_t>(nextUInt64() % static_cast<std::uint64_t>(hi - lo));
}

float GrainRNG::nextNormal()
{
    if (spare_) {
        const float value = *spare_;
        spare_.reset();
        return value;
    }
    const double u1 = random();
    const double u2 = random();
    const double r = std::sqrt(-2.0 * std::log(u1));
    spare_ = static_cast<float>(r * std::sin(2.0 * std::numbers::pi * u2));
    return static_cast<float>(r * std::cos(2.0 * std::numbers::pi * u2));
}

std::uint64_t CalibRNG::seed(std::span<const std::uint64_t> key)
{
    std::uint64_t h = 0;
    for (const std::uint64_t word : key) h = splitMixFinaliser(word ^ (h + kGoldenStep));
    return h;
}

std::vector<float> CalibRNG::uniforms(std::uint64_t seed, std::int64_t start, std::int64_t count)
{
    std::vector<float> out(static_cast<std::size_t>(count));
    for (std::int64_t i = 0; i < count; ++i) out[static_cast<std::size_t>(i)] = calibUniform(seed, start + i);
    return out;
}

std::vector<float> CalibRNG::normals(std::uint64_t seed, std::int64_t start, std::int64_t count)
{
    std::vector<float> out(static_cast<std::size_t>(count));
    for (std::int64_t i = 0; i < count; ++i) {
        const double a = std::max<double>(calibUniform(seed, 2 * (start + i)), 0x1p-24);
        const double b = calibUniform(seed, 2 * (start + i) + 1);
        out[static_cast<std::size_t>(i)] =
            static_cast<float>(std::sqrt(-2.0 * std::log(a)) * std::cos(2.0 * std::numbers::pi * b));
    }
    return out;
}

std::vector<float> CalibRNG::standardNormal(std::int64_t count)
{
    std::vector<float> out = normals(seed_, position_, count);
    position_ += count;
    return out;
}

std::int64_t Pipeline::poisson(double mean, GrainRNG& rng)
{
    if (!(mean > 0.0)) return 0;
    constexpr std::int64_t kMost = 9999;
    const double limit = std::exp(-mean);
    double p = 1.0;
    std::int64_t k = -1;
    do {
        ++k;
        p *= rng.random();
    } while (limit < p && k < kMost);
    return k;
}

std::uint32_t FrameSeed::crc32(std::span<const std::uint8_t> bytes)
{
    std::uint32_t c = 0xFFFFFFFF;
    for (const std::uint8_t byte : bytes) c = kCrcTable[(c ^ byte) & 0xFF] ^ (c >> 8);
    return ~c;
}

std::uint32_t FrameSeed::crc32(std::string_view text)
{
    return crc32(std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
}

} // namespace tamlo
