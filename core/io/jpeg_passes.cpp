#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "core/io/jpeg_passes.cpp"
#include <hwy/foreach_target.h> // must come before highway.h

#include "core/io/jpeg_passes.h"
#include "core/io/jpeg_tables.h"

#include <algorithm>
#include <cstring>

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tamlo::JPEGEncoder::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// At most eight lanes: the eight blocks of a group.
using Doubles = hn::CappedTag<double, kGroupBlocks>;
using V = hn::Vec<Doubles>;

/// The group's 8 rows of 64 pixels: in place when they lie inside the picture, else copied with the last
/// column and row repeated. `stride` is the distance of rows in bytes.
const std::uint8_t* groupPixels(const BlockSource& s, std::int64_t y0, std::int64_t x0, BlockScratch& scratch,
                                std::int64_t rowBytes[8])
{
    constexpr std::int64_t kPixels = kGroupBlocks * 8;
    if (x0 + kPixels <= s.width) {
        for (std::int64_t r = 0; r < 8; ++r)
            rowBytes[r] = (std::min(y0 + r, s.height - 1) * s.width + x0) * 3;
        return s.rgb;
    }
    const std::int64_t inside = s.width - x0;
    for (std::int64_t r = 0; r < 8; ++r) {
        const std::uint8_t* from = s.rgb + (std::min(y0 + r, s.height - 1) * s.width + x0) * 3;
        std::uint8_t* to = scratch.pixels + r * kPixels * 3;
        rowBytes[r] = r * kPixels * 3;
        std::memcpy(to, from, static_cast<std::size_t>(inside) * 3);
        for (std::int64_t x = inside; x < kPixels; ++x) std::memcpy(to + x * 3, from + (inside - 1) * 3, 3);
    }
    return scratch.pixels;
}

/// Bytes R, G, B of the group apart, position by position with the eight blocks side by side.
void spreadLanes(const std::uint8_t* pixels, const std::int64_t rowBytes[8], BlockScratch& scratch)
{
#if HWY_TARGET == HWY_SCALAR
    for (std::int64_t r = 0; r < 8; ++r)
        for (std::int64_t i = 0; i < 64 * 3; ++i) {
            const std::int64_t x = i / 3 % 8, block = i / 24;
            scratch.lanes[i % 3][r * 64 + x * 8 + block] = pixels[rowBytes[r] + i];
        }
#else
    const hn::Full128<std::uint8_t> d8;
    using V8 = hn::Vec<decltype(d8)>;
    for (int r = 0; r < 8; ++r) {
        const std::uint8_t* from = pixels + rowBytes[r];
        V8 v[3][4];
#pragma GCC unroll 4
        for (int i = 0; i < 4; ++i) hn::LoadInterleaved3(d8, from + i * 48, v[0][i], v[1][i], v[2][i]);
#pragma GCC unroll 3
        for (int c = 0; c < 3; ++c) {
            V8 a = v[c][0], b = v[c][1], e = v[c][2], f = v[c][3];
            // 64 bytes whose index is (block, x). Interleaving the halves rotates the index by one bit, and
            // three of its six bits on it is (x, block).
#pragma GCC unroll 3
            for (int round = 0; round < 3; ++round) {
                const V8 first = hn::InterleaveLower(d8, a, e), second = hn::InterleaveUpper(d8, a, e);
                e = hn::InterleaveLower(d8, b, f);
                f = hn::InterleaveUpper(d8, b, f);
                a = first;
                b = second;
            }
            std::uint8_t* to = scratch.lanes[c] + r * 64;
            hn::Store(a, d8, to);
            hn::Store(b, d8, to + 16);
            hn::Store(e, d8, to + 32);
            hn::Store(f, d8, to + 48);
        }
    }
#endif
}

HWY_INLINE V bytesToDoubles(Doubles d, const std::uint8_t* from)
{
    const hn::Rebind<std::uint8_t, Doubles> d8;
    const hn::Rebind<std::int32_t, Doubles> d32;
    return hn::PromoteTo(d, hn::PromoteTo(d32, hn::LoadU(d8, from)));
}

/// A component as weights of R, G, B and what is taken off. A weight below 0 gives the bits of a subtraction,
/// and taking 0 off changes none.
struct Component {
    double red, green, blue, offset;
};
constexpr Component kComponents[3] = {
    {0.299, 0.587, 0.114, 128.0}, {-0.168736, -0.331264, 0.5, 0.0}, {0.5, -0.418688, -0.081312, 0.0}};

/// The component at one position of the blocks from `at` on, the products added from left to right.
HWY_INLINE V convertColour(Doubles d, const BlockScratch& scratch, std::size_t at, const Component& w)
{
    const V red = hn::Mul(hn::Set(d, w.red), bytesToDoubles(d, scratch.lanes[0] + at));
    const V green = hn::Mul(hn::Set(d, w.green), bytesToDoubles(d, scratch.lanes[1] + at));
    const V blue = hn::Mul(hn::Set(d, w.blue), bytesToDoubles(d, scratch.lanes[2] + at));
    return hn::Sub(hn::Add(hn::Add(red, green), blue), hn::Set(d, w.offset));
}

/// The eight-point scaled transform of Arai, Agui and Nakajima.
HWY_INLINE void fdct8(Doubles d, V (&v)[8])
{
    const V t0 = hn::Add(v[0], v[7]), t7 = hn::Sub(v[0], v[7]);
    const V t1 = hn::Add(v[1], v[6]), t6 = hn::Sub(v[1], v[6]);
    const V t2 = hn::Add(v[2], v[5]), t5 = hn::Sub(v[2], v[5]);
    const V t3 = hn::Add(v[3], v[4]), t4 = hn::Sub(v[3], v[4]);

    const V e0 = hn::Add(t0, t3), e3 = hn::Sub(t0, t3);
    const V e1 = hn::Add(t1, t2), e2 = hn::Sub(t1, t2);
    v[0] = hn::Add(e0, e1);
    v[4] = hn::Sub(e0, e1);
    const V z1 = hn::Mul(hn::Add(e2, e3), hn::Set(d, 0.707106781));
    v[2] = hn::Add(e3, z1);
    v[6] = hn::Sub(e3, z1);

    const V o0 = hn::Add(t4, t5), o1 = hn::Add(t5, t6), o2 = hn::Add(t6, t7);
    const V z5 = hn::Mul(hn::Sub(o0, o2), hn::Set(d, 0.382683433));
    const V z2 = hn::Add(hn::Mul(hn::Set(d, 0.5411961), o0), z5);
    const V z4 = hn::Add(hn::Mul(hn::Set(d, 1.306562965), o2), z5);
    const V z3 = hn::Mul(o1, hn::Set(d, 0.707106781));
    const V z11 = hn::Add(t7, z3), z13 = hn::Sub(t7, z3);
    v[5] = hn::Add(z13, z2);
    v[3] = hn::Sub(z13, z2);
    v[1] = hn::Add(z11, z4);
    v[7] = hn::Sub(z11, z4);
}

/// Coefficients times their reciprocals, to the nearest integer, halves away from zero. Adding the double
/// just below a half and cutting is exactly that: the sum rounds up to the integer where the half is there.
HWY_INLINE void quantise(Doubles d, V value, double reciprocal, std::int16_t* to)
{
    const hn::Rebind<std::int32_t, Doubles> d32;
    const hn::Rebind<std::int16_t, Doubles> d16;
    const V scaled = hn::Mul(value, hn::Set(d, reciprocal));
    const V half = hn::CopySignToAbs(hn::Set(d, 0.49999999999999994), scaled);
    hn::StoreU(hn::DemoteTo(d16, hn::DemoteTo(d32, hn::Add(scaled, half))), d16, to);
}

/// Colours, rows, then columns, then quantisation into scratch.quantised, natural order.
void transform(const Component& component, const double* reciprocals, BlockScratch& scratch)
{
    const Doubles d;
    constexpr std::size_t kStep = kGroupBlocks; // doubles from one position to the next
    // Unrolled, so that the eight vectors stay in registers.
    for (std::size_t lane = 0; lane < kGroupBlocks; lane += hn::Lanes(d)) {
        double* samples = scratch.samples + lane;
        for (std::size_t r = 0; r < 8; ++r) {
            V v[8];
#pragma GCC unroll 8
            for (std::size_t c = 0; c < 8; ++c)
                v[c] = convertColour(d, scratch, (r * 8 + c) * kStep + lane, component);
            fdct8(d, v);
#pragma GCC unroll 8
            for (std::size_t c = 0; c < 8; ++c) hn::Store(v[c], d, samples + (r * 8 + c) * kStep);
        }
        for (std::size_t c = 0; c < 8; ++c) {
            V v[8];
#pragma GCC unroll 8
            for (std::size_t r = 0; r < 8; ++r) v[r] = hn::Load(d, samples + (r * 8 + c) * kStep);
            fdct8(d, v);
#pragma GCC unroll 8
            for (std::size_t r = 0; r < 8; ++r)
                quantise(d, v[r], reciprocals[r * 8 + c], scratch.quantised + (r * 8 + c) * kStep + lane);
        }
    }
}

#if HWY_TARGET == HWY_SCALAR

/// Scan order, one block after the other, and the masks of what is not 0.
void gatherScan(const BlockScratch& scratch, std::int16_t (*coefficients)[64], std::uint64_t* nonZero)
{
    for (std::size_t block = 0; block < kGroupBlocks; ++block) {
        nonZero[block] = 0;
        for (std::size_t k = 0; k < 64; ++k) {
            const std::int16_t v = scratch.quantised[kZigzag[k] * kGroupBlocks + block];
            coefficients[block][k] = v;
            nonZero[block] |= static_cast<std::uint64_t>(v != 0) << k;
        }
    }
}

#else

/// Turns eight scan positions of the eight blocks about: out[block][k] of rows in[k][block].
HWY_INLINE void transpose16(const std::int16_t* const from[8], std::int16_t* to)
{
    const hn::Full128<std::int16_t> d;
    const hn::Full128<std::int32_t> d32;
    const hn::Full128<std::int64_t> d64;
    using V16 = hn::Vec<decltype(d)>;
    V16 a[8], b[8];
#pragma GCC unroll 8
    for (int i = 0; i < 8; ++i) a[i] = hn::Load(d, from[i]);
#pragma GCC unroll 4
    for (int i = 0; i < 4; ++i) {
        b[2 * i] = hn::InterleaveLower(d, a[2 * i], a[2 * i + 1]);
        b[2 * i + 1] = hn::InterleaveUpper(d, a[2 * i], a[2 * i + 1]);
    }
    // b[2i], b[2i + 1]: blocks 0-3 and 4-7 of positions 2i, 2i + 1.
#pragma GCC unroll 2
    for (int i = 0; i < 2; ++i) {
#pragma GCC unroll 2
        for (int h = 0; h < 2; ++h) {
            const auto lo = hn::BitCast(d32, b[4 * i + h]), hi = hn::BitCast(d32, b[4 * i + 2 + h]);
            a[4 * i + 2 * h] = hn::BitCast(d, hn::InterleaveLower(d32, lo, hi));
            a[4 * i + 2 * h + 1] = hn::BitCast(d, hn::InterleaveUpper(d32, lo, hi));
        }
    }
    // a[4i + p]: blocks 2p, 2p + 1 of positions 4i ... 4i + 3.
#pragma GCC unroll 4
    for (int p = 0; p < 4; ++p) {
        const auto lo = hn::BitCast(d64, a[p]), hi = hn::BitCast(d64, a[4 + p]);
        hn::Store(hn::BitCast(d, hn::InterleaveLower(d64, lo, hi)), d, to + 2 * p * 64);
        hn::Store(hn::BitCast(d, hn::InterleaveUpper(d64, lo, hi)), d, to + (2 * p + 1) * 64);
    }
}

/// Scan order, one block after the other, and the masks of what is not 0.
void gatherScan(const BlockScratch& scratch, std::int16_t (*coefficients)[64], std::uint64_t* nonZero)
{
    for (std::size_t k = 0; k < 64; k += 8) {
        const std::int16_t* from[8];
        for (std::size_t i = 0; i < 8; ++i) from[i] = scratch.quantised + kZigzag[k + i] * kGroupBlocks;
        transpose16(from, coefficients[0] + k);
    }
    const hn::CappedTag<std::int16_t, 64> d;
    for (std::size_t block = 0; block < kGroupBlocks; ++block) {
        std::uint8_t bits[8] = {};
        for (std::size_t k = 0; k < 64; k += hn::Lanes(d)) {
            const auto v = hn::Load(d, coefficients[block] + k);
            hn::StoreMaskBits(d, hn::Ne(v, hn::Zero(d)), bits + k / 8);
        }
        std::memcpy(&nonZero[block], bits, 8);
    }
}

#endif

void Blocks(const BlockSource& source, std::int64_t blockRow, std::int64_t firstColumn,
            const Reciprocals& reciprocals, BlockScratch& scratch, BlockGroup& out)
{
    std::int64_t rowBytes[8];
    const std::uint8_t* pixels = groupPixels(source, blockRow * 8, firstColumn * 8, scratch, rowBytes);
    spreadLanes(pixels, rowBytes, scratch);
    for (std::size_t c = 0; c < 3; ++c) {
        transform(kComponents[c], reciprocals.data() + (c == 0 ? 0 : 64), scratch);
        gatherScan(scratch, out.coefficients[c], out.nonZero[c]);
    }
}

} // namespace tamlo::JPEGEncoder::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tamlo::JPEGEncoder {

HWY_EXPORT(Blocks);

void jpeg_blocks(const BlockSource& source, std::int64_t blockRow, std::int64_t firstColumn,
                 const Reciprocals& reciprocals, BlockScratch& scratch, BlockGroup& out)
{
    HWY_DYNAMIC_DISPATCH(Blocks)(source, blockRow, firstColumn, reciprocals, scratch, out);
}

} // namespace tamlo::JPEGEncoder
#endif
