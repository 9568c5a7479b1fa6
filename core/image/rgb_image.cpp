#include "core/image/rgb_image.h"

#include "core/image/bands.h"
#include "core/image/chunks.h"
#include "core/image/orient.h"
#include "core/image/tamlo_error.h"

#include <algorithm>
#include <bit>
#include <filesystem>
#include <fstream>

namespace tamlo {

static_assert(std::endian::native == std::endian::little, "raw dumps are little-endian floats");

RGBImage::RGBImage(std::int64_t w, std::int64_t h)
    : width(w), height(h), data(static_cast<std::size_t>(w * h * 3))
{
    assert(w >= 0 && h >= 0);
}

RGBImage::RGBImage(std::int64_t w, std::int64_t h, const Vec3f& fill) : RGBImage(w, h)
{
    float* values = mutableData();
    for (std::int64_t i = 0; i < pixelCount(); ++i) std::copy_n(fill.begin(), 3, values + i * 3);
}

RGBImage::RGBImage(std::int64_t w, std::int64_t h, FloatBuffer values)
    : width(w), height(h), data(std::move(values))
{
    assert(w >= 0 && h >= 0 && data.size() == static_cast<std::size_t>(w * h * 3));
}

RGBImage::RGBImage(const Plane& r, const Plane& g, const Plane& b) : RGBImage(r.width, r.height)
{
    assert(r.size() == g.size() && r.size() == b.size());
    setPlane(0, r);
    setPlane(1, g);
    setPlane(2, b);
}

Plane RGBImage::plane(int c) const
{
    Plane out(width, height);
    float* to = out.mutableData();
    parallelBands(height, width, [&](std::int64_t start, std::int64_t end) {
        const float* from = row(start) + c;
        for (std::int64_t i = start * width; i < end * width; ++i, from += 3) to[i] = *from;
    });
    return out;
}

void RGBImage::setPlane(int c, const Plane& plane)
{
    assert(plane.width == width && plane.height == height);
    float* values = mutableData();
    parallelBands(height, width, [&](std::int64_t start, std::int64_t end) {
        const float* from = plane.row(start);
        for (std::int64_t i = start * width; i < end * width; ++i) values[i * 3 + c] = *from++;
    });
}

Vec3f RGBImage::channelMeans() const
{
    const std::int64_t n = pixelCount();
    const auto sums = inChunks(n, [&](std::int64_t start, std::int64_t end) {
        const float* p = data.data();
        Vec3d sum{};
        for (std::int64_t k = start; k < end; ++k)
            for (int c = 0; c < 3; ++c) sum[static_cast<std::size_t>(c)] += p[k * 3 + c];
        return sum;
    });
    Vec3d total{};
    for (const Vec3d& sum : sums)
        for (std::size_t c = 0; c < 3; ++c) total[c] += sum[c];
    const double scale = 1.0 / static_cast<double>(std::max<std::int64_t>(n, 1));
    return {static_cast<float>(total[0] * scale), static_cast<float>(total[1] * scale),
            static_cast<float>(total[2] * scale)};
}

RGBImage RGBImage::load(const std::string& path, std::int64_t w, std::int64_t h)
{
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    const std::string name = std::filesystem::path(path).filename().string();
    if (!file) throw TamloError::io("cannot read " + name);
    const std::int64_t bytes = file.tellg();
    const std::int64_t expected = w * h * 12;
    if (bytes != expected)
        throw TamloError::io("f32 size mismatch for " + name + ": " + std::to_string(bytes) +
                             " bytes, expected " + std::to_string(expected));
    RGBImage image(w, h);
    file.seekg(0);
    file.read(reinterpret_cast<char*>(image.mutableData()), expected);
    if (!file) throw TamloError::io("cannot read " + name);
    return image;
}

void RGBImage::write(const std::string& path) const
{
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(reinterpret_cast<const char*>(data.data()), static_cast<std::streamsize>(data.size() * 4));
    file.flush();
    if (!file) throw TamloError::io("cannot write " + path);
}

RGBImage rotated90(const RGBImage& image, bool clockwise)
{
    return Orientation::orientImage(image, clockwise ? 90 : 270, false);
}

} // namespace tamlo
