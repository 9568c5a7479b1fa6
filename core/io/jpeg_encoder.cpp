#include "core/io/jpeg_encoder.h"

#include "core/io/jpeg_passes.h"
#include "platform/worker_pool.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <cstring>

namespace tamlo::JPEGEncoder {
namespace {

using Bytes = std::vector<std::uint8_t>;

// 2 cos(k pi / 16) / 2 as the paper's scaling by rows and columns has it: what the transform leaves undone.
constexpr std::array<double, 8> kAanScale{1.0, 1.387039845, 1.306562965, 1.175875602,
                                          1.0, 0.785694958, 0.5411961,   0.275899379};

Reciprocals reciprocalsOf(const QuantTable& luminance, const QuantTable& chrominance)
{
    Reciprocals f;
    for (std::size_t r = 0; r < 8; ++r) {
        for (std::size_t c = 0; c < 8; ++c) {
            const std::size_t i = r * 8 + c;
            f[i] = 1.0 / (kAanScale[r] * kAanScale[c] * 8.0 * luminance[i]);
            f[64 + i] = 1.0 / (kAanScale[r] * kAanScale[c] * 8.0 * chrominance[i]);
        }
    }
    return f;
}

void put16(Bytes& out, std::size_t value)
{
    out.push_back(static_cast<std::uint8_t>(value >> 8));
    out.push_back(static_cast<std::uint8_t>(value));
}

void putSegment(Bytes& out, std::uint8_t marker, std::size_t length)
{
    out.insert(out.end(), {0xFF, marker});
    put16(out, length);
}

void putQuantTable(Bytes& out, std::uint8_t id, const QuantTable& table)
{
    putSegment(out, 0xDB, 67);
    out.push_back(id);
    for (const std::uint8_t natural : kZigzag) out.push_back(table[natural]);
}

void putHuffTable(Bytes& out, std::uint8_t classAndId, const Huff& huff)
{
    putSegment(out, 0xC4, huff.vals.size() + 19);
    out.push_back(classAndId);
    out.insert(out.end(), huff.bits.begin(), huff.bits.end());
    out.insert(out.end(), huff.vals.begin(), huff.vals.end());
}

void putHeader(Bytes& out, const Pixels& pixels, std::span<const std::uint8_t> icc,
               const QuantTable& luminance, const QuantTable& chrominance)
{
    out.insert(out.end(), {0xFF, 0xD8});
    putSegment(out, 0xE0, 16);
    out.insert(out.end(), {'J', 'F', 'I', 'F', 0, 1, 1, 0, 0, 1, 0, 1, 0, 0});
    if (!icc.empty() && icc.size() <= kMaxIccBytes) {
        putSegment(out, 0xE2, icc.size() + 16);
        constexpr std::uint8_t kName[] = {'I', 'C', 'C', '_', 'P', 'R', 'O', 'F', 'I', 'L', 'E', 0, 1, 1};
        out.insert(out.end(), std::begin(kName), std::end(kName));
        out.insert(out.end(), icc.begin(), icc.end());
    }
    putQuantTable(out, 0, luminance);
    putQuantTable(out, 1, chrominance);
    putSegment(out, 0xC0, 17);
    out.push_back(8);
    put16(out, static_cast<std::size_t>(pixels.height));
    put16(out, static_cast<std::size_t>(pixels.width));
    out.insert(out.end(), {3, 1, 0x11, 0, 2, 0x11, 1, 3, 0x11, 1});
    putHuffTable(out, 0x00, huffTable(HuffTable::dcLuminance));
    putHuffTable(out, 0x01, huffTable(HuffTable::dcChrominance));
    putHuffTable(out, 0x10, huffTable(HuffTable::acLuminance));
    putHuffTable(out, 0x11, huffTable(HuffTable::acChrominance));
    putSegment(out, 0xDA, 12);
    out.insert(out.end(), {3, 1, 0x00, 2, 0x11, 3, 0x11, 0, 63, 0});
}

/// Codes and lengths in one read: (code << 8) | length, DC luminance at 0, DC chrominance at 256, AC
/// luminance at 512, AC chrominance at 768.
using PackedCodes = std::array<std::uint32_t, 1024>;

PackedCodes packCodes()
{
    PackedCodes packed;
    for (std::size_t t = 0; t < 4; ++t) {
        const Huff& huff = huffTable(static_cast<HuffTable>(t));
        for (std::size_t s = 0; s < 256; ++s)
            packed[t * 256 + s] =
                (static_cast<std::uint32_t>(huff.codes[s]) << 8) | static_cast<std::uint32_t>(huff.sizes[s]);
    }
    return packed;
}

// A block triple's longest code: 3 × 64 symbols of at most 16 + 11 bits.
constexpr std::size_t kTripleBytes = 3 * 64 * 27 / 8 + 16;

/// Room for one more block triple; doubles the buffer when there is none.
void reserveTriple(RawBits& bits)
{
    if (bits.count + kTripleBytes <= bits.cap) return;
    const std::size_t cap = std::max(bits.cap * 2, bits.count + kTripleBytes);
    auto grown = std::make_unique_for_overwrite<std::uint8_t[]>(cap);
    if (bits.count > 0) std::memcpy(grown.get(), bits.buf.get(), bits.count);
    bits.buf = std::move(grown);
    bits.cap = cap;
}

/// The accumulator of a band while its blocks are coded; spills 32 bits at a time.
struct BandBits {
    std::uint8_t* to;
    std::uint64_t acc;
    int n;

    void put(std::uint64_t code, int size)
    {
        acc = (acc << size) | code;
        n += size;
        if (n < 32) return;
        n -= 32;
        const std::uint32_t word = __builtin_bswap32(static_cast<std::uint32_t>(acc >> n));
        std::memcpy(to, &word, 4);
        to += 4;
    }

    /// The code of a symbol, then the raw bits of a value of `category` bits: v, or v + 2^category - 1 below
    /// 0.
    void putValue(std::uint32_t packed, int value, int category)
    {
        const int raw = value - (value < 0 ? 1 : 0);
        const std::uint32_t low = static_cast<std::uint32_t>(raw) & ((1u << category) - 1);
        put((static_cast<std::uint64_t>(packed >> 8) << category) | low,
            static_cast<int>(packed & 0xFF) + category);
    }
};

int categoryOf(int value)
{
    return std::bit_width(static_cast<unsigned>(value < 0 ? -value : value));
}

void encodeBlock(BandBits& bits, const std::int16_t* scan, std::uint64_t nonZero, int& predictor,
                 const std::uint32_t* dc, const std::uint32_t* ac)
{
    const int difference = scan[0] - predictor;
    predictor = scan[0];
    const int dcCategory = categoryOf(difference);
    bits.putValue(dc[dcCategory], difference, dcCategory);
    int last = 0;
    for (std::uint64_t left = nonZero & ~std::uint64_t{1}; left != 0; left &= left - 1) {
        const int k = std::countr_zero(left);
        int run = k - last - 1;
        last = k;
        for (; run > 15; run -= 16) bits.put(ac[0xF0] >> 8, static_cast<int>(ac[0xF0] & 0xFF));
        const int category = categoryOf(scan[k]);
        bits.putValue(ac[run * 16 + category], scan[k], category);
    }
    if (last != 63) bits.put(ac[0] >> 8, static_cast<int>(ac[0] & 0xFF));
}

/// What all bands of a picture share.
struct BandPlan {
    BlockSource source;
    Reciprocals reciprocals;
    PackedCodes codes;
    std::int64_t blockRows = 0;
    std::int64_t blockColumns = 0;
    std::int64_t rowsPerBand = 0;
};

/// The DC values of the block before the band, transformed once more, so that no band waits for another.
std::array<int, 3> startingPredictors(const BandPlan& plan, std::int64_t firstRow, BlockScratch& scratch,
                                      BlockGroup& group)
{
    if (firstRow == 0) return {0, 0, 0};
    jpeg_blocks(plan.source, firstRow - 1, plan.blockColumns - 1, plan.reciprocals, scratch, group);
    return {group.coefficients[0][0][0], group.coefficients[1][0][0], group.coefficients[2][0][0]};
}

void encodeGroup(const BandPlan& plan, const BlockGroup& group, std::int64_t blocks,
                 std::array<int, 3>& predictors, RawBits& out)
{
    const std::uint32_t* codes = plan.codes.data();
    for (std::int64_t b = 0; b < blocks; ++b) {
        reserveTriple(out);
        BandBits bits{out.buf.get() + out.count, out.acc, out.n};
        for (std::size_t c = 0; c < 3; ++c) {
            const std::size_t table = c == 0 ? 0 : 256;
            encodeBlock(bits, group.coefficients[c][b], group.nonZero[c][b], predictors[c], codes + table,
                        codes + 512 + table);
        }
        out.count = static_cast<std::size_t>(bits.to - out.buf.get());
        out.acc = bits.acc;
        out.n = bits.n;
    }
}

void encodeBand(const BandPlan& plan, std::int64_t band, RawBits& out)
{
    const std::int64_t first = band * plan.rowsPerBand;
    const std::int64_t end = std::min(first + plan.rowsPerBand, plan.blockRows);
    out.cap = static_cast<std::size_t>((end - first) * plan.blockColumns * 64 + 64);
    out.buf = std::make_unique_for_overwrite<std::uint8_t[]>(out.cap);

    BlockScratch scratch;
    BlockGroup group;
    std::array<int, 3> predictors = startingPredictors(plan, first, scratch, group);
    for (std::int64_t row = first; row < end; ++row) {
        for (std::int64_t column = 0; column < plan.blockColumns; column += kGroupBlocks) {
            jpeg_blocks(plan.source, row, column, plan.reciprocals, scratch, group);
            encodeGroup(plan, group, std::min(kGroupBlocks, plan.blockColumns - column), predictors, out);
        }
    }
    reserveTriple(out);
    for (; out.n >= 8; out.n -= 8) out.buf[out.count++] = static_cast<std::uint8_t>(out.acc >> (out.n - 8));
    out.acc &= (std::uint64_t{1} << out.n) - 1;
}

} // namespace

void BitWriter::emit(std::uint8_t byte)
{
    out_.push_back(byte);
    if (byte == 0xFF) out_.push_back(0x00);
}

void BitWriter::put(std::uint32_t code, int size)
{
    acc_ = (acc_ << size) | (code & ((1u << size) - 1));
    n_ += size;
    for (; n_ >= 8; n_ -= 8) emit(static_cast<std::uint8_t>(acc_ >> (n_ - 8)));
    acc_ &= (1u << n_) - 1;
}

void BitWriter::append(const RawBits& band)
{
    const std::size_t words = band.count / 8;
    // In pieces, so that the room made for stuffing is still in the cache when it is written.
    constexpr std::size_t kPiece = 512;
    for (std::size_t i = 0; i < words; i += kPiece)
        appendWords(band.buf.get() + i * 8, std::min(kPiece, words - i));
    for (std::size_t i = words * 8; i < band.count; ++i) put(band.buf[i], 8);
    put(static_cast<std::uint32_t>(band.acc), band.n);
}

void BitWriter::appendWords(const std::uint8_t* from, std::size_t words)
{
    // Eight bytes at a time: shifted by the pending bits, looked at for a 0xFF as one word, and stored whole
    // where there is none, which is nearly always.
    constexpr std::uint64_t kLow = 0x0101010101010101u, kHigh = 0x8080808080808080u;
    const std::size_t start = out_.size();
    out_.resize(start + words * 16);
    std::uint8_t* to = out_.data() + start;
    std::uint64_t pending = n_ > 0 ? static_cast<std::uint64_t>(acc_) << (64 - n_) : 0;
    for (std::size_t i = 0; i < words; ++i) {
        std::uint64_t raw;
        std::memcpy(&raw, from + i * 8, 8);
        raw = __builtin_bswap64(raw);
        const std::uint64_t word = pending | (raw >> n_);
        pending = n_ > 0 ? raw << (64 - n_) : 0;
        const std::uint64_t zeroWhereFF = ~word;
        if (((zeroWhereFF - kLow) & ~zeroWhereFF & kHigh) == 0) {
            const std::uint64_t stored = __builtin_bswap64(word);
            std::memcpy(to, &stored, 8);
            to += 8;
            continue;
        }
        for (int shift = 56; shift >= 0; shift -= 8) {
            const auto byte = static_cast<std::uint8_t>(word >> shift);
            *to++ = byte;
            if (byte == 0xFF) *to++ = 0x00;
        }
    }
    acc_ = n_ > 0 ? static_cast<std::uint32_t>(pending >> (64 - n_)) : 0;
    out_.resize(static_cast<std::size_t>(to - out_.data()));
}

void BitWriter::finish()
{
    if (n_ > 0) put((1u << (8 - n_)) - 1, 8 - n_);
}

Bytes encode(const Pixels& pixels, int quality, std::span<const std::uint8_t> iccProfile,
             std::optional<int> bands)
{
    assert(pixels.width >= 1 && pixels.width <= kMaxSide && pixels.height >= 1 && pixels.height <= kMaxSide);
    assert(std::ssize(pixels.rgb) >= pixels.width * pixels.height * 3);
    const QuantTable luminance = quantTable(kLuminanceBase, quality);
    const QuantTable chrominance = quantTable(kChrominanceBase, quality);

    BandPlan plan{{pixels.rgb.data(), pixels.width, pixels.height},
                  reciprocalsOf(luminance, chrominance),
                  packCodes(),
                  (pixels.height + 7) / 8,
                  (pixels.width + 7) / 8,
                  0};
    const std::int64_t wanted = std::max(bands.value_or(4 * platform::activeWorkers()), 1);
    plan.rowsPerBand = std::max<std::int64_t>((plan.blockRows + wanted - 1) / wanted, 1);
    const std::int64_t count = (plan.blockRows + plan.rowsPerBand - 1) / plan.rowsPerBand;
    std::vector<RawBits> raw(static_cast<std::size_t>(count));
    platform::runConcurrently(static_cast<int>(count),
                              [&](int band) { encodeBand(plan, band, raw[static_cast<std::size_t>(band)]); });

    std::size_t total = 0;
    for (const RawBits& band : raw) total += band.count;
    Bytes out;
    out.reserve(std::max(static_cast<std::size_t>(pixels.width * pixels.height / 2 + 4096),
                         total * 101 / 100 + 1024 + iccProfile.size() + 1024));
    putHeader(out, pixels, iccProfile, luminance, chrominance);
    BitWriter writer(out);
    for (RawBits& band : raw) {
        writer.append(band);
        band.buf.reset();
    }
    writer.finish();
    out.insert(out.end(), {0xFF, 0xD9});
    return out;
}

} // namespace tamlo::JPEGEncoder
