// Tells how far two pictures of one size lie apart, in steps of 8-bit sRGB, and draws the difference.
//   compare_images A B [DIFFERENCE.png]
// The difference picture is grey where the two agree and eight times the difference elsewhere.
// Status: 0 when the pictures could be compared, 1 when not, 2 for a wrong command line.
#include "core/io/encoded_decode.h"
#include "core/io/image_writer.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <span>

namespace {

using namespace tamlo;

constexpr float kGain = 8.0f;

struct Difference {
    double mean = 0;
    int worst = 0;
    std::int64_t worstX = 0, worstY = 0;
};

using Picture = ImageLoader::EncodedDecode;

std::span<const std::uint8_t> bytesOf(const Picture& picture)
{
    return picture.rgba.bytes(static_cast<std::size_t>(picture.width * picture.height * 4));
}

Difference measure(const Picture& a, const Picture& b)
{
    Difference difference;
    const auto left = bytesOf(a), right = bytesOf(b);
    std::int64_t sum = 0;
    for (std::size_t i = 0; i < left.size(); ++i) {
        if (i % 4 == 3) continue; // the unused byte
        const int step = std::abs(left[i] - right[i]);
        sum += step;
        if (step > difference.worst) {
            difference.worst = step;
            difference.worstX = static_cast<std::int64_t>(i / 4) % a.width;
            difference.worstY = static_cast<std::int64_t>(i / 4) / a.width;
        }
    }
    difference.mean = static_cast<double>(sum) / static_cast<double>(a.width * a.height * 3);
    return difference;
}

float linearOf(float srgb)
{
    return srgb <= 0.04045f ? srgb / 12.92f : std::pow((srgb + 0.055f) / 1.055f, 2.4f);
}

RGBImage draw(const Picture& a, const Picture& b)
{
    RGBImage image(a.width, a.height);
    const auto left = bytesOf(a), right = bytesOf(b);
    float* to = image.mutableData();
    for (std::size_t i = 0; i < left.size(); ++i) {
        if (i % 4 == 3) continue;
        const float step = static_cast<float>(right[i] - left[i]) / 255.0f;
        *to++ = linearOf(std::clamp(0.5f + kGain * step, 0.0f, 1.0f));
    }
    return image;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 3 || argc > 4) {
        std::cerr << "usage: compare_images A B [DIFFERENCE.png]\n";
        return 2;
    }
    try {
        const auto a = ImageLoader::decodeEncoded(argv[1]);
        const auto b = ImageLoader::decodeEncoded(argv[2]);
        if (a.width != b.width || a.height != b.height) {
            std::cerr << "the sizes differ: " << a.width << " x " << a.height << " and " << b.width << " x "
                      << b.height << '\n';
            return 1;
        }
        const Difference difference = measure(a, b);
        std::cout << "mean " << difference.mean << ", worst " << difference.worst << " of 255 at ("
                  << difference.worstX << ", " << difference.worstY << ")\n";
        if (argc == 4) ImageWriter::save(draw(a, b), argv[3], 95, std::nullopt);
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "compare_images: " << error.what() << '\n';
        return 1;
    }
}
