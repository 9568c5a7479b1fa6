// JPEG XL files, drawn into an 8-bit sRGB bitmap.
#pragma once

#include "platform/encoded_image.h"

#include <string_view>

namespace tamlo::platform {

/// Whether the first bytes of a file are those of a JPEG XL, bare or in a container.
bool isJXL(std::string_view head);

/// drawEncodedImage for a file that is a JPEG XL; of an animation the first picture.
EncodedImage drawJXL(const std::string& path, const DrawRequest& request);

} // namespace tamlo::platform
