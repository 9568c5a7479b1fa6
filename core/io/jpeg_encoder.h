// JPEGEncoder: 8-bit RGB to a baseline JPEG, 4:4:4, on all cores. The file is the same, byte for byte, for
// any number of bands and threads: one entropy-coded scan without restart markers runs through the whole
// picture, its bits are made band by band in parallel and stitched afterwards.
// Source: ITU-T T.81 (1992); Arai, Agui, Nakajima, "A fast DCT-SQ scheme for images" (1988).
#pragma once

#include "core/io/jpeg_tables.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace tamlo::JPEGEncoder {

/// R G B interleaved, rows top-down, no padding; at least width × height × 3 bytes.
struct Pixels {
    std::span<const std::uint8_t> rgb;
    std::int64_t width = 0;
    std::int64_t height = 0;
};

/// The longest side that the format's header can tell.
inline constexpr std::int64_t kMaxSide = 65'535;
/// The largest ICC profile that fits one APP2 segment.
inline constexpr std::size_t kMaxIccBytes = 65'519;

/// The complete file.
/// Domain: sides 1 ... kMaxSide; quality as told at quantTable; a profile above kMaxIccBytes is left out.
/// bands: wanted number of parallel bands, four for each worker when absent; it never changes the bytes.
std::vector<std::uint8_t> encode(const Pixels& pixels, int quality,
                                 std::span<const std::uint8_t> iccProfile = {},
                                 std::optional<int> bands = std::nullopt);

/// One band's output: raw entropy-coded bits, without the stuffing that follows 0xFF.
struct RawBits {
    std::unique_ptr<std::uint8_t[]> buf;
    /// Whole bytes in buf, and room in it.
    std::size_t count = 0;
    std::size_t cap = 0;
    /// Bits that are not yet in buf: the low n of acc.
    std::uint64_t acc = 0;
    int n = 0;
};

/// The final stream: bits in, bytes with a 0x00 after each 0xFF out.
class BitWriter {
public:
    explicit BitWriter(std::vector<std::uint8_t>& out) : out_(out) {}

    /// All bits of a band.
    void append(const RawBits& band);
    /// The low `size` bits of `code`, 0 to 16 of them.
    void put(std::uint32_t code, int size);
    /// Completes the last byte with ones.
    void finish();

private:
    void emit(std::uint8_t byte);
    void appendWords(const std::uint8_t* from, std::size_t words);

    std::vector<std::uint8_t>& out_;
    /// At most 7 bits wait for their byte: the low n_ of acc_.
    std::uint32_t acc_ = 0;
    int n_ = 0;
};

} // namespace tamlo::JPEGEncoder
