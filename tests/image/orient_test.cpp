#include "core/image/orient.h"

#include "tests/image/test_pictures.h"

namespace tamlo {
namespace {

/// The same by the definition, pixel by pixel.
RGBImage slowOrient(const RGBImage& image, int quarter, bool mirror)
{
    const std::int64_t w = image.width, h = image.height;
    RGBImage out(quarter % 2 == 1 ? h : w, quarter % 2 == 1 ? w : h);
    float* to = out.mutableData();
    for (std::int64_t i = 0; i < out.height; ++i)
        for (std::int64_t j = 0; j < out.width; ++j) {
            const std::int64_t rows[] = {i, h - 1 - j, h - 1 - i, j};
            const std::int64_t columns[] = {j, i, w - 1 - j, w - 1 - i};
            const std::int64_t x = mirror ? w - 1 - columns[quarter] : columns[quarter];
            const Vec3f v = image.pixel(x, rows[quarter]);
            std::copy(v.begin(), v.end(), to + (i * out.width + j) * 3);
        }
    return out;
}

TEST(Orient, QuartersOfDegrees)
{
    const int cases[][2] = {{0, 0},    {90, 1},  {180, 2}, {270, 3}, {360, 0}, {-90, 3},
                            {-180, 2}, {450, 1}, {44, 0},  {45, 1},  {-45, 3}};
    for (const auto& [degrees, quarter] : cases)
        EXPECT_EQ(Orientation::orientQuarter(degrees), quarter) << degrees;
}

TEST(Orient, AllEightAgreeWithTheDefinition)
{
    for (const Size size : {Size{1, 1}, Size{3, 2}, Size{70, 33}, Size{1, 40}, Size{333, 301}})
        for (int quarter = 0; quarter < 4; ++quarter)
            for (const bool mirror : {false, true}) {
                const RGBImage image = test::testImage(size.width, size.height);
                const RGBImage expected = slowOrient(image, quarter, mirror);
                test::expectSameForAnyWorkers([&] {
                    RGBImage out = Orientation::orientImage(image, quarter * 90, mirror);
                    EXPECT_TRUE(test::sameBytes(out, expected)) << quarter << mirror;
                    return out;
                });
                EXPECT_TRUE(test::sameBytes(image, test::testImage(size.width, size.height)));
            }
}

TEST(Orient, WorksInPlaceWhereItCan)
{
    for (const auto& [degrees, mirror] : {std::pair{0, false}, {180, false}, {0, true}, {180, true}}) {
        RGBImage image = test::testImage(9, 5);
        const float* block = image.data.data();
        EXPECT_EQ(Orientation::orientImage(std::move(image), degrees, mirror).data.data(), block) << degrees;
    }
    const RGBImage shared = test::testImage(9, 5);
    EXPECT_EQ(Orientation::orientImage(shared, 360, false).data.data(), shared.data.data());
}

TEST(Orient, Rotated90)
{
    const RGBImage image = test::testImage(3, 2);
    const RGBImage turned = rotated90(image, true);
    EXPECT_EQ(turned.size(), (Size{2, 3}));
    EXPECT_EQ(turned.pixel(1, 2), image.pixel(2, 0)); // column 1 of row 2: x = 2, y = 2 - 1 - 1
    EXPECT_TRUE(test::sameBytes(rotated90(turned, true), Orientation::orientImage(image, 180, false)));
    EXPECT_TRUE(test::sameBytes(rotated90(turned, false), image));
}

} // namespace
} // namespace tamlo
