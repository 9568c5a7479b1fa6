// The fixed tables of a baseline JPEG and what follows from them: quantisation, Huffman codes, the scan
// order. Source: ITU-T T.81 (1992), Annex K.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace tamlo::JPEGEncoder {

/// 64 entries in natural row-major order.
using QuantTable = std::array<std::uint8_t, 64>;

/// K.1 and K.2, natural row-major order.
extern const QuantTable kLuminanceBase;
extern const QuantTable kChrominanceBase;
/// Natural index by scan position.
extern const std::array<std::uint8_t, 64> kZigzag;

/// The base table scaled to a quality: scale 5000 below 2, 0 from 101, 200 - 2q from 50, else 5000 / q; each
/// entry (b × scale + 50) / 100 in integers, within 1 ... 255.
QuantTable quantTable(const QuantTable& base, int quality);

/// One Huffman table.
struct Huff {
    /// Code and code length by symbol; length 0: no such symbol.
    std::array<std::uint16_t, 256> codes{};
    std::array<int, 256> sizes{};
    /// Count of codes of length 1 ... 16, and the symbols in order.
    std::array<std::uint8_t, 16> bits{};
    std::vector<std::uint8_t> vals;
};

/// K.3 to K.6.
enum class HuffTable { dcLuminance, dcChrominance, acLuminance, acChrominance };
const Huff& huffTable(HuffTable table);

} // namespace tamlo::JPEGEncoder
