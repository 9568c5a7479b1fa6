// ReadyImage: a finished 8-bit sRGB picture, as a contact sheet or an instant card comes out: bytes R G B A.
#pragma once

#include "core/image/rgb_image.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace tamlo {

struct ReadyImage {
    /// skip: the fourth byte says nothing, the picture is opaque.
    enum class Alpha { skip, premultiplied, straight };

    std::int64_t width = 0;
    std::int64_t height = 0;
    /// width × height × 4 bytes, rows top-down.
    std::vector<std::uint8_t> rgba;
    Alpha alpha = Alpha::skip;
};

namespace ImageWriter {

/// The picture encoded to sRGB: opaque, or with a plane of its size as premultiplied alpha.
/// Errors: io "cannot create image".
ReadyImage readyImage(const RGBImage& image, const Plane* alpha = nullptr);
/// Wraps bytes R G B A; premultiplied says whether the fourth is alpha that the colours carry already, else
/// it is not looked at. Errors: io "cannot create image" when the bytes are not width × height × 4.
ReadyImage readyImage(std::vector<std::uint8_t> rgba8, std::int64_t width, std::int64_t height,
                      bool premultiplied);

/// The same picture over opaque white.
ReadyImage flattenOnWhite(const ReadyImage& image);
/// R G B of each pixel, over black where there is alpha. Errors: io "cannot read pixels for JPEG".
std::vector<std::uint8_t> rgbBytes(const ReadyImage& image);

} // namespace ImageWriter
} // namespace tamlo
