#include "platform/tiff_decoder.h"

#include "platform/input_file.h"
#include "platform/picture_rows.h"
#include "platform/platform_error.h"

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <limits>
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

/// A file that goes on in zeros behind its end, so that a strip that is cut short still gives what it has.
class PaddedFile {
public:
    explicit PaddedFile(const std::string& path) : file_(path)
    {
        fseeko(file_.handle(), 0, SEEK_END);
        size_ = ftello(file_.handle());
    }

    TIFF* open(TIFFOpenOptions* options)
    {
        return TIFFClientOpenExt("picture", "rm", this, read, write, seek, close, size, nullptr, nullptr,
                                 options);
    }

    bool isPadded = false;      ///< something behind the end was asked for
    std::int64_t bytesRead = 0; ///< what there was

private:
    static tmsize_t read(thandle_t handle, void* to, tmsize_t count)
    {
        auto& self = *static_cast<PaddedFile*>(handle);
        const std::int64_t there = std::clamp<std::int64_t>(self.size_ - self.position_, 0, count);
        std::memset(to, 0, static_cast<std::size_t>(count));
        fseeko(self.file_.handle(), self.position_, SEEK_SET);
        const std::size_t got = std::fread(to, 1, static_cast<std::size_t>(there), self.file_.handle());
        self.isPadded = self.isPadded || static_cast<tmsize_t>(got) < count;
        self.bytesRead += static_cast<std::int64_t>(got);
        self.position_ += count;
        return count;
    }
    static tmsize_t write(thandle_t, void*, tmsize_t) { return 0; }
    static toff_t seek(thandle_t handle, toff_t offset, int whence)
    {
        auto& self = *static_cast<PaddedFile*>(handle);
        const std::int64_t base = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? self.position_ : self.size_;
        self.position_ = base + static_cast<std::int64_t>(offset);
        return static_cast<toff_t>(self.position_);
    }
    static int close(thandle_t) { return 0; }
    static toff_t size(thandle_t handle)
    {
        return static_cast<toff_t>(static_cast<PaddedFile*>(handle)->size_);
    }

    InputFile file_;
    std::int64_t size_ = 0, position_ = 0;
};

class Reader {
public:
    explicit Reader(const std::string& path, Damage damage = Damage::refused)
    {
        const std::unique_ptr<TIFFOpenOptions, Closer> options(TIFFOpenOptionsAlloc());
        TIFFOpenOptionsSetErrorHandlerExtR(options.get(), onError, this);
        TIFFOpenOptionsSetWarningHandlerExtR(options.get(), onWarning, nullptr);
        TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), kMaxSingleAllocation);
        if (damage == Damage::tolerated) {
            padded_ = std::make_unique<PaddedFile>(path);
            tiff_.reset(padded_->open(options.get()));
        } else {
            // "m": no memory map, in which a file cut while it is read would end the program.
            tiff_.reset(TIFFOpenExt(path.c_str(), "rm", options.get()));
        }
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

    bool toleratesDamage() const noexcept { return padded_ != nullptr; }
    /// From here on only the picture data count. Nothing of what the head was told is theirs.
    void beginPixels()
    {
        reason_.clear();
        if (padded_) padded_->isPadded = false;
        if (padded_) padded_->bytesRead = 0;
    }
    /// What was passed over since; empty: nothing. Errors: PlatformError where there was nothing else.
    std::string damage() const
    {
        if (padded_ && padded_->isPadded && padded_->bytesRead == 0) throw PlatformError(kCutShort);
        if (padded_ && padded_->isPadded) return kCutShort;
        return reason_;
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

    static constexpr const char* kCutShort = "the file is cut short";

    std::string reason_;
    std::unique_ptr<PaddedFile> padded_; // outlives the library's handle on it
    std::unique_ptr<TIFF, Closer> tiff_;
};

/// Pictures of a file: its directories that are no smaller copies and no masks of others. One that can't be
/// read ends the count and spoils nothing.
std::int64_t countPictures(const std::string& path)
{
    constexpr int kMostDirectories = 1000;
    std::int64_t pictures = 0;
    try {
        const Reader reader(path);
        for (int i = 0; i < kMostDirectories; ++i) {
            const auto kind = reader.field<std::uint32_t>(TIFFTAG_SUBFILETYPE, 0);
            if (!(kind & (FILETYPE_REDUCEDIMAGE | FILETYPE_MASK))) ++pictures;
            if (TIFFReadDirectory(reader.get()) != 1) break;
        }
    } catch (const PlatformError&) {
        return 1;
    }
    return std::max<std::int64_t>(pictures, 1);
}

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

/// Samples that become others on the way: 16- and 64-bit floats 32-bit ones, 32-bit integers 16-bit ones.
bool isConverted(const Layout& layout)
{
    return layout.bits == 64 || (layout.sampleFormat == SAMPLEFORMAT_IEEEFP && layout.bits == 16) ||
           (layout.sampleFormat == SAMPLEFORMAT_UINT && layout.bits == 32);
}

std::optional<SampleType> sampleType(const Layout& layout)
{
    const bool isFloat = layout.sampleFormat == SAMPLEFORMAT_IEEEFP;
    if (isFloat && (layout.bits == 16 || layout.bits == 32 || layout.bits == 64)) return SampleType::f32;
    if (layout.sampleFormat != SAMPLEFORMAT_UINT) return std::nullopt;
    if (layout.bits == 8) return SampleType::u8;
    if (layout.bits == 16 || layout.bits == 32) return SampleType::u16;
    return std::nullopt;
}

/// The format of samples that we read ourselves; absent for kinds that are left to the library's own drawing
/// into 8 bits (palettes, YCbCr, fewer than 8 bits).
std::optional<RowFormat> directFormat(const Reader& reader, const Layout& layout)
{
    RowFormat format;
    const std::optional<SampleType> sample = sampleType(layout);
    if (!sample) return std::nullopt;
    format.sample = *sample;
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

/// Reads strips and tiles, one plane or several, into interleaved rows of samples as they are stored. Where
/// damage is tolerated, what can't be decoded is left as it was.
class RowReader {
public:
    RowReader(const Reader& reader, const Layout& layout)
        : reader_(reader),
          layout_(layout),
          sampleBytes_(layout.bits / 8u),
          pixelBytes_(sampleBytes_ * layout.samples),
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

    std::size_t rowBytes() const { return rowBytes_; }
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
            pass(TIFFReadScanline(reader_.get(), to, static_cast<std::uint32_t>(y + i), 0) == 1);
    }

    void pass(bool decoded) const
    {
        if (!reader_.toleratesDamage()) reader_.need(decoded);
    }

    void readCell(std::uint32_t x, std::uint32_t y, std::uint16_t plane)
    {
        TIFF* tiff = reader_.get();
        const auto size = static_cast<tmsize_t>(cell_.size());
        if (reader_.toleratesDamage()) std::ranges::fill(cell_, std::byte{0});
        const tmsize_t got =
            layout_.tiled
                ? TIFFReadEncodedTile(tiff, TIFFComputeTile(tiff, x, y, 0, plane), cell_.data(), size)
                : TIFFReadEncodedStrip(tiff, TIFFComputeStrip(tiff, y, plane), cell_.data(), size);
        const std::uint32_t rows = layout_.tiled ? cellHeight_ : std::min(cellHeight_, layout_.height - y);
        const std::size_t wanted =
            std::size_t{cellWidth_} * rows * (layout_.planar ? sampleBytes_ : pixelBytes_);
        pass(got >= 0 && static_cast<std::size_t>(got) >= wanted);
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

/// IEEE 754 binary16 to binary32, exactly.
float widened(std::uint16_t half)
{
    const int exponent = half >> 10 & 0x1F;
    const int mantissa = half & 0x3FF;
    const float magnitude = exponent == 0   ? std::ldexp(static_cast<float>(mantissa), -24)
                            : exponent < 31 ? std::ldexp(static_cast<float>(mantissa + 1024), exponent - 25)
                            : mantissa == 0 ? std::numeric_limits<float>::infinity()
                                            : std::numeric_limits<float>::quiet_NaN();
    return half & 0x8000 ? -magnitude : magnitude;
}
/// To the nearest that a float can hold.
float widened(double value)
{
    constexpr double kLargest = std::numeric_limits<float>::max();
    return std::isnan(value) ? std::numeric_limits<float>::quiet_NaN()
                             : static_cast<float>(std::clamp(value, -kLargest, kLargest));
}
std::uint16_t narrowed(std::uint32_t value)
{
    return static_cast<std::uint16_t>((std::uint64_t{value} + 32'768u) / 65'537u);
}

template <typename From, typename To, typename F>
void convertEach(const std::byte* from, std::byte* to, std::size_t count, F&& convert)
{
    for (std::size_t i = 0; i < count; ++i, from += sizeof(From), to += sizeof(To)) {
        From stored;
        std::memcpy(&stored, from, sizeof stored);
        const To value = convert(stored);
        std::memcpy(to, &value, sizeof value);
    }
}

void convertSamples(const Layout& layout, const std::byte* from, std::byte* to, std::size_t count)
{
    if (layout.sampleFormat == SAMPLEFORMAT_UINT)
        convertEach<std::uint32_t, std::uint16_t>(from, to, count, narrowed);
    else if (layout.bits == 64)
        convertEach<double, float>(from, to, count, [](double v) { return widened(v); });
    else
        convertEach<std::uint16_t, float>(from, to, count, [](std::uint16_t v) { return widened(v); });
}

void invertSamples(const RowFormat& format, std::byte* at, std::size_t pixels)
{
    if (format.sample == SampleType::u8) invert<std::uint8_t>(at, pixels, format.channels, 255);
    if (format.sample == SampleType::u16) invert<std::uint16_t>(at, pixels, format.channels, 65535);
    if (format.sample == SampleType::f32) invert<float>(at, pixels, format.channels, 1.0f);
}

/// Returns how many samples are no numbers.
std::int64_t drawDirect(const Reader& reader, const Layout& layout, const RowFormat& format,
                        const ColourTag& tag, std::uint8_t* rgba)
{
    RowReader source(reader, layout);
    PictureRows rows;
    rows.width = layout.width;
    rows.height = layout.height;
    rows.format = format;
    rows.bandRows = source.bandRows();
    std::vector<std::byte> stored; // samples that are converted
    if (isConverted(layout))
        stored.resize(static_cast<std::size_t>(std::min<std::int64_t>(rows.bandRows, rows.height)) *
                      source.rowBytes());
    rows.read = [&](std::int64_t y, std::int64_t count, std::byte* to) {
        if (reader.toleratesDamage())
            std::fill_n(to, static_cast<std::size_t>(count * rows.width) * format.bytesPerPixel(),
                        std::byte{0});
        source.read(y, count, stored.empty() ? to : stored.data());
        const auto pixels = static_cast<std::size_t>(count * rows.width);
        if (!stored.empty())
            convertSamples(layout, stored.data(), to, pixels * static_cast<std::size_t>(format.channels));
        if (layout.photometric == PHOTOMETRIC_MINISWHITE) invertSamples(format, to, pixels);
    };
    return drawRows(rows, tag, rgba);
}

/// The library's own drawing: 8 bits, colours premultiplied, which is how they look over black.
void drawByLibrary(const Reader& reader, const Layout& layout, const ColourTag& tag, std::uint8_t* rgba)
{
    char reason[1024] = {};
    TIFFRGBAImage image{};
    const int stopOnError = reader.toleratesDamage() ? 0 : 1;
    if (!TIFFRGBAImageOK(reader.get(), reason) ||
        !TIFFRGBAImageBegin(&image, reader.get(), stopOnError, reason))
        throw PlatformError(reason);
    const std::unique_ptr<TIFFRGBAImage, Closer> end(&image);
    image.req_orientation = image.orientation; // rows as they are stored
    PictureRows rows;
    rows.width = layout.width;
    rows.height = layout.height;
    rows.format = {SampleType::u8, ColourModel::rgb, 4, Alpha::none};
    rows.bandRows = rows.height;
    rows.read = [&](std::int64_t, std::int64_t, std::byte* to) {
        const bool complete =
            TIFFRGBAImageGet(&image, reinterpret_cast<std::uint32_t*>(to), layout.width, layout.height);
        reader.need(complete);
    };
    drawRows(rows, tag, rgba);
}

} // namespace

EncodedImage drawTIFF(const std::string& path, const DrawRequest& request)
{
    static_cast<void>(InputFile(path)); // says what is wrong with a path in the words of every codec
    Reader reader(path, request.damage);
    const Layout layout = layoutOf(reader);
    checkPictureSize(layout.width, layout.height);
    ColourTag tag;
    std::uint32_t profileBytes = 0;
    const std::uint8_t* profile = nullptr;
    if (TIFFGetField(reader.get(), TIFFTAG_ICCPROFILE, &profileBytes, &profile))
        tag.iccProfile.assign(profile, profile + profileBytes);
    const std::optional<RowFormat> format = directFormat(reader, layout);
    EncodedImage image{.width = layout.width,
                       .height = layout.height,
                       .exifOrientation = reader.field<std::uint16_t>(TIFFTAG_ORIENTATION, 1),
                       .pictures = countPictures(path)};
    std::uint8_t* rgba = request.memory(layout.width, layout.height);
    if (!rgba) return image;
    reader.beginPixels();
    if (format)
        image.notNumbers = drawDirect(reader, layout, *format, tag, rgba);
    else
        drawByLibrary(reader, layout, tag, rgba);
    if (reader.toleratesDamage()) image.damage = reader.damage();
    return image;
}

} // namespace tamlo::platform
