// Finished pictures made smaller, for tiles and for looking at different sizes side by side.
#pragma once

#include "core/image/rgb_image.h"
#include "core/io/ready_image.h"

namespace tamlo {

/// Linear light of a finished picture.
RGBImage linearOf(const ReadyImage& image);
/// Reduced to a long side, in linear light; one that is not above it comes back as it is.
ReadyImage reduced(const ReadyImage& image, std::int64_t longSide);

} // namespace tamlo
