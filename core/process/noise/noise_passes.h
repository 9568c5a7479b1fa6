// Passes of the noise fields (noise_fields.h), in vector code with run-time dispatch.
#pragma once

#include <cstdint>
#include <span>

namespace tamlo {

/// The part of gaussNoise's hash that depends on the column alone, for columns first ... first +
/// columns.size() - 1.
void noise_columns(std::span<std::uint32_t> columns, std::uint32_t seed, std::int64_t first = 0) noexcept;
/// gaussNoise along row y from noise_columns.
void virtual_noise(float* to, std::span<const std::uint32_t> columns, std::int64_t y,
                   std::uint32_t layer) noexcept;

/// Sums of v - shift and its square over a run, in 64-bit floats.
struct RunSums {
    double sum = 0.0;
    double squares = 0.0;
};
RunSums field_sums(const float* run, std::int64_t count, float shift) noexcept;

/// to = (a - b) over a run.
void subtract_run(float* to, const float* a, const float* b, std::int64_t count) noexcept;

/// What lattice_row may read behind the last node of a line.
inline constexpr std::int64_t kNodesBeyond = 64;

/// Nodes of a line read between first and first + 1 at a share: nodes[first] + (the next - it) × share.
/// `first` rises along the run.
void lattice_row(float* to, const float* nodes, const std::int32_t* first, const float* share,
                 std::int64_t count) noexcept;

/// values × factor over a run.
void scale_run(float* values, float factor, std::int64_t count) noexcept;

} // namespace tamlo
