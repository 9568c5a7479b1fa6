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

// No clock of this machine has a say: hours that its time zone leaves out and years before its epoch stand.
TEST(OutputMetadata, DatesPassAsTheyStandAndOnlyThoseOfTheCalendar)
{
    const auto dateIn = [](const std::string& text) {
        OutputMetadata metadata = OutputMetadata::plain("");
        metadata.dateOriginal = text;
        metadata.timeZone = "+05:45";
        const nlohmann::json exif = metadata.properties().value("Exif", nlohmann::json::object());
        EXPECT_EQ(exif.contains("OffsetTimeOriginal"), exif.contains("DateTimeOriginal")) << text;
        return exif.value("DateTimeOriginal", "");
    };
    for (const char* good : {"2024:03:31 02:30:00", "1969:12:31 23:59:59", "2024:02:29 00:00:00",
                             "1839:01:07 12:00:00", "2099:12:31 23:59:59"})
        EXPECT_EQ(dateIn(good), good);
    for (const char* bad : {"2024:02:31 10:00:00", "2023:02:29 10:00:00", "0000:00:00 00:00:00", "",
                            "2024:13:01 10:00:00", "2024:01:01 24:00:00", "2024:01:01 10:60:00",
                            "2024-01-01 10:00:00", "2024:01:01 10:00", "    :  :     :  :  "})
        EXPECT_EQ(dateIn(bad), "") << bad;
    EXPECT_EQ(dateIn("2024:01:01 10:00:00.25"), "2024:01:01 10:00:00");
    for (const char* bad : {"02:00", "+2:00", "+15:00", "+02:60", "Z", "+02:00 "})
        EXPECT_FALSE(isTimeZone(bad));
}

} // namespace
} // namespace tamlo
