// Banding of an inkjet: how much ink each line across the feed gets. The head lays swaths that differ in
// strength, with a seam where one begins, and its nozzles ripple.
#pragma once

#include "core/image/random.h"
#include "core/profiles/formats/repro_profile.h"

#include <cstdint>
#include <vector>

namespace tamlo::ReproPrint {

/// A factor for each of `lines` lines; exactly 1 for an amount of 0. A knob at 0 draws all the same, so that
/// what is drawn later stays. Units: pxUm micrometres of print a pixel.
std::vector<float> banding(std::int64_t lines, double pxUm, const InkjetParams& inkjet, GrainRNG& rng,
                           double amount);

} // namespace tamlo::ReproPrint
