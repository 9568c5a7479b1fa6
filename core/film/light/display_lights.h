// Lights of a display picture. A picture file ends at 1.0, and a lamp in it is no brighter than a white wall,
// while halation, bloom, diffusion and stars live on what a lamp has above that. Here clipped lights are
// given back some of it: the smaller a clipped region against the frame, the more. A lamp is small and stands
// out of the dark; a white sky is large, a white wall does not clip. Domain: linear light on sRGB primaries,
// 1 is the display's white. A RAW frame has its lights and is left alone.
#pragma once

#include "core/image/rgb_image.h"

#include <cstdint>

namespace tamlo::DisplayLights {

inline constexpr std::int64_t mapPx = 1024; ///< long side of the map, at most
inline constexpr float touchedFrom = 0.8f;  ///< the brightest channel of a pixel: nothing below it is changed
inline constexpr double pointGain = 16.0;   ///< of a region up to pointArea
inline constexpr double pointArea = 2e-5;   ///< shares of the frame
inline constexpr double lampGain = 1.5;     ///< at lampArea; it ends at 1 where wallArea begins
inline constexpr double lampArea = 1e-2;
inline constexpr double wallArea = 4e-2;

/// What a frame's clipped lights lack, measured once and kept beside it, so that a preview and a master get
/// the same: the light to add where a pixel is at 1, by channel, on a grid over the whole frame. Empty where
/// the frame has no lamp.
struct Map {
    RGBImage missing;
    bool empty() const noexcept { return missing.pixelCount() == 0; }
};

/// How many times its light a region that covers this share of the frame had, 1...16.
double gainOf(double area);
/// Shape: any. NaN counts as black. A frame with light above 2 is no display picture: empty.
Map measure(const RGBImage& frame);
/// Adds amount (0...1) of what the map says, in the frame of the measured picture at any size; bits stay
/// where the brightest channel is below 0.8, and everywhere for an empty map or an amount of 0.
RGBImage restore(RGBImage image, const Map& map, double amount);
/// Both, for a caller that renders the frame once.
RGBImage restore(RGBImage image, double amount);

} // namespace tamlo::DisplayLights
