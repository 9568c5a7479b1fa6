#include "core/io/output_metadata.h"

#include "core/image/rounding.h"

#include <algorithm>
#include <cctype>
#include <chrono>
#include <cmath>
#include <limits>
#include <string_view>

#include <nlohmann/json.hpp>

namespace tamlo {
namespace {

/// The text without blanks and line ends around it; absent when nothing is left.
std::optional<std::string> present(const std::optional<std::string>& text)
{
    if (!text) return std::nullopt;
    constexpr const char* kBlanks = " \t\r\n\v\f";
    const std::size_t first = text->find_first_not_of(kBlanks);
    if (first == std::string::npos) return std::nullopt;
    return text->substr(first, text->find_last_not_of(kBlanks) - first + 1);
}

/// The date that is written; some programs add fractions of a second behind it.
std::optional<std::string> dateOf(const OutputMetadata& metadata)
{
    constexpr std::size_t kLength = 19;
    const std::string text = metadata.dateOriginal.value_or("").substr(0, kLength);
    return isExifDate(text) ? std::optional(text) : std::nullopt;
}

/// The time zone that is written; it says nothing without a date.
std::optional<std::string> timeZoneOf(const OutputMetadata& metadata)
{
    return dateOf(metadata) && isTimeZone(metadata.timeZone.value_or("")) ? metadata.timeZone : std::nullopt;
}

/// A positive number as a fraction of integers: whole over 1, else in thousandths.
std::string rationalText(double value)
{
    if (value == std::floor(value)) return std::to_string(roundAway(value)) + "/1";
    return std::to_string(roundAway(value * 1000.0)) + "/1000";
}

/// Whether a text has the form: a "d" is a digit, every other character itself.
bool hasForm(std::string_view text, std::string_view form)
{
    return std::equal(text.begin(), text.end(), form.begin(), form.end(),
                      [](char c, char wanted) { return wanted == 'd' ? c >= '0' && c <= '9' : c == wanted; });
}

/// Whether a rational field can hold the value: an unsigned 32-bit numerator over up to 1000.
bool writable(const std::optional<double>& value)
{
    return value && *value > 0.0 && *value < std::numeric_limits<std::uint32_t>::max() / 1000.0;
}

} // namespace

OutputMetadata OutputMetadata::plain(std::string software)
{
    OutputMetadata metadata;
    metadata.software = std::move(software);
    return metadata;
}

std::string OutputMetadata::softwareName(const std::string& version)
{
    return version.empty() ? "Tamlo" : "Tamlo " + version;
}

std::optional<double> OutputMetadata::density() const
{
    constexpr double kLeast = 0.1; // a tenth of a pixel an inch still rounds to something a metre
    return writable(pixelsPerInch) && *pixelsPerInch >= kLeast ? pixelsPerInch : std::nullopt;
}

bool isExifDate(const std::string& text)
{
    if (!hasForm(text, "dddd:dd:dd dd:dd:dd")) return false;
    const auto number = [&](std::size_t at, std::size_t count) { return std::stoi(text.substr(at, count)); };
    const std::chrono::year_month_day day{std::chrono::year(number(0, 4)),
                                          std::chrono::month(static_cast<unsigned>(number(5, 2))),
                                          std::chrono::day(static_cast<unsigned>(number(8, 2)))};
    constexpr int kFirstYear = 1800; // there are no photographs from before
    return day.ok() && number(0, 4) >= kFirstYear && number(11, 2) < 24 && number(14, 2) < 60 &&
           number(17, 2) < 60;
}

bool isTimeZone(const std::string& text)
{
    // From UTC-12 to UTC+14, in quarters of an hour; the minutes are not looked at closer.
    return (hasForm(text, "+dd:dd") || hasForm(text, "-dd:dd")) && std::stoi(text.substr(1, 2)) <= 14 &&
           std::stoi(text.substr(4, 2)) < 60;
}

std::string exposureRational(double seconds)
{
    constexpr double kLargest = std::numeric_limits<std::uint32_t>::max();
    if (!(seconds > 1.0 / kLargest) || seconds > kLargest) return {};
    if (seconds < 1.0) return "1/" + std::to_string(roundAway(1.0 / seconds));
    return std::to_string(roundAway(seconds)) + "/1";
}

nlohmann::json OutputMetadata::properties() const
{
    nlohmann::json tiff{{"Software", software}, {"Orientation", 1}};
    nlohmann::json exif = nlohmann::json::object(), iptc = nlohmann::json::object();
    if (const auto text = present(make)) tiff["Make"] = *text;
    if (const auto text = present(camera)) tiff["Model"] = *text;
    if (const auto text = present(author)) {
        tiff["Artist"] = *text;
        iptc["Byline"] = nlohmann::json::array({*text});
    }
    if (const auto text = present(copyright)) {
        tiff["Copyright"] = *text;
        iptc["CopyrightNotice"] = *text;
    }
    if (const auto text = present(lensModel)) exif["LensModel"] = *text;
    if (focalMm) exif["FocalLength"] = *focalMm;
    if (fNumber) exif["FNumber"] = *fNumber;
    if (exposureSec) exif["ExposureTime"] = *exposureSec;
    if (iso) exif["ISOSpeedRatings"] = nlohmann::json::array({*iso});
    if (const auto date = dateOf(*this)) exif["DateTimeOriginal"] = exif["DateTimeDigitized"] = *date;
    if (const auto zone = timeZoneOf(*this)) exif["OffsetTimeOriginal"] = exif["OffsetTimeDigitized"] = *zone;
    if (!keywords.empty()) iptc["Keywords"] = keywords;

    nlohmann::json root{{"Orientation", 1}, {"TIFF", tiff}};
    if (!exif.empty()) root["Exif"] = exif;
    if (!iptc.empty()) root["IPTC"] = iptc;
    if (density()) root["DPIWidth"] = root["DPIHeight"] = *pixelsPerInch;
    if (recipe) root["Tamlo"] = {{"Recipe", *recipe}};
    return root;
}

std::vector<platform::MetadataEntry> OutputMetadata::imageMetadata() const
{
    std::vector<platform::MetadataEntry> entries;
    const auto add = [&](const char* key, const std::string& value) { entries.push_back({key, value}); };
    const auto text = [&](const std::optional<std::string>& value, std::initializer_list<const char*> keys) {
        if (const auto there = present(value))
            for (const char* key : keys) add(key, *there);
    };
    add("Exif.Image.Orientation", "1");
    if (!software.empty()) {
        add("Exif.Image.Software", software);
        add("Xmp.xmp.CreatorTool", software);
    }
    // The texts of IPTC are UTF-8, which its envelope has to say (ISO 2022, escape % G).
    add("Iptc.Envelope.CharacterSet", "\x1b%G");
    text(make, {"Exif.Image.Make"});
    text(camera, {"Exif.Image.Model"});
    text(author, {"Exif.Image.Artist", "Iptc.Application2.Byline", "Xmp.dc.creator"});
    text(copyright, {"Exif.Image.Copyright", "Iptc.Application2.Copyright", "Xmp.dc.rights"});
    text(lensModel, {"Exif.Photo.LensModel"});
    if (writable(focalMm)) add("Exif.Photo.FocalLength", rationalText(*focalMm));
    if (writable(fNumber)) add("Exif.Photo.FNumber", rationalText(*fNumber));
    if (const std::string time = exposureRational(exposureSec.value_or(0.0)); !time.empty())
        add("Exif.Photo.ExposureTime", time);
    // The field has 16 bits; the Exif standard has 65535 stand for all that is above.
    if (iso && *iso > 0) add("Exif.Photo.ISOSpeedRatings", std::to_string(std::min(*iso, 65535)));
    text(dateOf(*this), {"Exif.Photo.DateTimeOriginal", "Exif.Photo.DateTimeDigitized"});
    text(timeZoneOf(*this), {"Exif.Photo.OffsetTimeOriginal", "Exif.Photo.OffsetTimeDigitized"});
    if (density()) {
        add("Exif.Image.XResolution", rationalText(*pixelsPerInch));
        add("Exif.Image.YResolution", rationalText(*pixelsPerInch));
        add("Exif.Image.ResolutionUnit", "2"); // the inch
    }
    for (const std::string& keyword : keywords) {
        add("Iptc.Application2.Keywords", keyword);
        add("Xmp.dc.subject", keyword);
    }
    if (recipe) add(platform::kRecipeKey, *recipe);
    return entries;
}

bool OutputMetadata::mentionsLocation() const
{
    return hasGPS(properties());
}

platform::MetadataCopy OutputMetadata::copyOptions() const
{
    return {.entries = imageMetadata(), .merge = false, .excludeGps = true};
}

bool hasGPS(const nlohmann::json& dictionary)
{
    if (!dictionary.is_object()) return false;
    for (const auto& [key, value] : dictionary.items()) {
        std::string lower = key;
        std::transform(lower.begin(), lower.end(), lower.begin(),
                       [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
        if (lower.find("gps") != std::string::npos || key == "Location" || hasGPS(value)) return true;
    }
    return false;
}

} // namespace tamlo
