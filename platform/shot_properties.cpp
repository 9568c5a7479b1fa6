#include "platform/shot_properties.h"

#include "platform/exiv2_session.h"

#include <exiv2/exiv2.hpp>

#include <cmath>

namespace tamlo::platform {
namespace {

/// The value as text without the padding of fixed-width fields.
std::optional<std::string> textOf(const Exiv2::ExifData& data, const char* key)
{
    const auto entry = data.findKey(Exiv2::ExifKey(key));
    if (entry == data.end()) return std::nullopt;
    std::string text = entry->toString();
    const std::string padding(" \t\r\n\0", 5);
    text.erase(0, text.find_first_not_of(padding));
    text.erase(text.find_last_not_of(padding) + 1);
    if (text.empty()) return std::nullopt;
    return text;
}

std::optional<double> positiveOf(const Exiv2::ExifData& data, const char* key)
{
    const auto entry = data.findKey(Exiv2::ExifKey(key));
    if (entry == data.end() || entry->count() == 0) return std::nullopt;
    const Exiv2::Rational value = entry->toRational();
    if (value.second == 0) return std::nullopt;
    const double number = static_cast<double>(value.first) / value.second;
    if (!(number > 0)) return std::nullopt;
    return number;
}

std::optional<int> isoOf(const Exiv2::ExifData& data)
{
    const auto entry = data.findKey(Exiv2::ExifKey("Exif.Photo.ISOSpeedRatings"));
    if (entry == data.end() || entry->count() == 0) return std::nullopt;
    const long value = entry->toLong();
    if (value <= 0 || value > 100'000'000) return std::nullopt;
    return static_cast<int>(value);
}

} // namespace

ShotProperties readShotProperties(const std::filesystem::path& path)
{
    ShotProperties shot;
    try {
        readyExiv2();
        const auto image = Exiv2::ImageFactory::open(path.string());
        if (!image.get()) return shot;
        image->readMetadata();
        const Exiv2::ExifData& data = image->exifData();
        shot.camera = textOf(data, "Exif.Image.Model");
        shot.lensModel = textOf(data, "Exif.Photo.LensModel");
        shot.focalMm = positiveOf(data, "Exif.Photo.FocalLength");
        shot.fNumber = positiveOf(data, "Exif.Photo.FNumber");
        shot.exposureSec = positiveOf(data, "Exif.Photo.ExposureTime");
        shot.iso = isoOf(data);
        shot.dateOriginal = textOf(data, "Exif.Photo.DateTimeOriginal");
    } catch (const std::exception&) {
        return {}; // a picture with damaged metadata is still a picture
    }
    return shot;
}

} // namespace tamlo::platform
