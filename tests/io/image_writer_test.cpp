#include "core/io/image_writer.h"

#include "core/image/tamlo_error.h"
#include "core/io/jpeg_encoder.h"
#include "platform/srgb_profile.h"
#include "tests/support/file_reference.h"
#include "tests/support/jpeg_reference.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <thread>

namespace tamlo {
namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;

class ImageWriterTest : public testing::Test {
protected:
    void SetUp() override
    {
        std::string pattern = (fs::temp_directory_path() / "tamlo-writer-XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        folder = pattern;
    }
    void TearDown() override { fs::remove_all(folder); }

    std::string in(const std::string& name) const { return (folder / name).string(); }
    std::size_t files() const
    {
        return static_cast<std::size_t>(
            std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
    }

    fs::path folder;
};

RGBImage picture(std::int64_t width, std::int64_t height)
{
    RGBImage image(width, height);
    float* to = image.mutableData();
    for (std::int64_t i = 0; i < width * height * 3; ++i) to[i] = static_cast<float>(i * 37 % 1013) / 1000.0f;
    return image;
}

OutputMetadata fullMetadata()
{
    OutputMetadata m = OutputMetadata::plain("Tamlo 0.1");
    m.make = "Leica";
    m.camera = "Leica M6";
    m.lensModel = "Summicron 35";
    m.focalMm = 35.0;
    m.fNumber = 2.8;
    m.exposureSec = 0.004;
    m.iso = 400;
    m.dateOriginal = "2001:09:09 01:46:40";
    m.timeZone = "-03:30";
    m.keywords = {"Tamlo", "Портра", "Kodak"};
    m.author = "Å. Author";
    m.copyright = "(c) Author";
    m.pixelsPerInch = 240.5;
    m.recipe = R"({"stamp_text":"<a & \"b\">"})";
    return m;
}

std::string errorOf(const std::function<void()>& work)
{
    try {
        work();
    } catch (const TamloError& error) {
        return error.what();
    }
    return "no error";
}

TEST_F(ImageWriterTest, EveryFormatComesBackWithItsSamplesAndProfile)
{
    const auto profile = platform::srgbProfile();
    const Bytes icc(profile.begin(), profile.end());
    EXPECT_EQ(std::string(icc.begin() + 36, icc.begin() + 40), "acsp");
    for (const auto& [width, height] : {std::pair<std::int64_t, std::int64_t>{1, 1}, {31, 17}, {700, 130}}) {
        for (const bool described : {false, true}) {
            const RGBImage image = picture(width, height);
            const auto metadata = described ? std::optional(fullMetadata()) : std::nullopt;
            ImageWriter::save(image, in("deep/er/a.PNG"), 95, metadata);
            ImageWriter::save(image, in("a.Tif"), 95, metadata);
            ImageWriter::save(image, in("a.tiff"), 95, metadata);
            const test::ReadPicture png = test::readPng(in("deep/er/a.PNG")),
                                    tiff = test::readTiff(in("a.Tif"));
            ASSERT_EQ(png.bits, 8);
            ASSERT_EQ(tiff.bits, 16);
            for (const auto* p : {&png, &tiff}) {
                EXPECT_EQ(p->width, width);
                EXPECT_EQ(p->height, height);
                EXPECT_EQ(p->channels, 3);
                EXPECT_EQ(p->icc, icc);
                ASSERT_EQ(std::ssize(p->samples), width * height * 3);
            }
            for (std::size_t i = 0; i < png.samples.size(); ++i) {
                ASSERT_EQ(png.samples[i], ImageWriter::srgbStep(image.data[i], 1.0f, 255.0f));
                ASSERT_EQ(tiff.samples[i], ImageWriter::srgbStep(image.data[i], 1.0f, 65535.0f));
            }
            EXPECT_EQ(test::readBytes(in("a.tiff")), test::readBytes(in("a.Tif")));
        }
    }
}

TEST_F(ImageWriterTest, MetadataComesBackFromEveryFormat)
{
    const std::map<std::string, std::string> expected{
        {"Exif.Image.Make", "Leica"},
        {"Exif.Image.Model", "Leica M6"},
        {"Exif.Image.Orientation", "1"},
        {"Exif.Image.Software", "Tamlo 0.1"},
        {"Exif.Image.Artist", "Å. Author"},
        {"Exif.Image.Copyright", "(c) Author"},
        {"Exif.Photo.LensModel", "Summicron 35"},
        {"Exif.Photo.FocalLength", "35/1"},
        {"Exif.Photo.FNumber", "2800/1000"},
        {"Exif.Photo.ExposureTime", "1/250"},
        {"Exif.Photo.ISOSpeedRatings", "400"},
        {"Exif.Photo.DateTimeOriginal", "2001:09:09 01:46:40"},
        {"Exif.Photo.DateTimeDigitized", "2001:09:09 01:46:40"},
        {"Exif.Photo.OffsetTimeOriginal", "-03:30"},
        {"Exif.Photo.OffsetTimeDigitized", "-03:30"},
        {"Exif.Image.ResolutionUnit", "2"},
        {"Iptc.Application2.Keywords", "Tamlo|Портра|Kodak"},
        {"Iptc.Application2.Byline", "Å. Author"},
        {"Iptc.Application2.Copyright", "(c) Author"},
        {"Xmp.dc.subject", "Tamlo, Портра, Kodak"},
        {"Xmp.dc.creator", "Å. Author"},
        {"Xmp.tamlo.Recipe", R"({"stamp_text":"<a & \"b\">"})"},
    };
    for (const char* name : {"a.jpg", "a.png", "a.tif"}) {
        ImageWriter::save(picture(40, 30), in(name), 95, fullMetadata());
        const auto read = test::readMetadata(in(name));
        for (const auto& [key, value] : expected) {
            ASSERT_TRUE(read.contains(key)) << name << " " << key;
            EXPECT_EQ(read.at(key), value) << name << " " << key;
        }
        for (const auto& [key, value] : read) EXPECT_EQ(key.find("GPS"), std::string::npos);
        EXPECT_NEAR(test::readDensity(in(name)), 240.5, 0.6) << name; // JFIF tells whole numbers

        OutputMetadata bare = OutputMetadata::plain("Tamlo");
        bare.author = "   ";
        ImageWriter::save(picture(40, 30), in(name), 95, bare);
        const auto few = test::readMetadata(in(name));
        EXPECT_EQ(few.at("Exif.Image.Software"), "Tamlo");
        for (const char* key : {"Exif.Image.Artist", "Iptc.Application2.Byline", "Exif.Photo.ExposureTime"})
            EXPECT_FALSE(few.contains(key)) << name << " " << key;
    }
    EXPECT_EQ(files(), 3u);
}

/// From the first quantisation table on: all that a decoder needs.
Bytes compressedPart(const Bytes& file)
{
    const Bytes start{0xFF, 0xDB};
    return {std::search(file.begin(), file.end(), start.begin(), start.end()), file.end()};
}

TEST_F(ImageWriterTest, MetadataLeavesTheCompressedPictureAlone)
{
    const RGBImage image = picture(120, 90);
    ImageWriter::save(image, in("plain.jpg"), 95, std::nullopt);
    ImageWriter::save(image, in("said.jpeg"), 95, fullMetadata());
    const Bytes plain = test::readBytes(in("plain.jpg")), said = test::readBytes(in("said.jpeg"));
    EXPECT_GT(said.size(), plain.size());
    EXPECT_EQ(compressedPart(plain), compressedPart(said));
    const PageBuffer rgb = ImageWriter::encodeSRGB8RGB(image);
    EXPECT_EQ(plain, JPEGEncoder::encode({rgb.bytes(120 * 90 * 3), 120, 90}, 95, platform::srgbProfile()));
    const Bytes name{'I', 'C', 'C', '_', 'P', 'R', 'O', 'F', 'I', 'L', 'E'};
    EXPECT_NE(std::search(said.begin(), said.end(), name.begin(), name.end()), said.end());
}

TEST_F(ImageWriterTest, PictureStandsWithoutMetadataWhenThatFailsOrNamesAPlace)
{
    ImageWriter::save(picture(16, 16), in("a.jpg"), 95, std::nullopt);
    const Bytes plain = test::readBytes(in("a.jpg"));
    const OutputMetadata m = fullMetadata();
    EXPECT_EQ(ImageWriter::attach(plain, nlohmann::json{{"Exif", {{"GPSVersion", 2}}}}, m.copyOptions()),
              plain);
    platform::MetadataCopy broken = m.copyOptions();
    broken.entries.push_back({"Exif.Nowhere.Nothing", "1"});
    EXPECT_EQ(ImageWriter::attach(plain, m.properties(), broken), plain);
    const Bytes noPicture(300, 7);
    EXPECT_EQ(ImageWriter::attach(noPicture, m.properties(), m.copyOptions()), noPicture);
    platform::MetadataCopy placed = m.copyOptions();
    placed.entries.push_back({"Exif.GPSInfo.GPSAltitude", "5/1"});
    std::ofstream(in("b.jpg"), std::ios::binary)
        << std::string_view(reinterpret_cast<const char*>(platform::withMetadata(plain, placed).data()),
                            platform::withMetadata(plain, placed).size());
    for (const auto& [key, value] : test::readMetadata(in("b.jpg")))
        EXPECT_EQ(key.find("GPSAlt"), std::string::npos);
}

TEST_F(ImageWriterTest, ManyThreadsWriteMetadataAtOnce)
{
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&, t] {
            for (const char* ext : {".jpg", ".png", ".tif"})
                ImageWriter::save(picture(20, 20), in(std::to_string(t) + ext), 90, fullMetadata());
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(test::readBytes(in("0.jpg")), test::readBytes(in("3.jpg")));
    EXPECT_EQ(test::readMetadata(in("3.tif")).at("Xmp.dc.creator"), "Å. Author");
}

TEST_F(ImageWriterTest, RefusalsNameWhatIsWrong)
{
    const RGBImage image = picture(4, 4);
    const ReadyImage ready = ImageWriter::readyImage(image);
    EXPECT_EQ(errorOf([&] { ImageWriter::save(image, in("new/a.WebP"), 95, {}); }),
              "Invalid argument: output extension .webp (use jpg/png/tif)");
    EXPECT_TRUE(fs::is_directory(folder / "new")); // the folder is made before the name is looked at
    EXPECT_EQ(errorOf([&] { ImageWriter::save(ready, in("a.gif"), 95, {}); }),
              "Invalid argument: output extension .gif for a ready image (use jpg/png)");
    EXPECT_EQ(errorOf([&] { ImageWriter::save(RGBImage(0, 0), in("a.jpg"), 95, {}); }),
              "I/O error: cannot create image");
    EXPECT_NE(errorOf([&] { ImageWriter::save(RGBImage(70'000, 1), in("a.jpg"), 95, {}); }).find("70000 x 1"),
              std::string::npos);
    fs::create_directory(folder / "dir.jpg");
    EXPECT_EQ(errorOf([&] { ImageWriter::save(image, in("dir.jpg"), 95, {}); }),
              "I/O error: cannot create " + in("dir.jpg") + ": Is a directory");
    std::ofstream(in("file")) << "x";
    EXPECT_NE(
        errorOf([&] { ImageWriter::save(image, in("file/a.jpg"), 95, {}); }).find("cannot create folder"),
        std::string::npos);
    EXPECT_THROW(ImageWriter::readyImage(Bytes(15), 2, 2, false), TamloError);
    EXPECT_EQ(files(), 3u);
}

/// While it lives, no file of this process grows above `bytes`, as on a disk that is full.
class FullDisk {
public:
    explicit FullDisk(rlim_t bytes)
    {
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit{bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
        handler_ = std::signal(SIGXFSZ, SIG_IGN);
    }
    ~FullDisk()
    {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }

private:
    rlimit before_{};
    void (*handler_)(int) = nullptr;
};

TEST_F(ImageWriterTest, FullDiskLeavesNothingAndKeepsTheOldFile)
{
    for (const char* name : {"a.jpg", "a.png", "a.tif"}) {
        std::ofstream(in(name)) << "old";
        std::string text;
        {
            const FullDisk full(1000);
            text = errorOf([&] { ImageWriter::save(picture(100, 100), in(name), 95, fullMetadata()); });
        }
        EXPECT_EQ(text, "I/O error: cannot write " + in(name) + ": " + std::strerror(EFBIG));
        EXPECT_EQ(test::readBytes(in(name)), (Bytes{'o', 'l', 'd'}));
    }
    EXPECT_EQ(files(), 3u);
    ImageWriter::save(picture(10, 10), in("a.jpg"), 95, {});
    EXPECT_GT(test::readBytes(in("a.jpg")).size(), 100u);
    EXPECT_EQ(files(), 3u);
}

TEST_F(ImageWriterTest, LinkIsFollowedAndPermissionsStay)
{
    ImageWriter::save(picture(4, 4), in("real.png"), 95, {});
    fs::permissions(in("real.png"), fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink("real.png", in("link.png"));
    ImageWriter::save(picture(9, 4), in("link.png"), 95, {});
    EXPECT_TRUE(fs::is_symlink(in("link.png")));
    EXPECT_EQ(test::readPng(in("real.png")).width, 9);
    EXPECT_EQ(fs::status(in("real.png")).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(ImageWriterTest, SocialCopyFallsBackBesideTheMaster)
{
    const RGBImage image = picture(20, 10);
    const ImageWriter::SocialCopy first = ImageWriter::saveSocial(image, in("roll.01.tif"), 90, {});
    EXPECT_EQ(first.path, in("social/roll.01_social.jpg"));
    EXPECT_FALSE(first.fellBack);
    fs::remove_all(folder / "social");
    std::ofstream(in("social")) << "a file where the folder would be";
    const ImageWriter::SocialCopy second = ImageWriter::saveSocial(image, in("roll.01.tif"), 90, {});
    EXPECT_EQ(second.path, in("roll.01_social.jpg"));
    EXPECT_TRUE(second.fellBack);
    EXPECT_EQ(test::decodeJpegFile(second.path).width, 20);
    EXPECT_NE(errorOf([&] { ImageWriter::saveSocial(image, in("social/x.tif"), 90, {}); }), "no error");
}

TEST_F(ImageWriterTest, ReadyImageIsFlattenedForJpegAndKeepsItsAlphaElsewhere)
{
    // Half-covered red, premultiplied; no cover; full blue.
    const Bytes rgba{128, 0, 0, 128, 0, 0, 0, 0, 0, 0, 255, 255};
    const ReadyImage card = ImageWriter::readyImage(rgba, 3, 1, true);
    const ReadyImage flat = ImageWriter::flattenOnWhite(card);
    EXPECT_EQ(flat.rgba, (Bytes{255, 127, 127, 255, 255, 255, 255, 255, 0, 0, 255, 255}));
    EXPECT_EQ(flat.alpha, ReadyImage::Alpha::skip);
    ReadyImage straight = card;
    straight.alpha = ReadyImage::Alpha::straight;
    straight.rgba[0] = 255;
    EXPECT_EQ(ImageWriter::flattenOnWhite(straight).rgba, flat.rgba);
    EXPECT_EQ(ImageWriter::rgbBytes(ImageWriter::readyImage(rgba, 3, 1, false)),
              (Bytes{128, 0, 0, 0, 0, 0, 0, 0, 255}));

    ImageWriter::save(card, in("card.jpg"), 100, fullMetadata());
    const test::DecodedJpeg jpeg = test::decodeJpegFile(in("card.jpg"));
    EXPECT_GT(jpeg.rgb[5], 245);
    const std::vector<std::uint16_t> expected{255, 0, 0, 128, 0, 0, 0, 0, 0, 0, 255, 255};
    ImageWriter::save(card, in("card.png"), 100, {});
    EXPECT_EQ(test::readPng(in("card.png")).samples, expected);
    ImageWriter::save(card, in("card.tif"), 100, {});
    EXPECT_EQ(test::readTiff(in("card.tif")).samples, expected);
    const Plane alpha(20, 10, 0.5f);
    EXPECT_EQ(ImageWriter::readyImage(picture(20, 10), &alpha).alpha, ReadyImage::Alpha::premultiplied);
}

TEST_F(ImageWriterTest, ReadOnlyFolderIsReported)
{
    if (geteuid() == 0) { // root writes everywhere; /proc is a folder that no one writes to
        EXPECT_NE(errorOf([&] {
                      ImageWriter::save(picture(4, 4), "/proc/a.jpg", 95, {});
                  }).find("I/O error: cannot create /proc/a.jpg: "),
                  std::string::npos);
        return;
    }
    fs::permissions(folder, fs::perms::owner_read | fs::perms::owner_exec);
    const std::string text = errorOf([&] { ImageWriter::save(picture(4, 4), in("a.jpg"), 95, {}); });
    fs::permissions(folder, fs::perms::owner_all);
    EXPECT_EQ(text, "I/O error: cannot create " + in("a.jpg") + ": Permission denied");
}

} // namespace
} // namespace tamlo
