#include "core/image/zcolor.h"
#include "core/io/raw_decode.h"
#include "platform/worker_pool.h"
#include "tests/io/loader_support.h"

#include <algorithm>
#include <array>

namespace tamlo::ImageLoader {
namespace {

using test::sample;
using RGB8 = std::array<int, 3>;

constexpr int kPatternWidth = 70, kPatternHeight = 50;

RGB8 patternRGB(std::int64_t x, std::int64_t y)
{
    return {static_cast<int>(x * 255 / (kPatternWidth - 1)), static_cast<int>(y * 255 / (kPatternHeight - 1)),
            static_cast<int>((x + y) * 255 / (kPatternWidth + kPatternHeight - 2))};
}

RGB8 patternGrey(std::int64_t x, std::int64_t y)
{
    const int v = patternRGB(x, y)[2];
    return {v, v, v};
}

// The alpha of the pattern: full on the left half, half on the right; drawn over black.
RGB8 overBlack(RGB8 c, std::int64_t x, int alphaRight)
{
    if (x < kPatternWidth / 2) return c;
    for (int& v : c) v = (v * alphaRight + 127) / 255;
    return c;
}

RGB8 half(RGB8 c, std::int64_t x)
{
    return overBlack(c, x, 127);
}

int toSRGB8(double linear)
{
    return static_cast<int>(std::lround(255.0 * double{ZColor::linearToSRGB(static_cast<float>(linear))}));
}

struct PatternCase {
    const char* file;
    std::function<RGB8(std::int64_t, std::int64_t)> expected;
    int tolerance;
};

int worstDifference(const EncodedDecode& decode, const PatternCase& c)
{
    const auto bytes = decode.rgba.bytes(static_cast<std::size_t>(decode.width * decode.height * 4));
    int worst = 0;
    for (std::int64_t y = 0; y < decode.height; ++y)
        for (std::int64_t x = 0; x < decode.width; ++x) {
            const RGB8 wanted = c.expected(x, y);
            for (std::size_t k = 0; k < 3; ++k) {
                const int got = bytes[static_cast<std::size_t>((y * decode.width + x) * 4) + k];
                worst = std::max(worst, std::abs(got - wanted[k]));
            }
        }
    return worst;
}

// One pattern in every layout of samples, written without any of the libraries that read it.
TEST(EncodedDecode, PatternInEveryLayout)
{
    const auto rgb = patternRGB;
    const auto grey = patternGrey;
    const auto rgbHalf = [](auto x, auto y) { return half(patternRGB(x, y), x); };
    const auto greyHalf = [](auto x, auto y) { return half(patternGrey(x, y), x); };
    const auto palette = [](auto x, auto y) {
        const int i = patternGrey(x, y)[0];
        return RGB8{i, 255 - i, i / 2};
    };
    const auto paletteAlpha = [&](auto x, auto y) { return overBlack(palette(x, y), kPatternWidth, 128); };
    const auto checker = [](auto x, auto y) {
        const int v = (x + y) % 2 ? 255 : 0;
        return RGB8{v, v, v};
    };
    const auto linear = [](auto x, auto y) {
        RGB8 c = patternRGB(x, y);
        for (int& v : c) v = toSRGB8(v / 255.0);
        return c;
    };
    const auto linear16 = [](std::int64_t x, std::int64_t y) {
        return RGB8{
            toSRGB8(static_cast<double>(x * 65535 / (kPatternWidth - 1)) / 65535.0),
            toSRGB8(static_cast<double>(y * 65535 / (kPatternHeight - 1)) / 65535.0),
            toSRGB8(static_cast<double>((x + y) * 65535 / (kPatternWidth + kPatternHeight - 2)) / 65535.0)};
    };
    const PatternCase cases[] = {
        {"rgb8.png", rgb, 0},
        {"rgb16.png", rgb, 1},
        {"rgb8-interlaced.png", rgb, 0},
        {"rgba8.png", rgbHalf, 0},
        {"rgba16.png", rgbHalf, 1},
        {"grey8.png", grey, 0},
        {"grey16.png", grey, 1},
        {"grey-alpha8.png", greyHalf, 0},
        {"grey1.png", checker, 0},
        {"palette.png", palette, 0},
        {"palette-alpha.png", paletteAlpha, 0},
        {"rgb8-linear.png", linear, 1},
        {"rgb16-linear.png", linear16, 1},
        {"rgb8.tif", rgb, 0},
        {"rgb8-packbits.tif", rgb, 0},
        {"rgb8-tiled.tif", rgb, 0},
        {"rgb8-planar.tif", rgb, 0},
        {"rgb8-big.tif", rgb, 0},
        {"rgb16-bigendian.tif", rgb, 1},
        {"rgb16-tiled-planar.tif", rgb, 1},
        {"rgb-float.tif", linear16, 1}, // an untagged float picture is linear
        {"rgba8.tif", rgbHalf, 0},
        {"rgba8-premultiplied.tif", rgbHalf, 0},
        {"rgbx8.tif", rgb, 0},
        {"grey8.tif", grey, 0},
        {"grey16-white-is-zero.tif", grey, 1},
        {"palette.tif", palette, 0},
        {"cmyk8.tif", rgb, 0}, // its inks are the pattern's complement
        {"rgb-half.tif", linear16, 1},
        {"rgb-double.tif", linear16, 1},
        {"rgb32.tif", rgb, 1},
        {"two-pictures.tif", rgb, 0},
        {"../modern/rgb8.webp", rgb, 0},
        {"../modern/rgba8.webp", rgbHalf, 0},
        {"../modern/two-pictures.webp", rgb, 0},
        {"../modern/rgb8.avif", rgb, 1},
        {"../modern/rgba8.avif", rgbHalf, 1},
        {"../modern/grey8.avif", grey, 0},
        {"../modern/rgb12.avif", rgb, 1},
        {"../modern/rgb8.jxl", rgb, 0},
        {"../modern/rgb16.jxl", rgb, 1},
        {"../modern/rgba16.jxl", rgbHalf, 1},
        {"../modern/grey16.jxl", grey, 1},
        {"../modern/grey-alpha8.jxl", greyHalf, 0},
        {"../modern/rgb16-linear.jxl", linear16, 1},
        {"../modern/float-nan.jxl", [&](auto x, auto y) { return x == 7 && y == 7 ? RGB8{} : rgb(x, y); }, 1},
    };
    for (const PatternCase& c : cases) {
        const EncodedDecode decode = decodeEncoded(sample("patterns/" + std::string(c.file)));
        EXPECT_EQ(decode.width, kPatternWidth) << c.file;
        EXPECT_EQ(decode.height, kPatternHeight) << c.file;
        EXPECT_EQ(decode.rotate, 0) << c.file;
        EXPECT_LE(worstDifference(decode, c), c.tolerance) << c.file;
    }
}

// The same photograph in six spaces comes out with the same colours. What is left is JPEG's rounding in each
// space and, for CMYK, its gamut: Little CMS through Pillow leaves 1.32, 1.45, 2.38 and 9.06 on the first
// four.
TEST(EncodedDecode, ProfilesAreHonoured)
{
    const EncodedDecode reference = decodeEncoded(sample("color/fig-srgb.jpg"));
    const struct {
        const char* file;
        double mean;
    } cases[] = {
        {"color/fig-display-p3.jpg", 1.5},    {"color/fig-adobe-rgb.jpg", 1.5},
        {"color/fig-prophoto.jpg", 2.6},      {"color/fig-cmyk-profiled.jpg", 9.5},
        {"color/fig-cmyk-untagged.jpg", 3.0}, {"color/fig-progressive-420.jpg", 4.0},
    };
    for (const auto& c : cases)
        EXPECT_LT(test::meanDifference(reference, decodeEncoded(sample(c.file))), c.mean) << c.file;
}

// The same through the codecs of the web: an untagged reading of these numbers is 8 steps off, and its red a
// tenth.
TEST(EncodedDecode, ProfilesOfNewerCodecsAreHonoured)
{
    const EncodedDecode webp = decodeEncoded(sample("modern/fig-display-p3.webp"));
    const Vec3f wanted = loadEncodedAsLinear(sample("color/fig-srgb.jpg")).channelMeans();
    for (const char* file : {"fig-display-p3.webp", "fig-display-p3.avif", "fig-display-p3.jxl"}) {
        const auto path = sample("modern/" + std::string(file));
        EXPECT_LT(test::meanDifference(webp, decodeEncoded(path)), 4.5) << file;
        const Vec3f mean = loadEncodedAsLinear(path).channelMeans();
        for (std::size_t c = 0; c < 3; ++c) EXPECT_NEAR(mean[c] / wanted[c], 1.0, 0.02) << file;
    }
}

// Display P3 red, green and blue seen in sRGB, from the primaries by the closed form of a matrix profile
// (SMPTE EG 432-1 to IEC 61966-2-1); out-of-range values clip.
TEST(EncodedDecode, PrimariesTakeThePublishedMatrix)
{
    const double toSRGB[3][3] = {{1.2249401, -0.2249404, 0.0000001},
                                 {-0.0420569, 1.0420571, 0.0},
                                 {-0.0196376, -0.0786361, 1.0982735}};
    const auto expected = [&](std::int64_t x, std::int64_t y) {
        RGB8 c = patternRGB(x, y), out{};
        for (std::size_t r = 0; r < 3; ++r) {
            double sum = 0.0;
            for (std::size_t k = 0; k < 3; ++k)
                sum += toSRGB[r][k] * double{ZColor::srgbToLinear(static_cast<float>(c[k]) / 255.0f)};
            out[r] = toSRGB8(sum);
        }
        return out;
    };
    const EncodedDecode decode = decodeEncoded(sample("patterns/rgb8-p3-chrm.png"));
    EXPECT_LE(worstDifference(decode, {"", expected, 1}), 2);
}

TEST(EncodedDecode, GreyAndAlphaSamples)
{
    const EncodedDecode grey = decodeEncoded(sample("color/fig-gray.jpg"));
    const auto bytes = grey.rgba.bytes(grey.rgba.byteCount());
    for (std::size_t i = 0; i < bytes.size(); i += 4 * 997)
        ASSERT_TRUE(bytes[i] == bytes[i + 1] && bytes[i] == bytes[i + 2]);
}

TEST(EncodedDecode, EightOrientationsComeOutAlike)
{
    const RGBImage upright = loadEncodedAsLinear(sample("orientation/orientation-1.jpg"));
    for (int value = 2; value <= 8; ++value) {
        const RGBImage turned =
            loadEncodedAsLinear(sample("orientation/orientation-" + std::to_string(value) + ".jpg"));
        ASSERT_EQ(turned.size(), upright.size()) << value;
        double sum = 0.0;
        for (std::size_t i = 0; i < turned.data.size(); ++i)
            sum += std::abs(double{turned.data[i]} - double{upright.data[i]});
        EXPECT_LT(sum / static_cast<double>(turned.data.size()), 0.01) << value;
    }
    const EncodedDecode stored = decodeEncoded(sample("orientation/orientation-6.jpg"));
    EXPECT_EQ(stored.width, 360);
    EXPECT_EQ(stored.rotate, 90);
    EXPECT_FALSE(stored.mirror);
    EXPECT_EQ(decodeEncoded(sample("patterns/rgb8-exif6.png")).rotate, 90);
    for (const char* file : {"modern/orientation-6.webp", "modern/orientation-6.jxl"}) {
        EXPECT_EQ(decodeEncoded(sample(file)).rotate, 90) << file;
        EXPECT_EQ(encodedSize(sample(file)), (Size{180, 120})) << file;
    }
    EXPECT_EQ(decodeEncoded(sample("patterns/rgb8-orientation8.tif")).rotate, 270);
}

TEST(EncodedDecode, Heif)
{
    const EncodedDecode turned = decodeEncoded(sample("heic/dogs-rotated-irot.heic"));
    EXPECT_EQ(turned.width, 533);
    EXPECT_EQ(turned.height, 800);
    EXPECT_EQ(turned.rotate, 0); // the codec has turned it
    EXPECT_EQ(decodeEncoded(sample("heic/dandelions-srgb.heic")).width, 2400);
    const RGBImage deep = loadEncodedAsLinear(sample("heic/mountains-10bit.heic"));
    EXPECT_EQ(deep.size(), (Size{1200, 900}));
    const Vec3f mean = deep.channelMeans();
    EXPECT_GT(mean[2], 0.1f); // a bright day with much sky; 10 bits read as 16 would be black
    EXPECT_LT(mean[2], 0.8f);
}

TEST(EncodedDecode, WhatIsLeftAsideIsTold)
{
    const struct {
        const char* file;
        const char* says;
    } cases[] = {
        {"patterns/two-pictures.tif", "several pictures"},
        {"modern/two-pictures.webp", "several pictures"},
        {"modern/two-pictures.heic", "several pictures"},
        {"patterns/rgb-not-numbers.tif", "50 samples"},
        {"modern/float-nan.jxl", "3 samples"},
    };
    for (const auto& c : cases) {
        std::vector<std::string> notes;
        loadEncodedAsLinear(sample(c.file),
                            {.onNote = [&](const std::string& note) { notes.push_back(note); }});
        ASSERT_EQ(notes.size(), 1u) << c.file;
        EXPECT_NE(notes[0].find(c.says), std::string::npos) << notes[0];
        EXPECT_NE(notes[0].find(c.file), std::string::npos) << notes[0];
    }
    EXPECT_TRUE(decodeEncoded(sample("patterns/picture-and-thumbnail.tif")).notes.empty());
    // Not a number counts as 0, infinities as the ends; neighbours do not change.
    const RGBImage held = loadEncodedAsLinear(sample("patterns/rgb-not-numbers.tif"));
    EXPECT_EQ(held.pixel(9, 9)[0], 0.0f);
    EXPECT_EQ(held.pixel(9, 9)[1], 1.0f);
    EXPECT_EQ(held.pixel(9, 9)[2], 0.0f);
    EXPECT_EQ(held.pixel(10, 9)[0], loadEncodedAsLinear(sample("patterns/rgb-float.tif")).pixel(10, 9)[0]);
}

TEST(EncodedDecode, LinearizeIsTheTransferFunctionForAnyNumberOfWorkers)
{
    const EncodedDecode decode = decodeEncoded(sample("color/fig-display-p3.jpg"));
    const auto bytes = decode.rgba.bytes(decode.rgba.byteCount());
    std::vector<float> linear(static_cast<std::size_t>(decode.width * decode.height * 3));
    for (const int workers : {1, 2, 7}) {
        const platform::WorkerLimit limit(workers);
        decode.linearize(linear);
        for (std::size_t i = 0; i < linear.size(); i += 101) {
            const float v = static_cast<float>(bytes[i / 3 * 4 + i % 3]) / 255.0f;
            ASSERT_EQ(linear[i], ZColor::srgbToLinear(v));
        }
    }
    linear.pop_back();
    EXPECT_EQ(test::errorOf([&] { decode.linearize(linear); }), "I/O error: empty image");
}

TEST(EncodedDecode, ContentChoosesTheCodec)
{
    const test::ScratchFolder folder;
    const auto misnamed = folder / "picture.jpg";
    std::filesystem::copy_file(sample("patterns/rgb8.png"), misnamed);
    EXPECT_EQ(decodeEncoded(misnamed).width, kPatternWidth);
}

} // namespace
} // namespace tamlo::ImageLoader
