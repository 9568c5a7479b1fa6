// What only a machine print or screen has: the scanner, inkjet and offset presses, and the cathode-ray tube
// that is photographed again. Blocks of PaperProfile.
#pragma once

#include "core/profiles/formats/profile_values.h"

namespace tamlo {

struct ScanParams {
    OptNumber mtf, sharpen, sharpenFrac, highlightClip;
    OptInteger longPx; ///< the scanner's ceiling on the long side; absent means none
    OptNumber positiveGamma, positiveDmax, flare;
    bool operator==(const ScanParams&) const = default;
};

struct InkjetParams {
    OptText base, inks;
    OptNumber gcr, dropUm, spreadUm, gain, gainComp;
    OptNumber swathMm, passVar, seamAmp, ripple, nozzleMm, misalignDrops;
    OptNumber mottle, psfUm;
    OptBool dither;
    bool operator==(const InkjetParams&) const = default;
};

struct OffsetParams {
    OptText base, inks;
    OptNumber gcr, tac, lpi, dotGain, gainComp, misregisterMm, mottle, psfUm;
    bool operator==(const OffsetParams&) const = default;
};

struct CRTBezelParams {
    OptNumber thin, wide, face, lip, cornerR, plastic, glass, lipGain;
    bool operator==(const CRTBezelParams&) const = default;
};

struct CRTParams {
    OptText mask; ///< "delta", "grille" or "none"
    OptNumber pitchMm, dot, depth;
    OptInteger lines;
    OptNumber spot;
    OptInteger wires;
    OptNumber wireMm, wireDepth;
    OptNumber lumaLines, chromaLines;
    OptNumber whiteK, adapt;
    OptText phosphor;
    OptNumber bloom, bloomMm, convergeMm, vignette, cornerR;
    OptText curve; ///< "sphere" or "cyl"
    OptNumber bulge, overscan, cameraPsfUm, whiteMean, nominalIn;
    std::optional<CRTBezelParams> bezel;
    bool operator==(const CRTParams&) const = default;
};

} // namespace tamlo
