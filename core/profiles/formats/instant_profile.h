// What only instant film has: the surface that rollers and embossing give the picture (TextureParams), the
// mottle of a single-layer pack (ToneMottleParams) and the card around it (InstantFrameParams).
// Lengths end in Mm or Um and are measured on the card.
#pragma once

#include "core/profiles/formats/profile_values.h"

namespace tamlo {

/// How roller chatter shares out over the dye layers; each a list of two, at the low and high density.
struct ChatterColor {
    OptList r, b;
    OptList dRange;
    bool operator==(const ChatterColor&) const = default;
};

/// Roller chatter of pack film: bands across the pull and the pod's paste.
struct ChatterParams {
    OptNumber amp, cardVar;
    OptList endGain; ///< range of the extra strength at both ends of the pull
    OptNumber endMm;
    OptNumber alongMm, acrossMm, isoMm, isoShare;
    OptNumber coarseAlongMm, coarseAcrossMm, coarseShare;
    OptNumber clusterMm, clusterMod;
    OptNumber pasteAmp, pasteMm;
    std::optional<NumberMap> ampBySize, pasteMmBySize;
    OptList dGain; ///< list of three: low density, high density, floor
    OptNumber coarseFloor;
    std::optional<ChatterColor> color;
    bool operator==(const ChatterParams&) const = default;
};

/// Embossed lattice of the Silk surface.
struct SilkLatticeParams {
    OptNumber amp, pitchMm, rowMm, rowLine, dot;
    OptNumber jitterMm, jitterSigmaMm;
    OptNumber mod, modSigmaMm;
    OptNumber grain, grainMm;
    OptList dGain;
    bool operator==(const SilkLatticeParams&) const = default;
};

/// Surface of an instant picture.
struct TextureParams {
    OptNumber mottleScale; ///< fraction of the frame
    OptNumber mottleAmp, fineAmp, streaksAmp;
    OptNumber silkAmp, silkScaleUm;
    OptNumber cardUm; ///< long side of the picture when the frame block doesn't give it
    std::optional<ChatterParams> chatter;
    std::optional<SilkLatticeParams> silkLattice;
    bool operator==(const TextureParams&) const = default;
};

/// Density mottle of a single-layer instant film.
struct ToneMottleParams {
    OptNumber amp, scale;
    OptTriple warm;
    OptNumber densityBias, frameVar;
    bool operator==(const ToneMottleParams&) const = default;
};

/// The thin line at the picture's edge.
struct WindowLine {
    OptNumber mm, gain;
    bool operator==(const WindowLine&) const = default;
};

/// Shape of one corner; an absent value takes the common one of CornerSpec.
struct CornerLeaf {
    OptText style; ///< "round" or "chamfer"
    OptNumber mm, roundMm;
    bool operator==(const CornerLeaf&) const = default;
};

/// Shape of the four corners. A corner key that is null in the file (has… set, no leaf) is square; a key
/// that is left out takes the common values.
struct CornerSpec {
    OptText style;
    OptNumber mm, roundMm;
    std::optional<CornerLeaf> tl, tr, bl, br;
    bool hasTL = false, hasTR = false, hasBL = false, hasBR = false;
    bool operator==(const CornerSpec&) const = default;
};

/// The card around an instant picture.
struct InstantFrameParams {
    OptText style; ///< "integral" or "peel"
    OptText crop;  ///< "square" or "aspect"
    OptNumber sideFrac;
    OptNumber topRatio, bottomRatio; ///< multiples of the side border
    OptTriple baseTint;
    OptText nativeOrientation; ///< "portrait" or "landscape"
    OptNumber imageLongMm, imageShortMm;
    std::optional<WindowLine> windowLine;
    OptNumber chips;
    std::optional<NumberMap> chipsBySize;
    OptNumber edgeYellow;
    std::optional<TextList> sizes; ///< size keys of a peel-apart film
    std::optional<CornerSpec> corner;
    bool hasCornerKey = false; ///< the file has the key, though perhaps with null
    OptNumber embossUm, stepMm, thicknessMm;
    bool operator==(const InstantFrameParams&) const = default;
};

} // namespace tamlo
