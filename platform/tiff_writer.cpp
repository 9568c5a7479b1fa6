#include "platform/tiff_writer.h"

#include "platform/checkpoint.h"
#include "platform/platform_error.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <memory>

#include <tiffio.h>

namespace tamlo::platform {
namespace {

static_assert(std::endian::native == std::endian::little, "samples go to the file as they lie in memory");

/// A file in memory, with the calls that libtiff makes on one.
struct MemoryFile {
    std::vector<std::uint8_t> bytes;
    std::size_t position = 0;
};

tmsize_t readBytes(thandle_t handle, void* to, tmsize_t size)
{
    auto& file = *static_cast<MemoryFile*>(handle);
    const std::size_t there = file.bytes.size() - std::min(file.position, file.bytes.size());
    const std::size_t count = std::min(static_cast<std::size_t>(size), there);
    if (count > 0) std::memcpy(to, file.bytes.data() + file.position, count);
    file.position += count;
    return static_cast<tmsize_t>(count);
}

tmsize_t writeBytes(thandle_t handle, void* from, tmsize_t size)
{
    auto& file = *static_cast<MemoryFile*>(handle);
    const std::size_t end = file.position + static_cast<std::size_t>(size);
    try {
        if (end > file.bytes.size()) file.bytes.resize(end);
    } catch (const std::bad_alloc&) {
        return 0; // libtiff reports the short write
    }
    std::memcpy(file.bytes.data() + file.position, from, static_cast<std::size_t>(size));
    file.position = end;
    return size;
}

toff_t seekTo(thandle_t handle, toff_t offset, int whence)
{
    auto& file = *static_cast<MemoryFile*>(handle);
    const std::size_t base = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? file.position : file.bytes.size();
    file.position = base + static_cast<std::size_t>(offset);
    return file.position;
}

toff_t sizeOf(thandle_t handle)
{
    return static_cast<MemoryFile*>(handle)->bytes.size();
}

int closeNothing(thandle_t)
{
    return 0;
}

// libtiff's own reports go to stderr; ours travel with the error. The plain handlers are global, so both are
// silenced once, and the reason is told from the call that failed.
void silence()
{
    [[maybe_unused]] static const bool done = [] {
        TIFFSetErrorHandler(nullptr);
        TIFFSetWarningHandler(nullptr);
        return true;
    }();
}

void setTags(TIFF* tiff, const PictureLayout& layout, int bits, std::int64_t rowsPerStrip)
{
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, static_cast<std::uint32_t>(layout.width));
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, static_cast<std::uint32_t>(layout.height));
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, bits);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, layout.channels);
    TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_NONE);
    TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, static_cast<std::uint32_t>(rowsPerStrip));
    if (layout.channels == 4) {
        const std::uint16_t straight = EXTRASAMPLE_UNASSALPHA;
        TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &straight);
    }
    if (layout.pixelsPerInch) {
        TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
        TIFFSetField(tiff, TIFFTAG_XRESOLUTION, *layout.pixelsPerInch);
        TIFFSetField(tiff, TIFFTAG_YRESOLUTION, *layout.pixelsPerInch);
    }
    if (!layout.icc.empty())
        TIFFSetField(tiff, TIFFTAG_ICCPROFILE, static_cast<std::uint32_t>(layout.icc.size()),
                     layout.icc.data());
}

template <typename Sample>
std::vector<std::uint8_t> encode(const PictureLayout& layout, const RowSource<Sample>& rows)
{
    silence();
    const std::int64_t rowSamples = layout.width * layout.channels;
    const std::int64_t rowBytes = rowSamples * static_cast<std::int64_t>(sizeof(Sample));
    // The format's offsets have 32 bits; a mebibyte is left for the directory and the metadata.
    constexpr std::int64_t kLargest = (std::int64_t{1} << 32) - (std::int64_t{1} << 20);
    if (rowBytes > kLargest / layout.height)
        throw PlatformError("a TIFF holds at most 4 GiB, this picture needs " +
                            std::to_string(rowBytes * layout.height) + " bytes");
    const std::int64_t rowsPerStrip = std::clamp<std::int64_t>((std::int64_t{1} << 20) / rowBytes, 1,
                                                               layout.height); // strips of a mebibyte

    MemoryFile file;
    file.bytes.reserve(static_cast<std::size_t>(rowBytes * layout.height) + (1u << 16));
    const std::unique_ptr<TIFF, decltype(&TIFFClose)> tiff(TIFFClientOpen("memory", "wlm", &file, readBytes,
                                                                          writeBytes, seekTo, closeNothing,
                                                                          sizeOf, nullptr, nullptr),
                                                           &TIFFClose);
    if (!tiff) throw PlatformError("no memory for the TIFF encoder");
    setTags(tiff.get(), layout, static_cast<int>(8 * sizeof(Sample)), rowsPerStrip);

    std::vector<Sample> strip(static_cast<std::size_t>(rowSamples * rowsPerStrip));
    std::uint32_t index = 0;
    for (std::int64_t start = 0; start < layout.height; start += rowsPerStrip, ++index) {
        const std::int64_t count = std::min(rowsPerStrip, layout.height - start);
        checkpoint();
        rows(start, count, std::span(strip).first(static_cast<std::size_t>(count * rowSamples)));
        const tmsize_t size = count * rowBytes;
        if (TIFFWriteEncodedStrip(tiff.get(), index, strip.data(), size) != size)
            throw PlatformError("TIFF strip " + std::to_string(index) + " cannot be encoded");
    }
    if (TIFFWriteDirectory(tiff.get()) != 1) throw PlatformError("the TIFF directory cannot be encoded");
    return std::move(file.bytes);
}

} // namespace

std::vector<std::uint8_t> encodeTiff16(const PictureLayout& layout, const RowSource<std::uint16_t>& rows)
{
    return encode<std::uint16_t>(layout, rows);
}

std::vector<std::uint8_t> encodeTiff8(const PictureLayout& layout, const RowSource<std::uint8_t>& rows)
{
    return encode<std::uint8_t>(layout, rows);
}

} // namespace tamlo::platform
