#include "platform/png_writer.h"

#include "platform/checkpoint.h"
#include "platform/platform_error.h"

#include <algorithm>
#include <csetjmp>
#include <exception>

#include <png.h>

namespace tamlo::platform {
namespace {

constexpr std::int64_t kRowsPerPull = 64;

/// What libpng's callbacks reach.
struct Sink {
    std::vector<std::uint8_t> out;
    std::string reason;
    std::exception_ptr thrown;
};

// Errors must not unwind through C: the reason is kept and libpng jumps back to its caller.
[[noreturn]] void onError(png_structp png, png_const_charp text)
{
    static_cast<Sink*>(png_get_error_ptr(png))->reason = text;
    png_longjmp(png, 1);
}

void onWarning(png_structp, png_const_charp)
{}

void onWrite(png_structp png, png_bytep data, std::size_t size)
{
    Sink& sink = *static_cast<Sink*>(png_get_io_ptr(png));
    try {
        sink.out.insert(sink.out.end(), data, data + size);
    } catch (...) {
        sink.thrown = std::current_exception();
    }
    if (sink.thrown) png_error(png, "no memory for the file");
}

void onFlush(png_structp)
{}

struct Handles {
    png_structp png = nullptr;
    png_infop info = nullptr;
    ~Handles() { png_destroy_write_struct(&png, &info); }
};

/// The calls that may jump. It holds no object with a destructor.
bool writeHeader(Handles& h, const PictureLayout& layout)
{
    if (setjmp(png_jmpbuf(h.png)) != 0) return false;
    png_set_user_limits(h.png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
    png_set_IHDR(h.png, h.info, static_cast<png_uint_32>(layout.width),
                 static_cast<png_uint_32>(layout.height), 8,
                 layout.channels == 4 ? PNG_COLOR_TYPE_RGB_ALPHA : PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    if (!layout.icc.empty())
        png_set_iCCP(h.png, h.info, "sRGB", PNG_COMPRESSION_TYPE_BASE, layout.icc.data(),
                     static_cast<png_uint_32>(layout.icc.size()));
    if (layout.pixelsPerInch) {
        constexpr double kInchesAMetre = 1 / 0.0254;
        const auto density = static_cast<png_uint_32>(*layout.pixelsPerInch * kInchesAMetre + 0.5);
        png_set_pHYs(h.png, h.info, density, density, PNG_RESOLUTION_METER);
    }
    // A print with grain hardly shrinks further at higher levels, which take several times as long; Sub
    // and Up alone are as good on it as all five filters.
    png_set_compression_level(h.png, 3);
    png_set_filter(h.png, PNG_FILTER_TYPE_BASE, PNG_FILTER_SUB | PNG_FILTER_UP);
    png_write_info(h.png, h.info);
    return true;
}

bool writeRows(Handles& h, const std::uint8_t* rows, std::int64_t count, std::size_t pitch)
{
    if (setjmp(png_jmpbuf(h.png)) != 0) return false;
    for (std::int64_t r = 0; r < count; ++r) png_write_row(h.png, rows + static_cast<std::size_t>(r) * pitch);
    return true;
}

bool writeEnd(Handles& h)
{
    if (setjmp(png_jmpbuf(h.png)) != 0) return false;
    png_write_end(h.png, h.info);
    return true;
}

} // namespace

std::vector<std::uint8_t> encodePng(const PictureLayout& layout, const RowSource<std::uint8_t>& rows)
{
    Sink sink;
    Handles h;
    h.png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &sink, onError, onWarning);
    if (h.png) h.info = png_create_info_struct(h.png);
    if (!h.info) throw PlatformError("no memory for the PNG encoder");
    const auto check = [&](bool done) {
        if (sink.thrown) std::rethrow_exception(sink.thrown);
        if (!done) throw PlatformError(sink.reason);
    };
    png_set_write_fn(h.png, &sink, onWrite, onFlush);
    check(writeHeader(h, layout));
    const std::size_t pitch = static_cast<std::size_t>(layout.width * layout.channels);
    std::vector<std::uint8_t> band(pitch * static_cast<std::size_t>(std::min(kRowsPerPull, layout.height)));
    for (std::int64_t start = 0; start < layout.height; start += kRowsPerPull) {
        checkpoint();
        const std::int64_t count = std::min(kRowsPerPull, layout.height - start);
        rows(start, count, std::span(band).first(pitch * static_cast<std::size_t>(count)));
        check(writeRows(h, band.data(), count, pitch));
    }
    check(writeEnd(h));
    return std::move(sink.out);
}

} // namespace tamlo::platform
