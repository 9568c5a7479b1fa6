// Metadata put into a finished JPEG, PNG or TIFF, in memory. The compressed picture is carried over byte for
// byte; only the metadata around it changes.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace tamlo::platform {

/// One value under its Exiv2 key ("Exif.Image.Model", "Iptc.Application2.Keywords", "Xmp.dc.subject"). An
/// IPTC or XMP key that stands more than once is a list.
struct MetadataEntry {
    std::string key;
    std::string value;
    bool operator==(const MetadataEntry&) const = default;
};

/// The recipe of a print: a property of our own namespace.
inline constexpr const char* kRecipeKey = "Xmp.tamlo.Recipe";

struct MetadataCopy {
    std::vector<MetadataEntry> entries;
    /// Keep what the file already says beside the entries.
    bool merge = false;
    /// Drop every entry of a position, also one that was merged.
    bool excludeGps = true;
};

/// The file with the metadata in place of, or merged with, its own. The colour profile stays.
/// Errors: PlatformError when the file or an entry cannot be handled.
std::vector<std::uint8_t> withMetadata(std::span<const std::uint8_t> file, const MetadataCopy& copy);

} // namespace tamlo::platform
