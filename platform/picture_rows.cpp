#include "platform/picture_rows.h"

#include "platform/checkpoint.h"
#include "platform/icc.h"
#include "platform/platform_error.h"
#include "platform/worker_pool.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <string>

namespace tamlo::platform {
namespace {

// Bitmap and floats of a picture of this size take 8 GiB; no camera is near it, and a header that claims
// more is damaged or hostile.
constexpr std::int64_t kMaxPixels = 512'000'000;

constexpr std::int64_t kPixelsPerTask = 1 << 16;

/// Holds floats to what the conversion can carry. Returns how many were no numbers.
std::int64_t hold_numbers(float* samples, std::int64_t count)
{
    constexpr float kLargest = 1e6f; // far above any white; two infinities would make no number of a third
    std::int64_t notNumbers = 0;
    for (std::int64_t i = 0; i < count; ++i) {
        if (std::isnan(samples[i])) {
            samples[i] = 0.0f;
            ++notNumbers;
        }
        samples[i] = std::clamp(samples[i], -kLargest, kLargest);
    }
    return notNumbers;
}

std::int64_t convertBand(const SRGBConverter& converter, std::byte* from, std::uint8_t* rgba,
                         std::int64_t count)
{
    const std::int64_t tasks = (count + kPixelsPerTask - 1) / kPixelsPerTask;
    const RowFormat& format = converter.format();
    std::atomic<std::int64_t> notNumbers = 0;
    runConcurrently(static_cast<int>(tasks), [&](int i) {
        const std::int64_t start = i * kPixelsPerTask;
        const std::int64_t pixels = std::min(kPixelsPerTask, count - start);
        std::byte* samples = from + static_cast<std::size_t>(start) * format.bytesPerPixel();
        if (format.sample == SampleType::f32)
            notNumbers += hold_numbers(reinterpret_cast<float*>(samples), pixels * format.channels);
        converter.convert(samples, rgba + start * 4, pixels);
    });
    return notNumbers;
}

} // namespace

int RowFormat::colours() const noexcept
{
    return model == ColourModel::grey ? 1 : model == ColourModel::rgb ? 3 : 4;
}

std::size_t RowFormat::bytesPerPixel() const noexcept
{
    const std::size_t bytes = sample == SampleType::u8 ? 1 : sample == SampleType::u16 ? 2 : 4;
    return bytes * static_cast<std::size_t>(channels);
}

void checkPictureSize(std::int64_t width, std::int64_t height)
{
    const std::string size = std::to_string(width) + " x " + std::to_string(height) + " pixels";
    if (width < 1 || height < 1) throw PlatformError("a picture of " + size + " has nothing to show");
    if (width > kMaxPixels / height)
        throw PlatformError("a picture of " + size + " is too large; the limit is " +
                            std::to_string(kMaxPixels / 1'000'000) + " megapixels");
}

std::int64_t drawRows(const PictureRows& rows, const ColourTag& tag, std::uint8_t* rgba)
{
    const SRGBConverter converter(rows.format, tag);
    const std::int64_t band = std::min(rows.height, std::max<std::int64_t>(rows.bandRows, 1));
    if (converter.worksInPlace()) {
        auto* bytes = reinterpret_cast<std::byte*>(rgba);
        const std::size_t pitch = static_cast<std::size_t>(rows.width) * rows.format.bytesPerPixel();
        for (std::int64_t y = 0; y < rows.height; y += band) {
            checkpoint();
            rows.read(y, std::min(band, rows.height - y), bytes + static_cast<std::size_t>(y) * pitch);
        }
        if (!converter.isIdentity()) convertBand(converter, bytes, rgba, rows.width * rows.height);
        return 0;
    }
    std::int64_t notNumbers = 0;
    std::vector<std::byte> staging(static_cast<std::size_t>(band * rows.width) * rows.format.bytesPerPixel());
    for (std::int64_t y = 0; y < rows.height; y += band) {
        checkpoint();
        const std::int64_t count = std::min(band, rows.height - y);
        rows.read(y, count, staging.data());
        notNumbers += convertBand(converter, staging.data(), rgba + y * rows.width * 4, count * rows.width);
    }
    return notNumbers;
}

} // namespace tamlo::platform
