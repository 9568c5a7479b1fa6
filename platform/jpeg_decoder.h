// JPEG files, drawn into an 8-bit sRGB bitmap.
#pragma once

#include "platform/encoded_image.h"

namespace tamlo::platform {

/// drawEncodedImage for a file that is a JPEG.
EncodedImage drawJPEG(const std::string& path, const DrawRequest& request);

} // namespace tamlo::platform
