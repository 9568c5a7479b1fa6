// The door of the emulsion: scene light to what the three layers record. The film's colour balance against
// the scene's illuminant, false-colour infrared, spectral sensitisation. Behind the lens and the filters,
// ahead of softness and halation. Domain: linear light, in place. A black-and-white emulsion has its own
// spectral weights and passes untouched.
#pragma once

#include "core/image/rgb_image.h"
#include "core/profiles/formats/film_profile.h"

#include <array>
#include <optional>
#include <string_view>

namespace tamlo::Film {

/// The white that a RAW frame is developed for, kelvin.
inline constexpr double sceneRefK = 5500.0;

/// The film's `illuminant_K`, or `otherwise` for a daylight film, which states none.
double filmIlluminantK(const FilmProfile& film, double otherwise);

/// The scene's white for the film: its own balance with wbMode "custom", else sceneRefK.
double sceneIlluminantK(const FilmProfile& film, std::string_view wbMode);

/// Gains of the film's balance under a scene white, keeping luminance; absent when the two agree.
std::optional<Vec3f> balanceGains(const FilmProfile& film, double sceneK);

/// `sensitization` or, for datasheet, `sensitization_ds`, each row divided by its sum so that grey stays
/// grey; absent for no matrix, a malformed one and the identity.
std::optional<std::array<Vec3f, 3>> sensitizationMatrix(const FilmProfile& film, bool datasheet);

/// Weights of r, g, b in the infrared estimate, adding up to 1, and the gain of foliage.
struct IRCoefficients {
    Vec3f weights{0.55f, 0.45f, 0.0f};
    float chlorophyll = 1.6f;
};
IRCoefficients irCoefficients(const IRProxy& ir);

/// Layers see infrared, red and green, in this order.
RGBImage falseColorIR(RGBImage image, const IRProxy& ir);

/// interlayer switches the datasheet matrix on.
RGBImage applyEmulsion(RGBImage image, const FilmProfile& film, bool interlayer, std::string_view wbMode);

} // namespace tamlo::Film
