// DevField: uneven development in the tank. Tongues of fresh developer at the film's edges, jets through the
// perforations, patches of exhausted developer: a field of relative density, laid out once a frame on cells
// of half a millimetre of film and laid onto density after the curves. Its cost does not depend on the
// picture's size, and a preview shows the pattern of the master.
#pragma once

#include "core/image/plane.h"
#include "core/image/random.h"
#include "core/image/rgb_image.h"
#include "core/profiles/formats/film_profile.h"
#include "core/profiles/options/render_options.h"

#include <optional>
#include <string>

namespace tamlo {

namespace DevField {

inline constexpr double cellMm = 0.5;
inline constexpr double sprocketMm = 4.75; // perforation pitch of 135 film (ISO 1007)
// Taste, set against scans of unevenly agitated film.
inline constexpr double edgeDepthMm = 2.2;  // mean depth of the tongues
inline constexpr double edgeAmp = 0.16;     // strength of the tongues
inline constexpr double surgeAmp = 0.14;    // strength of the jets
inline constexpr double surgeDepthMm = 1.6; // depth of the jets
inline constexpr double blotchAmp = 0.07;   // strength of the patches
inline constexpr double blotchSigmaMm = 9.0;
inline constexpr Vec3f layerWColor{1.0f, 1.0f, 1.15f};

/// The field over a picture. Shape: height × width. Units: pxUm micrometres of film a pixel; amount 0...3.
/// Draws from rng in a fixed order that depends on the film's size alone. Absent for an amount of 0.0001 or
/// less.
std::optional<Plane> field(Size size, double pxUm, const std::string& format, double amount, GrainRNG& rng);

/// One density with the field on it: nothing shows where the base is not developed.
inline float uneven(float density, float dmin, float field, float weight)
{
    return dmin + (density - dmin) * (1.0f + field * weight);
}

/// Lays the field onto the density of a silver film. Domain: absolute density.
Plane apply(Plane density, float dmin, const Plane& field);

/// Lays the field onto the three layers. sign is -1 on a slide, where more development means less density.
RGBImage apply(RGBImage density, const Vec3f& dmins, const Plane& field, const Vec3f& layerW, float sign);

/// The field of a frame from its `develop` stream; absent on instant film and collodion and at knob 0.
std::optional<Plane> unevenField(Size size, double pxUm, const std::string& format, const FilmProfile& film,
                                 const RenderOptions& options);

} // namespace DevField

} // namespace tamlo
