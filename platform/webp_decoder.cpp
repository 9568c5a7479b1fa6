#include "platform/webp_decoder.h"

#include "platform/exif_orientation.h"
#include "platform/input_file.h"
#include "platform/picture_rows.h"
#include "platform/platform_error.h"

#include <cstring>
#include <memory>
#include <span>

#include <webp/decode.h>
#include <webp/demux.h>

namespace tamlo::platform {
namespace {

constexpr const char* kDamaged = "its picture data are damaged";

struct Freer {
    void operator()(WebPDemuxer* p) const noexcept { WebPDemuxDelete(p); }
    void operator()(WebPAnimDecoder* p) const noexcept { WebPAnimDecoderDelete(p); }
};

class Container {
public:
    explicit Container(const std::vector<std::uint8_t>& file)
        : data_{file.data(), file.size()}, demuxer_(WebPDemux(&data_))
    {
        if (!demuxer_) throw PlatformError("the file is cut short, or its structure is damaged");
    }

    std::int64_t feature(WebPFormatFeature which) const { return WebPDemuxGetI(demuxer_.get(), which); }
    const WebPData& data() const { return data_; }

    /// Payload of the first chunk of a name; empty where there is none.
    std::vector<std::uint8_t> chunk(const char* name) const
    {
        WebPChunkIterator found;
        std::vector<std::uint8_t> payload;
        if (WebPDemuxGetChunk(demuxer_.get(), name, 1, &found))
            payload.assign(found.chunk.bytes, found.chunk.bytes + found.chunk.size);
        WebPDemuxReleaseChunkIterator(&found);
        return payload;
    }

private:
    WebPData data_;
    std::unique_ptr<WebPDemuxer, Freer> demuxer_;
};

/// Some writers put the name of JPEG's segment before the block.
int orientationOf(std::vector<std::uint8_t> exif)
{
    constexpr char kName[] = "Exif\0"; // with the end of the literal: six bytes
    if (exif.size() > sizeof kName && std::memcmp(exif.data(), kName, sizeof kName) == 0)
        exif.erase(exif.begin(), exif.begin() + sizeof kName);
    return exifOrientation(exif);
}

void drawStill(const WebPData& file, std::span<std::uint8_t> rgba, int stride)
{
    if (!WebPDecodeRGBAInto(file.bytes, file.size, rgba.data(), rgba.size(), stride))
        throw PlatformError(kDamaged);
}

/// The first picture of an animation, laid on its canvas.
void drawFirst(const WebPData& file, std::span<std::uint8_t> rgba)
{
    const std::unique_ptr<WebPAnimDecoder, Freer> decoder(WebPAnimDecoderNew(&file, nullptr));
    std::uint8_t* canvas = nullptr;
    int timestamp = 0;
    if (!decoder || !WebPAnimDecoderGetNext(decoder.get(), &canvas, &timestamp))
        throw PlatformError(kDamaged);
    std::memcpy(rgba.data(), canvas, rgba.size());
}

} // namespace

EncodedImage drawWebP(const std::string& path, const DrawRequest& request)
{
    const std::vector<std::uint8_t> bytes = InputFile(path).readAll();
    const Container container(bytes);
    PictureRows rows;
    rows.width = container.feature(WEBP_FF_CANVAS_WIDTH);
    rows.height = container.feature(WEBP_FF_CANVAS_HEIGHT);
    checkPictureSize(rows.width, rows.height);
    const auto flags = container.feature(WEBP_FF_FORMAT_FLAGS);
    rows.format = {SampleType::u8, ColourModel::rgb, 4, Alpha::straight};
    if (!(flags & ALPHA_FLAG)) rows.format.alpha = Alpha::none;
    rows.bandRows = rows.height;
    EncodedImage image{.width = rows.width,
                       .height = rows.height,
                       .exifOrientation = orientationOf(container.chunk("EXIF")),
                       .pictures = container.feature(WEBP_FF_FRAME_COUNT)};
    std::uint8_t* rgba = request.memory(rows.width, rows.height);
    if (!rgba) return image;
    rows.read = [&](std::int64_t, std::int64_t count, std::byte* to) {
        const std::span pixels(reinterpret_cast<std::uint8_t*>(to),
                               static_cast<std::size_t>(rows.width * count * 4));
        if (flags & ANIMATION_FLAG)
            drawFirst(container.data(), pixels);
        else
            drawStill(container.data(), pixels, static_cast<int>(rows.width * 4));
    };
    drawRows(rows, {container.chunk("ICCP"), std::nullopt}, rgba);
    return image;
}

} // namespace tamlo::platform
