// The pixel half of the JPEG encoder: from bytes to quantised coefficients, eight blocks side by side, one
// block a vector lane, so that the transform needs no transposition. All arithmetic is in 64-bit floats and
// in one fixed order, so that every width of vector gives the bits of the plain scalar transform.
#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace tamlo::JPEGEncoder {

/// Blocks that one call transforms.
inline constexpr std::int64_t kGroupBlocks = 8;

/// 1 / (aan[row] × aan[column] × 8 × q), natural order: luminance first, then chrominance.
using Reciprocals = std::array<double, 128>;

/// A picture in memory, R G B bytes without padding.
struct BlockSource {
    const std::uint8_t* rgb = nullptr;
    std::int64_t width = 0;
    std::int64_t height = 0;
};

/// Quantised coefficients of eight blocks side by side, in zigzag order, for Y, Cb and Cr; and for each block
/// a mask of its coefficients that are not 0, bit k for scan position k.
struct BlockGroup {
    alignas(64) std::int16_t coefficients[3][kGroupBlocks][64];
    alignas(64) std::uint64_t nonZero[3][kGroupBlocks];
};

/// Working memory of one band, reused from group to group.
struct BlockScratch {
    alignas(64) double samples[64 * kGroupBlocks];
    alignas(64) std::uint8_t pixels[8 * kGroupBlocks * 8 * 3];
    alignas(64) std::uint8_t lanes[3][64 * kGroupBlocks];
    alignas(64) std::int16_t quantised[64 * kGroupBlocks];
};

/// Colour conversion, transform and quantisation of the blocks firstColumn ... firstColumn + 7 of a block
/// row. Positions beyond the picture repeat its last column or row.
/// Source: Arai, Agui, Nakajima (1988) for the transform, ITU-R BT.601 for the colours.
void jpeg_blocks(const BlockSource& source, std::int64_t blockRow, std::int64_t firstColumn,
                 const Reciprocals& reciprocals, BlockScratch& scratch, BlockGroup& out);

} // namespace tamlo::JPEGEncoder
