#include "platform/jxl_decoder.h"

#include "platform/checkpoint.h"
#include "platform/input_file.h"
#include "platform/picture_rows.h"
#include "platform/platform_error.h"
#include "platform/quiet_stderr.h"
#include "platform/worker_pool.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <memory>
#include <utility>

#include <jxl/decode.h>

namespace tamlo::platform {
namespace {

constexpr const char* kDamaged = "its picture data are damaged";

/// The library's loops on our pool: each worker takes the next piece until none is left. What a checkpoint
/// throws must not pass through the library, and waits here.
class Pool {
public:
    static JxlParallelRetCode run(void* self, void* job, JxlParallelRunInit init,
                                  JxlParallelRunFunction piece, std::uint32_t start, std::uint32_t end)
    {
        const int workers = std::clamp(static_cast<int>(end - start), 1, activeWorkers());
        if (const JxlParallelRetCode failed = init(job, static_cast<std::size_t>(workers))) return failed;
        std::atomic<std::uint32_t> next = start;
        try {
            runConcurrently(workers, [&](int worker) {
                for (std::uint32_t i = next++; i < end; i = next++) {
                    checkpoint();
                    piece(job, i, static_cast<std::size_t>(worker));
                }
            });
        } catch (...) {
            static_cast<Pool*>(self)->thrown_ = std::current_exception();
            return JXL_PARALLEL_RET_RUNNER_ERROR;
        }
        return 0;
    }

    void rethrow() const
    {
        if (thrown_) std::rethrow_exception(thrown_);
    }

private:
    std::exception_ptr thrown_;
};

class Decoder {
public:
    explicit Decoder(const std::vector<std::uint8_t>& file) : decoder_(JxlDecoderCreate(nullptr))
    {
        if (!decoder_) throw PlatformError("not enough memory");
        constexpr int kEvents = JXL_DEC_BASIC_INFO | JXL_DEC_COLOR_ENCODING | JXL_DEC_FULL_IMAGE;
        need(JxlDecoderSetParallelRunner(get(), Pool::run, &pool_));
        need(JxlDecoderSubscribeEvents(get(), kEvents));
        need(JxlDecoderSetKeepOrientation(get(), JXL_TRUE)); // turned by us, as with every format
        need(JxlDecoderSetInput(get(), file.data(), file.size()));
        JxlDecoderCloseInput(get());
    }

    JxlDecoder* get() const noexcept { return decoder_.get(); }
    void need(JxlDecoderStatus status) const
    {
        if (status != JXL_DEC_SUCCESS) throw PlatformError(kDamaged);
    }
    /// Goes on to the event. Errors: PlatformError when the file doesn't lead there.
    void goTo(JxlDecoderStatus event) const
    {
        const JxlDecoderStatus status = JxlDecoderProcessInput(get());
        pool_.rethrow();
        if (status == JXL_DEC_NEED_MORE_INPUT) throw PlatformError("the file is cut short");
        if (status != event) throw PlatformError(kDamaged);
    }

private:
    struct Freer {
        void operator()(JxlDecoder* p) const noexcept { JxlDecoderDestroy(p); }
    };
    Pool pool_; // outlives the library's handle on it
    std::unique_ptr<JxlDecoder, Freer> decoder_;
};

RowFormat formatOf(const JxlBasicInfo& info)
{
    RowFormat format;
    format.sample = info.exponent_bits_per_sample > 0 ? SampleType::f32
                    : info.bits_per_sample > 8        ? SampleType::u16
                                                      : SampleType::u8;
    format.model = info.num_color_channels == 1 ? ColourModel::grey : ColourModel::rgb;
    format.channels = static_cast<int>(info.num_color_channels);
    if (info.alpha_bits > 0) format.alpha = info.alpha_premultiplied ? Alpha::premultiplied : Alpha::straight;
    // Colours of 8 bits take the fourth byte in any case, and go to their place without a detour.
    if (info.alpha_bits > 0 || (format.sample == SampleType::u8 && format.channels == 3)) ++format.channels;
    return format;
}

/// The black of four inks lies among the extra channels.
void refuseInks(const Decoder& decoder, const JxlBasicInfo& info)
{
    for (std::size_t i = 0; i < info.num_extra_channels; ++i) {
        JxlExtraChannelInfo channel;
        decoder.need(JxlDecoderGetExtraChannelInfo(decoder.get(), i, &channel));
        if (channel.type == JXL_CHANNEL_BLACK) throw PlatformError("a JPEG XL of four inks is not supported");
    }
}

JxlPixelFormat pixelFormat(const RowFormat& format)
{
    const JxlDataType type = format.sample == SampleType::u8    ? JXL_TYPE_UINT8
                             : format.sample == SampleType::u16 ? JXL_TYPE_UINT16
                                                                : JXL_TYPE_FLOAT;
    return {static_cast<std::uint32_t>(format.channels), type, JXL_NATIVE_ENDIAN, 0};
}

std::optional<NamedSpace> spaceOf(const JxlColorEncoding& encoding)
{
    NamedSpace space;
    space.primaries.whiteX = encoding.white_point_xy[0];
    space.primaries.whiteY = encoding.white_point_xy[1];
    if (encoding.color_space == JXL_COLOR_SPACE_RGB)
        space.primaries = {encoding.primaries_red_xy[0],   encoding.primaries_red_xy[1],
                           encoding.primaries_green_xy[0], encoding.primaries_green_xy[1],
                           encoding.primaries_blue_xy[0],  encoding.primaries_blue_xy[1],
                           encoding.white_point_xy[0],     encoding.white_point_xy[1]};
    else if (encoding.color_space != JXL_COLOR_SPACE_GRAY)
        return std::nullopt;
    switch (encoding.transfer_function) {
    case JXL_TRANSFER_FUNCTION_SRGB:
        return space;
    case JXL_TRANSFER_FUNCTION_LINEAR:
        return NamedSpace{space.primaries, Transfer::linear, 1.0};
    case JXL_TRANSFER_FUNCTION_709:
        return NamedSpace{space.primaries, Transfer::bt709, 1.0};
    case JXL_TRANSFER_FUNCTION_PQ:
        return NamedSpace{space.primaries, Transfer::pq, 1.0};
    case JXL_TRANSFER_FUNCTION_HLG:
        return NamedSpace{space.primaries, Transfer::hlg, 1.0};
    case JXL_TRANSFER_FUNCTION_DCI:
        return NamedSpace{space.primaries, Transfer::gamma, 2.6};
    case JXL_TRANSFER_FUNCTION_GAMMA:
        if (encoding.gamma <= 0.0) return std::nullopt;
        return NamedSpace{space.primaries, Transfer::gamma, 1.0 / encoding.gamma};
    default:
        return std::nullopt;
    }
}

/// The space of the pixels that come out, by numbers where they say it, else by profile.
ColourTag tagOf(const Decoder& decoder, const JxlPixelFormat& pixels)
{
    ColourTag tag;
    JxlColorEncoding encoding;
    if (JxlDecoderGetColorAsEncodedProfile(decoder.get(), &pixels, JXL_COLOR_PROFILE_TARGET_DATA,
                                           &encoding) == JXL_DEC_SUCCESS)
        tag.space = spaceOf(encoding);
    std::size_t bytes = 0;
    if (tag.space || JxlDecoderGetICCProfileSize(decoder.get(), &pixels, JXL_COLOR_PROFILE_TARGET_DATA,
                                                 &bytes) != JXL_DEC_SUCCESS)
        return tag;
    tag.iccProfile.resize(bytes);
    decoder.need(JxlDecoderGetColorAsICCProfile(decoder.get(), &pixels, JXL_COLOR_PROFILE_TARGET_DATA,
                                                tag.iccProfile.data(), bytes));
    return tag;
}

} // namespace

bool isJXL(std::string_view head)
{
    const JxlSignature signature =
        JxlSignatureCheck(reinterpret_cast<const std::uint8_t*>(head.data()), head.size());
    return signature == JXL_SIG_CODESTREAM || signature == JXL_SIG_CONTAINER;
}

EncodedImage drawJXL(const std::string& path, const DrawRequest& request)
{
    const std::vector<std::uint8_t> bytes = InputFile(path).readAll();
    const QuietStderr quiet; // the library tells of damage there, line after line
    const Decoder decoder(bytes);
    decoder.goTo(JXL_DEC_BASIC_INFO);
    JxlBasicInfo info;
    decoder.need(JxlDecoderGetBasicInfo(decoder.get(), &info));
    checkPictureSize(info.xsize, info.ysize);
    refuseInks(decoder, info);
    PictureRows rows;
    rows.width = info.xsize;
    rows.height = info.ysize;
    rows.format = formatOf(info);
    rows.bandRows = rows.height;
    EncodedImage image{.width = rows.width,
                       .height = rows.height,
                       .exifOrientation = info.orientation,
                       .pictures = info.have_animation ? 2 : 1};
    std::uint8_t* rgba = request.memory(rows.width, rows.height);
    if (!rgba) return image;

    const JxlPixelFormat pixels = pixelFormat(rows.format);
    decoder.goTo(JXL_DEC_COLOR_ENCODING);
    const ColourTag tag = tagOf(decoder, pixels);
    decoder.goTo(JXL_DEC_NEED_IMAGE_OUT_BUFFER);
    rows.read = [&](std::int64_t, std::int64_t count, std::byte* to) {
        const std::size_t size = static_cast<std::size_t>(rows.width * count) * rows.format.bytesPerPixel();
        decoder.need(JxlDecoderSetImageOutBuffer(decoder.get(), &pixels, to, size));
        decoder.goTo(JXL_DEC_FULL_IMAGE);
    };
    image.notNumbers = drawRows(rows, tag, rgba);
    return image;
}

} // namespace tamlo::platform
