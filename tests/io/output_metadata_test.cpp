#include "core/io/output_metadata.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <cstdlib>

namespace tamlo {
namespace {

TEST(OutputMetadata, ExposureIsARational)
{
    const std::pair<double, const char*> cases[] = {
        {0.004, "1/250"}, {2.4, "2/1"}, {1.0, "1/1"}, {0.5, "1/2"}, {30.0, "30/1"}, {2.5, "3/1"},
        {0.3, "1/3"},     {0.0, ""},    {-1.0, ""},   {1e300, ""},  {1e-300, ""}};
    for (const auto& [seconds, text] : cases) EXPECT_EQ(exposureRational(seconds), text) << seconds;
    EXPECT_EQ(exposureRational(std::strtod("nan", nullptr)), "");
}

TEST(OutputMetadata, PropertiesHoldWhatIsThereAndNothingElse)
{
    OutputMetadata metadata = OutputMetadata::plain(OutputMetadata::softwareName("1.2"));
    EXPECT_EQ(
        metadata.properties(),
        (nlohmann::json{{"Orientation", 1}, {"TIFF", {{"Software", "Tamlo 1.2"}, {"Orientation", 1}}}}));
    metadata.author = " \t ";
    metadata.copyright = " me \n";
    metadata.keywords = {"Tamlo", "Portra"};
    metadata.iso = 400;
    metadata.exposureSec = 0.004;
    const nlohmann::json p = metadata.properties();
    EXPECT_FALSE(p["TIFF"].contains("Artist"));
    EXPECT_FALSE(p["IPTC"].contains("Byline"));
    EXPECT_EQ(p["TIFF"]["Copyright"], "me");
    EXPECT_EQ(p["IPTC"]["CopyrightNotice"], "me");
    EXPECT_EQ(p["IPTC"]["Keywords"], (nlohmann::json{"Tamlo", "Portra"}));
    EXPECT_EQ(p["Exif"]["ISOSpeedRatings"], nlohmann::json::array({400}));
    EXPECT_EQ(p["Exif"]["ExposureTime"], 0.004);
    EXPECT_FALSE(metadata.mentionsLocation());
    EXPECT_EQ(OutputMetadata::softwareName(""), "Tamlo");
}

TEST(OutputMetadata, LocationIsFoundByKeyAtAnyDepth)
{
    using nlohmann::json;
    EXPECT_TRUE(hasGPS(json{{"GPSLatitude", 1}}));
    EXPECT_TRUE(hasGPS(json{{"TIFF", {{"deep", {{"myGpsThing", 1}}}}}}));
    EXPECT_TRUE(hasGPS(json{{"IPTC", {{"Location", "home"}}}}));
    EXPECT_FALSE(hasGPS(json{{"location", 1}, {"SubLocation", 2}}));
    EXPECT_FALSE(hasGPS(json{{"TIFF", {{"Software", "GPS"}}}}));
}

TEST(OutputMetadata, DateIsInTheTimeZoneOfTheProcess)
{
    ASSERT_EQ(setenv("TZ", "UTC-2", 1), 0);
    tzset();
    EXPECT_EQ(exifDate(86'399), "1970:01:02 01:59:59");
    ASSERT_EQ(unsetenv("TZ"), 0);
    tzset();
}

} // namespace
} // namespace tamlo
