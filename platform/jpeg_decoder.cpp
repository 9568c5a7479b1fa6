#include "platform/jpeg_decoder.h"

#include "platform/c_guard.h"
#include "platform/exif_orientation.h"
#include "platform/input_file.h"
#include "platform/picture_rows.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include <jpeglib.h>

#include <jerror.h>

namespace tamlo::platform {
namespace {

constexpr int kExifMarker = JPEG_APP0 + 1;
constexpr int kICCMarker = JPEG_APP0 + 2;
constexpr char kExifName[] = "Exif\0"; // with the end of the literal: the six bytes that open the block

struct ErrorManager {
    jpeg_error_mgr base; // first, so that the library's pointer is ours
    CGuard guard;
};

[[noreturn]] void onError(j_common_ptr info)
{
    char text[JMSG_LENGTH_MAX];
    info->err->format_message(info, text);
    reinterpret_cast<ErrorManager*>(info->err)->guard.fail(text);
}

// Most warnings are a writer's sloppiness. These three mean that picture data are missing or wrong; the
// library would go on with grey.
void onMessage(j_common_ptr info, int level)
{
    if (level >= 0) return;
    auto* manager = reinterpret_cast<ErrorManager*>(info->err);
    switch (info->err->msg_code) {
    case JWRN_JPEG_EOF:
        manager->guard.fail("the file is cut short");
    case JWRN_HIT_MARKER:
    case JWRN_HUFF_BAD_CODE:
        manager->guard.fail("its picture data are damaged");
    default:
        return;
    }
}

class Decompressor {
public:
    explicit Decompressor(std::FILE* file)
    {
        info_.err = jpeg_std_error(&errors_.base);
        errors_.base.error_exit = onError;
        errors_.base.emit_message = onMessage;
        run([&] {
            jpeg_create_decompress(&info_);
            jpeg_stdio_src(&info_, file);
        });
    }
    ~Decompressor() { jpeg_destroy_decompress(&info_); }
    Decompressor(const Decompressor&) = delete;
    Decompressor& operator=(const Decompressor&) = delete;

    template <typename F>
    void run(const F& call)
    {
        errors_.guard.run(call);
    }

    jpeg_decompress_struct& info() noexcept { return info_; }

private:
    ErrorManager errors_{};
    jpeg_decompress_struct info_{};
};

int orientationOf(const jpeg_decompress_struct& info)
{
    for (const jpeg_marker_struct* m = info.marker_list; m; m = m->next)
        if (m->marker == kExifMarker && m->data_length > sizeof kExifName &&
            std::memcmp(m->data, kExifName, sizeof kExifName) == 0)
            return exifOrientation({m->data + sizeof kExifName, m->data_length - sizeof kExifName});
    return 1;
}

std::vector<std::uint8_t> profileOf(Decompressor& decompressor)
{
    JOCTET* bytes = nullptr;
    unsigned count = 0;
    bool found = false;
    decompressor.run([&] { found = jpeg_read_icc_profile(&decompressor.info(), &bytes, &count); });
    std::vector<std::uint8_t> profile;
    if (found) profile.assign(bytes, bytes + count);
    std::free(bytes);
    return profile;
}

RowFormat chooseFormat(jpeg_decompress_struct& info)
{
    switch (info.num_components) {
    case 1:
        info.out_color_space = JCS_GRAYSCALE;
        return {SampleType::u8, ColourModel::grey, 1, Alpha::none};
    case 3:
        info.out_color_space = JCS_EXT_RGBX;
        return {SampleType::u8, ColourModel::rgb, 4, Alpha::none};
    case 4:
        info.out_color_space = JCS_CMYK;
        return {SampleType::u8, ColourModel::cmyk, 4, Alpha::none};
    default:
        throw PlatformError("a JPEG of " + std::to_string(info.num_components) +
                            " channels is not supported");
    }
}

} // namespace

EncodedImage drawJPEG(const std::string& path, const BitmapMemory& memory)
{
    const InputFile file(path);
    Decompressor decompressor(file.handle());
    jpeg_decompress_struct& info = decompressor.info();
    decompressor.run([&] {
        jpeg_save_markers(&info, kExifMarker, 0xffff);
        jpeg_save_markers(&info, kICCMarker, 0xffff);
        jpeg_read_header(&info, TRUE);
    });
    checkPictureSize(info.image_width, info.image_height);
    PictureRows rows;
    rows.width = info.image_width;
    rows.height = info.image_height;
    rows.format = chooseFormat(info);
    const EncodedImage image{rows.width, rows.height, orientationOf(info)};
    const ColourTag tag{profileOf(decompressor), std::nullopt};
    std::uint8_t* rgba = memory(rows.width, rows.height);
    if (!rgba) return image;

    decompressor.run([&] { jpeg_start_decompress(&info); });
    const bool invertedInk = rows.format.model == ColourModel::cmyk && info.saw_Adobe_marker;
    rows.read = [&](std::int64_t, std::int64_t count, std::byte* to) {
        auto* start = reinterpret_cast<JSAMPLE*>(to);
        const std::size_t rowBytes = static_cast<std::size_t>(rows.width * rows.format.channels);
        decompressor.run([&] {
            JSAMPLE* row = start;
            for (std::int64_t i = 0; i < count; ++i, row += rowBytes) jpeg_read_scanlines(&info, &row, 1);
        });
        if (invertedInk)
            std::transform(start, start + rowBytes * static_cast<std::size_t>(count), start,
                           [](JSAMPLE v) { return static_cast<JSAMPLE>(255 - v); });
    };
    drawRows(rows, tag, rgba);
    return image;
}

} // namespace tamlo::platform
