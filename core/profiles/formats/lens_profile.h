// LensProfile: the numbers of a lens's optical model. Every one of OpticsParams is optional: an absent one
// switches its effect off, and an empty block leaves the picture as it is. Lengths are fractions of the
// frame's long side unless said.
#pragma once

#include "core/profiles/formats/profile_values.h"

namespace tamlo {

/// How the aberrations change with the stop.
struct ApertureResponse {
    OptNumber vignetteTau, vignetteResidual;
    OptNumber saFalloff; ///< how fast glow dies when stopping down
    OptNumber swirlFalloff;
    bool operator==(const ApertureResponse&) const = default;
};

struct OpticsParams {
    OptNumber veil; ///< veiling glare, share of the frame's mean light
    OptNumber bloom, bloomThreshold, bloomSigma1, bloomSigma2, bloomHaloMix;
    OptTriple bloomTint;
    OptNumber ca; ///< lateral chromatic aberration
    OptNumber vignette, vignettePower;
    OptNumber soften, softenMix;
    OptTriple cast;
    OptNumber distortion, distortionK5; ///< radial terms k3 and k5
    OptNumber fieldCurvature, astigmatism, coma, fieldPower, defocusBias;
    OptNumber glow, glowRadius, glowRing;
    OptTriple glowChroma;
    OptNumber glowFocusShift;
    OptList chromaSoft; ///< softness per channel; read only with three values
    std::optional<ApertureResponse> apertureResponse;
    bool operator==(const OpticsParams&) const = default;
};

/// A sieve disc of a soft-focus lens: what it sets for the options glowMult and glowRadiusMult.
struct SieveDisc {
    std::string id, name;
    double glowMult = 0, glowRadiusMult = 0;
    bool operator==(const SieveDisc&) const = default;
};

struct LensProfile {
    OptText name, nameEn, notes, notesEn, fidelity;
    OpticsParams optics;
    std::optional<std::vector<SieveDisc>> discs;
    OptText apertureHint; ///< shown instead of the aperture knob
    bool operator==(const LensProfile&) const = default;
};

} // namespace tamlo
