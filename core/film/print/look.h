// LookOp: the film's final colour trim on the display-linear positive, shared by colour negative, slide and
// instant output: dye fade of an old print, shadow and highlight tints, saturation, green mute, in this
// order.
#pragma once

#include "core/image/rgb_image.h"
#include "core/profiles/formats/film_profile.h"

#include <optional>

namespace tamlo::Film {

struct LookOp {
    Vec3f shadowTint{};
    Vec3f highlightTint{};
    float saturation = 1.0f; // factor on the distance from luminance
    float greenMute = 0.0f;
    float greenMuteRed = 0.0f; // share of the muted green that goes to red
    Vec3f fade{1.0f, 1.0f, 1.0f};
    bool hasTint = false;
    bool hasSat = false;
    bool hasGreenMute = false;
    bool hasFade = false;

    LookOp() = default;
    explicit LookOp(const std::optional<LookParams>& look);

    /// One triple. Domain: display-linear positive.
    Vec3f operator()(Vec3f c) const;
};

} // namespace tamlo::Film
