// FilmProfile: all that the system knows of a light-sensitive material: a film stock, an instant pack, a
// plate, a set of three plates, or the Neutral film. Data, not code: two films differ by numbers alone.
// How each value acts stands with the stage that reads it. Profiles are immutable once loaded; ageing and
// development make changed copies for one render (DevelopedFilm).
#pragma once

#include "core/profiles/formats/instant_profile.h"
#include "core/profiles/formats/plate_profile.h"

namespace tamlo {

/// The three dye curves of colour, slide and instant film.
struct ColorLayers {
    NegativeLayer r, g, b;
    bool operator==(const ColorLayers&) const = default;
};

/// Interlayer and dye mixing.
struct Couplers {
    OptNumber saturation; ///< colour gain of the DIR couplers
    std::optional<ProfileMatrix> matrix;
    std::optional<ProfileMatrix> matrixDs; ///< by datasheet, taken when the option `interlayer` is on
    bool operator==(const Couplers&) const = default;
};

struct DyeParams {
    std::optional<ProfileMatrix> crosstalk;
    bool operator==(const DyeParams&) const = default;
};

struct FilmBalance {
    OptNumber illuminantK; ///< kelvin; absent means a daylight stock
    bool operator==(const FilmBalance&) const = default;
};

struct HalationParams {
    OptNumber strength;  ///< share of light returned
    OptNumber radiusUm;  ///< radius of the glow on the film
    OptNumber threshold; ///< linear scene light above which light scatters
    OptTriple tint;
    OptNumber glassMm; ///< thickness of a plate's glass
    bool operator==(const HalationParams&) const = default;
};

struct GrainParams {
    OptNumber sizeUm;    ///< mean grain size
    OptNumber amount;    ///< strength of the tasteful setting
    OptNumber amountRms; ///< strength by the datasheet's RMS granularity
    OptTriple layerScale, layerSizeScale;
    bool operator==(const GrainParams&) const = default;
};

/// Final colour trim.
struct LookParams {
    OptTriple shadowTint, highlightTint;
    OptNumber saturation, greenMute;
    OptTriple dyeFade; ///< fading per layer
    bool operator==(const LookParams&) const = default;
};

struct FilmMTF {
    OptNumber f50CycMm; ///< cycles per millimetre at half response
    bool operator==(const FilmMTF&) const = default;
};

/// Edge effect of development.
struct FilmAdjacency {
    OptNumber k, um, sat;
    bool operator==(const FilmAdjacency&) const = default;
};

/// False-colour infrared.
struct IRProxy {
    OptTriple weights; ///< how R, G, B make up the infrared
    OptNumber chlorophyll;
    bool operator==(const IRProxy&) const = default;
};

struct FilmProfile {
    OptText name, nameEn, notes, notesEn;
    OptText fidelity; ///< how well grounded; changes no pixel
    std::string type; ///< "color", "bw", "slide", "instant", "collodion", "tricolor"
    OptText formatDefault;
    std::optional<TextList> formats; ///< when present, the only formats it is made in
    OptText section;
    OptBool hidden, neutral;

    OptTriple spectralWeights; ///< how a single-layer emulsion sums the scene's R, G, B
    std::optional<NegativeLayer> negative;
    std::optional<ColorLayers> layers;
    std::optional<Couplers> couplers;
    std::optional<DyeParams> dyes;
    std::optional<FilmBalance> balance;
    std::optional<HalationParams> halation;
    std::optional<GrainParams> grain;
    std::optional<LookParams> look;
    std::optional<FilmMTF> mtf;
    std::optional<FilmAdjacency> adjacency;
    OptNumber softenFrac; ///< softness as a fraction of the image's long side
    std::optional<TextureParams> texture;
    std::optional<InstantFrameParams> frame;
    OptNumber tempSensitivity;
    std::optional<ProfileMatrix> sensitization;   ///< spectral crossover, always
    std::optional<ProfileMatrix> sensitizationDs; ///< by datasheet, with the option `interlayer`
    std::optional<IRProxy> irProxy;
    OptTriple imageTone;
    std::optional<ToneMottleParams> toneMottle;
    std::optional<DryPlateParams> dryplate;
    std::optional<CollodionParams> collodion;
    std::optional<TricolorParams> tricolor;
    std::optional<NumberMap> dminRef; ///< the three dmin before ageing, by "r", "g", "b"; set by ageing

    bool isInstant() const { return type == "instant"; }
    bool isSlide() const { return type == "slide"; }
    bool isCollodion() const { return type == "collodion"; }
    bool isBW() const { return type == "bw"; }
    bool isTricolor() const { return type == "tricolor"; }
    /// An instant film with one silver layer instead of three dye layers.
    bool isMonoInstant() const { return isInstant() && spectralWeights.has_value(); }

    bool operator==(const FilmProfile&) const = default;
};

} // namespace tamlo
