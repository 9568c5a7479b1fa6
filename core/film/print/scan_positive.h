// How a scanner or a projector reads a positive: stray light, the deepest density it sees, its exposure, the
// positive's gamma, and the Black and White knobs of its software. Domain: display-linear transmission.
#pragma once

#include "core/film/emulsion/hd_curve.h"
#include "core/image/rgb_image.h"
#include "core/profiles/formats/paper_profile.h"
#include "core/profiles/options/render_options.h"

#include <optional>

namespace tamlo::Film {

struct ScanPositive {
    float flare = 0.0f;
    std::optional<float> floor; ///< transmission of the deepest density that is read
    float evMultiplier = 1.0f;
    float gamma = 1.0f;
    float black = 0.0f; ///< density taken off and added at the ends
    float white = 0.0f;
    float dcap = 3.6f; ///< density ceiling of the knobs
};

/// Absent for a paper without a `scan` block.
std::optional<ScanPositive> scanPositiveParams(const PaperProfile& paper, const RenderOptions& options);

/// A curve of which only liftBlack and dropWhite are used.
HDCurve scanToneCurve(float black, float white, float dcap);

/// The image as it is when no step of the reading applies.
RGBImage scanPositive(RGBImage image, const PaperProfile& paper, const RenderOptions& options);

} // namespace tamlo::Film
