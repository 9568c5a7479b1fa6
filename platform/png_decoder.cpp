#include "platform/png_decoder.h"

#include "platform/c_guard.h"
#include "platform/exif_orientation.h"
#include "platform/input_file.h"
#include "platform/picture_rows.h"

#include <bit>
#include <cmath>
#include <cstdlib>

#include <png.h>

namespace tamlo::platform {
namespace {

static_assert(std::endian::native == std::endian::little, "16-bit samples are swapped to little-endian");

[[noreturn]] void onError(png_structp png, png_const_charp text)
{
    static_cast<CGuard*>(png_get_error_ptr(png))->fail(text);
}

void onWarning(png_structp, png_const_charp)
{}

class Reader {
public:
    explicit Reader(std::FILE* file)
        : png_(png_create_read_struct(PNG_LIBPNG_VER_STRING, &guard_, onError, onWarning)),
          info_(png_ ? png_create_info_struct(png_) : nullptr)
    {
        if (!info_) throw PlatformError("not enough memory");
        png_init_io(png_, file);
    }
    ~Reader() { png_destroy_read_struct(&png_, &info_, nullptr); }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    template <typename F>
    void run(const F& call)
    {
        guard_.run(call);
    }
    png_structp png() const noexcept { return png_; }
    png_infop info() const noexcept { return info_; }

private:
    CGuard guard_;
    png_structp png_;
    png_infop info_;
};

/// gAMA and cHRM, each with sRGB's value where it is missing.
NamedSpace spaceOf(png_structp png, png_infop info)
{
    NamedSpace space;
    double fileGamma = 0.0;
    if (png_get_gAMA(png, info, &fileGamma) && fileGamma > 0.01 && fileGamma < 10.0) {
        // 0.45455 is what writers of sRGB pictures put down for the curve.
        constexpr double kSRGBFileGamma = 0.45455;
        if (std::abs(fileGamma - kSRGBFileGamma) > 0.0005) {
            space.transfer = Transfer::gamma;
            space.gamma = 1.0 / fileGamma;
        }
    }
    Primaries p{};
    if (png_get_cHRM(png, info, &p.whiteX, &p.whiteY, &p.redX, &p.redY, &p.greenX, &p.greenY, &p.blueX,
                     &p.blueY) &&
        p.whiteY > 0.0 && p.redY > 0.0 && p.greenY > 0.0 && p.blueY > 0.0)
        space.primaries = p;
    return space;
}

ColourTag tagOf(png_structp png, png_infop info)
{
    ColourTag tag;
    png_charp name = nullptr;
    png_bytep profile = nullptr;
    png_uint_32 count = 0;
    int compression = 0, intent = 0;
    if (png_get_iCCP(png, info, &name, &compression, &profile, &count))
        tag.iccProfile.assign(profile, profile + count);
    else if (!png_get_sRGB(png, info, &intent) &&
             (png_get_valid(png, info, PNG_INFO_gAMA) || png_get_valid(png, info, PNG_INFO_cHRM)))
        tag.space = spaceOf(png, info);
    return tag;
}

void expandSamples(png_structp png, png_infop info)
{
    png_set_expand(png); // palette to RGB, grey below 8 bits to 8, transparent colour to alpha
    png_set_swap(png);
    if (png_get_color_type(png, info) == PNG_COLOR_TYPE_RGB && png_get_bit_depth(png, info) == 8 &&
        !png_get_valid(png, info, PNG_INFO_tRNS))
        png_set_filler(png, 0xff, PNG_FILLER_AFTER);
    if (png_get_color_type(png, info) == PNG_COLOR_TYPE_PALETTE && !png_get_valid(png, info, PNG_INFO_tRNS))
        png_set_filler(png, 0xff, PNG_FILLER_AFTER);
}

RowFormat formatOf(png_structp png, png_infop info)
{
    RowFormat format;
    const int type = png_get_color_type(png, info);
    format.sample = png_get_bit_depth(png, info) == 16 ? SampleType::u16 : SampleType::u8;
    format.model = type & PNG_COLOR_MASK_COLOR ? ColourModel::rgb : ColourModel::grey;
    format.channels = png_get_channels(png, info);
    format.alpha = type & PNG_COLOR_MASK_ALPHA ? Alpha::straight : Alpha::none;
    return format;
}

/// The head of the file: the picture's size.
PictureRows openRows(Reader& reader)
{
    reader.run([&] {
        png_set_benign_errors(reader.png(), 1);
        png_read_info(reader.png(), reader.info());
    });
    PictureRows rows;
    rows.width = png_get_image_width(reader.png(), reader.info());
    rows.height = png_get_image_height(reader.png(), reader.info());
    checkPictureSize(rows.width, rows.height);
    return rows;
}

/// Sets up how samples come out. Returns how often the rows are passed over: an interlaced picture comes
/// whole.
int prepareSamples(Reader& reader, PictureRows& rows)
{
    int passes = 1;
    reader.run([&] {
        expandSamples(reader.png(), reader.info());
        passes = png_set_interlace_handling(reader.png());
        png_read_update_info(reader.png(), reader.info());
    });
    rows.format = formatOf(reader.png(), reader.info());
    if (passes > 1) rows.bandRows = rows.height;
    return passes;
}

/// The end is read for what may follow the picture, and so that a file cut short there is found out.
int orientationAtTheEnd(Reader& reader)
{
    png_uint_32 bytes = 0;
    png_bytep exif = nullptr;
    reader.run([&] {
        png_read_end(reader.png(), reader.info());
        png_get_eXIf_1(reader.png(), reader.info(), &bytes, &exif);
    });
    return exifOrientation({exif, bytes});
}

} // namespace

EncodedImage drawPNG(const std::string& path, const DrawRequest& request)
{
    const InputFile file(path);
    Reader reader(file.handle());
    PictureRows rows = openRows(reader);
    const ColourTag tag = tagOf(reader.png(), reader.info());
    const int passes = prepareSamples(reader, rows);
    std::uint8_t* rgba = request.memory(rows.width, rows.height);
    rows.read = [&](std::int64_t, std::int64_t count, std::byte* to) {
        const std::size_t rowBytes = static_cast<std::size_t>(rows.width) * rows.format.bytesPerPixel();
        reader.run([&] {
            for (int pass = 0; pass < passes; ++pass) {
                auto* row = reinterpret_cast<png_bytep>(to);
                for (std::int64_t i = 0; i < count; ++i, row += rowBytes)
                    png_read_row(reader.png(), row, nullptr);
            }
        });
    };
    if (rgba) drawRows(rows, tag, rgba);
    return {.width = rows.width, .height = rows.height, .exifOrientation = orientationAtTheEnd(reader)};
}

} // namespace tamlo::platform
