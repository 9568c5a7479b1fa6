// The proxy of a source, in memory and as the bytes of its file: a linear picture of at most 2,048 pixels a
// side with what was measured of the whole frame. Files are named by content, never by path: the source's
// fingerprint and the white balance of its decode. The bytes are little-endian, a header of 72 bytes and the
// pixels.
#pragma once

#include "app/project/fingerprint.h"
#include "app/project/frame.h"
#include "core/film/light/display_lights.h"
#include "core/image/rgb_image.h"
#include "core/image/source_exposure.h"
#include "core/io/raw_decode.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tamlo {

using ImageLoader::WBMode;

/// One frame's proxy in memory.
struct FrameSource {
    RGBImage proxy;                             ///< linear, upright, at most kProxyLong on the long side
    std::optional<SourceExposure::Stats> stats; ///< of a RAW source
    std::int64_t fullWidth = 0, fullHeight = 0; ///< of the whole source, upright
    bool isRAW = false;
    WBMode wb = WBMode::film;
    bool halfPrecision = false; ///< the pixels have been half floats
    /// What the clipped lights of a display picture lack: measured of the proxy whenever that comes into
    /// memory, which gives the same each time. Empty for a RAW source.
    DisplayLights::Map lights = {};

    Size fullSize() const { return {fullWidth, fullHeight}; }
};

/// What the header alone tells.
struct SourceShape {
    std::int64_t fullWidth = 0, fullHeight = 0;
    bool isRAW = false;
    std::optional<SourceExposure::Stats> stats;
    WBMode wb = WBMode::film;

    /// "6000×4000 · RAW": the size after a crop and quarter turns.
    std::string info(std::int64_t rot, const std::optional<Crop>& crop) const;
};
SourceShape shapeOf(const FrameSource& source);

namespace ProxyFile {

inline constexpr int kVersion = 9;
inline constexpr std::int64_t kProxyLong = 2048;
inline constexpr std::size_t kHeaderBytes = 72;

/// Name of a source's proxy: 64 hexadecimal digits. Errors: PlatformError.
std::string key(const Fingerprint& fingerprint, WBMode wb);
/// The white balance that a frame's source is decoded with: its process's; of an original, and of a picture
/// that is no RAW file, that of film.
WBMode wbOf(const Frame& frame);

std::string name(std::string_view key, std::int64_t tier = kProxyLong, int version = kVersion);
struct Parts {
    int version = 0;
    std::int64_t tier = 0;
    std::string key;
};
std::optional<Parts> parts(std::string_view name);

std::vector<std::uint8_t> encode(const FrameSource& source);
struct Header {
    std::int64_t width = 0, height = 0;
    bool halfPrecision = false;
    SourceShape shape;
    /// Of the whole file.
    std::int64_t fileBytes() const;
};
/// Absent for what is no head of this version.
std::optional<Header> header(std::span<const std::uint8_t> bytes);
/// Absent for anything but a whole file of this version.
std::optional<FrameSource> decode(std::span<const std::uint8_t> bytes);

} // namespace ProxyFile
} // namespace tamlo
