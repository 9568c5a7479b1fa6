// Passes of the source light and of the emulsion's input: plain arithmetic on each pixel, in row bands, in
// place.
#pragma once

#include "core/film/light/source_light.h"

namespace tamlo {

/// Multiplies by k when useK, then by g when useG.
void in_source(RGBImage& image, const SourceLight::SourceScale& scale);

/// max(E × gains, 0) per channel.
void cast_clamp(RGBImage& image, const Vec3f& gains);

/// E' = M E; rows are layers, columns are scene channels.
void sensitize(RGBImage& image, const std::array<Vec3f, 3>& matrix);

/// False-colour infrared: the layers see infrared, red and green. weights make the infrared estimate of
/// r, g, b; chlorophyll adds where green stands above both others.
void false_color_ir(RGBImage& image, const Vec3f& weights, float chlorophyll);

} // namespace tamlo
