// Sensitometry: what a film and a paper measure, on the densities that the pipeline makes of test targets:
// a step wedge, flat patches, sines, an edge, a bright strip. The same stages as a render, the same numbers
// as on a data sheet; nothing is read from the profile's own figures. Log exposure is decimal and relative to
// a grey card of 18 % at its normal exposure. The film sees the light that it is balanced for. Density:
// decimal optical density, absolute.
#pragma once

#include "core/profiles/formats/film_profile.h"
#include "core/profiles/formats/paper_profile.h"
#include "core/profiles/options/render_options.h"
#include "core/sensitometry/instant_measure.h"
#include "core/sensitometry/plate_measure.h"
#include "core/sensitometry/press_measure.h"
#include "core/sensitometry/tube_measure.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace tamlo::Sensitometry {

inline constexpr int kWedgeSteps = 21;
inline constexpr double kStepLogE = 0.15;
/// Diameters of the measuring apertures in micrometres; the middle one is that of data sheets.
inline constexpr std::array<double, 3> kAperturesUm{24.0, 48.0, 96.0};

/// One layer of a film, or its only one; on instant film a channel of the finished positive.
struct Layer {
    std::string name;
    std::vector<double> density;      ///< one a step of the wedge
    double dmin = 0.0;                ///< an unexposed patch
    double dmax = 0.0;                ///< a patch far above the wedge
    double gamma = 0.0;               ///< steepest slope over four steps, least squares; below 0 on a slide
    std::optional<double> speedPoint; ///< log exposure of 0.10 above Dmin
};

/// Graininess of an even patch at net visual density 1.0, read with a round aperture; on a colour film the
/// root of the layers' variances weighed by luminance.
struct Granularity {
    std::array<double, 3> rms{};    ///< standard deviation of density × 1000 through each aperture
    std::array<double, 3> selwyn{}; ///< G = sigma × sqrt(2 × area), in density × micrometres
};

struct MTFPoint {
    double cyclesPerMm = 0.0;
    double response = 0.0; ///< modulation of density over that of a coarse pattern
};

/// A print of the wedge.
struct PrintTone {
    std::vector<double> density;    ///< reflection density of each step
    double dmin = 0.0;              ///< the paper's white under the film's Dmax, or the other way on a slide
    double dmax = 0.0;              ///< the deepest black
    std::optional<double> isoRange; ///< ISO R of the paper; absent where it is no paper or never gets there
};

struct Report {
    std::vector<double> logExposure; ///< of each step of the wedge
    std::vector<Layer> layers;
    std::optional<Granularity> granularity; ///< absent where no net density 1.0 can be reached
    std::optional<InstantSurface> surface;  ///< of instant film, in place of granularity
    std::vector<MTFPoint> mtf;
    std::optional<double> mtf50;            ///< cycles per mm; absent when it stays above half
    double adjacencyOvershoot = 0.0;        ///< beyond the dense side of an edge, as a share of the step
    std::optional<double> halationRadiusUm; ///< where the halo of a strip has fallen to a tenth
    std::optional<PrintTone> print;
    std::optional<PressReport> press; ///< of a paper that a press prints
    std::optional<PlateReport> plate; ///< of a film that is a plate
    std::optional<TubeReport> tube;   ///< of a screen, which has no print
};

/// A film's characteristic curves well beyond the wedge, so that both of their ends are seen.
struct Curves {
    std::vector<double> logExposure;          ///< from -3 to +3, kCurvesStep apart
    std::vector<std::vector<double>> density; ///< by layer, as in a report
};
inline constexpr double kCurvesReach = 3.0, kCurvesStep = 0.05;
Curves curves(const FilmProfile& film, const RenderOptions& options);

/// The graininess of a report by itself. Errors: as of measure.
std::optional<Granularity> granularity(const FilmProfile& film, const RenderOptions& options);

/// Measures a film under options (development, age, grain engine and amounts; format and crop are no matter),
/// and a paper when there is one.
/// Errors: unsupported for a film or paper whose stage is not built; ProfileError for a film without curves.
Report measure(const FilmProfile& film, const PaperProfile* paper, const RenderOptions& options);

} // namespace tamlo::Sensitometry
