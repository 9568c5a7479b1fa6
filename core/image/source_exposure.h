// Exposure of a RAW frame before the film: how much light the photographer let in, told from the frame's own
// luminance. Domain: linear light on sRGB primaries, middle grey 0.18.
#pragma once

#include "core/image/rgb_image.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace tamlo {

/// Exposure of a RAW frame before the film. An encoded file has none: its values are the scene.
namespace SourceExposure {

enum class Mode { asShot, auto_, highlights, shadows };

inline constexpr std::array<Mode, 4> allCases{Mode::asShot, Mode::auto_, Mode::highlights, Mode::shadows};
inline constexpr Mode neutral = Mode::auto_;

/// "as_shot", "auto", "highlights", "shadows".
std::string_view rawText(Mode mode);
/// An absent or unknown text gives auto_.
Mode fromKey(std::optional<std::string_view> key);

inline constexpr double asShotGain = 1.44;
inline constexpr double autoMedianTo = 0.15;
inline constexpr double highlightQ = 99.5;
inline constexpr double highlightTo = 0.9; // +2.3 stops over grey
inline constexpr double shadowQ = 10.0;
inline constexpr double shadowTo = 0.045; // zone III
inline constexpr double gainMin = 0.25;
inline constexpr double gainMax = 64.0;
inline constexpr std::int64_t statsPx = 1024;
inline constexpr double minStat = 1e-6; // at or below this there is no signal

/// What is measured of a frame, kept beside it so that a preview and an export take one gain.
struct Stats {
    double p10 = 0.0;
    double p50 = 0.0;
    double p995 = 0.0;
    std::int64_t height = 0;
    std::int64_t width = 0;
    bool operator==(const Stats&) const = default;
};

/// Luminance of each pixel.
Plane luminance(const RGBImage& image);
/// Size of the copy that is measured: a long side above 1,024 becomes 1,024.
Size statsShape(Size size);
/// Percentiles of a reduced copy of the luminance; height and width are those of the plane given.
Stats stats(const Plane& luminance);
/// Linear-interpolated percentile of a list; 0 for an empty one. Sorts part of the list.
double percentile(std::vector<double>& values, double p);

double gain(const Stats& stats, Mode mode);
/// asShot measures nothing.
double gain(const RGBImage& image, Mode mode);
/// Multiplies every float; a gain of exactly 1 leaves the image alone.
RGBImage apply(double gain, RGBImage image);

} // namespace SourceExposure

} // namespace tamlo
