// One value of a picture's metadata, by its Exiv2 key.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace tamlo::platform {

/// The text under a key of EXIF, IPTC or XMP; nothing where the file does not have it.
/// Errors: PlatformError with the reason when the file can't be read as a picture's.
std::optional<std::string> readMetadataText(const std::filesystem::path& path, const std::string& key);

} // namespace tamlo::platform
