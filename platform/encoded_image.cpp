#include "platform/encoded_image.h"

#include "platform/heif_decoder.h"
#include "platform/input_file.h"
#include "platform/jpeg_decoder.h"
#include "platform/platform_error.h"
#include "platform/png_decoder.h"
#include "platform/tiff_decoder.h"

#include <array>
#include <string_view>

namespace tamlo::platform {
namespace {

using Decoder = EncodedImage (*)(const std::string&, const BitmapMemory&);

Decoder decoderFor(std::string_view head)
{
    const auto starts = [&](std::string_view magic) { return head.substr(0, magic.size()) == magic; };
    if (starts("\xff\xd8\xff")) return drawJPEG;
    if (starts("\x89PNG\r\n\x1a\n")) return drawPNG;
    if (starts({"II*\0", 4}) || starts({"MM\0*", 4}) || starts({"II+\0", 4}) || starts({"MM\0+", 4}))
        return drawTIFF;
    if (isHEIF(head)) return drawHEIF;
    return nullptr;
}

} // namespace

EncodedImage drawEncodedImage(const std::string& path, const BitmapMemory& memory)
{
    std::array<char, 32> bytes{};
    const std::size_t count = InputFile(path).readHead(bytes);
    if (count == 0) throw PlatformError("the file is empty");
    const Decoder decode = decoderFor({bytes.data(), count});
    if (!decode) throw PlatformError("it is not a JPEG, PNG, TIFF or HEIF picture");
    return decode(path, memory);
}

EncodedImage readEncodedHead(const std::string& path)
{
    return drawEncodedImage(path, [](std::int64_t, std::int64_t) { return nullptr; });
}

} // namespace tamlo::platform
