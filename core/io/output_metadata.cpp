#include "core/io/output_metadata.h"

#include "core/image/rounding.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <limits>

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

/// A positive number as a fraction of integers: whole over 1, else in thousandths.
std::string rationalText(double value)
{
    if (value == std::floor(value)) return std::to_string(roundAway(value)) + "/1";
    return std::to_string(roundAway(value * 1000.0)) + "/1000";
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

std::string exifDate(std::time_t moment)
{
    std::tm parts{};
    std::array<char, 64> text{};
    // Only figures in the pattern, so that no locale changes it.
    if (!localtime_r(&moment, &parts) ||
        std::strftime(text.data(), text.size(), "%Y:%m:%d %H:%M:%S", &parts) == 0)
        return {};
    return text.data();
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
    if (dateOriginal) exif["DateTimeOriginal"] = exif["DateTimeDigitized"] = exifDate(*dateOriginal);
    if (!keywords.empty()) iptc["Keywords"] = keywords;

    nlohmann::json root{{"Orientation", 1}, {"TIFF", tiff}};
    if (!exif.empty()) root["Exif"] = exif;
    if (!iptc.empty()) root["IPTC"] = iptc;
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
    if (const std::string date = dateOriginal ? exifDate(*dateOriginal) : ""; !date.empty()) {
        add("Exif.Photo.DateTimeOriginal", date);
        add("Exif.Photo.DateTimeDigitized", date);
    }
    for (const std::string& keyword : keywords) {
        add("Iptc.Application2.Keywords", keyword);
        add("Xmp.dc.subject", keyword);
    }
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
