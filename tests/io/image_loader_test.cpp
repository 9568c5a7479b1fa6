#include "core/io/image_loader.h"

#include "core/image/source_exposure.h"
#include "tests/io/loader_support.h"

#include <cstring>

namespace tamlo::ImageLoader {
namespace {

using test::sample;

bool same(const RGBImage& a, const RGBImage& b)
{
    return a.size() == b.size() && std::memcmp(a.data.data(), b.data.data(), a.data.size() * 4) == 0;
}

TEST(ImageLoader, RawTakesItsSourceExposure)
{
    const auto path = sample("raw/bayer-dual-illuminant.dng");
    const RGBImage plain = loadRAWLinear(path, 1.0, false, WBMode::film);
    const RGBImage asShot = loadLinear(path, WBMode::film, SourceExposure::Mode::asShot, 0);
    for (std::size_t i = 0; i < plain.data.size(); i += 97) ASSERT_EQ(asShot.data[i], plain.data[i] * 1.44f);
    const RGBImage automatic = loadLinear(path, WBMode::film, SourceExposure::Mode::auto_, 0);
    const double gain = SourceExposure::gain(plain, SourceExposure::Mode::auto_);
    EXPECT_TRUE(same(automatic, SourceExposure::apply(gain, plain)));
}

TEST(ImageLoader, CapLimitsTheLongSide)
{
    const auto path = sample("raw/bayer-dual-illuminant.dng"); // 720 × 540
    const struct {
        std::int64_t cap;
        Size size;
    } cases[] = {
        {0, {720, 540}}, {720, {720, 540}}, {1000, {720, 540}}, {719, {719, 540}}, {333, {333, 250}}};
    for (const auto& c : cases)
        EXPECT_EQ(loadLinear(path, WBMode::film, SourceExposure::Mode::asShot, c.cap).size(), c.size)
            << c.cap;
    EXPECT_EQ(
        loadLinear(sample("raw/bayer-orientation6.dng"), WBMode::film, SourceExposure::Mode::asShot, 300)
            .size(),
        (Size{200, 300}));
}

TEST(ImageLoader, EncodedPicturesTakeNeitherExposureNorCapNorWhite)
{
    const auto path = sample("orientation/orientation-6.jpg");
    const RGBImage plain = loadEncodedAsLinear(path);
    EXPECT_TRUE(same(loadLinear(path, WBMode::asShot, SourceExposure::Mode::asShot, 100), plain));
    EXPECT_TRUE(same(loadLinear(path, WBMode::film, SourceExposure::Mode::shadows, 0), plain));
}

} // namespace
} // namespace tamlo::ImageLoader
