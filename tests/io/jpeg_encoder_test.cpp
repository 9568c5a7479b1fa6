#include "core/io/jpeg_encoder.h"

#include "core/io/jpeg_passes.h"
#include "platform/worker_pool.h"
#include "tests/support/jpeg_reference.h"

#include <gtest/gtest.h>

#include <hwy/targets.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace tamlo {
namespace {

using Bytes = std::vector<std::uint8_t>;

struct Picture {
    std::int64_t width, height;
    Bytes rgb;
    JPEGEncoder::Pixels pixels() const { return {rgb, width, height}; }
};

enum class Content { noise, flat, gradient, checker };

Picture make(Content content, std::int64_t width, std::int64_t height)
{
    Picture p{width, height, Bytes(static_cast<std::size_t>(width * height * 3))};
    std::uint32_t state = 12345;
    for (std::int64_t i = 0; i < width * height; ++i) {
        const std::int64_t x = i % width, y = i / width;
        for (std::int64_t c = 0; c < 3; ++c) {
            state = state * 1664525u + 1013904223u;
            const std::int64_t v = content == Content::noise      ? state >> 24
                                   : content == Content::flat     ? 200 - 60 * c
                                   : content == Content::gradient ? (x * 2 + y * (c + 1)) % 256
                                                                  : ((x + y + c) % 2) * 255;
            p.rgb[static_cast<std::size_t>(i * 3 + c)] = static_cast<std::uint8_t>(v);
        }
    }
    return p;
}

const std::pair<std::int64_t, std::int64_t> kSizes[] = {{1, 1},   {1, 9},   {8, 8},   {9, 1},     {17, 33},
                                                        {64, 64}, {65, 31}, {33, 17}, {200, 100}, {127, 130}};

/// Start of a segment's payload and its length, by marker and occurrence.
struct Segment {
    std::uint8_t marker;
    Bytes payload;
};

/// All segments up to SOS; the entropy-coded data with EOI goes to `scan`.
std::vector<Segment> parse(const Bytes& file, Bytes& scan)
{
    std::vector<Segment> segments;
    EXPECT_EQ(file[0], 0xFF);
    EXPECT_EQ(file[1], 0xD8);
    std::size_t at = 2;
    for (;;) {
        EXPECT_EQ(file[at], 0xFF);
        const std::size_t length = static_cast<std::size_t>(file[at + 2] << 8 | file[at + 3]);
        const auto from = file.begin() + static_cast<std::ptrdiff_t>(at);
        segments.push_back({file[at + 1], Bytes(from + 4, from + 2 + static_cast<std::ptrdiff_t>(length))});
        at += 2 + length;
        if (segments.back().marker == 0xDA) break;
    }
    scan.assign(file.begin() + static_cast<std::ptrdiff_t>(at), file.end());
    return segments;
}

TEST(JpegEncoder, SameBytesForAnyBandsAndWorkers)
{
    for (const Content content : {Content::noise, Content::flat, Content::gradient, Content::checker}) {
        for (const auto& [width, height] : kSizes) {
            const Picture p = make(content, width, height);
            for (const int quality : {0, 1, 50, 95, 100, 101}) {
                const Bytes one = JPEGEncoder::encode(p.pixels(), quality, {}, 1);
                for (const int bands : {-3, 2, 7, 1000})
                    ASSERT_EQ(one, JPEGEncoder::encode(p.pixels(), quality, {}, bands))
                        << width << "x" << height;
                for (const int workers : {1, 2, 7}) {
                    const platform::WorkerLimit limit(workers);
                    ASSERT_EQ(one, JPEGEncoder::encode(p.pixels(), quality));
                }
            }
        }
    }
}

TEST(JpegEncoder, LibraryReadsItBackWithinTheTransformsError)
{
    for (const Content content : {Content::noise, Content::flat, Content::gradient, Content::checker}) {
        for (const auto& [width, height] : kSizes) {
            const Picture p = make(content, width, height);
            for (const int quality : {1, 50, 95, 100}) {
                const test::DecodedJpeg d = test::decodeJpeg(JPEGEncoder::encode(p.pixels(), quality));
                ASSERT_EQ(d.width, width);
                ASSERT_EQ(d.height, height);
                if (quality < 100) continue;
                int worst = 0;
                double squares = 0.0;
                for (std::size_t i = 0; i < p.rgb.size(); ++i) {
                    worst = std::max(worst, std::abs(p.rgb[i] - d.rgb[i]));
                    squares += std::pow(p.rgb[i] - d.rgb[i], 2);
                }
                const double mse = squares / static_cast<double>(p.rgb.size());
                EXPECT_LE(worst, 6);
                EXPECT_LE(mse, 1.5); // 46 dB: steps of 1 in the coefficients and of 1 in the bytes
            }
        }
    }
}

// The two make the same choices but for float against integer arithmetic, so the sizes and the errors on a
// photograph are close. The picture was a JPEG before, which favours the transform that made it a little.
TEST(JpegEncoder, AgreesWithTheLibraryOnAPhotograph)
{
    const test::DecodedJpeg photo = test::decodeJpegFile(TAMLO_SAMPLES "/photos/fig.jpg");
    const Bytes ours = JPEGEncoder::encode({photo.rgb, photo.width, photo.height}, 95);
    const Bytes theirs = test::encodeJpegByLibrary(photo.rgb, photo.width, photo.height, 95);
    EXPECT_NEAR(static_cast<double>(ours.size()) / static_cast<double>(theirs.size()), 1.0, 0.02);
    const auto error = [&](const Bytes& file) {
        const test::DecodedJpeg d = test::decodeJpeg(file);
        double squares = 0.0;
        for (std::size_t i = 0; i < d.rgb.size(); ++i) squares += std::pow(photo.rgb[i] - d.rgb[i], 2);
        return squares / static_cast<double>(d.rgb.size());
    };
    EXPECT_LE(error(ours), error(theirs) * 1.1);
}

TEST(JpegEncoder, SegmentsAreThoseOfABaselineFile)
{
    const Picture p = make(Content::gradient, 300, 17);
    Bytes scan;
    const std::vector<Segment> s = parse(JPEGEncoder::encode(p.pixels(), 50), scan);
    Bytes markers;
    for (const Segment& segment : s) markers.push_back(segment.marker);
    EXPECT_EQ(markers, (Bytes{0xE0, 0xDB, 0xDB, 0xC0, 0xC4, 0xC4, 0xC4, 0xC4, 0xDA}));
    EXPECT_EQ(s[0].payload, (Bytes{'J', 'F', 'I', 'F', 0, 1, 1, 0, 0, 1, 0, 1, 0, 0}));
    // Quality 50 writes the tables of Annex K themselves, in zigzag order.
    const Bytes lumaStart{0, 16, 11, 12, 14, 12, 10, 16, 14}, chromaStart{1, 17, 18, 18, 24, 21, 24, 47, 26};
    EXPECT_TRUE(std::equal(lumaStart.begin(), lumaStart.end(), s[1].payload.begin()));
    EXPECT_TRUE(std::equal(chromaStart.begin(), chromaStart.end(), s[2].payload.begin()));
    EXPECT_EQ(s[1].payload.size(), 65u);
    EXPECT_EQ(s[3].payload, (Bytes{8, 0, 17, 1, 44, 3, 1, 0x11, 0, 2, 0x11, 1, 3, 0x11, 1}));
    const Bytes dcLuminance{0, 0, 1, 5, 1, 1, 1, 1, 1, 1, 0, 0, 0,  0, 0,
                            0, 0, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11};
    EXPECT_EQ(s[4].payload, dcLuminance);
    EXPECT_EQ(s[5].payload[0], 0x01);
    EXPECT_EQ(s[6].payload[0], 0x10);
    EXPECT_EQ(s[7].payload[0], 0x11);
    EXPECT_EQ(s[6].payload.size(), 179u);
    EXPECT_EQ(s[7].payload.size(), 179u);
    EXPECT_EQ(s[8].payload, (Bytes{3, 1, 0x00, 2, 0x11, 3, 0x11, 0, 63, 0}));
    ASSERT_GE(scan.size(), 2u);
    EXPECT_EQ(scan[scan.size() - 2], 0xFF);
    EXPECT_EQ(scan.back(), 0xD9);
    // Our Huffman and quantisation segments are the library's, byte for byte: four tables, two tables.
    Bytes theirScan;
    for (const Segment& theirs : parse(test::encodeJpegByLibrary(p.rgb, p.width, p.height, 50), theirScan)) {
        if (theirs.marker != 0xDB && theirs.marker != 0xC4) continue;
        const bool found = std::any_of(s.begin(), s.end(), [&](const Segment& ours) {
            return ours.marker == theirs.marker && ours.payload == theirs.payload;
        });
        EXPECT_TRUE(found) << "segment " << int(theirs.marker) << " id " << int(theirs.payload[0]);
    }
}

TEST(JpegEncoder, QuantTableFollowsTheQuality)
{
    using JPEGEncoder::kLuminanceBase;
    struct Case {
        int quality, first, last;
    };
    for (const Case c : {Case{-5, 255, 255},
                         {0, 255, 255},
                         {1, 255, 255},
                         {2, 255, 255},
                         {10, 80, 255},
                         {49, 16, 101},
                         {50, 16, 99},
                         {75, 8, 50},
                         {95, 2, 10},
                         {100, 1, 1},
                         {101, 1, 1}}) {
        const JPEGEncoder::QuantTable t = JPEGEncoder::quantTable(kLuminanceBase, c.quality);
        EXPECT_EQ(t[0], c.first) << c.quality;
        EXPECT_NEAR(t[63], c.last, c.quality == 49 ? 1 : 0) << c.quality;
    }
}

TEST(JpegEncoder, ProfileIsWrittenUpToOneSegment)
{
    const Picture p = make(Content::flat, 8, 8);
    Bytes scan;
    const Bytes fits(65'519, 7), tooLong(65'520, 7);
    const std::vector<Segment> s = parse(JPEGEncoder::encode(p.pixels(), 90, fits), scan);
    ASSERT_EQ(s[1].marker, 0xE2);
    EXPECT_EQ(s[1].payload.size(), 65'533u);
    EXPECT_EQ(Bytes(s[1].payload.begin(), s[1].payload.begin() + 14),
              (Bytes{'I', 'C', 'C', '_', 'P', 'R', 'O', 'F', 'I', 'L', 'E', 0, 1, 1}));
    EXPECT_EQ(JPEGEncoder::encode(p.pixels(), 90, tooLong), JPEGEncoder::encode(p.pixels(), 90));
}

// Bits of many short bands against the slow obvious way: all bits in a row, cut into bytes.
TEST(JpegEncoder, StitchingStuffsAcrossBandBoundaries)
{
    std::uint32_t state = 99;
    const auto next = [&] { return state = state * 1664525u + 1013904223u, state >> 8; };
    for (int round = 0; round < 300; ++round) {
        std::vector<bool> all;
        Bytes out;
        JPEGEncoder::BitWriter writer(out);
        for (int band = 0; band < 5; ++band) {
            JPEGEncoder::RawBits raw;
            raw.count = next() % 40;
            raw.n = static_cast<int>(next() % 8);
            raw.buf = std::make_unique<std::uint8_t[]>(raw.count + 1);
            for (std::size_t i = 0; i < raw.count; ++i)
                raw.buf[i] = static_cast<std::uint8_t>(next() % 3 == 0 ? next() : 0xFF);
            raw.acc = (next() | (next() % 2 ? 0xFFu : 0u)) & ((1u << raw.n) - 1);
            for (std::size_t i = 0; i < raw.count; ++i)
                for (int b = 7; b >= 0; --b) all.push_back(((raw.buf[i] >> b) & 1) != 0);
            for (int b = raw.n - 1; b >= 0; --b) all.push_back(((raw.acc >> b) & 1) != 0);
            writer.append(raw);
        }
        writer.finish();
        while (all.size() % 8 != 0) all.push_back(true);
        Bytes expected;
        for (std::size_t i = 0; i < all.size(); i += 8) {
            int byte = 0;
            for (std::size_t b = 0; b < 8; ++b) byte = byte * 2 + (all[i + b] ? 1 : 0);
            expected.push_back(static_cast<std::uint8_t>(byte));
            if (byte == 0xFF) expected.push_back(0);
        }
        ASSERT_EQ(out, expected);
    }
}

// The plain transform: one block, one number at a time.
void slowFdct(double* v, std::size_t step)
{
    const auto at = [&](std::size_t i) -> double& { return v[i * step]; };
    const double t0 = at(0) + at(7), t7 = at(0) - at(7), t1 = at(1) + at(6), t6 = at(1) - at(6);
    const double t2 = at(2) + at(5), t5 = at(2) - at(5), t3 = at(3) + at(4), t4 = at(3) - at(4);
    const double e0 = t0 + t3, e3 = t0 - t3, e1 = t1 + t2, e2 = t1 - t2;
    const double z1 = (e2 + e3) * 0.707106781;
    const double o0 = t4 + t5, o1 = t5 + t6, o2 = t6 + t7;
    const double z5 = (o0 - o2) * 0.382683433, z2 = 0.5411961 * o0 + z5, z4 = 1.306562965 * o2 + z5;
    const double z3 = o1 * 0.707106781, z11 = t7 + z3, z13 = t7 - z3;
    at(0) = e0 + e1, at(4) = e0 - e1, at(2) = e3 + z1, at(6) = e3 - z1;
    at(5) = z13 + z2, at(3) = z13 - z2, at(1) = z11 + z4, at(7) = z11 - z4;
}

std::vector<std::int16_t> slowBlock(const Picture& p, std::int64_t bx, std::int64_t by, int component,
                                    const double* f)
{
    double v[64];
    for (std::int64_t i = 0; i < 64; ++i) {
        const std::int64_t x = std::min(bx * 8 + i % 8, p.width - 1),
                           y = std::min(by * 8 + i / 8, p.height - 1);
        const std::uint8_t* q = p.rgb.data() + (y * p.width + x) * 3;
        const double r = q[0], g = q[1], b = q[2];
        v[i] = component == 0   ? 0.299 * r + 0.587 * g + 0.114 * b - 128.0
               : component == 1 ? -0.168736 * r - 0.331264 * g + 0.5 * b
                                : 0.5 * r - 0.418688 * g - 0.081312 * b;
    }
    for (int r = 0; r < 8; ++r) slowFdct(v + r * 8, 1);
    for (int c = 0; c < 8; ++c) slowFdct(v + c, 8);
    std::vector<std::int16_t> out(64);
    for (std::size_t k = 0; k < 64; ++k) {
        const std::size_t natural = JPEGEncoder::kZigzag[k];
        out[k] = static_cast<std::int16_t>(std::lround(v[natural] * f[natural]));
    }
    return out;
}

TEST(JpegPasses, EveryVectorWidthGivesTheScalarCoefficients)
{
    constexpr double aan[8] = {1.0, 1.387039845, 1.306562965, 1.175875602,
                               1.0, 0.785694958, 0.5411961,   0.275899379};
    for (const std::uint32_t target : hwy::SupportedAndGeneratedTargets()) {
        hwy::SetSupportedTargetsForTest(target);
        for (const int step : {1, 2, 16}) { // even steps bring exact halves in flat blocks
            JPEGEncoder::Reciprocals f;
            for (std::size_t i = 0; i < 128; ++i)
                f[i] = 1.0 / (aan[i % 64 / 8] * aan[i % 8] * 8.0 * (step + static_cast<int>(i / 64)));
            for (const Content content : {Content::noise, Content::flat, Content::checker}) {
                for (const auto& [width, height] : {std::pair{70, 9}, {64, 8}, {13, 20}, {130, 3}}) {
                    const Picture p = make(content, width, height);
                    for (std::int64_t by = 0; by < (height + 7) / 8; ++by) {
                        for (std::int64_t bx = 0; bx < (width + 7) / 8; ++bx) {
                            JPEGEncoder::BlockScratch scratch;
                            JPEGEncoder::BlockGroup group;
                            JPEGEncoder::jpeg_blocks({p.rgb.data(), width, height}, by, bx / 8 * 8, f,
                                                     scratch, group);
                            for (int c = 0; c < 3; ++c) {
                                const auto slow = slowBlock(p, bx, by, c, f.data() + (c == 0 ? 0 : 64));
                                std::uint64_t mask = 0;
                                for (std::size_t k = 0; k < 64; ++k) {
                                    ASSERT_EQ(group.coefficients[c][bx % 8][k], slow[k])
                                        << hwy::TargetName(target);
                                    mask |= static_cast<std::uint64_t>(slow[k] != 0) << k;
                                }
                                ASSERT_EQ(group.nonZero[c][bx % 8], mask) << hwy::TargetName(target);
                            }
                        }
                    }
                }
            }
        }
    }
    hwy::SetSupportedTargetsForTest(0);
}

} // namespace
} // namespace tamlo
