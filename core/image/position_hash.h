// Noise as a function of position: stateless 32-bit hashes, so that a field's pixels do not depend on the
// order of computing and bands and tiles have no seams. Two families with constants of their own: gaussNoise,
// a virtual unbounded normal image for each (seed, layer), and growth_*, the sites of growth grain.
// Coordinates are signed, since noise exists at negative positions, and hashed in two's complement.
#pragma once

#include <cmath>
#include <cstdint>

namespace tamlo {

/// Integer finaliser. Source: C. Wellons, "Prospecting for hash functions" (lowbias32).
inline std::uint32_t hash32(std::uint32_t x)
{
    x ^= x >> 16;
    x *= 0x7FEB352D;
    x ^= x >> 15;
    x *= 0x846CA68B;
    x ^= x >> 16;
    return x;
}

/// The upper 24 bits of a hash as a uniform in (0, 1], at the middle of its cell.
inline float growth_unit(std::uint32_t h)
{
    return (static_cast<float>(h >> 8) + 0.5f) * 0x1p-24f;
}

/// Box-Muller in 32-bit floats on two hashes.
inline float hashNormal(std::uint32_t radiusHash, std::uint32_t angleHash)
{
    constexpr float kTwoPi = 6.2831853071795864769f;
    const float r = std::sqrt(-2.0f * std::log(growth_unit(radiusHash)));
    return r * std::cos(kTwoPi * growth_unit(angleHash));
}

/// A standard normal at a pixel.
inline float gaussNoise(std::int32_t x, std::int32_t y, std::uint32_t seed, std::uint32_t layer)
{
    const std::uint32_t a = hash32(static_cast<std::uint32_t>(x) * 0x9E3779B1u + seed * 0x2545F491u);
    const std::uint32_t b = hash32(static_cast<std::uint32_t>(y) * 0x85EBCA77u + layer * 0xC2B2AE3Du + a);
    return hashNormal(b, hash32(b ^ 0x27D4EB2Fu));
}

/// Hash of a grain site; salts tell its independent draws apart.
inline std::uint32_t growth_hash(std::uint32_t seed, std::int32_t x, std::int32_t y, std::uint32_t salt)
{
    std::uint32_t h = static_cast<std::uint32_t>(x) * 0x9E3779B1u;
    h ^= static_cast<std::uint32_t>(y) * 0x85EBCA6Bu;
    h ^= seed * 0xC2B2AE35u;
    h ^= salt * 0x27D4EB2Fu;
    return hash32(h);
}

/// A standard normal at a grain site.
inline float growth_normal(std::uint32_t seed, std::int32_t x, std::int32_t y)
{
    return hashNormal(growth_hash(seed, x, y, 0x5B1), growth_hash(seed, x, y, 0x5B2));
}

} // namespace tamlo
