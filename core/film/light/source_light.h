// Source light: how much light reaches the camera and what colour it has, ahead of every filter and the
// lens, so that veil, halos and diffusion mix light that is already coloured.
// Domain: linear light on sRGB primaries, middle grey 0.18.
#pragma once

#include "core/image/rgb_image.h"
#include "core/profiles/formats/film_profile.h"
#include "core/profiles/options/render_options.h"

#include <optional>

namespace tamlo {

namespace Film {

/// Luminance of each pixel, in 32-bit floats.
Plane lumaPlane(const RGBImage& image);

} // namespace Film

namespace SourceLight {

/// Gains of the Temperature and Tint knobs against the film's own balance; absent when both stand at 0.
std::optional<Vec3f> gains(const FilmProfile& film, const RenderOptions& options);

/// What the source pass multiplies by: k when useK, then g when useG.
struct SourceScale {
    float k = 1.0f;
    Vec3f g{1.0f, 1.0f, 1.0f};
    bool useK = false;
    bool useG = false;
};

/// Absent when there is nothing to do.
std::optional<SourceScale> sourceScale(const FilmProfile& film, const RenderOptions& options);

/// Source gain and the tint of the light, in place; the bits stay when there is nothing to do.
RGBImage applySource(RGBImage image, const FilmProfile& film, const RenderOptions& options);

/// Mean luminance, summed in 64-bit floats in fixed chunks.
double meanLuma(const RGBImage& image);

} // namespace SourceLight

} // namespace tamlo
