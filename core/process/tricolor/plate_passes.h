// Passes of the three plates (tricolor.h), in row bands and vector code with run-time dispatch.
#pragma once

#include "core/film/emulsion/hd_curve.h"
#include "core/image/rgb_image.h"
#include "core/process/tricolor/registration.h"
#include "core/profiles/formats/profile_values.h"

#include <optional>

namespace tamlo {

/// The holder's opening on a plate's own grid, pixels: x0 <= x < x1, y0 <= y < y1.
struct PlateOpening {
    std::int64_t x0 = 0, x1 = 0, y0 = 0, y1 = 0;
};

struct PlatePositiveParams {
    HDCurve positive;
    float argument = 0.0f; ///< log exposure of the positive under a negative of no density
    PlateOpening opening;
};

/// Density of the negative to transmission of its diapositive, in place; 0 outside the opening.
void plate_positive(Plane& density, const PlatePositiveParams& params);

/// Writes channel c of the image: the plate read at (x + dx, y + dy) by Catmull-Rom with its edge repeated,
/// or as it stands without a field.
void plate_sample(RGBImage& out, int c, const Plane& plate, const Tricolor::RegistrationField* field);

/// Clamped, through the projector's filters where there are any, and clamped again.
void plate_combine(RGBImage& image, const std::optional<std::array<Vec3f, 3>>& projection);

} // namespace tamlo
