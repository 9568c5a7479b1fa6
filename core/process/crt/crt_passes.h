// Passes of the tube (crt_screen.h), in vector code with run-time dispatch.
#pragma once

#include "core/image/rgb_image.h"

#include <array>
#include <cstdint>
#include <span>

namespace tamlo {

/// Sum of a[i] b[i].
float dot_run(const float* a, const float* b, std::int64_t count) noexcept;
/// to += weight × from.
void add_run(float* to, const float* from, float weight, std::int64_t count) noexcept;
/// Nodes `step` pixels apart carried to the pixels between: weights[(m + reach) × stride + p] is that of node
/// j + m on pixel j × step + p; the first `reach` nodes lie ahead of the row. The stride is a multiple of
/// spreadBlock, and so many samples behind the last one are written.
struct NodeSpread {
    std::span<const float> nodes, weights;
    std::int64_t step = 1, stride = 1, reach = 0;
};
inline constexpr std::int64_t spreadBlock = 16; ///< samples
void spread_nodes(float* to, std::int64_t count, const NodeSpread& spread) noexcept;
/// to = rest × to + part × by.
void mix_run(float* to, float rest, const float* by, float part, std::int64_t count) noexcept;
/// to ×= by × factor.
void multiply_run(float* to, const float* by, float factor, std::int64_t count) noexcept;

/// Linear light of interleaved pixels to Y, U, V of the encoded signal.
void crt_encode(const float* pixels, std::array<float*, 3> rows, std::int64_t count) noexcept;
/// Back in place, with the inverse matrix by rows.
void crt_decode(std::array<float*, 3> rows, const std::array<Vec3f, 3>& inverse, std::int64_t count) noexcept;
/// Brightness alone.
void crt_decode_mono(float* row, std::int64_t count) noexcept;

/// The triangular lattice of a shadow mask along a row: for each column the fraction and the colour of its
/// place, for the row what does not depend on the column.
struct DeltaRow {
    std::span<const float> fraction;    ///< of X in cells, 0...1
    std::span<const float> colour;      ///< of the cell's number, modulo 3
    float shift = 0.0f;                 ///< taken off the fraction
    float rowColour = 0.0f;             ///< 0, 1 or 2
    float across = 1.0f;                ///< pixels a cell along a row
    float aboveY = 0.0f, belowY = 0.0f; ///< distance of the two rows of dots, pixels, downwards
    float fy = 0.0f;                    ///< fraction of the row's place
    float radius = 0.0f;                ///< of a dot, pixels
};
/// The colour lit at each pixel and how far, 0...1.
void delta_row(float* colour, float* cover, std::int64_t count, const DeltaRow& row) noexcept;
/// Sum of the cover of each colour.
std::array<double, 3> delta_sums(const float* colour, const float* cover, std::int64_t count) noexcept;
/// row ×= (rest + (colour == c ? cover × lit : 0)) × factor.
void delta_light(float* row, const float* colour, const float* cover, std::int64_t count, float c, float rest,
                 float lit, float factor) noexcept;

/// Three rows, or one and the same three times, to interleaved pixels.
void crt_interleave(float* pixels, std::array<const float*, 3> rows, std::int64_t count) noexcept;

/// The camera's tone table, read linearly: 1,025 entries over 0...4.
struct ToneParams {
    std::span<const float> lut;
    Vec3f colour{1.0f, 1.0f, 1.0f};
};
/// Interleaved pixels in place.
void crt_finish(float* pixels, std::int64_t count, const ToneParams& params) noexcept;

} // namespace tamlo
