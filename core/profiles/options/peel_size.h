// Sizes of peel-apart instant sheets: plain geometry that the scale of a frame and the card both read.
#pragma once

#include "core/profiles/formats/film_profile.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace tamlo::Pipeline {

/// Long and short side in millimetres.
struct SidesMm {
    double longMm = 0.0;
    double shortMm = 0.0;
};

struct PeelSize {
    std::string_view key;
    SidesMm imageMm;
    SidesMm sheetMm;
    double sides = 0.0, top = 0.0, bottom = 0.0; // margins, millimetres
};

inline constexpr std::array<PeelSize, 3> peelSizes{{
    {"3x4", {95.0, 73.0}, {108.0, 85.0}, 6.0, 6.5, 6.5},
    {"4x5", {118.0, 90.0}, {127.0, 102.0}, 6.0, 4.0, 5.0},
    {"8x10", {237.5, 190.0}, {254.0, 203.2}, 6.6, 6.5, 10.0},
}};

/// The size of a film's sheet: the wanted key if the film is made in it, else the film's first, else "3x4".
const PeelSize& peelSizeCfg(const InstantFrameParams& frame, const std::optional<std::string>& peelSize);

} // namespace tamlo::Pipeline
