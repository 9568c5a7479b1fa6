#include "platform/metadata_reader.h"

#include "platform/exiv2_session.h"
#include "platform/input_file.h"
#include "platform/picture_metadata.h"
#include "platform/platform_error.h"

namespace tamlo::platform {
namespace {

template <typename Key, typename Data>
std::optional<std::string> find(const Data& data, const std::string& key)
{
    const auto found = data.findKey(Key(key));
    return found == data.end() ? std::nullopt : std::optional(found->toString());
}

} // namespace

std::optional<std::string> readMetadataText(const std::filesystem::path& path, const std::string& key)
{
    static_cast<void>(InputFile(path.string())); // says what is wrong with a path in the words of every codec
    const auto session = exiv2Session();
    try {
        const PictureMetadata metadata = readPictureMetadata(path);
        if (!metadata.damage.empty()) throw PlatformError(metadata.damage);
        if (key.starts_with("Exif.")) return find<Exiv2::ExifKey>(metadata.exif, key);
        if (key.starts_with("Iptc.")) return find<Exiv2::IptcKey>(metadata.iptc, key);
        return find<Exiv2::XmpKey>(metadata.xmp, key);
    } catch (const Exiv2::AnyError& error) {
        throw PlatformError(error.what());
    }
}

} // namespace tamlo::platform
