#include "platform/picture_metadata.h"

#include "platform/input_file.h"
#include "platform/jxl_decoder.h"
#include "platform/jxl_metadata.h"
#include "platform/sampled_file.h"

#include <array>

namespace tamlo::platform {
namespace {

bool isJXLFile(const std::filesystem::path& path)
{
    std::array<char, 32> head{};
    const std::size_t count = InputFile(path.string()).readHead(head);
    return isJXL({head.data(), count});
}

void readBoxes(const std::filesystem::path& path, PictureMetadata& out)
{
    const JXLMetadata boxes = readJXLMetadata(path.string());
    if (!boxes.exif.empty())
        Exiv2::ExifParser::decode(out.exif, boxes.exif.data(), static_cast<std::uint32_t>(boxes.exif.size()));
    if (!boxes.xmp.empty()) Exiv2::XmpParser::decode(out.xmp, boxes.xmp);
}

} // namespace

PictureMetadata readPictureMetadata(const std::filesystem::path& path, std::span<const char> head)
{
    PictureMetadata out;
    if (isJXLFile(path)) {
        readBoxes(path, out);
        return out;
    }
    const auto image = Exiv2::ImageFactory::open(Exiv2::BasicIo::AutoPtr(new SampledFile(path, head)));
    if (!image.get()) throw Exiv2::Error(Exiv2::kerFileContainsUnknownImageType, path.string());
    try {
        image->readMetadata();
    } catch (const std::exception& error) {
        out.damage = error.what();
    }
    out.exif = image->exifData();
    out.iptc = image->iptcData();
    out.xmp = image->xmpData();
    return out;
}

} // namespace tamlo::platform
