#include "platform/jxl_metadata.h"

#include "platform/input_file.h"
#include "platform/quiet_stderr.h"

#include <cstring>
#include <memory>

#include <jxl/decode.h>

namespace tamlo::platform {
namespace {

using Bytes = std::vector<std::uint8_t>;

/// One box on its way out of the decoder, into a buffer that grows.
class BoxReader {
public:
    explicit BoxReader(JxlDecoder* decoder) : decoder_(decoder) {}

    void begin(Bytes& into)
    {
        into_ = &into;
        into.resize(kPiece);
        give(0);
    }
    /// More room. Returns false where no honest file needs it.
    bool grow()
    {
        const std::size_t filled = into_->size() - JxlDecoderReleaseBoxBuffer(decoder_);
        if (filled >= kLargest) return false;
        into_->resize(filled * 2 + kPiece);
        give(filled);
        return true;
    }
    /// The box is whole, or its file ends.
    void end()
    {
        if (into_) into_->resize(into_->size() - JxlDecoderReleaseBoxBuffer(decoder_));
        into_ = nullptr;
    }

private:
    static constexpr std::size_t kPiece = std::size_t{1} << 16;
    static constexpr std::size_t kLargest = std::size_t{1} << 26;

    void give(std::size_t from)
    {
        JxlDecoderSetBoxBuffer(decoder_, into_->data() + from, into_->size() - from);
    }

    JxlDecoder* decoder_;
    Bytes* into_ = nullptr;
};

/// An Exif box begins with the distance to its TIFF header, in four bytes, high byte first.
Bytes fromTheHeader(const Bytes& box)
{
    if (box.size() < 4) return {};
    std::size_t skip = 4;
    for (std::size_t i = 0, distance = 0; i < 4; ++i) {
        distance = distance << 8 | box[i];
        if (i == 3) skip += distance;
    }
    if (skip >= box.size()) return {};
    return {box.begin() + static_cast<std::ptrdiff_t>(skip), box.end()};
}

} // namespace

JXLMetadata readJXLMetadata(const std::string& path)
{
    const Bytes file = InputFile(path).readAll();
    const QuietStderr quiet;
    const std::unique_ptr<JxlDecoder, void (*)(JxlDecoder*)> decoder(JxlDecoderCreate(nullptr),
                                                                     JxlDecoderDestroy);
    if (!decoder) return {};
    JxlDecoderSubscribeEvents(decoder.get(), JXL_DEC_BOX);
    JxlDecoderSetDecompressBoxes(decoder.get(), JXL_TRUE);
    JxlDecoderSetInput(decoder.get(), file.data(), file.size());
    JxlDecoderCloseInput(decoder.get());
    Bytes exif, xmp;
    BoxReader reader(decoder.get());
    for (;;) {
        const JxlDecoderStatus status = JxlDecoderProcessInput(decoder.get());
        if (status == JXL_DEC_BOX_NEED_MORE_OUTPUT && reader.grow()) continue;
        reader.end();
        JxlBoxType type;
        if (status != JXL_DEC_BOX || JxlDecoderGetBoxType(decoder.get(), type, JXL_TRUE) != JXL_DEC_SUCCESS)
            break;
        if (std::memcmp(type, "Exif", 4) == 0 && exif.empty()) reader.begin(exif);
        if (std::memcmp(type, "xml ", 4) == 0 && xmp.empty()) reader.begin(xmp);
    }
    return {fromTheHeader(exif), {xmp.begin(), xmp.end()}};
}

} // namespace tamlo::platform
