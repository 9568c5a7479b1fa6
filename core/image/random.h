// The sequential generator of the stages, the counter-based one of the calibration tables, and the checksum
// that makes a frame's seed of a name. Everything random in a picture repeats: no std:: distribution and no
// clock anywhere. Noise that fills a field is a hash of the position instead: position_hash.h.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace tamlo {

/// 2^64 divided by the golden ratio: the step of SplitMix64.
inline constexpr std::uint64_t kGoldenStep = 0x9E3779B97F4A7C15;

/// The finaliser of SplitMix64. Source: Steele, Lea, Flood, "Fast splittable pseudorandom number generators",
/// OOPSLA 2014, with Stafford's variant 13 of the constants.
std::uint64_t splitMixFinaliser(std::uint64_t z);

/// Sequential generator, xoshiro256** (Blackman, Vigna, "Scrambled linear pseudorandom number generators",
/// 2021). A plain value that one thread owns.
class GrainRNG {
public:
    explicit GrainRNG(std::uint64_t seed);

    std::uint64_t nextUInt64();
    /// Uniform in (0, 1]: never 0, so that its logarithm is finite.
    double random();
    double nextUnit() { return random(); }
    /// Uniform between a and b.
    double uniform(double a, double b);
    /// Integer in lo...hi - 1; lo, without a draw, when that leaves no choice.
    std::int64_t integers(std::int64_t lo, std::int64_t hi);
    /// Standard normal, by Box-Muller in 64-bit floats; every second call returns the pair's other half
    /// without a draw.
    float nextNormal();

private:
    std::uint64_t s0_, s1_, s2_, s3_;
    std::optional<float> spare_;
};

/// Counter-based generator: each sample follows from the seed and its index alone.
class CalibRNG {
public:
    explicit CalibRNG(std::uint64_t seedValue) : seed_(seedValue) {}

    /// A seed from a key of words; 0 for an empty key.
    static std::uint64_t seed(std::span<const std::uint64_t> key);
    /// Samples start ... start + count - 1 of the uniform stream, in [0, 1), multiples of 2^-24.
    static std::vector<float> uniforms(std::uint64_t seed, std::int64_t start, std::int64_t count);
    /// Samples start ... start + count - 1 of the normal stream; sample i takes the uniforms 2i and 2i + 1.
    static std::vector<float> normals(std::uint64_t seed, std::int64_t start, std::int64_t count);

    /// The next count normals of this instance.
    std::vector<float> standardNormal(std::int64_t count);

private:
    std::uint64_t seed_;
    std::int64_t position_ = 0;
};

namespace Pipeline {

/// A Poisson count from the stream, at most 9,999; 0 without a draw when the mean is not above 0.
/// Source: Knuth, "The Art of Computer Programming", vol. 2, 3.4.1, algorithm Q.
std::int64_t poisson(double mean, GrainRNG& rng);

} // namespace Pipeline

namespace FrameSeed {

/// Reflected CRC-32 with polynomial 0xEDB88320 (ISO 3309); 0 for an empty input.
std::uint32_t crc32(std::span<const std::uint8_t> bytes);
/// The same over the bytes of a text.
std::uint32_t crc32(std::string_view text);

} // namespace FrameSeed
} // namespace tamlo
