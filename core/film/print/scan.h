// What a scanner does to any picture after the film or paper stage: optical softness, a ceiling on
// resolution, capture sharpening, a clipped highlight. Radii are fractions of the width, so that a preview
// looks like the file. Domain: display-linear positive 0...1.
#pragma once

#include "core/image/rgb_image.h"
#include "core/profiles/formats/paper_profile.h"

#include <optional>

namespace tamlo::Film {

/// The size under the scanner's ceiling; absent when it does not reduce.
std::optional<Size> scanSize(Size size, const ScanParams& scan);

/// A smaller picture where the scanner has a ceiling; unchanged for a paper without `scan`.
RGBImage applyScan(RGBImage image, const PaperProfile& paper);

} // namespace tamlo::Film
