// Grain of a negative or a slide, by the engine that the options choose: rebuilt from crystals or dye clouds
// where the frame's size on the film is known, else laid over the density. Domain: absolute density, after
// the edge effects.
#pragma once

#include "core/film/emulsion/hd_curve.h"
#include "core/image/rgb_image.h"
#include "core/profiles/formats/film_profile.h"
#include "core/profiles/options/render_options.h"

#include <array>
#include <cstdint>
#include <optional>

namespace tamlo::Film {

/// Three dye layers. Units: pxUm micrometres of film a pixel.
RGBImage addGrain(RGBImage density, const std::array<HDCurve, 3>& curves, const FilmProfile& film,
                  const RenderOptions& options, double pxUm);

/// One silver layer. growthSeed replaces the frame's own where one frame is several plates.
Plane addGrain(Plane density, const HDCurve& curve, const FilmProfile& film, const RenderOptions& options,
               double pxUm, std::optional<std::uint32_t> growthSeed = std::nullopt);

} // namespace tamlo::Film
