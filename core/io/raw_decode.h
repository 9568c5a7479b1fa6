// Camera RAW files on their way to scene light. The RAW engine is a demosaicer and nothing else: black and
// white level and demosaic are its own; white balance gains are worked out here and handed to it, and the
// camera matrix is applied here in floats. No tone curve, no brightness, no noise reduction, no sharpening;
// the exposure that the maker writes into the file (BaselineExposure) is not applied. Highlights above the
// file's white stay above 1. What comes out is upright.
#pragma once

#include "core/image/rgb_image.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string_view>

namespace tamlo::ImageLoader {

/// White of a RAW file. `film` ("film"): neutral at 5500 K, tint 0, daylight film's view of the scene.
/// `asShot` ("asshot"): the camera's own balance. Of no effect on encoded files.
enum class WBMode { film, asShot };

/// "asshot" gives `asShot`, every other text `film`.
WBMode decodeWBMode(std::string_view option);
/// "film", "asshot".
const char* rawText(WBMode mode);

/// What is to be developed and how; no pixels yet.
struct RAWImage {
    std::filesystem::path path;
    /// Upright size at the sensor's resolution.
    Size nativeSize;
    double scale = 1.0;
    /// A faster demosaic: half size where that is enough for the scale, else bilinear.
    bool draft = false;
    WBMode wbMode = WBMode::film;
};

struct RAWDecode {
    RAWImage image;

    /// Native size × scale, rounded outward to whole pixels.
    std::int64_t width() const;
    std::int64_t height() const;

    /// Develops the frame: linear light on sRGB primaries, negatives 0, values above 1 kept.
    /// Shape: fills width × height × 3 floats.
    /// Errors: io "empty image"; "RAW engine could not open PATH: reason"; "RAW engine produced no image for
    /// NAME: reason" (a file cut short, damaged data).
    void render(std::span<float> into) const;
};

/// Reads the head of the file only. Without `draft`, draft mode is on exactly if scale is below 1.
/// Errors: io "RAW engine could not open PATH: reason".
RAWDecode decodeRAW(const std::filesystem::path& path, double scale, std::optional<bool> draft,
                    WBMode wbMode);

/// decodeRAW, rendered; no exposure gain.
RGBImage loadRAWLinear(const std::filesystem::path& path, double scale, std::optional<bool> draft,
                       WBMode wbMode);

/// Long side at the sensor's resolution; absent if the file can't be opened.
std::optional<std::int64_t> rawNativeLong(const std::filesystem::path& path);

} // namespace tamlo::ImageLoader
