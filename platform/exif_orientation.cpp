#include "platform/exif_orientation.h"

#include "platform/exiv2_session.h"

#include <exiv2/exiv2.hpp>

namespace tamlo::platform {

int exifOrientation(std::span<const std::uint8_t> exif)
{
    if (exif.empty()) return 1;
    const auto session = exiv2Session();
    try {
        Exiv2::ExifData data;
        Exiv2::ExifParser::decode(data, exif.data(), static_cast<std::uint32_t>(exif.size()));
        const auto entry = data.findKey(Exiv2::ExifKey("Exif.Image.Orientation"));
        if (entry == data.end() || entry->count() == 0) return 1;
        const long value = entry->toLong();
        return value >= 1 && value <= 8 ? static_cast<int>(value) : 1;
    } catch (const std::exception&) {
        return 1; // a picture with damaged metadata is still a picture
    }
}

} // namespace tamlo::platform
