#include "platform/shot_properties.h"

#include "platform/exiv2_session.h"
#include "platform/picture_metadata.h"
#include "platform/unicode.h"

#include <initializer_list>

namespace tamlo::platform {
namespace {

/// Text of a field: without the padding of fixed widths and what no markup can hold; bytes that are no UTF-8
/// are taken as Latin-1, as older programs wrote them.
std::optional<std::string> cleaned(std::string text)
{
    std::erase_if(text, [](unsigned char c) { return c < ' ' && c != '\t' && c != '\n' && c != '\r'; });
    text = trimmed(asUtf8(text));
    return text.empty() ? std::nullopt : std::optional(text);
}

/// The first of the keys that has something to say.
std::optional<std::string> textOf(const Exiv2::ExifData& data, std::initializer_list<const char*> keys)
{
    for (const char* key : keys)
        if (const auto entry = data.findKey(Exiv2::ExifKey(key)); entry != data.end())
            if (auto text = cleaned(entry->toString())) return text;
    return std::nullopt;
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

ShotProperties readShotProperties(const std::filesystem::path& path, std::span<const char> head)
{
    ShotProperties shot;
    try {
        const auto session = exiv2Session();
        const PictureMetadata metadata = readPictureMetadata(path, head);
        const Exiv2::ExifData& data = metadata.exif;
        shot.make = textOf(data, {"Exif.Image.Make"});
        shot.camera = textOf(data, {"Exif.Image.Model"});
        shot.lensModel = textOf(data, {"Exif.Photo.LensModel"});
        shot.focalMm = positiveOf(data, "Exif.Photo.FocalLength");
        shot.fNumber = positiveOf(data, "Exif.Photo.FNumber");
        shot.exposureSec = positiveOf(data, "Exif.Photo.ExposureTime");
        shot.iso = isoOf(data);
        shot.dateOriginal = textOf(data, {"Exif.Photo.DateTimeOriginal"});
        shot.timeZone = textOf(data, {"Exif.Photo.OffsetTimeOriginal", "Exif.Photo.OffsetTime"});
        shot.artist = textOf(data, {"Exif.Image.Artist"});
        shot.copyright = textOf(data, {"Exif.Image.Copyright"});
    } catch (const std::exception&) {
        return {}; // a picture with damaged metadata is still a picture
    }
    return shot;
}

} // namespace tamlo::platform
