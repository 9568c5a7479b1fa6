#include "core/io/raw_decode.h"

#include "core/image/orient.h"
#include "core/io/decode_rules.h"
#include "core/io/raw_colour.h"
#include "platform/worker_pool.h"
#include "tests/io/loader_support.h"

#include <algorithm>
#include <cstring>

namespace tamlo::ImageLoader {
namespace {

using test::sample;

RGBImage load(const std::string& name, WBMode mode, double scale = 1.0, std::optional<bool> draft = false)
{
    return loadRAWLinear(sample(name), scale, draft, mode);
}

/// Middle of patch 0...3 of the synthetic frames, at any scale.
Vec3f patch(const RGBImage& image, int index)
{
    return image.pixel(image.width * (2 * index + 1) / 8, image.height / 2);
}

bool same(const RGBImage& a, const RGBImage& b)
{
    return a.size() == b.size() && std::memcmp(a.data.data(), b.data.data(), a.data.size() * 4) == 0;
}

// The patches are neutral under D65, which is what the file says it was shot in: their levels come back.
TEST(RawDecode, AsShotNeutralComesBackAtItsLevel)
{
    for (const char* file : {"patterns/patches.dng", "patterns/patches-dual.dng"}) {
        const RGBImage image = load(file, WBMode::asShot);
        ASSERT_EQ(image.size(), (Size{96, 64}));
        const double levels[] = {0.1, 0.4, 0.8};
        for (int i = 0; i < 3; ++i)
            for (const float v : patch(image, i)) EXPECT_NEAR(v, levels[i], 2e-4) << file << " patch " << i;
    }
}

// Under `film` a D65 surface looks as blue as 6500 K is to an eye adapted to 5500 K. Expected: XYZ of D65,
// Bradford from the Planckian white of 5500 K (x 0.33242, y 0.34110) to D65, published sRGB matrix; level by
// the least gain at 1; computed with NumPy.
TEST(RawDecode, FilmIsNeutralAt5500K)
{
    const struct {
        const char* file;
        Vec3d grey40; // of the patch of level 0.4
    } cases[] = {{"patterns/patches.dng", {0.32915892, 0.39390716, 0.44311106}},
                 {"patterns/patches-dual.dng", {0.32624652, 0.39234693, 0.45035738}}};
    for (const auto& c : cases) {
        const Vec3f got = patch(load(c.file, WBMode::film), 1);
        const Vec3f dim = patch(load(c.file, WBMode::film), 0);
        for (std::size_t k = 0; k < 3; ++k) {
            EXPECT_NEAR(got[k] / c.grey40[k], 1.0, 0.004) << c.file << " channel " << k;
            EXPECT_NEAR(dim[k] / got[k], 0.25, 5e-4);
        }
    }
    EXPECT_FALSE(
        same(load("patterns/patches.dng", WBMode::film), load("patterns/patches.dng", WBMode::asShot)));
}

TEST(RawDecode, WhatTheMakerWritesOrTheFrameHoldsChangesNoLevel)
{
    const RGBImage image = load("patterns/patches.dng", WBMode::film);
    EXPECT_TRUE(same(image, load("patterns/patches-baseline.dng", WBMode::film))); // BaselineExposure +2
    // A frame whose brightest patch is far below saturation is not stretched to it.
    const RGBImage dark = load("patterns/patches-dark.dng", WBMode::asShot);
    const double levels[] = {0.025, 0.1, 0.2, 0.4};
    for (int i = 0; i < 4; ++i)
        for (const float v : patch(dark, i)) EXPECT_NEAR(v, levels[i], 2e-4);
}

TEST(RawDecode, SaturatedSurfacesStayNeutralAndAboveOne)
{
    const Vec3f white = patch(load("patterns/patches.dng", WBMode::asShot), 3);
    EXPECT_GT(white[1], 1.02f);
    EXPECT_NEAR(white[0], white[1], 0.01f);
    EXPECT_NEAR(white[2], white[1], 0.01f);
    const RGBImage sun = load("raw/bayer-overexposed.dng", WBMode::film);
    EXPECT_EQ(sun.size(), (Size{900, 506}));
    EXPECT_GT(*std::max_element(sun.data.begin(), sun.data.end()), 1.05f);
    EXPECT_GE(*std::min_element(sun.data.begin(), sun.data.end()), 0.0f);
}

TEST(RawDecode, TurnsUprightOnce)
{
    const RGBImage stored = load("patterns/patches.dng", WBMode::film);
    const RGBImage turned = load("patterns/patches-orientation8.dng", WBMode::film);
    EXPECT_TRUE(same(turned, Orientation::orientImage(stored, 270, false)));
    const RAWDecode upright = decodeRAW(sample("raw/bayer-orientation6.dng"), 1.0, false, WBMode::film);
    EXPECT_EQ(upright.width(), 400);
    EXPECT_EQ(upright.height(), 600);
    EXPECT_EQ(rawNativeLong(sample("raw/bayer-orientation6.dng")), 600);
}

// The eight ways a frame may lie, against the plain rule of the engine's flip bits.
TEST(RawDecode, PassFollowsFlipBits)
{
    constexpr std::int64_t w = 5, h = 3;
    std::vector<std::uint16_t> samples(w * h * 4);
    for (std::size_t i = 0; i < samples.size(); i += 4) samples[i] = static_cast<std::uint16_t>(i / 4);
    RawToLinear params;
    params.matrix[0][0] = 1.0f;
    params.matrix[1][0] = -1.0f; // to be cut at 0
    for (int flip = 0; flip < 8; ++flip) {
        const RawSamples from{samples.data(), w, h, flip};
        const Size size = from.uprightSize();
        std::vector<float> out(w * h * 3, -1.0f);
        for (std::int64_t y = 0; y < size.height; ++y) raw_to_linear(from, params, out.data(), y, y + 1);
        for (std::int64_t y = 0; y < size.height; ++y)
            for (std::int64_t x = 0; x < size.width; ++x) {
                std::int64_t row = y, column = x;
                if (flip & 4) std::swap(row, column);
                if (flip & 2) row = h - 1 - row;
                if (flip & 1) column = w - 1 - column;
                const float* p = &out[static_cast<std::size_t>(y * size.width + x) * 3];
                EXPECT_EQ(p[0], static_cast<float>(row * w + column)) << "flip " << flip;
                EXPECT_EQ(p[1], 0.0f);
            }
    }
}

TEST(RawDecode, ScaleGivesTheExactSize)
{
    const struct {
        double scale;
        std::optional<bool> draft;
        Size size;
    } cases[] = {{0.5, std::nullopt, {48, 32}},  {0.5, false, {48, 32}},
                 {0.25, std::nullopt, {24, 16}}, {0.7, std::nullopt, {68, 45}},
                 {41.0 / 96.0, false, {41, 28}}, {1.0, true, {96, 64}}};
    for (const auto& c : cases) {
        const RGBImage image = load("patterns/patches.dng", WBMode::asShot, c.scale, c.draft);
        EXPECT_EQ(image.size(), c.size) << c.scale;
        for (const float v : patch(image, 1)) EXPECT_NEAR(v, 0.4, 0.01) << c.scale;
    }
    EXPECT_TRUE(decodeRAW(sample("patterns/patches.dng"), 0.99, std::nullopt, WBMode::film).image.draft);
    EXPECT_FALSE(decodeRAW(sample("patterns/patches.dng"), 1.0, std::nullopt, WBMode::film).image.draft);
    for (const double scale : {0.0, -1.0, std::nan("")})
        EXPECT_EQ(test::errorOf([&] { load("patterns/patches.dng", WBMode::film, scale); }),
                  "I/O error: empty image");
}

TEST(RawDecode, EveryExtensionAndAnyNumberOfWorkers)
{
    const test::ScratchFolder folder;
    const RGBImage reference = load("raw/bayer-dual-illuminant.dng", WBMode::film);
    for (const std::string_view extension : rawExtensions) {
        const auto copy = folder / ("copy." + std::string(extension));
        std::filesystem::copy_file(sample("patterns/patches.dng"), copy);
        EXPECT_EQ(rawNativeLong(copy), 96) << extension;
        EXPECT_NO_THROW(loadRAWLinear(copy, 1.0, false, WBMode::film)) << extension;
    }
    for (const int workers : {1, 7}) {
        const platform::WorkerLimit limit(workers);
        EXPECT_TRUE(same(load("raw/bayer-dual-illuminant.dng", WBMode::film), reference));
    }
}

TEST(RawColour, CamerasThatNobodyKnows)
{
    platform::RawColour colour;
    colour.daylightGains = {2.0, 1.0, 1.5, 1.0};
    colour.asShotGains = {1.2, 1.0, 3.0, 1.0};
    EXPECT_EQ(planRawColour(colour, WBMode::film).gains, colour.daylightGains);
    EXPECT_EQ(planRawColour(colour, WBMode::asShot).gains, colour.asShotGains);
    platform::RawMatrix singular;
    for (auto& row : singular.xyzToCamera) row = {1.0, 1.0, 1.0};
    colour.matrices = {singular};
    EXPECT_EQ(planRawColour(colour, WBMode::film).gains, colour.daylightGains);
    colour = {};
    EXPECT_EQ(planRawColour(colour, WBMode::asShot).gains, (std::array{1.0, 1.0, 1.0, 1.0}));
    colour.channels = 1;
    const RawColourPlan grey = planRawColour(colour, WBMode::film);
    for (const auto& row : grey.toLinear.matrix) EXPECT_FLOAT_EQ(row[0] * 65535.0f, 1.0f);
}

} // namespace
} // namespace tamlo::ImageLoader
