#include "tests/support/file_reference.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>

#include <exiv2/exiv2.hpp>
#include <png.h>
#include <tiffio.h>

namespace tamlo::test {

std::vector<std::uint8_t> readBytes(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    if (!in) throw std::runtime_error("no file " + path);
    return {std::istreambuf_iterator<char>(in), {}};
}

ReadPicture readPng(const std::string& path)
{
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"), std::fclose);
    png_structp png = png_create_read_struct(
        PNG_LIBPNG_VER_STRING, nullptr,
        [](png_structp, png_const_charp text) { throw std::runtime_error(text); },
        [](png_structp, png_const_charp text) { throw std::runtime_error(text); });
    png_infop info = png_create_info_struct(png);
    png_init_io(png, file.get());
    png_read_png(png, info, PNG_TRANSFORM_IDENTITY, nullptr);
    ReadPicture out{png_get_image_width(png, info),
                    png_get_image_height(png, info),
                    png_get_channels(png, info),
                    png_get_bit_depth(png, info),
                    {},
                    {}};
    png_bytepp rows = png_get_rows(png, info);
    for (std::int64_t y = 0; y < out.height; ++y)
        out.samples.insert(out.samples.end(), rows[y], rows[y] + out.width * out.channels);
    png_charp name = nullptr;
    int compression = 0;
    png_bytep profile = nullptr;
    png_uint_32 size = 0;
    if (png_get_iCCP(png, info, &name, &compression, &profile, &size) != 0)
        out.icc.assign(profile, profile + size);
    png_destroy_read_struct(&png, &info, nullptr);
    return out;
}

ReadPicture readTiff(const std::string& path)
{
    const std::unique_ptr<TIFF, void (*)(TIFF*)> tiff(TIFFOpen(path.c_str(), "r"), TIFFClose);
    if (!tiff) throw std::runtime_error("no TIFF " + path);
    std::uint32_t width = 0, height = 0, size = 0;
    std::uint16_t channels = 0, bits = 0;
    void* profile = nullptr;
    TIFFGetField(tiff.get(), TIFFTAG_IMAGEWIDTH, &width);
    TIFFGetField(tiff.get(), TIFFTAG_IMAGELENGTH, &height);
    TIFFGetField(tiff.get(), TIFFTAG_SAMPLESPERPIXEL, &channels);
    TIFFGetField(tiff.get(), TIFFTAG_BITSPERSAMPLE, &bits);
    ReadPicture out{width, height, channels, bits, {}, {}};
    if (TIFFGetField(tiff.get(), TIFFTAG_ICCPROFILE, &size, &profile) == 1) {
        const auto* bytes = static_cast<const std::uint8_t*>(profile);
        out.icc.assign(bytes, bytes + size);
    }
    std::vector<std::uint8_t> row(static_cast<std::size_t>(TIFFScanlineSize(tiff.get())));
    for (std::uint32_t y = 0; y < height; ++y) {
        if (TIFFReadScanline(tiff.get(), row.data(), y) != 1) throw std::runtime_error("broken TIFF " + path);
        for (std::size_t i = 0; i < row.size(); i += bits / 8)
            out.samples.push_back(bits == 8 ? row[i] : static_cast<std::uint16_t>(row[i] | row[i + 1] << 8));
    }
    return out;
}

std::map<std::string, std::string> readMetadata(const std::string& path)
{
    const Exiv2::Image::AutoPtr image = Exiv2::ImageFactory::open(path);
    image->readMetadata();
    std::map<std::string, std::string> out;
    const auto add = [&](const auto& data) {
        for (const auto& entry : data) {
            std::string& text = out[entry.key()];
            text += (text.empty() ? "" : "|") + entry.toString();
        }
    };
    add(image->exifData());
    add(image->iptcData());
    add(image->xmpData());
    return out;
}

double readDensity(const std::string& path)
{
    if (path.ends_with(".tif")) {
        const std::unique_ptr<TIFF, void (*)(TIFF*)> tiff(TIFFOpen(path.c_str(), "r"), TIFFClose);
        float density = 0;
        return tiff && TIFFGetField(tiff.get(), TIFFTAG_XRESOLUTION, &density) == 1 ? density : 0.0;
    }
    const std::vector<std::uint8_t> bytes = readBytes(path);
    if (path.ends_with(".jpg")) // JFIF 1.02: units, then two 16-bit densities
        return bytes.at(13) == 1 ? bytes.at(16) * 256.0 + bytes.at(17) : 0.0;
    const std::string name = "pHYs"; // PNG, 11.3.5.3: two 32-bit densities, then the unit
    const auto at = std::search(bytes.begin(), bytes.end(), name.begin(), name.end());
    if (bytes.end() - at < 13 || at[12] != 1) return 0.0;
    return ((at[8] * 256.0 + at[9]) * 256.0 + at[10]) * 256.0 * 0.0254 + at[11] * 0.0254;
}

} // namespace tamlo::test
