#include "core/image/page_buffer.h"
#include "core/image/tamlo_error.h"
#include "tests/image/test_pictures.h"

#include <cmath>
#include <cstdio>
#include <filesystem>

#include <unistd.h>

namespace tamlo {
namespace {

TEST(Containers, AWriteLeavesTheOtherCopyAlone)
{
    for (const std::int64_t side : {3, 700}) { // heap and page-mapped
        Plane a(side, side, 0.5f);
        const Plane b = a;
        EXPECT_EQ(a.data.data(), b.data.data());
        a.mutableData()[0] = 2.0f;
        EXPECT_EQ(b.at(0, 0), 0.5f);
        EXPECT_EQ(a.at(side - 1, side - 1), 0.5f);
        const float* own = a.data.data();
        EXPECT_EQ(a.mutableData(), own); // unique now: in place
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(own) % 64, 0u);
    }
}

TEST(Containers, MeansAndDeviations)
{
    EXPECT_EQ(Plane().mean(), 0.0);
    EXPECT_EQ(Plane(0, 7).std(), 0.0);
    const Plane plane(4, 1, std::vector<float>{1.0f, 3.0f, 5.0f, 7.0f});
    EXPECT_EQ(plane.mean(), 4.0);
    EXPECT_DOUBLE_EQ(plane.std(), std::sqrt(5.0));
    EXPECT_EQ(RGBImage().channelMeans(), (Vec3f{0, 0, 0}));
}

TEST(Containers, ChannelMeansDoNotDependOnWorkers)
{
    for (const Size size : {Size{1, 1}, Size{13, 7}, Size{641, 479}}) {
        const RGBImage image = test::testImage(size.width, size.height);
        const Vec3f means = image.channelMeans();
        for (int c = 0; c < 3; ++c)
            EXPECT_NEAR(means[static_cast<std::size_t>(c)], image.plane(c).mean(), 1e-5);
        for (const int workers : {1, 2, 7}) {
            const platform::WorkerLimit limit(workers);
            EXPECT_EQ(image.channelMeans(), means) << workers;
        }
    }
}

TEST(Containers, PlanesInAndOut)
{
    RGBImage image = test::testImage(301, 299);
    EXPECT_TRUE(test::sameBytes(RGBImage(image.plane(0), image.plane(1), image.plane(2)), image));
    image.setPlane(1, Plane(301, 299, 9.0f));
    EXPECT_EQ(image.pixel(300, 298)[1], 9.0f);
    EXPECT_EQ(image.plane(0).at(17, 5), test::testPlane(301, 299).at(17, 5));
}

class RawDump : public ::testing::Test {
protected:
    void SetUp() override
    {
        folder_ = std::filesystem::temp_directory_path() /
                  ("tamlo_raw_" + std::to_string(getpid()) + "_" +
                   ::testing::UnitTest::GetInstance()->current_test_info()->name());
        std::filesystem::create_directory(folder_);
    }
    void TearDown() override { std::filesystem::remove_all(folder_); }

    static std::string errorOf(const std::function<void()>& work)
    {
        try {
            work();
        } catch (const TamloError& error) {
            EXPECT_EQ(error.kind(), TamloError::Kind::io);
            return error.what();
        }
        return "";
    }

    std::filesystem::path folder_;
};

TEST_F(RawDump, ComesBackAsItWas)
{
    const RGBImage image = test::testImage(6, 5);
    const std::string path = folder_ / "frame.f32";
    image.write(path);
    EXPECT_TRUE(test::sameBytes(RGBImage::load(path, 6, 5), image));
    EXPECT_EQ(errorOf([&] { RGBImage::load(path, 5, 5); }),
              "I/O error: f32 size mismatch for frame.f32: 360 bytes, expected 300");
}

TEST_F(RawDump, SaysWhatItCannotReadOrWrite)
{
    EXPECT_NE(errorOf([&] { RGBImage::load(folder_ / "none.f32", 1, 1); }).find("none.f32"),
              std::string::npos);
    EXPECT_NE(errorOf([&] { RGBImage::load(folder_, 1, 1); }), "");
    EXPECT_NE(errorOf([&] { RGBImage(2, 2).write(folder_ / "no" / "x.f32"); }).find("x.f32"),
              std::string::npos);
}

TEST(PageBuffer, HoldsZeroedPagesOrSaysThatItCannot)
{
    const PageBuffer pages(5'000);
    EXPECT_EQ(pages.byteCount(), 5'000u);
    EXPECT_EQ(pages.floats(1'250)[1'249], 0.0f);
    EXPECT_EQ(PageBuffer(0).byteCount(), 1u);
    constexpr std::size_t kTooMuch = std::size_t{1} << 60;
    try {
        const PageBuffer none(kTooMuch);
        FAIL() << "mapped an exbibyte";
    } catch (const TamloError& error) {
        EXPECT_STREQ(error.what(), "I/O error: cannot map 1152921504606846976 bytes");
    }
}

TEST(TamloErrors, Descriptions)
{
    EXPECT_STREQ(TamloError::invalidArgument("a").what(), "Invalid argument: a");
    EXPECT_STREQ(TamloError::unsupported("b").what(), "Unsupported: b");
    EXPECT_STREQ(TamloError::cancelled().what(), "Рендер отменён: запрос устарел");
}

} // namespace
} // namespace tamlo
