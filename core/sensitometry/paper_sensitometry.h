// Sensitometry of a paper by itself: what a handmade process measures, read from targets that are printed on
// it as a printer would: a step tablet laid on the paper, and an even sheet for its structure. The stages are
// those of a render; nothing is read from the profile's own figures.
// Density: decimal reflection density, absolute; the tablet's, decimal transmission density.
#pragma once

#include "core/profiles/formats/paper_profile.h"
#include "core/profiles/options/render_options.h"

#include <array>
#include <optional>
#include <vector>

namespace tamlo::Sensitometry {

/// A tablet of 21 steps of 0.15.
inline constexpr int kTabletSteps = 21;
inline constexpr double kTabletStep = 0.15;
/// Sides of the square apertures that structure is read through, millimetres: a loupe's, the eye's at reading
/// distance, and an arm's length and more.
inline constexpr std::array<double, 3> kStructureAperturesMm{0.1, 0.5, 2.0};

/// Structure of an even sheet of 30 × 20 cm, printed half way between white and black.
struct PaperStructure {
    double density = 0.0;        ///< mean
    std::array<double, 3> rms{}; ///< standard deviation of density × 1000 through each aperture
    double sizeMm = 0.0;         ///< lag at which the structure's correlation with itself has fallen to half
};

struct PaperReport {
    std::vector<double> tabletDensity;       ///< of each step
    std::vector<double> density;             ///< of the print under it
    double dmin = 0.0;                       ///< the bare paper
    double dmax = 0.0;                       ///< the deepest tone
    std::optional<double> gamma;             ///< steepest mean slope over four steps
    std::optional<double> isoRange;          ///< ISO 6846, log exposure × 100
    std::optional<PaperStructure> structure; ///< absent on a paper without any
};

/// Measures a paper of a handmade process under options (grade, knobs, texture, roller, pickup, relief,
/// base). A coat and a border lie round the picture and are no matter. Errors: unsupported for any other
/// paper.
PaperReport measurePaper(const PaperProfile& paper, const RenderOptions& options);

} // namespace tamlo::Sensitometry
