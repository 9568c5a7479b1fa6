// The metadata boxes of a JPEG XL container, which Exiv2 of this age does not look into.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tamlo::platform {

struct JXLMetadata {
    std::vector<std::uint8_t> exif; ///< from the TIFF header on
    std::string xmp;
};

/// The first box of each kind, unpacked where it is packed; empty where there is none, as in a bare
/// codestream. What stands before damage is given. Errors: PlatformError when the file can't be read.
JXLMetadata readJXLMetadata(const std::string& path);

} // namespace tamlo::platform
