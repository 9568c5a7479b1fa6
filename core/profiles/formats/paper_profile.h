// PaperProfile: whatever the film meets after development: a silver or RA-4 paper, an alternative process,
// a scanner, a projector, an inkjet or offset print, a screen, or a plate viewed as itself. One format for
// all; `type`, `kind`, `process` and `repro` decide which branch reads which block. No key is required.
#pragma once

#include "core/profiles/formats/repro_profile.h"

namespace tamlo {

struct PaperPigment {
    OptText mode; ///< "stain" or "ink"
    OptTriple density, rgb;
    OptNumber opacity;
    bool operator==(const PaperPigment&) const = default;
};

struct PaperTexture {
    OptText kind; ///< "fibre", "ink", "reticulation", "none"
    OptNumber amount, fineUm, wideUm, wideAmp, fineMm, fineAmp;
    OptNumber brushMm, raster, specks, roller, cellUm;
    bool operator==(const PaperTexture&) const = default;
};

struct PaperTransfer {
    OptNumber pickup, softenMm;
    bool operator==(const PaperTransfer&) const = default;
};

/// One coat of a multi-layer process; its curve values override the paper's.
struct PaperLayer {
    OptText from; ///< "r", "g", "b", "lum"
    OptText name;
    std::vector<double> pigment; ///< density per channel; a missing element is 0
    OptNumber amount, shiftMm, ev, dmin, dmax, gamma, toe;
    bool operator==(const PaperLayer&) const = default;
};

struct PaperCoat {
    OptText style; ///< "none" or "brush"
    OptNumber margin, rough, band;
    bool operator==(const PaperCoat&) const = default;
};

/// The plate mark of a press.
struct PaperPlate {
    OptBool enabled;
    OptNumber marginMm, offsetMm, widthMm, depth;
    bool operator==(const PaperPlate&) const = default;
};

struct PaperRelief {
    OptNumber amount, sheen, smoothMm;
    OptList light; ///< list of two
    OptNumber slopeFloor;
    bool operator==(const PaperRelief&) const = default;
};

/// Groups several profiles under one entry of the picker.
struct PaperFamily {
    OptText id, name, pick, option, nameEn, pickEn, optionEn;
    OptInteger order;
    bool operator==(const PaperFamily&) const = default;
};

struct PlateViewParams {
    OptNumber scatter;
    OptTriple silver, base;
    OptNumber positiveEv;
    bool operator==(const PlateViewParams&) const = default;
};

/// An added surface structure.
struct SurfaceParams {
    OptText kind; ///< "lustre"
    OptNumber amount, cellUm;
    OptList light; ///< list of two
    bool operator==(const SurfaceParams&) const = default;
};

struct PaperProfile {
    OptText name, nameEn, notes, notesEn, fidelity;
    OptText type;    ///< "bw_paper", "color_paper", "alt_paper", "reversal_paper", "plate_view"
    OptText kind;    ///< "silver", "repro", "scan", "plate"
    OptText process; ///< the alternative process
    OptText repro;   ///< "inkjet", "offset", "crt"
    std::optional<TextList> filmTypes; ///< the film types it accepts; absent means any
    OptBool fixedGrade, fixedExposure;
    OptNumber
        exposureEv; ///< reversal paper: stops of light beyond what prints a transmission of 0.18 as 0.18
    OptNumber dmin, dmax, gamma, toe;
    OptNumber flare; ///< the enlarger's veiling flare, share of the light
    OptTriple tone, baseTint;
    OptNumber dyePurity;
    OptTriple spectralWeights;
    OptText base;    ///< named base stock of an alternative process
    OptList baseRgb; ///< base colour given directly; read only with three values
    std::optional<PaperPigment> pigment;
    OptNumber inkFloor, plug;
    OptNumber thicknessMm; ///< 0.25 when absent
    std::optional<PaperTexture> texture;
    std::optional<PaperTransfer> transfer;
    std::optional<std::vector<PaperLayer>> layers;
    std::optional<PaperCoat> coat;
    std::optional<PaperPlate> plate;
    std::optional<PaperRelief> relief;
    std::optional<PaperFamily> family;
    std::optional<ScanParams> scan;
    std::optional<InkjetParams> inkjet;
    std::optional<OffsetParams> offset;
    std::optional<CRTParams> crt;
    std::optional<PlateViewParams> plateView;
    OptBool sheet;     ///< false: there is no sheet to mount
    OptText substrate; ///< "opaque": the plate's base is not glass
    std::optional<SurfaceParams> surface;

    bool isAlt() const { return process && !process->empty(); }
    bool isRepro() const { return repro && !repro->empty(); }
    bool isScan() const { return kind == "scan"; }
    bool isPlate() const { return kind == "plate"; }
    bool isBW() const { return type && type->starts_with("bw"); }
    bool isReversal() const { return type == "reversal_paper"; }
    /// The film itself is scanned where it is already a positive.
    bool scansPositive() const { return isScan() || scan.has_value(); }
    bool hasSheet() const { return !isScan() && sheet.value_or(true); }

    bool operator==(const PaperProfile&) const = default;
};

} // namespace tamlo
