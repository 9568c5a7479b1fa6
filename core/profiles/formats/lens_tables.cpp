#include "core/profiles/formats/profile_tables.h"

namespace tamlo {

std::span<const Field<ApertureResponse>> FieldTable<ApertureResponse>::rows()
{
    using T = ApertureResponse;
    static constexpr Field<T> kRows[] = {
        field<&T::vignetteTau>(
            "vignette_tau", "stops",
            "how slowly the fall-off clears when stopping down; larger keeps it over more stops; absent 1.4"),
        field<&T::vignetteResidual>(
            "vignette_residual", "share",
            "fall-off that stays at any stop; larger keeps the corners darker; absent 0.3"),
        field<&T::saFalloff>("sa_falloff", "halvings per stop",
                             "how fast glow, bloom, softness and coma die when stopping down; larger is "
                             "crisp sooner, 0 never; absent 1.1"),
        field<&T::swirlFalloff>(
            "swirl_falloff", "halvings per stop",
            "how fast swirl and field curvature die; larger is calm sooner, 0 never; absent 0.55"),
    };
    return kRows;
}

static constexpr Field<OpticsParams> kOpticsParamsRows[] = {
    field<&OpticsParams::veil>("veil", "share",
                               "light that strays over the whole frame; larger greys the shadows"),
    field<&OpticsParams::bloom>("bloom", "", "strength of the bloom round highlights; larger glows more"),
    field<&OpticsParams::bloomThreshold>(
        "bloom_threshold", "linear scene light",
        "level above which light blooms, where middle grey is 0.18; larger leaves "
        "it to the brightest lights; absent 0.75"),
    field<&OpticsParams::bloomSigma1>("bloom_sigma1", "fraction of the long side",
                                      "tight radius of the bloom; larger is wider"),
    field<&OpticsParams::bloomSigma2>("bloom_sigma2", "fraction of the long side",
                                      "wide radius of the bloom; larger is wider"),
    field<&OpticsParams::bloomHaloMix>(
        "bloom_halo_mix", "share",
        "part of the bloom that goes to the wide radius; larger is a haze, smaller a rim; absent 0.4"),
    field<&OpticsParams::bloomTint>("bloom_tint", "",
                                    "colour of the bloom; larger in a channel tints it its way"),
    field<&OpticsParams::ca>(
        "ca", "share",
        "lateral colour: red is enlarged and blue reduced by this; larger is wider fringes "
        "towards the edges"),
    field<&OpticsParams::vignette>("vignette", "share",
                                   "light lost in the corners, not negative; larger is darker corners"),
    field<&OpticsParams::vignettePower>(
        "vignette_power", "",
        "shape of the fall-off; larger keeps the middle even and darkens the corners alone; absent 2.5"),
    field<&OpticsParams::soften>("soften", "thousandths of the long side",
                                 "radius of the softness of the whole frame, not negative; larger is softer"),
    field<&OpticsParams::softenMix>("soften_mix", "share",
                                    "soft image over the sharp one; larger is softer; absent 0.6"),
    field<&OpticsParams::cast>("cast", "",
                               "colour of the glass; larger in a channel tints the picture its way"),
    field<&OpticsParams::distortion>("distortion", "",
                                     "cubic radial term; larger is more barrel, below 0 is pincushion"),
    field<&OpticsParams::distortionK5>(
        "distortion_k5", "",
        "fifth-order radial term, which acts in the corners; larger is more barrel there"),
    field<&OpticsParams::fieldCurvature>("field_curvature", "fraction of the long side",
                                         "blur of the corners in all directions; larger is softer edges"),
    field<&OpticsParams::astigmatism>("astigmatism", "fraction of the long side",
                                      "smear along circles round the centre; larger is a stronger swirl"),
    field<&OpticsParams::coma>("coma", "fraction of the long side",
                               "smear along the radius; larger draws lights near the edge into flares"),
    field<&OpticsParams::fieldPower>(
        "field_power", "",
        "how the three grow outwards; larger keeps the centre sharp and hits the corners; absent 2"),
    field<&OpticsParams::defocusBias>(
        "defocus_bias", "share",
        "how much of them sharp detail escapes; larger leaves the smear to what is out of focus"),
    field<&OpticsParams::glow>(
        "glow", "share",
        "soft image of spherical aberration over the sharp one, not negative; larger is dreamier"),
    field<&OpticsParams::glowRadius>("glow_radius", "fraction of the long side",
                                     "its radius, above 0 where there is glow; larger is wider"),
    field<&OpticsParams::glowRing>(
        "glow_ring", "share", "core taken out of the glow, held to 0.95; larger is a ring instead of a halo"),
    field<&OpticsParams::glowChroma>(
        "glow_chroma", "", "radius of the glow in R, G, B as multiples; larger spreads that colour wider"),
    field<&OpticsParams::glowFocusShift>(
        "glow_focus_shift", "fraction of the long side",
        "sharpness that the focus shift costs, times the glow; larger is softer"),
    field<&OpticsParams::chromaSoft>("chroma_soft", "thousandths of the long side",
                                     "softness of R, G, B alone; larger is softer in that colour"),
    field<&OpticsParams::apertureResponse>("aperture_response", "",
                                           "how the faults shrink when stopping down"),
};

std::span<const Field<OpticsParams>> FieldTable<OpticsParams>::rows()
{
    return kOpticsParamsRows;
}

std::span<const Field<SieveDisc>> FieldTable<SieveDisc>::rows()
{
    using T = SieveDisc;
    static constexpr Field<T> kRows[] = {
        requiredField<&T::id>("id", "", "id of the disc"),
        requiredField<&T::name>("name", "", "display name"),
        requiredField<&T::glowMult>("glow_mult", "",
                                    "value that the disc gives the option glow_mult; larger glows more"),
        requiredField<&T::glowRadiusMult>(
            "glow_radius_mult", "",
            "value that the disc gives the option glow_radius_mult; larger glows wider"),
    };
    return kRows;
}

std::span<const Field<LensProfile>> FieldTable<LensProfile>::rows()
{
    using T = LensProfile;
    static constexpr Field<T> kRows[] = {
        field<&T::name>("name", "", "display name in Russian; in English too where name_en is absent"),
        field<&T::nameEn>("name_en", "", "display name in English"),
        field<&T::notes>("notes", "", "notes for the photographer in Russian"),
        field<&T::notesEn>("notes_en", "", "notes in English"),
        field<&T::fidelity>("fidelity", "",
                            "how well grounded the numbers are: measured, datasheet, physical, alike (by "
                            "eye), revival or draft; a badge that changes no pixel"),
        requiredField<&T::optics>("optics", "", "the glass; an empty block is a perfect lens"),
        field<&T::discs>("discs", "",
                         "sieve discs of a soft-focus lens, offered in place of the two glow knobs"),
        field<&T::apertureHint>("aperture_hint", "",
                                "shown in place of the aperture knob where there is no diaphragm"),
    };
    return kRows;
}

static constexpr Field<FilterProfile> kFilterProfileRows[] = {
    field<&FilterProfile::name>("name", "",
                                "display name in Russian; in English too where name_en is absent"),
    field<&FilterProfile::nameEn>("name_en", "", "display name in English"),
    field<&FilterProfile::notes>("notes", "", "notes for the photographer in Russian"),
    field<&FilterProfile::notesEn>("notes_en", "", "notes in English"),
    field<&FilterProfile::type>("type", "",
                                "cut (colour), diffusion, grad or rays: which keys below are meant"),
    field<&FilterProfile::gains>(
        "gains", "",
        "cut: light let through in R, G, B, each above 0; smaller holds that colour back "
        "more; exposure is kept for grey"),
    field<&FilterProfile::bloom>("bloom", "",
                                 "diffusion: strength of the glow, not negative; larger glows more"),
    field<&FilterProfile::radiusFrac>("radius_frac", "fraction of the width",
                                      "diffusion: radius of the glow; larger is wider; absent 0.04"),
    field<&FilterProfile::threshold>(
        "threshold", "linear scene light",
        "diffusion, rays: level above which light glows or throws rays, where middle "
        "grey is 0.18; larger leaves it to the brightest lights; absent 0.6 and 0.8"),
    field<&FilterProfile::haze>("haze", "share",
                                "diffusion: veil of the frame's mean light; larger greys the shadows"),
    field<&FilterProfile::grad>(
        "grad", "",
        "grad: edge (dark on one side of the line) or reverse (darkest at the line); absent edge"),
    field<&FilterProfile::stops>("stops", "stops", "grad: density when neutral; larger is darker; absent 1"),
    field<&FilterProfile::stopsRgb>(
        "stops_rgb", "stops",
        "grad: density in R, G, B, in place of stops; larger holds that colour back more"),
    field<&FilterProfile::edgeFrac>("edge_frac", "fraction of half the long side",
                                    "grad: half the width of the soft line; larger is softer; absent 0.25"),
    field<&FilterProfile::reverseFar>(
        "reverse_far", "share",
        "grad, reverse: density left far from the line; larger is darker there; absent 0.45"),
    field<&FilterProfile::rays>(
        "rays", "",
        "rays: points of the star, an even number; larger is more of them, 2 is a streak; absent 4"),
    field<&FilterProfile::angle>("angle", "degrees", "grad, rays: turn as mounted"),
    field<&FilterProfile::lengthFrac>("length_frac", "fraction of the long side",
                                      "rays: length of a ray; larger is longer; absent 0.14"),
    field<&FilterProfile::decay>(
        "decay", "share of the length",
        "rays: how slowly a ray dies out; larger is bright further out; absent 0.32"),
    field<&FilterProfile::widthFrac>("width_frac", "fraction of the long side",
                                     "rays: width of a ray; larger is thicker; absent 0.0015"),
    field<&FilterProfile::strength>(
        "strength", "share",
        "rays: light above the threshold that goes into rays; larger is brighter rays "
        "and a dimmer source; absent 0.3"),
    field<&FilterProfile::dispersion>(
        "dispersion", "",
        "rays: spread of the ray's length by wavelength; larger ends in redder tips, 0 "
        "is white; absent 1"),
    field<&FilterProfile::tint>(
        "tint", "",
        "rays: strength in R, G, B as multiples; a smaller number leaves that colour out of "
        "the ray; absent 1, 1, 1"),
};

std::span<const Field<FilterProfile>> FieldTable<FilterProfile>::rows()
{
    return kFilterProfileRows;
}

} // namespace tamlo
