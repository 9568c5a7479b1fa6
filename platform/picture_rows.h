// What a codec hands over: rows of samples as the file has them, told by a format, with the colour space that
// the file names. drawRows brings them into the 8-bit sRGB bitmap: decoding runs row after row on the calling
// thread, conversion in bands over the pool.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace tamlo::platform {

enum class SampleType { u8, u16, f32 };
enum class ColourModel { grey, rgb, cmyk };
enum class Alpha { none, straight, premultiplied };

/// Interleaved samples: the colour channels (CMYK as amounts of ink), then the alpha if there is one, then
/// channels of no meaning.
struct RowFormat {
    SampleType sample = SampleType::u8;
    ColourModel model = ColourModel::rgb;
    int channels = 3;
    Alpha alpha = Alpha::none;

    int colours() const noexcept;
    std::size_t bytesPerPixel() const noexcept;
};

/// CIE xy of a space's primaries and white.
struct Primaries {
    double redX, redY, greenX, greenY, blueX, blueY, whiteX, whiteY;
};
inline constexpr Primaries kSRGBPrimaries{0.64, 0.33, 0.30, 0.60, 0.15, 0.06, 0.3127, 0.3290};

/// Samples to light relative to white. `gamma` takes an exponent.
enum class Transfer { sRGB, linear, gamma, bt709, pq, hlg };

/// An RGB or grey space that a file tells by numbers instead of a profile.
struct NamedSpace {
    Primaries primaries = kSRGBPrimaries;
    Transfer transfer = Transfer::sRGB;
    double gamma = 1.0;
};

/// The colour space of a file: its profile, else its numbers, else nothing.
struct ColourTag {
    std::vector<std::uint8_t> iccProfile;
    std::optional<NamedSpace> space;
};

struct PictureRows {
    std::int64_t width = 0;
    std::int64_t height = 0;
    RowFormat format;
    /// Rows that the codec likes to give at once.
    std::int64_t bandRows = 256;
    /// Writes rows y ... y + rows - 1 to `to`, without padding; called with rising y and multiples of
    /// bandRows but for the last.
    std::function<void(std::int64_t y, std::int64_t rows, std::byte* to)> read;
};

/// Errors: PlatformError when a picture of this size is no picture or too large to be held.
void checkPictureSize(std::int64_t width, std::int64_t height);

/// Reads all rows and writes R, G, B and an unused byte a pixel to `rgba`. Returns how many samples are no
/// numbers; they count as 0, before they can spoil a neighbour in colour management.
std::int64_t drawRows(const PictureRows& rows, const ColourTag& tag, std::uint8_t* rgba);

} // namespace tamlo::platform
