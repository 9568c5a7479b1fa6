// A profile of the colour engine as a value, for the files of this folder that speak to it.
#pragma once

#include <lcms2.h>

#include <cstdint>
#include <memory>
#include <span>

namespace tamlo::platform {

struct ICCProfileCloser {
    void operator()(void* profile) const noexcept { cmsCloseProfile(profile); }
};
using ICCProfile = std::unique_ptr<void, ICCProfileCloser>;

struct ICCCurveFreer {
    void operator()(cmsToneCurve* curve) const noexcept { cmsFreeToneCurve(curve); }
};
using ICCCurve = std::unique_ptr<cmsToneCurve, ICCCurveFreer>;

/// Parametric curve of type 4: (a v + b)^g above d, c v below.
inline constexpr cmsFloat64Number kSRGBCurve[5] = {2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92, 0.04045};

/// Null where the bytes are no profile.
ICCProfile openICCProfile(std::span<const std::uint8_t> bytes);

/// What the profile says, not its name: colorants within 0.002 of sRGB's and curves that agree.
bool isSRGB(cmsHPROFILE profile);

} // namespace tamlo::platform
