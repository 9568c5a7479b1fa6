#include "core/io/ready_image.h"

#include "core/image/bands.h"
#include "core/image/tamlo_error.h"
#include "core/io/srgb_encode.h"
#include "core/text/loc.h"

namespace tamlo::ImageWriter {
namespace {

bool isWhole(const ReadyImage& image)
{
    return image.width > 0 && image.height > 0 && std::ssize(image.rgba) == image.width * image.height * 4;
}

/// a × b / 255, to the nearest.
int scaled(int a, int b)
{
    return (a * b + 127) / 255;
}

/// The colours of a pixel over a background of one grey.
int over(const ReadyImage& image, std::int64_t i, int channel, int background)
{
    const int colour = image.rgba[static_cast<std::size_t>(i * 4 + channel)];
    const int alpha = image.rgba[static_cast<std::size_t>(i * 4 + 3)];
    if (image.alpha == ReadyImage::Alpha::skip) return colour;
    const int carried = image.alpha == ReadyImage::Alpha::premultiplied ? colour : scaled(colour, alpha);
    return std::min(carried + scaled(background, 255 - alpha), 255);
}

} // namespace

ReadyImage readyImage(const RGBImage& image, const Plane* alpha)
{
    if (image.pixelCount() == 0 || (alpha && alpha->size() != image.size()))
        throw TamloError::io(T("io.err.createImage"));
    ReadyImage ready{image.width, image.height, {}, ReadyImage::Alpha::skip};
    if (alpha) ready.alpha = ReadyImage::Alpha::premultiplied;
    ready.rgba.resize(static_cast<std::size_t>(image.pixelCount() * 4));
    encodeSRGB8(image, ready.rgba, alpha);
    return ready;
}

ReadyImage readyImage(std::vector<std::uint8_t> rgba8, std::int64_t width, std::int64_t height,
                      bool premultiplied)
{
    ReadyImage ready{width, height, std::move(rgba8),
                     premultiplied ? ReadyImage::Alpha::premultiplied : ReadyImage::Alpha::skip};
    if (!isWhole(ready)) throw TamloError::io(T("io.err.createImage"));
    return ready;
}

ReadyImage flattenOnWhite(const ReadyImage& image)
{
    if (!isWhole(image)) throw TamloError::io(T("io.err.flatten"));
    ReadyImage flat{image.width, image.height, std::vector<std::uint8_t>(image.rgba.size(), 255),
                    ReadyImage::Alpha::skip};
    parallelBands(image.height, image.width, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t i = start * image.width; i < end * image.width; ++i)
            for (int c = 0; c < 3; ++c)
                flat.rgba[static_cast<std::size_t>(i * 4 + c)] =
                    static_cast<std::uint8_t>(over(image, i, c, 255));
    });
    return flat;
}

std::vector<std::uint8_t> rgbBytes(const ReadyImage& image)
{
    if (!isWhole(image)) throw TamloError::io(T("io.err.jpegPixels"));
    std::vector<std::uint8_t> rgb(static_cast<std::size_t>(image.width * image.height * 3));
    parallelBands(image.height, image.width, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t i = start * image.width; i < end * image.width; ++i)
            for (int c = 0; c < 3; ++c)
                rgb[static_cast<std::size_t>(i * 3 + c)] = static_cast<std::uint8_t>(over(image, i, c, 0));
    });
    return rgb;
}

} // namespace tamlo::ImageWriter
