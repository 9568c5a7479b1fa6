// What a film profile says of its grain, with the render's choice of strength made: by eye (`amount`) or by
// the datasheet's RMS granularity (`amountRms`). Both grain engines read their numbers through here.
#pragma once

#include "core/profiles/formats/film_profile.h"
#include "core/profiles/options/render_options.h"

namespace tamlo::Film {

/// The film's grain with `amount` replaced by `amountRms` when the option `grainRms` is on and the film has
/// one. Sizes and scales pass through. A film without grain gives every field absent.
GrainParams grainProfile(const FilmProfile& film, const RenderOptions& options);

} // namespace tamlo::Film
