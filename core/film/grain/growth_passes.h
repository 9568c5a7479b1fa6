// Passes of growth grain, in vector code with run-time dispatch. The full path works on rows of sites: noise,
// clump blur, crystals or dye clouds, light through each site, sums per pixel. The aggregate path and the
// density step work on rows of pixels. Every value follows from its own coordinates, by sums of fixed order,
// so that nothing depends on where a row was cut. Rows are padded to kGrowthBlock: the passes write whole
// blocks.
#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace tamlo {

/// Floats to which the rows of the site passes are padded.
inline constexpr std::int64_t kGrowthBlock = 64;
/// Rows that growth_blur_v makes at a time.
inline constexpr std::int64_t kGrowthRows = 4;
/// Factor of a column in the site hash (core/image/position_hash.h).
inline constexpr std::uint32_t kGrowthColumnPrime = 0x9E3779B1u;

/// `count` floats of a row, raised to whole blocks.
inline std::int64_t growthPadded(std::int64_t count)
{
    return (count + kGrowthBlock - 1) / kGrowthBlock * kGrowthBlock;
}

/// A run of sites in one row of the lattice, or of pixels in one row of the frame.
struct GrowthRun {
    const std::uint32_t* columnHash; ///< column × kGrowthColumnPrime, for each place of the run
    std::int32_t y;
    std::int64_t count; ///< of the padded run
};

/// Standard normals at the sites of a run.
void growth_noise(const GrowthRun& run, std::uint32_t seed, float* out) noexcept;

/// Symmetric kernel w[0...radius] along a row: growth_clump_h and growth_dye_h. centre points at the sample
/// of the first output and can be read from -radius to count + radius.
void growth_blur_h(const float* centre, std::span<const float> w, std::int64_t count, float* out) noexcept;

/// The kernel down the columns for kGrowthRows rows: growth_clump_v and growth_dye_v. rows points at the row
/// of the first output and can be read from -radius to kGrowthRows - 1 + radius.
void growth_blur_v(const float* const* rows, std::span<const float> w, std::int64_t count,
                   std::span<float* const, kGrowthRows> out) noexcept;

/// Optical depth of a silver layer at given density.
struct GrowthMuParams {
    float dmin, span;
};
/// Pixel densities to optical depth with fog, in place. count is padded.
void growth_mu(const GrowthMuParams& params, float* pixels, std::int64_t count) noexcept;

/// Where each site of a run stands between two pixels.
struct GrowthColumns {
    const std::int32_t* first;
    const std::int32_t* second;
    const float* weight;
};
/// A row of pixels stretched over the sites of a run, bilinear along x.
void growth_stretch(const float* pixels, const GrowthColumns& columns, std::int64_t count,
                    float* out) noexcept;

/// What lies under a row of sites: two stretched pixel rows, the weight of the lower one, and the clump
/// field.
struct GrowthGround {
    const float* upper;
    const float* lower;
    float weight;
    const float* clump;
};

struct GrowthSilverParams {
    GrowthMuParams mu;
    std::uint32_t seed;
    float q, k, cs;
};
/// Light through the crystals of each site, added to sums.
void growth_sites(const GrowthRun& run, const GrowthGround& ground, const GrowthSilverParams& params,
                  float* sums) noexcept;

struct GrowthDyeParams {
    float dmin, span;
    std::uint32_t seed;
    float delta, cs;
};
/// Density of the dye clouds that begin at each site. out may be the clump row.
void growth_dye(const GrowthRun& run, const GrowthGround& ground, const GrowthDyeParams& params,
                float* out) noexcept;

/// Light through site densities, added to sums.
void growth_dye_reduce(const float* density, std::int64_t count, float* sums) noexcept;

/// Mean over the scale × scale sites of each pixel from sums down its columns.
void growth_pixel_means(const float* sums, std::int64_t scale, std::int64_t pixels, float* out) noexcept;

/// Moments of a silver pixel. weights and nodes are those of the quadrature over the clump field.
struct GrowthAggBWParams {
    GrowthMuParams mu;
    std::uint32_t seed;
    float q, a1, a2;
    float siteShare;  ///< 1 / sites of a pixel
    float clumpShare; ///< share of the clump variance that a pixel keeps
    std::array<float, 8> mods, weights;
};
/// Densities of a row of pixels to transmission with grain. count is padded.
void growth_agg_bw(const GrowthRun& run, const GrowthAggBWParams& params, const float* density,
                   float* out) noexcept;

/// Moments of a dye pixel.
struct GrowthAggColorParams {
    float dmin, span;
    std::uint32_t seed;
    float cloudVariance; ///< delta / K: variance per unit of density
    float clumpVariance; ///< cs² × share: variance per unit of density squared
    std::array<float, 8> nodes, weights;
};
void growth_agg_color(const GrowthRun& run, const GrowthAggColorParams& params, const float* density,
                      float* out) noexcept;

/// Transmission to absolute density, no denser than the film's dmax: dmin - log10(max(T, floorT)).
struct GrowthDensityParams {
    float dmin, floorT;
};
/// `count` pixels; out takes every stride-th float: 1 a plane (growth_density), 3 a channel
/// (growth_density_color).
void growth_density(const GrowthDensityParams& params, std::span<const float> transmission, float* out,
                    std::int64_t stride) noexcept;

} // namespace tamlo
