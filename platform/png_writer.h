// PNG files made in memory by libpng.
#pragma once

#include "platform/row_source.h"

#include <vector>

namespace tamlo::platform {

/// The bytes of a PNG of 8 bits a channel, tagged with the layout's profile.
/// Errors: PlatformError with libpng's reason.
std::vector<std::uint8_t> encodePng(const PictureLayout& layout, const RowSource<std::uint8_t>& rows);

} // namespace tamlo::platform
