// Pictures in the common encoded formats, drawn into an 8-bit sRGB bitmap: JPEG, PNG, TIFF, HEIF and AVIF,
// WebP, JPEG XL. The codec is chosen by the first bytes of the file. Whatever profile or colour description
// the file carries is honoured on the way; a file without one is taken as sRGB (floating-point samples as
// linear sRGB, CMYK by the plain formula). Transparent pixels are drawn over black. A file that is cut short
// or damaged fails as a whole, and half a picture is never handed out, but where the caller asks for what
// there is.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace tamlo::platform {

/// What a file says of its picture beside the pixels, and what happened to it on the way.
struct EncodedImage {
    std::int64_t width = 0;
    std::int64_t height = 0;
    /// EXIF orientation 1...8 that the pixels still need; 1 where the codec has turned them already.
    int exifOrientation = 1;
    /// Pictures that the file holds; the first, or the one it calls its main one, is drawn.
    std::int64_t pictures = 1;
    /// Samples that are no numbers, drawn as 0.
    std::int64_t notNumbers = 0;
    /// What is wrong with a picture that was drawn as far as it goes; empty: nothing.
    std::string damage = {};
};

/// Gives zeroed memory for width × height × 4 bytes; called once, when the size is known. Null: the head is
/// all that is wanted, and no pixel is drawn.
using BitmapMemory = std::function<std::uint8_t*(std::int64_t width, std::int64_t height)>;

/// Whether a damaged JPEG or TIFF is drawn as far as it can be decoded, black where it can't.
enum class Damage { refused, tolerated };

struct DrawRequest {
    BitmapMemory memory;
    Damage damage = Damage::refused;
};

/// Draws the first picture of a file as R, G, B and an unused byte, rows top-down without padding.
/// Errors: PlatformError with the reason; what `memory` throws passes through.
EncodedImage drawEncodedImage(const std::string& path, const DrawRequest& request);

/// What a file says of its picture, without drawing it. Errors: PlatformError with the reason.
EncodedImage readEncodedHead(const std::string& path);

} // namespace tamlo::platform
