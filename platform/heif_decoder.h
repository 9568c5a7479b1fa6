// HEIF files (HEIC, AVIF and what else the installed codecs decode), drawn into an 8-bit sRGB bitmap.
#pragma once

#include "platform/encoded_image.h"

#include <string_view>

namespace tamlo::platform {

/// Whether the first bytes of a file are those of a HEIF file.
bool isHEIF(std::string_view head);

/// drawEncodedImage for a file that is a HEIF. The library applies the file's own turns and mirrors.
EncodedImage drawHEIF(const std::string& path, const DrawRequest& request);

} // namespace tamlo::platform
