#include "core/image/orient.h"
#include "core/pipeline/crop_geometry.h"
#include "tests/support/pictures.h"

namespace tamlo {
namespace {

using Pipeline::PixelRect;

double catmullRom(double x)
{
    x = std::abs(x);
    if (x < 1.0) return 1.5 * x * x * x - 2.5 * x * x + 1.0;
    return x < 2.0 ? -0.5 * x * x * x + 2.5 * x * x - 4.0 * x + 2.0 : 0.0;
}

/// One pixel of a tilted cut by the definition: the source turned about its centre, the cubic at its
/// distance.
double sampledSlowly(const RGBImage& source, const Crop& crop, std::int64_t px, std::int64_t py, int channel)
{
    const PixelRect rect = Pipeline::cropRectPx(crop, source.size());
    const double a = crop.angle * 3.141592653589793 / 180.0;
    const double w = static_cast<double>(source.width), h = static_cast<double>(source.height);
    const double dx = static_cast<double>(rect.x0 + px) + 0.5 - w / 2,
                 dy = static_cast<double>(rect.y0 + py) + 0.5 - h / 2;
    const double sx = w / 2 + std::cos(a) * dx + std::sin(a) * dy - 0.5;
    const double sy = h / 2 - std::sin(a) * dx + std::cos(a) * dy - 0.5;
    double sum = 0.0;
    for (std::int64_t j = -1; j <= 2; ++j)
        for (std::int64_t i = -1; i <= 2; ++i) {
            const std::int64_t x = static_cast<std::int64_t>(std::floor(sx)) + i;
            const std::int64_t y = static_cast<std::int64_t>(std::floor(sy)) + j;
            const double weight =
                catmullRom(sx - static_cast<double>(x)) * catmullRom(sy - static_cast<double>(y));
            sum += weight * source.pixel(std::clamp<std::int64_t>(x, 0, source.width - 1),
                                         std::clamp<std::int64_t>(
                                             y, 0, source.height - 1))[static_cast<std::size_t>(channel)];
        }
    return sum;
}

TEST(Crop, TiltedCutAgreesWithItsDefinition)
{
    const RGBImage source = test::noisePicture(61, 43, 3, 3.0f);
    for (const Crop& crop : {Crop{0.1, 0.2, 0.7, 0.6, 7.3}, Crop{0, 0, 1, 1, -33.0},
                             Crop{0.6, 0.6, 0.1, 0.3, 90.0}, Crop{0, 0, 1, 1, 181.0}}) {
        const RGBImage out = Pipeline::rotateCropInput(source, crop);
        EXPECT_EQ(out.size(), Pipeline::croppedSize(crop, source.size()));
        for (std::int64_t y = 0; y < out.height; ++y)
            for (std::int64_t x = 0; x < out.width; ++x)
                for (int c = 0; c < 3; ++c)
                    ASSERT_NEAR(out.pixel(x, y)[static_cast<std::size_t>(c)],
                                sampledSlowly(source, crop, x, y, c), 3e-5)
                        << crop.angle << " at " << x << "," << y;
    }
    test::expectSameForAnyWorkers([&] {
        return Pipeline::rotateCropInput(test::noisePicture(301, 299, 1), Crop{0.1, 0.1, 0.8, 0.8, 3.0});
    });
}

TEST(Crop, NoTiltNoResamplingAndNoBlackCorners)
{
    const RGBImage source = test::noisePicture(31, 17, 4);
    EXPECT_EQ(Pipeline::rotateCropInput(source, std::nullopt).data.data(), source.data.data());
    EXPECT_EQ(Pipeline::rotateCropInput(source, Crop{0, 0, 1, 1, 5e-10}).data.data(), source.data.data());
    const RGBImage part = Pipeline::rotateCropInput(source, Crop{0.5, 0.5, 0.25, 0.25, 0});
    EXPECT_EQ(part.pixel(0, 0), source.pixel(16, 8));
    const RGBImage flat =
        Pipeline::rotateCropInput(RGBImage(40, 20, {0.4f, 0.4f, 0.4f}), Crop{0, 0, 1, 1, 30});
    for (const float v : flat.data) ASSERT_NEAR(v, 0.4f, 1e-6f);
}

TEST(Crop, CutThenOrientIsOrientThenCutTheOrientedRectangle)
{
    const RGBImage source = test::noisePicture(40, 24, 5);
    const Crop crop{0.125, 0.25, 0.5, 0.375, 0};
    for (const int rotate : {0, 90, 180, 270, -90, 450})
        for (const bool mirror : {false, true}) {
            const RGBImage a = Orientation::orientImage(Pipeline::cropInput(source, crop), rotate, mirror);
            const RGBImage b = Pipeline::cropInput(Orientation::orientImage(source, rotate, mirror),
                                                   Pipeline::orientRect(crop, rotate, mirror));
            EXPECT_TRUE(a.size() == b.size() && test::sameBytes(a.data, b.data)) << rotate << " " << mirror;
            Crop tilted = crop;
            tilted.angle = 3.0;
            const Crop back =
                Pipeline::unorientRect(Pipeline::orientRect(tilted, rotate, mirror), rotate, mirror);
            EXPECT_NEAR(back.x, tilted.x, 1e-12);
            EXPECT_NEAR(back.y, tilted.y, 1e-12);
            EXPECT_NEAR(back.w, tilted.w, 1e-12);
            EXPECT_EQ(back.angle, tilted.angle);
        }
}

TEST(Crop, RectanglesInPixels)
{
    EXPECT_EQ(Pipeline::cropRectPx({0, 0, 1, 1, 0}, {60, 40}), (PixelRect{0, 0, 60, 40}));
    EXPECT_EQ(Pipeline::cropRectPx({0.999, 0.999, 0, 0, 0}, {60, 40}), (PixelRect{59, 39, 60, 40}));
    EXPECT_EQ(Pipeline::cropRectPx({-2, -2, 9, 9, 0}, {60, 40}), (PixelRect{0, 0, 60, 40}));
    EXPECT_EQ(Pipeline::aspectRect({60, 40}, 1.0), (PixelRect{10, 0, 50, 40}));
    EXPECT_EQ(Pipeline::aspectRect({60, 40}, 2.0), (PixelRect{0, 5, 60, 35}));
    EXPECT_EQ(Pipeline::aspectRect({40, 60}, 2.0), (PixelRect{5, 0, 35, 60}));
    EXPECT_EQ(Pipeline::effectiveCrop(Crop{0.5, 0, 0.5, 1, 0}, {60, 40}, 1.0), (PixelRect{30, 5, 60, 35}));
    const Crop fixed = Pipeline::clamped({-0.2, 0.9, 0.0, 0.5, 4.0});
    EXPECT_EQ(fixed, (Crop{0.0, 0.5, 1.0, 0.5, 4.0}));
}

TEST(Crop, FittingKeepsTheCornersInside)
{
    test::Lcg random(7);
    const Size source{600, 400};
    for (int i = 0; i < 200; ++i) {
        const Crop crop{0.3 * random.next(), 0.3 * random.next(), 0.3 + 0.4 * random.next(),
                        0.3 + 0.4 * random.next(), 0};
        const double angle = 40.0 * (random.next() - 0.5);
        const double scale = Pipeline::maxCropScale(crop, angle, source);
        const Crop largest = Pipeline::scaleCrop(crop, scale, source, 0.0);
        EXPECT_TRUE(Pipeline::cropFits(largest, angle, source, 1e-6));
        EXPECT_FALSE(
            Pipeline::cropFits(Pipeline::scaleCrop(crop, scale * 1.01, source, 0.0), angle, source, 1e-6));

        const Crop fitted = Pipeline::fitCropToAngle(crop, angle, source, false);
        if (scale >= 1.0) {
            EXPECT_EQ(fitted.w, crop.w);
        }
        EXPECT_EQ(Pipeline::fitCropToAngle(fitted, 0.0, source, false, crop).w, crop.w); // turned back
        const Crop wide = Pipeline::expandCrop(crop, source, 16.0 / 9.0, angle);
        EXPECT_NEAR(wide.w * 600 / (wide.h * 400), 16.0 / 9.0, 1e-9);
        EXPECT_TRUE(Pipeline::cropFits(wide, angle, source, 1e-6));
    }
    EXPECT_FALSE(Pipeline::cropFits(Crop{-0.5 / 600, 0, 0.5, 0.5, 0}, std::nullopt, source, 0.0));
    const Crop tiny =
        Pipeline::fitCropToAngle(Crop{0.5, 0.5, 10.0 / 600, 10.0 / 400, 0}, 10.0, source, false);
    EXPECT_NEAR(tiny.w * 600, 64.0, 1e-9);
    EXPECT_EQ(Pipeline::expandCrop(Crop{0.9, 0.9, 0.05, 0.05, 0}, source, -1.0), (Crop{0, 0, 1, 1, 0}));
}

} // namespace
} // namespace tamlo
