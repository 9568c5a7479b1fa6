#include "platform/picture_rows.h"

#include "platform/icc.h"
#include "platform/platform_error.h"
#include "platform/worker_pool.h"

#include <algorithm>
#include <string>

namespace tamlo::platform {
namespace {

// Bitmap and floats of a picture of this size take 8 GiB; no camera is near it, and a header that claims
// more is damaged or hostile.
constexpr std::int64_t kMaxPixels = 512'000'000;

constexpr std::int64_t kPixelsPerTask = 1 << 16;

void convertBand(const SRGBConverter& converter, const std::byte* from, std::uint8_t* rgba,
                 std::int64_t count)
{
    const std::int64_t tasks = (count + kPixelsPerTask - 1) / kPixelsPerTask;
    runConcurrently(static_cast<int>(tasks), [&](int i) {
        const std::int64_t start = i * kPixelsPerTask;
        const std::int64_t pixels = std::min(kPixelsPerTask, count - start);
        converter.convert(from + static_cast<std::size_t>(start) * converter.format().bytesPerPixel(),
                          rgba + start * 4, pixels);
    });
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

void drawRows(const PictureRows& rows, const ColourTag& tag, std::uint8_t* rgba)
{
    const SRGBConverter converter(rows.format, tag);
    if (converter.worksInPlace()) {
        auto* bytes = reinterpret_cast<std::byte*>(rgba);
        rows.read(0, rows.height, bytes);
        if (!converter.isIdentity()) convertBand(converter, bytes, rgba, rows.width * rows.height);
        return;
    }
    const std::int64_t band = std::min(rows.height, std::max<std::int64_t>(rows.bandRows, 1));
    std::vector<std::byte> staging(static_cast<std::size_t>(band * rows.width) * rows.format.bytesPerPixel());
    for (std::int64_t y = 0; y < rows.height; y += band) {
        const std::int64_t count = std::min(band, rows.height - y);
        rows.read(y, count, staging.data());
        convertBand(converter, staging.data(), rgba + y * rows.width * 4, count * rows.width);
    }
}

} // namespace tamlo::platform
