// Files that are not what they seem: each gives a picture or a TamloError of one sentence, never a crash, a
// hang or half a picture.
#include "core/io/decode_rules.h"
#include "core/io/raw_decode.h"
#include "tests/io/loader_support.h"

#include <algorithm>
#include <random>

#include <sys/stat.h>

namespace tamlo::ImageLoader {
namespace {

using test::errorOf;
using test::sample;

/// Decodes by family, as the loader does.
void load(const std::filesystem::path& path, Damage damage = Damage::refused)
{
    if (isRAW(path))
        static_cast<void>(loadRAWLinear(path, 1.0, true, WBMode::film));
    else
        static_cast<void>(decodeEncoded(path, damage));
}

const char* const kKinds[] = {
    "metadata/full-exif.jpg",      "orientation/orientation-6.jpg",
    "patterns/rgb8.png",           "patterns/rgb8-interlaced.png",
    "patterns/palette-alpha.png",  "patterns/rgb8.tif",
    "patterns/rgb8-packbits.tif",  "patterns/rgb16-tiled-planar.tif",
    "patterns/palette.tif",        "patterns/rgb-float.tif",
    "heic/dogs-rotated-irot.heic", "patterns/patches.dng",
    "patterns/rgb-double.tif",     "modern/two-pictures.heic",
    "modern/fig-display-p3.avif",  "modern/orientation-6.webp",
    "modern/rgba8.webp",           "modern/two-pictures.webp",
    "modern/orientation-6.jxl",    "modern/rgba16.jxl",
};

TEST(HostileFiles, CutShortAnywhereFails)
{
    const test::ScratchFolder folder;
    for (const char* kind : kKinds) {
        const std::vector<char> bytes = test::readBytes(sample(kind));
        ASSERT_GT(bytes.size(), 100u) << kind;
        const auto path = folder / ("cut" + sample(kind).extension().string());
        std::vector<std::size_t> lengths{0, 1, 3, 8, 12, 40, bytes.size() * 99 / 100};
        for (std::size_t i = 1; i < 12; ++i) lengths.push_back(bytes.size() * i / 12);
        for (const std::size_t length : lengths) {
            test::writeBytes(path, {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length)});
            const std::string text = errorOf([&] { load(path); });
            EXPECT_FALSE(text.empty()) << kind << " cut to " << length;
        }
    }
}

TEST(HostileFiles, FlippedBytesGiveAPictureOrAnError)
{
    const test::ScratchFolder folder;
    std::mt19937 random(20240517); // its bits are fixed by the standard
    for (const char* kind : kKinds) {
        const std::vector<char> bytes = test::readBytes(sample(kind));
        const auto path = folder / ("flipped" + sample(kind).extension().string());
        for (int round = 0; round < 24; ++round) {
            std::vector<char> damaged = bytes;
            // Half of the rounds aim at the head, where the structure is.
            const std::size_t reach = round % 2 ? damaged.size() : std::min<std::size_t>(damaged.size(), 600);
            for (int i = 0; i <= round / 4; ++i)
                damaged[random() % reach] = static_cast<char>(random() & 0xff);
            test::writeBytes(path, damaged);
            errorOf([&] { load(path); });
            if (path.extension() == ".jpg" || path.extension() == ".tif")
                errorOf([&] { load(path, Damage::tolerated); });
        }
    }
}

// A picture whose file ends after three quarters is whole in its first third, and told to be damaged.
TEST(HostileFiles, WhatCanBeDecodedIsTakenWhereThatIsAskedFor)
{
    const test::ScratchFolder folder;
    for (const char* kind :
         {"color/fig-srgb.jpg", "color/fig-cmyk-profiled.jpg", "color/fig-gray.jpg", "patterns/rgb8.tif",
          "patterns/rgb8-packbits.tif", "patterns/rgb16-bigendian.tif", "patterns/rgb8-tiled.tif",
          "patterns/grey8.tif"}) {
        const std::vector<char> bytes = test::readBytes(sample(kind));
        const auto path = folder / ("half" + sample(kind).extension().string());
        test::writeBytes(path,
                         {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(bytes.size() * 3 / 4)});
        EXPECT_FALSE(errorOf([&] { load(path); }).empty()) << kind;
        const EncodedDecode half = decodeEncoded(path, Damage::tolerated),
                            whole = decodeEncoded(sample(kind));
        ASSERT_EQ(half.notes.size(), 1u) << kind;
        EXPECT_NE(half.notes[0].find("is damaged (the file is cut short)"), std::string::npos)
            << half.notes[0];
        const auto third = static_cast<std::size_t>(whole.height / 3 * whole.width * 4);
        EXPECT_TRUE(std::ranges::equal(half.rgba.bytes(third), whole.rgba.bytes(third))) << kind;
        const EncodedDecode sound = decodeEncoded(sample(kind), Damage::tolerated);
        EXPECT_TRUE(sound.notes.empty()) << kind;
        EXPECT_EQ(test::meanDifference(sound, whole), 0.0) << kind;
    }
    // Where nothing can be decoded there is no picture.
    const std::vector<char> jpeg = test::readBytes(sample("color/fig-srgb.jpg"));
    const auto path = folder / "head.jpg";
    test::writeBytes(path, {jpeg.begin(), jpeg.begin() + 300});
    EXPECT_FALSE(errorOf([&] { load(path, Damage::tolerated); }).empty());
}

TEST(HostileFiles, WhatIsNoPictureIsNamed)
{
    const test::ScratchFolder folder;
    const auto textFile = folder / "letter.jpg";
    test::writeBytes(textFile, {'D', 'e', 'a', 'r', ' ', 's', 'i', 'r', '\n'});
    const auto gif = folder / "dance.gif", psd = folder / "layers.psd";
    test::writeBytes(gif, {'G', 'I', 'F', '8', '9', 'a', 1, 0, 1, 0});
    test::writeBytes(psd, {'8', 'B', 'P', 'S', 0, 1});
    const auto empty = folder / "empty.png";
    test::writeBytes(empty, {});
    const auto pipe = folder / "pipe.jpg";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const auto rawDirectory = folder / "album.nef";
    std::filesystem::create_directory(rawDirectory);
    const auto rawText = folder / "letter.nef";
    std::filesystem::copy_file(textFile, rawText);
    const auto rawJPEG = folder / "picture.cr2";
    std::filesystem::copy_file(sample("metadata/full-exif.jpg"), rawJPEG);

    const struct {
        std::filesystem::path path;
        const char* start;
        const char* reason;
    } cases[] = {
        {textFile, "cannot decode ", "it is not a JPEG, PNG, TIFF, HEIF, AVIF, WebP or JPEG XL picture"},
        {gif, "cannot decode ", "GIF is not read"},
        {psd, "cannot decode ", "PSD is not read"},
        {empty, "cannot decode ", "the file is empty"},
        {pipe, "cannot decode ", "it is not an ordinary file"},
        {folder / "missing.jpg", "cannot decode ", "No such file or directory"},
        {folder / "", "cannot decode ", "it is a directory"},
        {rawDirectory, "RAW engine could not open ", "it is a directory"},
        {rawText, "RAW engine could not open ", ""},
        {rawJPEG, "RAW engine could not open ", ""},
        {folder / "missing.dng", "RAW engine could not open ", "No such file or directory"},
    };
    for (const auto& c : cases) {
        const std::string text = errorOf([&] { load(c.path); });
        EXPECT_EQ(text.rfind("I/O error: " + std::string(c.start) + c.path.string() + ": ", 0), 0u) << text;
        EXPECT_NE(text.find(c.reason), std::string::npos) << text;
    }
}

// Camera files of real makers that end behind their headers.
TEST(HostileFiles, CameraHeadersWithoutPicture)
{
    for (const char* extension : {"nef", "cr3", "raf", "rw2", "iiq", "dng"}) {
        const auto path = sample("raw/truncated/truncated." + std::string(extension));
        EXPECT_FALSE(errorOf([&] { load(path); }).empty()) << extension;
        EXPECT_NO_THROW(rawNativeLong(path)) << extension;
    }
}

std::vector<char> jpegOfSize(unsigned width, unsigned height)
{
    std::vector<char> bytes = test::readBytes(sample("orientation/orientation-1.jpg"));
    for (std::size_t i = 2; i + 9 < bytes.size(); ++i) // the frame header
        if (bytes[i] == '\xff' && bytes[i + 1] == '\xc0') {
            const char size[] = {static_cast<char>(height >> 8), static_cast<char>(height),
                                 static_cast<char>(width >> 8), static_cast<char>(width)};
            std::copy(std::begin(size), std::end(size), bytes.begin() + static_cast<std::ptrdiff_t>(i) + 5);
            break;
        }
    return bytes;
}

TEST(HostileFiles, AbsurdSizesAreRefusedBeforeMemoryIsTaken)
{
    const test::ScratchFolder folder;
    const auto path = folder / "huge.jpg";
    test::writeBytes(path, jpegOfSize(65000, 65000));
    EXPECT_NE(errorOf([&] { load(path); }).find("65000 x 65000 pixels is too large"), std::string::npos);
    test::writeBytes(path, jpegOfSize(20000, 20000));
    EXPECT_FALSE(errorOf([&] { load(path); }).empty());
}

TEST(HostileFiles, OnePixelAndALongStrip)
{
    const EncodedDecode one = decodeEncoded(sample("patterns/one-pixel.png"));
    EXPECT_EQ(one.width * one.height, 1);
    for (const char* name : {"patterns/strip-30000x1.png", "patterns/strip-30000x1.tif"}) {
        const RGBImage strip = loadEncodedAsLinear(sample(name));
        ASSERT_EQ(strip.size(), (Size{30000, 1})) << name;
        EXPECT_FLOAT_EQ(strip.pixel(29999, 0)[0], 1.0f);
    }
}

} // namespace
} // namespace tamlo::ImageLoader
