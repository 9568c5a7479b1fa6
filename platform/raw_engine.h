// The RAW engine: a demosaicer and nothing else. It reads a camera file, takes off its black level, scales it
// to its white level, applies the white balance gains that it is given and demosaics. The colours that come
// out are the camera's own; turning them into a colour space is the caller's part. No curve, no brightness,
// no noise reduction, no exposure correction.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace tamlo::platform {

/// Camera answer to XYZ light, rows the camera's channels; measured under one illuminant.
struct RawMatrix {
    double illuminantK = 6504.0;
    std::array<std::array<double, 3>, 4> xyzToCamera{};
};

/// What a file and the engine's table of cameras know about a camera's colours.
struct RawColour {
    /// 1 (no filter), 3 or 4.
    int channels = 3;
    /// None for a camera that nobody knows; two for a DNG with two illuminants.
    std::vector<RawMatrix> matrices;
    /// Gains of the camera's own white balance and of daylight; zeros where they are not known.
    std::array<double, 4> asShotGains{};
    std::array<double, 4> daylightGains{};
};

struct RawHead {
    /// Upright size of the demosaiced frame.
    std::int64_t width = 0;
    std::int64_t height = 0;
    RawColour colour;
};

/// From now on the engine works on this thread alone when this thread calls it: for queues that develop
/// several frames at a time.
void useOneRawThread();

/// Reads the head of a camera file. Errors: PlatformError with the reason.
RawHead readRawHead(const std::string& path);

enum class Demosaic {
    best,
    fast,
    /// One pixel of each 2 × 2 cell of the mosaic.
    halfSize,
};

/// A demosaiced frame, not yet turned.
class RawFrame {
public:
    /// Errors: PlatformError when the file can't be opened, is cut short or damaged.
    RawFrame(const std::string& path, const std::array<double, 4>& gains, Demosaic demosaic);
    ~RawFrame();
    RawFrame(const RawFrame&) = delete;
    RawFrame& operator=(const RawFrame&) = delete;

    std::int64_t width() const noexcept;
    std::int64_t height() const noexcept;
    /// Four samples a pixel, rows top-down. 65535 is the sensor's white in the channel of the largest gain;
    /// where a channel is saturated, its neighbours are blended so that white stays without colour.
    const std::uint16_t* samples() const noexcept;

    /// How the frame lies: bit 2 exchanges rows and columns, then bit 1 runs the stored rows backwards and
    /// bit 0 the stored columns.
    int flip() const noexcept;

private:
    struct Engine;
    std::unique_ptr<Engine> engine_;
};

} // namespace tamlo::platform
