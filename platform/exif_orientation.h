// The EXIF orientation of a picture.
#pragma once

#include <cstdint>
#include <span>

namespace tamlo::platform {

/// Orientation of an EXIF block that starts with its TIFF header; 1 when there is none or it can't be read.
int exifOrientation(std::span<const std::uint8_t> exif);

} // namespace tamlo::platform
