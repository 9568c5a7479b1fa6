// What only plates have: the emulsion edge of a dry plate, the pour of wet collodion, and the three
// separation plates of an additive colour picture with their diapositives.
#pragma once

#include "core/profiles/formats/profile_values.h"

namespace tamlo {

/// One characteristic curve, in decimal density.
struct NegativeLayer {
    double dmin = 0;           ///< base plus fog
    double dmax = 0;           ///< ceiling
    double gamma = 0;          ///< contrast of the straight line
    OptNumber toe;             ///< softness of the foot
    OptNumber midDensity;      ///< density of a grey card above dmin
    OptNumber dmaxIntensified; ///< ceiling that silver intensification reaches
    bool operator==(const NegativeLayer&) const = default;
};

struct DryPlateParams {
    OptNumber edgeMm, edgeGain, edgeFog;
    OptNumber frillMm, frill, waveMm;
    bool operator==(const DryPlateParams&) const = default;
};

struct CollodionParams {
    OptNumber slope, crescent, wander;
    OptNumber edgeMm, holdMm;
    OptNumber veil, crystal, edgeRough;
    bool operator==(const CollodionParams&) const = default;
};

/// How far the three plates miss each other.
struct TricolorRegistration {
    OptNumber shiftMm, rotateDeg, scale;
    OptNumber warpMm, warpCellMm, margin;
    bool operator==(const TricolorRegistration&) const = default;
};

/// Three plates behind three filters, projected through three filters.
struct TricolorParams {
    std::optional<std::map<std::string, Vec3d>> filters; ///< taking filters by "r", "g", "b"
    std::optional<NumberMap> plateEv;                    ///< exposure of each plate in stops
    OptNumber evJitter;                                  ///< random spread of that exposure in stops
    std::optional<NegativeLayer> positive;               ///< curve of the diapositives
    std::optional<TricolorRegistration> registration;
    std::optional<ProfileMatrix> projection; ///< additive projection primaries
    bool operator==(const TricolorParams&) const = default;
};

} // namespace tamlo
