#include "platform/shot_properties.h"

#include "platform/metadata_writer.h"
#include "tests/io/loader_support.h"

namespace tamlo::platform {
namespace {

using test::sample;

TEST(ShotProperties, ComeFromEveryContainer)
{
    const struct {
        const char* file;
        const char *make, *camera, *lens, *date, *zone, *artist;
        double focalMm;
    } cases[] = {
        {"metadata/full-exif.jpg", "Synthetic", "Bayer One", "Synthetic 50mm F2", "2024:05:17 12:34:56",
         "+02:00", "Clemens Engelhardt", 50},
        {"metadata/full-exif.heic", "Synthetic", "Bayer One", "Synthetic 50mm F2", "2024:05:17 12:34:56",
         "+02:00", "Clemens Engelhardt", 50},
        {"modern/shot.avif", "Synthetic", "Bayer One", "Synthetic 50mm F2", "2024:05:17 12:34:56", "+02:00",
         "Clemens Engelhardt", 50},
        {"modern/shot.webp", "Synthetic", "Bayer One", "Synthetic 50mm F2", "2024:05:17 12:34:56", "+02:00",
         "Clemens Engelhardt", 50},
        {"modern/shot.jxl", "Synthetic", "Bayer One", "Synthetic 50mm F2", "2024:05:17 12:34:56", "+02:00",
         "Clemens Engelhardt", 50},
        {"modern/shot-packed.jxl", "Synthetic", "Bayer One", "Synthetic 50mm F2", "2024:05:17 12:34:56",
         "+02:00", "Clemens Engelhardt", 50}, // behind the picture, in a box packed with Brotli
        // Its boxes end in damage; what stands before it counts.
        {"raw/truncated/truncated.cr3", "Canon", "Canon EOS M50", "EF-M15-45mm f/3.5-6.3 IS STM",
         "2018:02:21 12:08:56", "+00:00", "", 15},
        {"raw/truncated/truncated.nef", "NIKON CORPORATION", "NIKON D70", "", "2004:06:09 16:02:35", "", "",
         18},
    };
    for (const auto& c : cases) {
        const ShotProperties shot = readShotProperties(sample(c.file));
        EXPECT_EQ(shot.make.value_or(""), c.make) << c.file;
        EXPECT_EQ(shot.camera.value_or(""), c.camera) << c.file;
        EXPECT_EQ(shot.lensModel.value_or(""), c.lens) << c.file;
        EXPECT_EQ(shot.dateOriginal.value_or(""), c.date) << c.file;
        EXPECT_EQ(shot.timeZone.value_or(""), c.zone) << c.file;
        EXPECT_EQ(shot.artist.value_or(""), c.artist) << c.file;
        EXPECT_EQ(shot.focalMm.value_or(0), c.focalMm) << c.file;
    }
    for (const char* bare : {"patterns/rgb8.png", "modern/rgb8.jxl"})
        EXPECT_FALSE(readShotProperties(sample(bare)).camera);
    EXPECT_FALSE(readShotProperties("nowhere.jpg").camera);
}

TEST(ShotProperties, TextsComeOutAsUtf8WithoutPadding)
{
    const std::vector<char> plain = test::readBytes(sample("orientation/orientation-1.jpg"));
    const std::span file(reinterpret_cast<const std::uint8_t*>(plain.data()), plain.size());
    const test::ScratchFolder folder;
    const std::pair<std::string, std::string> cases[] = {
        {"\xc5ngstr\xf6m", "Ångström"}, {"Ångström  ", "Ångström"}, {" ", ""}, {"bell\x07", "bell"}};
    for (const auto& [written, read] : cases) {
        const auto told = withMetadata(file, {.entries = {{"Exif.Image.Artist", written}}});
        test::writeBytes(folder / "a.jpg", {told.begin(), told.end()});
        EXPECT_EQ(readShotProperties(folder / "a.jpg").artist.value_or(""), read);
    }
}

} // namespace
} // namespace tamlo::platform
