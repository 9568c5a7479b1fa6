// FilterProfile: a filter in front of the lens, one structure for four kinds told by `type`: "cut" (colour),
// "diffusion", "grad" (graduated) and "rays" (stars and streaks).
#pragma once

#include "core/profiles/formats/profile_values.h"

namespace tamlo {

struct FilterProfile {
    OptText name, nameEn, notes, notesEn;
    OptText type;
    OptTriple gains; ///< cut: transmission per channel
    OptNumber bloom, radiusFrac, threshold, haze;
    OptText grad;    ///< "edge" or "reverse"
    OptNumber stops; ///< grad: density in stops, when neutral
    OptTriple stopsRgb;
    OptNumber edgeFrac, reverseFar;
    OptInteger rays; ///< number of rays; 2 is a streak
    OptNumber angle; ///< degrees
    OptNumber lengthFrac, decay, widthFrac, strength, dispersion;
    OptTriple tint;
    bool operator==(const FilterProfile&) const = default;
};

} // namespace tamlo
