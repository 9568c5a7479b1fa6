// RGBImage: three interleaved 32-bit floats a pixel, linear light, a value with copy-on-write storage.
// It is what the pipeline carries between stages. Values are not clamped between stages.
#pragma once

#include "core/image/plane.h"

#include <array>
#include <string>

namespace tamlo {

/// A triple of 32-bit floats: R, G, B or the three layers.
using Vec3f = std::array<float, 3>;
/// A triple of 64-bit floats, for set-up arithmetic.
using Vec3d = std::array<double, 3>;

struct RGBImage {
    std::int64_t width = 0;
    std::int64_t height = 0;
    /// Channel c of pixel (x, y) at (y × width + x) × 3 + c; always width × height × 3 elements.
    FloatBuffer data;

    RGBImage() = default;
    /// Zeros. Errors: io when the memory can't be had.
    RGBImage(std::int64_t w, std::int64_t h);
    RGBImage(std::int64_t w, std::int64_t h, const Vec3f& fill);
    RGBImage(std::int64_t w, std::int64_t h, FloatBuffer values);
    /// Interleaves three planes of one size.
    RGBImage(const Plane& r, const Plane& g, const Plane& b);

    Size size() const noexcept { return {width, height}; }
    std::int64_t pixelCount() const noexcept { return width * height; }
    std::int64_t longSide() const noexcept { return width > height ? width : height; }
    std::int64_t shortSide() const noexcept { return width > height ? height : width; }

    const float* row(std::int64_t y) const noexcept { return data.data() + y * width * 3; }
    float* mutableData() { return data.mutableData(); }
    Vec3f pixel(std::int64_t x, std::int64_t y) const noexcept
    {
        const float* p = row(y) + x * 3;
        return {p[0], p[1], p[2]};
    }

    /// A copy of channel c (0, 1 or 2).
    Plane plane(int c) const;
    /// Writes a plane of the image's size into channel c.
    void setPlane(int c, const Plane& plane);

    /// f on each pixel as a triple, serially.
    template <typename F>
    RGBImage mapPixels(F&& f) const
    {
        RGBImage out(width, height);
        float* to = out.mutableData();
        const float* from = data.data();
        for (std::int64_t i = 0; i < pixelCount(); ++i) {
            const Vec3f v = f(Vec3f{from[i * 3], from[i * 3 + 1], from[i * 3 + 2]});
            for (int c = 0; c < 3; ++c) to[i * 3 + c] = v[static_cast<std::size_t>(c)];
        }
        return out;
    }

    /// f on each float, serially.
    template <typename F>
    RGBImage map(F&& f) const
    {
        return mapPixels([&](const Vec3f& v) { return Vec3f{f(v[0]), f(v[1]), f(v[2])}; });
    }

    /// The three channel means: 64 chunks of pixels, each summed in 64-bit floats, added in chunk order, so
    /// that the result does not depend on the number of cores. Zeros for an empty image.
    Vec3f channelMeans() const;

    /// Reads a raw dump: little-endian 32-bit floats without a header.
    /// Errors: io "f32 size mismatch for NAME: N bytes, expected M", or that the file can't be read.
    static RGBImage load(const std::string& path, std::int64_t w, std::int64_t h);
    /// Writes the raw dump of `data`. Errors: io.
    void write(const std::string& path) const;
};

/// A quarter turn; width and height are exchanged.
RGBImage rotated90(const RGBImage& image, bool clockwise);

} // namespace tamlo
