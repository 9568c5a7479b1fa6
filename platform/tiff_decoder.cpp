#include "platform/tiff_decoder.h"

#include "platform/input_file.h"
#include "platform/picture_rows.h"
#include "platform/platform_error.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <memory>

#include <tiffio.h>

namespace tamlo::platform {
namespace {

constexpr tmsize_t kMaxSingleAllocation = tmsize_t{1} << 31; // a strip that claims more is damaged

struct Closer {
    void operator()(TIFF* tiff) const noexcept { TIFFClose(tiff); }
    void operator()(TIFFOpenOptions* options) const noexcept { TIFFOpenOptionsFree(options); }
    void operator()(TIFFRGBAImage* image) const noexcept { TIFFRGBAImageEnd(image); }
};

class Reader {
public:
    explicit Reader(const std::string& path)
    {
        const std::unique_ptr<TIFFOpenOptions, Closer> options(TIFFOpenOptionsAlloc());
        TIFFOpenOptionsSetErrorHandlerExtR(options.get(), onError, this);
        TIFFOpenOptionsSetWarningHandlerExtR(options.get(), onWarning, nullptr);
        TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), kMaxSingleAllocation);
        // "m": no memory map, in which a file cut while it is read would end the program.
        tiff_.reset(TIFFOpenExt(path.c_str(), "rm", options.get()));
        if (!tiff_) fail();
    }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    TIFF* get() const noexcept { return tiff_.get(); }

    [[noreturn]] void fail() const
    {
        throw PlatformError(reason_.empty() ? "its picture data are damaged" : reason_);
    }
    void need(bool ok) const
    {
        if (!ok) fail();
    }

    template <typename T>
    T field(ttag_t tag, T absent) const
    {
        T value = absent;
        return TIFFGetFieldDefaulted(tiff_.get(), tag, &value) ? value : absent;
    }

private:
    static int onError(TIFF*, void* self, const char*, const char* format, va_list arguments)
    {
        char text[512];
        std::vsnprintf(text, sizeof text, format, arguments);
        auto& reason = static_cast<Reader*>(self)->reason_;
        if (reason.empty()) reason = text; // the first is the cause, the rest follow from it
        return 1;
    }
    static int onWarning(TIFF*, void*, const char*, const char*, va_list) { return 1; }

    std::string reason_;
    std::unique_ptr<TIFF, Closer> tiff_;
};

struct Layout {
    std::uint32_t width = 0, height = 0;
    std::uint16_t bits = 1, samples = 1, sampleFormat = SAMPLEFORMAT_UINT;
    std::uint16_t photometric = PHOTOMETRIC_MINISBLACK;
    bool planar = false;
    bool tiled = false;
};

Layout layoutOf(const Reader& reader)
{
    Layout layout;
    layout.width = reader.field<std::uint32_t>(TIFFTAG_IMAGEWIDTH, 0);
    layout.height = reader.field<std::uint32_t>(TIFFTAG_IMAGELENGTH, 0);
    layout.bits = reader.field<std::uint16_t>(TIFFTAG_BITSPERSAMPLE, 1);
    layout.samples = reader.field<std::uint16_t>(TIFFTAG_SAMPLESPERPIXEL, 1);
    layout.sampleFormat = reader.field<std::uint16_t>(TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT);
    if (!TIFFGetField(reader.get(), TIFFTAG_PHOTOMETRIC, &layout.photometric))
        layout.photometric = layout.samples >= 3 ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK;
    layout.planar =
        layout.samples > 1 &&
        reader.field<std::uint16_t>(TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) == PLANARCONFIG_SEPARATE;
    layout.tiled = TIFFIsTiled(reader.get()) != 0;
    return layout;
}

Alpha alphaOf(const Reader& reader, const Layout& layout, int colours)
{
    std::uint16_t count = 0;
    std::uint16_t* kinds = nullptr;
    if (layout.samples <= colours ||
        !TIFFGetFieldDefaulted(reader.get(), TIFFTAG_EXTRASAMPLES, &count, &kinds) || count == 0)
        return Alpha::none;
    if (kinds[0] == EXTRASAMPLE_ASSOCALPHA) return Alpha::premultiplied;
    return kinds[0] == EXTRASAMPLE_UNASSALPHA ? Alpha::straight : Alpha::none;
}

/// The format of samples that we read ourselves; absent for kinds that are left to the library's own drawing
/// into 8 bits (palettes, YCbCr, fewer than 8 bits).
std::optional<RowFormat> directFormat(const Reader& reader, const Layout& layout)
{
    RowFormat format;
    if (layout.sampleFormat == SAMPLEFORMAT_IEEEFP && layout.bits == 32)
        format.sample = SampleType::f32;
    else if (layout.sampleFormat == SAMPLEFORMAT_UINT && (layout.bits == 8 || layout.bits == 16))
        format.sample = layout.bits == 8 ? SampleType::u8 : SampleType::u16;
    else
        return std::nullopt;
    switch (layout.photometric) {
    case PHOTOMETRIC_MINISWHITE:
    case PHOTOMETRIC_MINISBLACK:
        format.model = ColourModel::grey;
        break;
    case PHOTOMETRIC_RGB:
        format.model = ColourModel::rgb;
        break;
    case PHOTOMETRIC_SEPARATED:
        format.model = ColourModel::cmyk;
        break;
    default:
        return std::nullopt;
    }
    constexpr int kMaxExtra = 7; // what colour management can step over
    if (layout.samples < format.colours() || layout.samples > format.colours() + kMaxExtra)
        return std::nullopt;
    format.channels = layout.samples;
    format.alpha = alphaOf(reader, layout, format.colours());
    return format;
}

/// Reads strips and tiles, one plane or several, into interleaved rows.
class RowReader {
public:
    RowReader(const Reader& reader, const Layout& layout, const RowFormat& format)
        : reader_(reader),
          layout_(layout),
          sampleBytes_(layout.bits / 8u),
          pixelBytes_(format.bytesPerPixel()),
          rowBytes_(layout.width * pixelBytes_)
    {
        TIFF* tiff = reader.get();
        if (layout.tiled) {
            cellWidth_ = reader.field<std::uint32_t>(TIFFTAG_TILEWIDTH, 0);
            cellHeight_ = reader.field<std::uint32_t>(TIFFTAG_TILELENGTH, 0);
            cell_.resize(static_cast<std::size_t>(TIFFTileSize(tiff)));
        } else {
            cellWidth_ = layout.width;
            cellHeight_ =
                std::min(reader.field<std::uint32_t>(TIFFTAG_ROWSPERSTRIP, layout.height), layout.height);
            if (layout.planar) cell_.resize(static_cast<std::size_t>(TIFFStripSize(tiff)));
        }
        reader.need(cellWidth_ > 0 && cellHeight_ > 0);
        const std::size_t cellPixels = std::size_t{cellWidth_} * cellHeight_;
        const std::size_t bytes = layout.planar ? sampleBytes_ : pixelBytes_;
        // Damaged tags can make the library's sizes and ours disagree.
        if (!cell_.empty())
            reader.need(cell_.size() >= cellPixels * bytes);
        else
            reader.need(static_cast<std::size_t>(TIFFScanlineSize(tiff)) == rowBytes_);
    }

    std::int64_t bandRows() const { return cell_.empty() ? 256 : cellHeight_; }

    void read(std::int64_t y, std::int64_t rows, std::byte* to)
    {
        if (cell_.empty()) return readScanlines(y, rows, to);
        const int planes = layout_.planar ? layout_.samples : 1;
        for (int plane = 0; plane < planes; ++plane)
            for (std::uint32_t x = 0; x < layout_.width; x += cellWidth_) {
                readCell(x, static_cast<std::uint32_t>(y), static_cast<std::uint16_t>(plane));
                copyCell(x, rows, plane, to);
            }
    }

private:
    void readScanlines(std::int64_t y, std::int64_t rows, std::byte* to)
    {
        for (std::int64_t i = 0; i < rows; ++i, to += rowBytes_)
            reader_.need(TIFFReadScanline(reader_.get(), to, static_cast<std::uint32_t>(y + i), 0) == 1);
    }

    void readCell(std::uint32_t x, std::uint32_t y, std::uint16_t plane)
    {
        TIFF* tiff = reader_.get();
        const auto size = static_cast<tmsize_t>(cell_.size());
        const tmsize_t got =
            layout_.tiled
                ? TIFFReadEncodedTile(tiff, TIFFComputeTile(tiff, x, y, 0, plane), cell_.data(), size)
                : TIFFReadEncodedStrip(tiff, TIFFComputeStrip(tiff, y, plane), cell_.data(), size);
        const std::uint32_t rows = layout_.tiled ? cellHeight_ : std::min(cellHeight_, layout_.height - y);
        const std::size_t wanted =
            std::size_t{cellWidth_} * rows * (layout_.planar ? sampleBytes_ : pixelBytes_);
        reader_.need(got >= 0 && static_cast<std::size_t>(got) >= wanted);
    }

    void copyCell(std::uint32_t x, std::int64_t rows, int plane, std::byte* to) const
    {
        const std::size_t columns = std::min(cellWidth_, layout_.width - x);
        const std::size_t stepBytes = layout_.planar ? sampleBytes_ : pixelBytes_;
        for (std::int64_t row = 0; row < rows; ++row) {
            const std::byte* from = cell_.data() + static_cast<std::size_t>(row) * cellWidth_ * stepBytes;
            std::byte* out = to + static_cast<std::size_t>(row) * rowBytes_ + x * pixelBytes_;
            if (!layout_.planar) {
                std::memcpy(out, from, columns * pixelBytes_);
                continue;
            }
            out += static_cast<std::size_t>(plane) * sampleBytes_;
            for (std::size_t i = 0; i < columns; ++i, from += sampleBytes_, out += pixelBytes_)
                std::memcpy(out, from, sampleBytes_);
        }
    }

    const Reader& reader_;
    const Layout& layout_;
    std::size_t sampleBytes_;
    std::size_t pixelBytes_;
    std::size_t rowBytes_;
    std::uint32_t cellWidth_ = 0, cellHeight_ = 0;
    std::vector<std::byte> cell_; // a tile, or a strip of one plane; unused where rows come as they are
};

template <typename T>
void invert(std::byte* samples, std::size_t count, int channels, T white)
{
    auto* v = reinterpret_cast<T*>(samples);
    for (std::size_t i = 0; i < count; ++i, v += channels) *v = static_cast<T>(white - *v);
}

void drawDirect(const Reader& reader, const Layout& layout, const RowFormat& format, const ColourTag& tag,
                std::uint8_t* rgba)
{
    RowReader source(reader, layout, format);
    PictureRows rows;
    rows.width = layout.width;
    rows.height = layout.height;
    rows.format = format;
    rows.bandRows = source.bandRows();
    const bool whiteIsZero = layout.photometric == PHOTOMETRIC_MINISWHITE;
    rows.read = [&](std::int64_t y, std::int64_t count, std::byte* to) {
        // Where the picture is drawn in place it is asked for at once; cells still come one row of them at
        // a time.
        for (std::int64_t done = 0; done < count; done += rows.bandRows) {
            const std::int64_t part = std::min(rows.bandRows, count - done);
            std::byte* at = to + static_cast<std::size_t>(done * rows.width) * format.bytesPerPixel();
            source.read(y + done, part, at);
            const auto pixels = static_cast<std::size_t>(part * rows.width);
            if (!whiteIsZero) continue;
            if (format.sample == SampleType::u8) invert<std::uint8_t>(at, pixels, format.channels, 255);
            if (format.sample == SampleType::u16) invert<std::uint16_t>(at, pixels, format.channels, 65535);
            if (format.sample == SampleType::f32) invert<float>(at, pixels, format.channels, 1.0f);
        }
    };
    drawRows(rows, tag, rgba);
}

/// The library's own drawing: 8 bits, colours premultiplied, which is how they look over black.
void drawByLibrary(const Reader& reader, const Layout& layout, const ColourTag& tag, std::uint8_t* rgba)
{
    char reason[1024] = {};
    TIFFRGBAImage image{};
    if (!TIFFRGBAImageOK(reader.get(), reason) || !TIFFRGBAImageBegin(&image, reader.get(), 1, reason))
        throw PlatformError(reason);
    const std::unique_ptr<TIFFRGBAImage, Closer> end(&image);
    image.req_orientation = image.orientation; // rows as they are stored
    PictureRows rows;
    rows.width = layout.width;
    rows.height = layout.height;
    rows.format = {SampleType::u8, ColourModel::rgb, 4, Alpha::none};
    rows.read = [&](std::int64_t, std::int64_t, std::byte* to) {
        const bool complete =
            TIFFRGBAImageGet(&image, reinterpret_cast<std::uint32_t*>(to), layout.width, layout.height);
        reader.need(complete);
    };
    drawRows(rows, tag, rgba);
}

} // namespace

EncodedImage drawTIFF(const std::string& path, const BitmapMemory& memory)
{
    static_cast<void>(InputFile(path)); // says what is wrong with a path in the words of every codec
    const Reader reader(path);
    const Layout layout = layoutOf(reader);
    checkPictureSize(layout.width, layout.height);
    ColourTag tag;
    std::uint32_t profileBytes = 0;
    const std::uint8_t* profile = nullptr;
    if (TIFFGetField(reader.get(), TIFFTAG_ICCPROFILE, &profileBytes, &profile))
        tag.iccProfile.assign(profile, profile + profileBytes);
    const std::optional<RowFormat> format = directFormat(reader, layout);
    std::uint8_t* rgba = memory(layout.width, layout.height);
    if (rgba && format)
        drawDirect(reader, layout, *format, tag, rgba);
    else if (rgba)
        drawByLibrary(reader, layout, tag, rgba);
    return {layout.width, layout.height, reader.field<std::uint16_t>(TIFFTAG_ORIENTATION, 1)};
}

} // namespace tamlo::platform
