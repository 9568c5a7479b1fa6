#include "core/io/srgb_encode.h"

#include "core/image/bands.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cassert>

namespace tamlo::ImageWriter {

float srgbOf(float value)
{
    const float c = value > 0.0f ? std::min(value, 1.0f) : 0.0f; // NaN gives 0
    if (c <= 0.0031308f) return c * 12.92f;
    return std::pow(std::max(c, 0.000001f), 0.41666666f) * 1.055f - 0.055f;
}

std::uint16_t srgbStep(float value, float alpha, float maximum)
{
    const float s = std::min(srgbOf(value) * alpha, 1.0f);
    return s > 0.0f ? static_cast<std::uint16_t>(s * maximum + 0.5f) : 0;
}

namespace {

/// The 8-bit formula as a table. A float's exponent and first seven bits of mantissa choose an entry; between
/// two neighbouring entries the byte goes up at one float at most, since the steps are at least 0.64 % of the
/// light apart from 0.5 up, and further below. An entry holds (byte << 16) + (65536 - t), t the low 16 bits
/// from which the next byte holds, so that adding a float's own low 16 bits carries into the byte there.
class StepTable {
public:
    StepTable()
    {
        for (std::uint32_t i = 0; i < entries_.size(); ++i) {
            const std::uint32_t first = kLowest + (i << 16);
            const std::uint32_t from = stepAt(first);
            if (stepAt(first + 0xFFFF) == from) {
                entries_[i] = from << 16;
                continue;
            }
            assert(stepAt(first + 0xFFFF) == from + 1);
            std::uint32_t below = 0, above = 0xFFFF;
            while (above - below > 1) {
                const std::uint32_t middle = (below + above) / 2;
                (stepAt(first + middle) == from ? below : above) = middle;
            }
            entries_[i] = (from << 16) + (0x10000 - above);
        }
    }

    std::uint8_t operator()(float value) const
    {
        float c = value > kLowestValue ? value : kLowestValue; // NaN goes to the lowest
        c = c < 1.0f ? c : 1.0f;
        const std::uint32_t offset = std::bit_cast<std::uint32_t>(c) - kLowest;
        return static_cast<std::uint8_t>((entries_[offset >> 16] + (offset & 0xFFFF)) >> 16);
    }

private:
    // 2^-13 is below the first step, 1 / (2 × 255 × 12.92) = 0.000152.
    static constexpr float kLowestValue = 0x1p-13f;
    static constexpr std::uint32_t kLowest = std::bit_cast<std::uint32_t>(kLowestValue);
    static constexpr std::uint32_t kOne = std::bit_cast<std::uint32_t>(1.0f);

    static std::uint32_t stepAt(std::uint32_t bits)
    {
        return srgbStep(std::bit_cast<float>(bits), 1.0f, 255.0f);
    }

    std::array<std::uint32_t, ((kOne - kLowest) >> 16) + 1> entries_{};
};

const StepTable& stepTable()
{
    static const StepTable table;
    return table;
}

} // namespace

void encodeSRGB8Rows(const RGBImage& image, std::int64_t start, std::int64_t rows, std::span<std::uint8_t> to)
{
    const StepTable& step = stepTable();
    const float* from = image.row(start);
    std::uint8_t* out = to.data();
    const std::int64_t samples = rows * image.width * 3;
    for (std::int64_t i = 0; i < samples; ++i) out[i] = step(from[i]);
}

void encodeSRGB16Rows(const RGBImage& image, std::int64_t start, std::int64_t rows,
                      std::span<std::uint16_t> to)
{
    const float* from = image.row(start);
    const std::int64_t width = image.width * 3;
    parallelBands(rows, width, [&](std::int64_t first, std::int64_t end) {
        for (std::int64_t i = first * width; i < end * width; ++i)
            to[static_cast<std::size_t>(i)] = srgbStep(from[i], 1.0f, 65535.0f);
    });
}

PageBuffer encodeSRGB8RGB(const RGBImage& image)
{
    const std::size_t count = static_cast<std::size_t>(image.pixelCount() * 3);
    PageBuffer buffer(count);
    const std::span<std::uint8_t> rgb = buffer.bytes(count);
    parallelBands(image.height, image.width, [&](std::int64_t start, std::int64_t end) {
        encodeSRGB8Rows(image, start, end - start,
                        rgb.subspan(static_cast<std::size_t>(start * image.width * 3)));
    });
    return buffer;
}

PageBuffer encodeSRGB8(const RGBImage& image)
{
    const std::size_t count = static_cast<std::size_t>(image.pixelCount() * 4);
    PageBuffer buffer(count);
    encodeSRGB8(image, buffer.bytes(count));
    return buffer;
}

void encodeSRGB8(const RGBImage& image, std::span<std::uint8_t> into, const Plane* alpha)
{
    assert(std::ssize(into) >= image.pixelCount() * 4);
    assert(!alpha || alpha->size() == image.size());
    const StepTable& step = stepTable();
    parallelBands(image.height, image.width, [&](std::int64_t start, std::int64_t end) {
        const float* from = image.data.data();
        for (std::int64_t i = start * image.width; i < end * image.width; ++i) {
            std::uint8_t* to = into.data() + i * 4;
            const float given = alpha ? alpha->data.data()[i] : 1.0f;
            const float a = given > 0.0f ? std::min(given, 1.0f) : 0.0f;
            for (int c = 0; c < 3; ++c) {
                const float v = from[i * 3 + c];
                to[c] = a == 1.0f ? step(v) : static_cast<std::uint8_t>(srgbStep(v, a, 255.0f));
            }
            to[3] = static_cast<std::uint8_t>(a * 255.0f + 0.5f);
        }
    });
}

} // namespace tamlo::ImageWriter
