// Rules that decide how a file is decoded, before a pixel is touched: which family it belongs to, at what
// size, whole or in bands, which turn its EXIF value means. Two switches come from the environment and are
// read once. Everything here is arithmetic on numbers and names; no file is opened.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <string_view>

namespace tamlo::ImageLoader {

/// How a RAW frame is rendered. Texts: "auto", "whole", "banded".
enum class DecodeStrategy { auto_, whole, banded };

/// How large a RAW frame is developed. `master`: no larger than the consumer needs. `full`: always at the
/// sensor's size. Texts: "master", "full".
enum class RawDecodeMode { master, full };

/// Strategy of a text; anything but "whole" and "banded" is `auto_`.
DecodeStrategy decodeStrategyOf(std::string_view text);
/// Mode of a text; only "full" gives `full`.
RawDecodeMode rawDecodeModeOf(std::string_view text);

/// TAMLO_DECODE, read at first use.
DecodeStrategy decodeStrategy();
/// TAMLO_RAW_DECODE, read at first use.
RawDecodeMode rawDecodeMode();

/// Lower-case extensions, without the dot, that mark a camera's RAW file.
inline constexpr std::array<std::string_view, 12> rawExtensions{"dng", "nef", "cr2", "cr3", "arw", "raf",
                                                                "orf", "rw2", "pef", "srw", "iiq", "3fr"};

/// Whether the extension, in any case, is one of `rawExtensions`. Content is never looked at.
bool isRAW(const std::filesystem::path& path);

/// Quarter turns clockwise and a mirroring of the columns, which comes first.
struct ExifTurn {
    int turns = 0;
    bool mirror = false;
    bool operator==(const ExifTurn&) const = default;
};

/// What brings a picture stored with EXIF orientation `value` upright; any value but 2...8 is upright.
ExifTurn exifOrient(int value);

/// Long side to decode at: the cap where it bites and the mode allows it, else what was requested.
std::int64_t decodeLong(std::int64_t requested, std::int64_t capLongPx, RawDecodeMode mode);

/// Whether a frame is rendered in bands: under `auto_` when four floats a pixel take more than one
/// twenty-fourth of the machine's memory, under `banded` above 4,000,000 pixels.
bool decodeInBands(std::int64_t pixels, DecodeStrategy strategy, double memoryGB);

/// Largest frame in megapixels that `auto_` renders whole.
double wholeDecodeLimitMP(double memoryGB);

/// Physical memory / 2^30.
double physicalMemoryGB();

} // namespace tamlo::ImageLoader
