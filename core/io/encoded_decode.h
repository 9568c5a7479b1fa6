// Encoded pictures (JPEG, PNG, TIFF, HEIF, AVIF, WebP, JPEG XL) on their way to scene light: the file is
// drawn into an 8-bit sRGB bitmap, its ICC profile honoured, and the bitmap is linearised by a table. Deep
// files (16 bit, float) take the same road. The codec is chosen by the file's content, not by its name.
// Transparent pixels are drawn over black.
#pragma once

#include "core/image/page_buffer.h"
#include "core/image/rgb_image.h"
#include "platform/encoded_image.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace tamlo::ImageLoader {

/// Whether a damaged JPEG or TIFF is read as far as it can be decoded.
using platform::Damage;

/// How a picture is read, and who hears what there is to say of it, in the user's language.
struct Reading {
    Damage damage = Damage::refused;
    std::function<void(const std::string& note)> onNote = {};
};

/// A decoded picture as it is stored in the file, not yet turned.
struct EncodedDecode {
    std::int64_t width = 0;
    std::int64_t height = 0;
    /// Degrees clockwise that bring it upright, 0, 90, 180 or 270; `mirror` comes first.
    int rotate = 0;
    bool mirror = false;
    /// R, G, B and an unused byte a pixel, rows top-down without padding.
    PageBuffer rgba;
    /// What was left aside: further pictures of the file, samples that are no numbers, damage.
    std::vector<std::string> notes;

    /// Linear light on sRGB primaries, 0...1.
    /// Shape: fills width × height × 3 floats. Errors: io "empty image" for no pixels or a shorter `into`.
    void linearize(std::span<float> into) const;
};

/// Errors: io "cannot decode PATH: reason"; "cannot map N bytes".
EncodedDecode decodeEncoded(const std::filesystem::path& path, Damage damage = Damage::refused);

/// Upright size of an encoded picture, its pixels unread where the codec allows it. Errors: as decodeEncoded.
Size encodedSize(const std::filesystem::path& path);

/// The picture in linear light, upright. Errors: as decodeEncoded.
RGBImage loadEncodedAsLinear(const std::filesystem::path& path, const Reading& reading = {});

} // namespace tamlo::ImageLoader
