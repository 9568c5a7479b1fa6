#include "platform/encoded_image.h"

#include "platform/heif_decoder.h"
#include "platform/input_file.h"
#include "platform/jpeg_decoder.h"
#include "platform/jxl_decoder.h"
#include "platform/platform_error.h"
#include "platform/png_decoder.h"
#include "platform/tiff_decoder.h"
#include "platform/webp_decoder.h"

#include <array>
#include <string_view>

namespace tamlo::platform {
namespace {

using Decoder = EncodedImage (*)(const std::string&, const DrawRequest&);

Decoder decoderFor(std::string_view head)
{
    const auto starts = [&](std::string_view magic) { return head.starts_with(magic); };
    if (starts("\xff\xd8\xff")) return drawJPEG;
    if (starts("\x89PNG\r\n\x1a\n")) return drawPNG;
    if (starts({"II*\0", 4}) || starts({"MM\0*", 4}) || starts({"II+\0", 4}) || starts({"MM\0+", 4}))
        return drawTIFF;
    if (starts("RIFF") && head.substr(8).starts_with("WEBP")) return drawWebP;
    if (isJXL(head)) return drawJXL;
    if (starts("GIF8")) throw PlatformError("GIF is not read; save the picture as PNG or TIFF");
    if (starts("8BPS")) throw PlatformError("PSD is not read; save the picture as TIFF or PNG");
    if (isHEIF(head)) return drawHEIF;
    throw PlatformError("it is not a JPEG, PNG, TIFF, HEIF, AVIF, WebP or JPEG XL picture");
}

} // namespace

EncodedImage drawEncodedImage(const std::string& path, const DrawRequest& request)
{
    std::array<char, 32> bytes{};
    const std::size_t count = InputFile(path).readHead(bytes);
    if (count == 0) throw PlatformError("the file is empty");
    return decoderFor({bytes.data(), count})(path, request);
}

EncodedImage readEncodedHead(const std::string& path)
{
    return drawEncodedImage(path, {[](std::int64_t, std::int64_t) { return nullptr; }});
}

} // namespace tamlo::platform
