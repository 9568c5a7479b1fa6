#include "tests/support/jpeg_reference.h"

#include <cstdio> // jpeglib.h needs FILE and does not say so
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>

#include <jpeglib.h>

namespace tamlo::test {
namespace {

[[noreturn]] void fail(j_common_ptr info)
{
    char text[JMSG_LENGTH_MAX];
    info->err->format_message(info, text);
    throw std::runtime_error(text);
}

void failOnWarning(j_common_ptr info, int level)
{
    if (level < 0) fail(info);
}

} // namespace

DecodedJpeg decodeJpeg(std::span<const std::uint8_t> file)
{
    jpeg_decompress_struct info{};
    jpeg_error_mgr errors{};
    info.err = jpeg_std_error(&errors);
    errors.error_exit = fail;
    errors.emit_message = failOnWarning;
    jpeg_create_decompress(&info);
    const std::unique_ptr<jpeg_decompress_struct, void (*)(jpeg_decompress_struct*)> guard(
        &info, [](jpeg_decompress_struct* i) { jpeg_destroy_decompress(i); });
    jpeg_mem_src(&info, file.data(), file.size());
    jpeg_read_header(&info, TRUE);
    info.out_color_space = JCS_RGB;
    info.dct_method = JDCT_FLOAT;
    jpeg_start_decompress(&info);
    DecodedJpeg out{info.output_width, info.output_height, {}};
    out.rgb.resize(static_cast<std::size_t>(out.width * out.height * 3));
    while (info.output_scanline < info.output_height) {
        JSAMPROW row = out.rgb.data() + static_cast<std::size_t>(info.output_scanline * out.width * 3);
        jpeg_read_scanlines(&info, &row, 1);
    }
    jpeg_finish_decompress(&info);
    return out;
}

DecodedJpeg decodeJpegFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(in), {}};
    return decodeJpeg({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
}

std::vector<std::uint8_t> encodeJpegByLibrary(std::span<const std::uint8_t> rgb, std::int64_t width,
                                              std::int64_t height, int quality)
{
    jpeg_compress_struct info{};
    jpeg_error_mgr errors{};
    info.err = jpeg_std_error(&errors);
    errors.error_exit = fail;
    jpeg_create_compress(&info);
    const std::unique_ptr<jpeg_compress_struct, void (*)(jpeg_compress_struct*)> guard(
        &info, [](jpeg_compress_struct* i) { jpeg_destroy_compress(i); });
    unsigned char* buffer = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&info, &buffer, &size);
    info.image_width = static_cast<JDIMENSION>(width);
    info.image_height = static_cast<JDIMENSION>(height);
    info.input_components = 3;
    info.in_color_space = JCS_RGB;
    jpeg_set_defaults(&info);
    jpeg_set_quality(&info, quality, TRUE);
    info.comp_info[0].h_samp_factor = info.comp_info[0].v_samp_factor = 1;
    jpeg_start_compress(&info, TRUE);
    while (info.next_scanline < info.image_height) {
        auto row =
            const_cast<JSAMPROW>(rgb.data() + static_cast<std::size_t>(info.next_scanline * width * 3));
        jpeg_write_scanlines(&info, &row, 1);
    }
    jpeg_finish_compress(&info);
    const std::unique_ptr<unsigned char, void (*)(void*)> owned(buffer, std::free);
    return {buffer, buffer + size};
}

} // namespace tamlo::test
