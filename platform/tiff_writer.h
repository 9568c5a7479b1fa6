// TIFF files made in memory by libtiff: strips, not compressed, little-endian. Sixteen bits of a print with
// grain shrink by a few per cent only, deflate would cost seconds a picture, and plain strips are what every
// reader of the format opens.
#pragma once

#include "platform/row_source.h"

#include <vector>

namespace tamlo::platform {

/// The bytes of a TIFF of 16 bits a channel.
/// Errors: PlatformError with libtiff's reason, or that the picture would pass the format's 4 GiB.
std::vector<std::uint8_t> encodeTiff16(const PictureLayout& layout, const RowSource<std::uint16_t>& rows);

/// The bytes of a TIFF of 8 bits a channel. Errors: as encodeTiff16.
std::vector<std::uint8_t> encodeTiff8(const PictureLayout& layout, const RowSource<std::uint8_t>& rows);

} // namespace tamlo::platform
