#include "core/io/decode_rules.h"

#include "core/image/orient.h"
#include "core/io/raw_decode.h"

#include <gtest/gtest.h>

namespace tamlo::ImageLoader {
namespace {

TEST(DecodeRules, FamilyIsTheExtensionAlone)
{
    for (const std::string_view extension : rawExtensions)
        EXPECT_TRUE(isRAW("/a/picture." + std::string(extension)));
    EXPECT_TRUE(isRAW("IMG_1.NEF"));
    EXPECT_TRUE(isRAW("img_1.nef"));
    for (const char* name : {"img_1.nef.jpg", "nef", ".nef", "a.tif", "a.", "a.x3f"})
        EXPECT_FALSE(isRAW(name)) << name;
}

TEST(DecodeRules, TextsFallBackAsTold)
{
    EXPECT_EQ(decodeStrategyOf("whole"), DecodeStrategy::whole);
    EXPECT_EQ(decodeStrategyOf("banded"), DecodeStrategy::banded);
    for (const char* text : {"", "auto", "Whole", "x"})
        EXPECT_EQ(decodeStrategyOf(text), DecodeStrategy::auto_);
    EXPECT_EQ(rawDecodeModeOf("full"), RawDecodeMode::full);
    for (const char* text : {"", "master", "FULL"}) EXPECT_EQ(rawDecodeModeOf(text), RawDecodeMode::master);
    EXPECT_EQ(decodeWBMode("asshot"), WBMode::asShot);
    for (const char* text : {"film", "custom", "", "as_shot"}) EXPECT_EQ(decodeWBMode(text), WBMode::film);
}

TEST(DecodeRules, Bands)
{
    EXPECT_FALSE(decodeInBands(4'000'000, DecodeStrategy::banded, 16.0));
    EXPECT_TRUE(decodeInBands(4'000'001, DecodeStrategy::banded, 16.0));
    EXPECT_FALSE(decodeInBands(1'000'000'000, DecodeStrategy::whole, 1.0));
    // 16 GiB / 24 / 16 bytes = 44.74 megapixels.
    EXPECT_NEAR(wholeDecodeLimitMP(16.0), 44.739, 0.001);
    EXPECT_FALSE(decodeInBands(44'739'242, DecodeStrategy::auto_, 16.0));
    EXPECT_TRUE(decodeInBands(44'739'243, DecodeStrategy::auto_, 16.0));
    EXPECT_GT(physicalMemoryGB(), 0.1);
}

TEST(DecodeRules, LongSide)
{
    EXPECT_EQ(decodeLong(6000, 2048, RawDecodeMode::master), 2048);
    EXPECT_EQ(decodeLong(6000, 2048, RawDecodeMode::full), 6000);
    EXPECT_EQ(decodeLong(6000, 0, RawDecodeMode::master), 6000);
    EXPECT_EQ(decodeLong(2000, 2048, RawDecodeMode::master), 2000);
}

// Each value told as EXIF tells it: where the stored row 0 and column 0 stand in the picture that is seen.
TEST(DecodeRules, OrientationsAsExifDescribesThem)
{
    // A 3 × 2 stored picture; pixel (column, row) has the value row × 3 + column.
    RGBImage stored(3, 2);
    for (std::int64_t i = 0; i < 18; ++i) stored.mutableData()[i] = static_cast<float>(i / 3);
    const struct {
        int value;
        std::vector<float> upright; // rows top-down
    } cases[] = {
        {1, {0, 1, 2, 3, 4, 5}}, // row 0 top, column 0 left
        {2, {2, 1, 0, 5, 4, 3}}, // top, right
        {3, {5, 4, 3, 2, 1, 0}}, // bottom, right
        {4, {3, 4, 5, 0, 1, 2}}, // bottom, left
        {5, {0, 3, 1, 4, 2, 5}}, // left, top
        {6, {3, 0, 4, 1, 5, 2}}, // right, top
        {7, {5, 2, 4, 1, 3, 0}}, // right, bottom
        {8, {2, 5, 1, 4, 0, 3}}, // left, bottom
        {0, {0, 1, 2, 3, 4, 5}}, {9, {0, 1, 2, 3, 4, 5}},
    };
    for (const auto& c : cases) {
        const ExifTurn turn = exifOrient(c.value);
        const RGBImage seen = Orientation::orientImage(stored, turn.turns * 90, turn.mirror);
        EXPECT_EQ(seen.width, c.value >= 5 && c.value <= 8 ? 2 : 3) << c.value;
        std::vector<float> values;
        for (std::int64_t i = 0; i < 6; ++i) values.push_back(seen.data[static_cast<std::size_t>(i * 3)]);
        EXPECT_EQ(values, c.upright) << c.value;
    }
}

} // namespace
} // namespace tamlo::ImageLoader
