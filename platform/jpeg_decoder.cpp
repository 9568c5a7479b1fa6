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
    Damage damage = Damage::refused;
    const char* found = nullptr; ///< the first damage that was tolerated
};

[[noreturn]] void onError(j_common_ptr info)
{
    char text[JMSG_LENGTH_MAX];
    info->err->format_message(info, text);
    reinterpret_cast<ErrorManager*>(info->err)->guard.fail(text);
}

/// What a warning says of the picture. Most are a writer's sloppiness; three mean that picture data are
/// missing or wrong, where the library goes on with grey.
const char* damageOf(int warning)
{
    switch (warning) {
    case JWRN_JPEG_EOF:
        return "the file is cut short";
    case JWRN_HIT_MARKER:
    case JWRN_HUFF_BAD_CODE:
        return "its picture data are damaged";
    default:
        return nullptr;
    }
}

void onMessage(j_common_ptr info, int level)
{
    auto* manager = reinterpret_cast<ErrorManager*>(info->err);
    const char* damage = level < 0 ? damageOf(info->err->msg_code) : nullptr;
    if (!damage) return;
    if (manager->damage == Damage::refused) manager->guard.fail(damage);
    if (!manager->found) manager->found = damage;
}

// A progressive file is decoded whole before the first row comes out.
void onProgress(j_common_ptr info)
{
    reinterpret_cast<ErrorManager*>(info->err)->guard.checkpoint();
}

class Decompressor {
public:
    Decompressor(std::FILE* file, Damage damage)
    {
        errors_.damage = damage;
        info_.err = jpeg_std_error(&errors_.base);
        errors_.base.error_exit = onError;
        errors_.base.emit_message = onMessage;
        run([&] {
            jpeg_create_decompress(&info_);
            jpeg_stdio_src(&info_, file);
            progress_.progress_monitor = onProgress;
            info_.progress = &progress_;
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
    bool toleratesDamage() const noexcept { return errors_.damage == Damage::tolerated; }
    /// Damage that was passed over; empty: none.
    std::string damage() const { return errors_.found ? errors_.found : ""; }

private:
    ErrorManager errors_{};
    jpeg_progress_mgr progress_{};
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

/// Rows of the picture as they come. Where damage is tolerated, one that ends the decoding leaves the rows
/// from there on black; a picture without a single row is none.
class RowReader {
public:
    RowReader(Decompressor& decompressor, const PictureRows& rows)
        : decompressor_(decompressor),
          rowBytes_(static_cast<std::size_t>(rows.width * rows.format.channels)),
          isInk_(rows.format.model == ColourModel::cmyk),
          isInverted_(isInk_ && decompressor.info().saw_Adobe_marker)
    {}

    void read(std::int64_t count, JSAMPLE* to)
    {
        std::int64_t done = 0;
        try {
            if (fatal_.empty())
                decompressor_.run([&] {
                    for (; done < count; ++done) {
                        JSAMPLE* row = to + static_cast<std::size_t>(done) * rowBytes_;
                        jpeg_read_scanlines(&decompressor_.info(), &row, 1);
                    }
                });
        } catch (const PlatformError& error) {
            if (!decompressor_.toleratesDamage() || (done == 0 && !hasRows_)) throw;
            fatal_ = error.what();
        }
        hasRows_ = hasRows_ || done > 0;
        JSAMPLE* black = to + static_cast<std::size_t>(done) * rowBytes_;
        JSAMPLE* end = to + static_cast<std::size_t>(count) * rowBytes_;
        if (isInverted_)
            std::transform(to, black, to, [](JSAMPLE v) { return static_cast<JSAMPLE>(255 - v); });
        std::fill(black, end, isInk_ ? JSAMPLE{255} : JSAMPLE{0});
    }

    const std::string& fatal() const { return fatal_; }

private:
    Decompressor& decompressor_;
    std::size_t rowBytes_;
    bool isInk_, isInverted_;
    bool hasRows_ = false;
    std::string fatal_;
};

} // namespace

EncodedImage drawJPEG(const std::string& path, const DrawRequest& request)
{
    const InputFile file(path);
    Decompressor decompressor(file.handle(), request.damage);
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
    EncodedImage image{.width = rows.width, .height = rows.height, .exifOrientation = orientationOf(info)};
    const ColourTag tag{profileOf(decompressor), std::nullopt};
    std::uint8_t* rgba = request.memory(rows.width, rows.height);
    if (!rgba) return image;

    decompressor.run([&] { jpeg_start_decompress(&info); });
    RowReader reader(decompressor, rows);
    rows.read = [&](std::int64_t, std::int64_t count, std::byte* to) {
        reader.read(count, reinterpret_cast<JSAMPLE*>(to));
    };
    drawRows(rows, tag, rgba);
    image.damage = reader.fatal().empty() ? decompressor.damage() : reader.fatal();
    return image;
}

} // namespace tamlo::platform
