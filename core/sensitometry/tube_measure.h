// What a photographed tube measures, on even screens that it shows, drawn by the same stage as a picture: how
// far its lines stand apart and how deep the dark between them is, how fine its mask is, and what light comes
// of four greys. What varies across the screen is left out, as a bench would measure in the middle.
#pragma once

#include "core/profiles/formats/paper_profile.h"
#include "core/profiles/options/render_options.h"

#include <array>
#include <optional>

namespace tamlo::Sensitometry {

/// Greys that a tube is asked for.
inline constexpr std::array<double, 4> kAskedGreys{0.05, 0.18, 0.5, 1.0};

struct TubeReport {
    double linePitchMm = 0.0;
    double ripple = 0.0;                   ///< swing of the light across the lines, over its mean
    std::optional<double> maskCyclesPerMm; ///< of one colour's dots or stripes
    std::array<double, 4> light{};         ///< of each grey, mean of the screen, in the tube's own white
};

/// Nothing for a paper that is no tube.
std::optional<TubeReport> measureTube(const PaperProfile& paper, const RenderOptions& options);

} // namespace tamlo::Sensitometry
