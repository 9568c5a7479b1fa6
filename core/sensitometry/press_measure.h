// What a press measures, on targets that it prints: tints and solids of each ink, paper and black, drawn by
// the same stage as a picture. Ruling and angle are those of the strongest wave of a tint, tone values follow
// Murray and Davies, and the total ink of a black is counted from the overprints of its pixels. Nothing is
// read from the profile's own figures but the colours that the targets ask for.
#pragma once

#include "core/profiles/formats/paper_profile.h"
#include "core/profiles/options/render_options.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace tamlo::Sensitometry {

/// A screen's ruling and its angle, 0 to 90 degrees, since a square screen repeats itself there.
struct Ruling {
    double lpi = 0.0;
    double angleDeg = 0.0;
};

/// Tints that are asked of each ink.
inline constexpr std::array<double, 3> kAskedTones{0.25, 0.5, 0.75};

/// One ink of a press.
struct PrintedInk {
    std::string name;             ///< "c", "m", "y", "k"
    std::optional<Ruling> ruling; ///< absent without a screen that repeats
    std::array<double, 3> tone{}; ///< what of each asked tint is inked, by Murray and Davies
    double solidDensity = 0.0;    ///< over the paper, in the channel that the ink stops
};

struct PressReport {
    std::vector<PrintedInk> inks; ///< black only where the press can print it alone
    double paperDensity = 0.0;    ///< of the bare paper, visual
    double blackDensity = 0.0;    ///< of the deepest black, visual
    /// Ink of the deepest black in solids; absent where its dots are too fine to be told apart.
    std::optional<double> totalInk;
};

/// Nothing for a paper that is no press.
std::optional<PressReport> measurePress(const PaperProfile& paper, const RenderOptions& options);

} // namespace tamlo::Sensitometry
