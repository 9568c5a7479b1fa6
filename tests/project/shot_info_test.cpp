#include "app/project/shot_info.h"
#include "core/text/loc.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <filesystem>

namespace tamlo {
namespace {

class ShotInfoTest : public testing::Test {
protected:
    ShotInfoTest()
    {
        setenv("TZ", "Europe/Berlin", 1);
        tzset();
        Loc::setOverride(Loc::Lang::en);
    }
    ~ShotInfoTest() override
    {
        unsetenv("TZ");
        tzset();
        Loc::setOverride(std::nullopt);
    }
};

TEST_F(ShotInfoTest, TheCamerasFieldsAreRead)
{
    const ShotInfo shot = ShotInfo::read(std::filesystem::path(TAMLO_SAMPLES) / "metadata/full-exif.jpg");
    EXPECT_EQ(shot.line(),
              "Synthetic Bayer One · Synthetic 50mm F2 · 50 mm · f/2.8 · 1/250 · ISO 200 · 17.05.2024");
    EXPECT_EQ(shot.exposureSeconds(), 1.0 / 250);
    EXPECT_TRUE(ShotInfo::read("/no/such/file.jpg").isEmpty());
    EXPECT_EQ(ShotInfo().line(), "");
}

TEST_F(ShotInfoTest, ExposureTimesAsTexts)
{
    struct Case {
        double seconds;
        const char* text;
    };
    const Case cases[] = {{1.0 / 250, "1/250"}, {0.4, "1/3"}, {0.8, "1/1"}, {0.6, "1/2"}, {1, "1 s"},
                          {2.5, "2.5 s"},       {30, "30 s"}, {0, ""},      {-1, ""}};
    for (const Case& c : cases) EXPECT_EQ(shutterText(c.seconds), c.text);
    const auto seconds = [](const char* text) {
        ShotInfo shot;
        shot.shutter = text;
        return shot.exposureSeconds();
    };
    EXPECT_EQ(seconds("1/250"), 1.0 / 250);
    EXPECT_EQ(seconds("2,5 с"), 2.5);
    EXPECT_EQ(seconds("30"), 30);
    for (const char* none : {"1/0", "1/-3", "", "bulb", "0 s", "1/x"}) EXPECT_FALSE(seconds(none)) << none;
    EXPECT_FALSE(ShotInfo().exposureSeconds());
}

} // namespace
} // namespace tamlo
