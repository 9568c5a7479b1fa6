// Lays the board of a mat over a sheet: plan, short tables by distance from the opening, one pass.
#pragma once

#include "core/process/mat/mat_passes.h"
#include "core/process/mat/mat_plan.h"

namespace tamlo::Finishing {

/// The tables of the pass. A style that is not in `styles` is composed as "classic".
MatParams matParams(const MatPlan& plan);

/// The sheet in its mat, larger by the board; the same image without one.
/// Errors: unsupported for a canvas too large to draw.
/// Domain: display-linear; what a mat surrounds ends within 0...1.
RGBImage applyMat(RGBImage image, const RenderOptions& options);

} // namespace tamlo::Finishing
