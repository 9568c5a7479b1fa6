// Linear light to sRGB integers: the last step of a picture on its way to a file or a screen. Each result is
// exactly that of the formula in 32-bit floats, for every float; 8 bits come from a table that was made with
// that formula. Below 0 and NaN give 0, above 1 the maximum.
#pragma once

#include "core/image/page_buffer.h"
#include "core/image/rgb_image.h"

#include <cmath>
#include <cstdint>
#include <span>

namespace tamlo::ImageWriter {

/// Linear value to an sRGB value 0 ... 1. Source: IEC 61966-2-1.
float srgbOf(float value);

/// srgbOf as an integer of 0 ... maximum: truncate(clamp(s × alpha, 0, 1) × maximum + 0.5).
std::uint16_t srgbStep(float value, float alpha, float maximum);

/// RGBA bytes, alpha 255, and RGB bytes, in mapped pages: at 24 megapixels the first touch of a heap block
/// costs as much as the encoding. Errors: io "cannot map N bytes".
PageBuffer encodeSRGB8(const RGBImage& image);
PageBuffer encodeSRGB8RGB(const RGBImage& image);
/// RGBA bytes into a buffer of at least width × height × 4. With an alpha plane of the image's size the
/// colours are premultiplied in sRGB space by alpha clamped to 0 ... 1.
void encodeSRGB8(const RGBImage& image, std::span<std::uint8_t> into, const Plane* alpha = nullptr);

/// Rows of RGB bytes, and of 16-bit samples, of the rows start ... start + rows - 1.
void encodeSRGB8Rows(const RGBImage& image, std::int64_t start, std::int64_t rows,
                     std::span<std::uint8_t> to);
void encodeSRGB16Rows(const RGBImage& image, std::int64_t start, std::int64_t rows,
                      std::span<std::uint16_t> to);

} // namespace tamlo::ImageWriter
