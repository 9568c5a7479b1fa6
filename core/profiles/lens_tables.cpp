#include "core/profiles/profile_tables.h"

namespace tamlo {

std::span<const Field<ApertureResponse>> FieldTable<ApertureResponse>::rows()
{
    using T = ApertureResponse;
    static constexpr Field<T> kRows[] = {
        field<&T::vignetteTau>("vignette_tau", "stops", "how fast the fall-off opens up"),
        field<&T::vignetteResidual>("vignette_residual", "share", "fall-off that stays"),
        field<&T::saFalloff>("sa_falloff", "", "how fast glow dies when stopping down"),
        field<&T::swirlFalloff>("swirl_falloff", "", "how fast field aberrations die"),
    };
    return kRows;
}

std::span<const Field<OpticsParams>> FieldTable<OpticsParams>::rows()
{
    using T = OpticsParams;
    static constexpr Field<T> kRows[] = {
        field<&T::veil>("veil", "share of the mean light", "veiling glare"),
        field<&T::bloom>("bloom", "", "strength of the highlight bloom"),
        field<&T::bloomThreshold>("bloom_threshold", "linear scene light", "level above which bloom starts"),
        field<&T::bloomSigma1>("bloom_sigma1", "fraction of the long side", "tight radius"),
        field<&T::bloomSigma2>("bloom_sigma2", "fraction of the long side", "wide radius"),
        field<&T::bloomHaloMix>("bloom_halo_mix", "share", "wide radius"),
        field<&T::bloomTint>("bloom_tint", "", "colour of the bloom"),
        field<&T::ca>("ca", "fraction of the long side", "lateral chromatic aberration"),
        field<&T::vignette>("vignette", "stops", "fall-off in the corners; not negative"),
        field<&T::vignettePower>("vignette_power", "", "shape of the fall-off"),
        field<&T::soften>("soften", "", "softness of the whole frame; not negative"),
        field<&T::softenMix>("soften_mix", "share", "soft image"),
        field<&T::cast>("cast", "", "colour cast of the glass"),
        field<&T::distortion>("distortion", "", "cubic radial term k3"),
        field<&T::distortionK5>("distortion_k5", "", "fifth-order radial term k5"),
        field<&T::fieldCurvature>("field_curvature", "fraction of the long side", "Petzval field curvature"),
        field<&T::astigmatism>("astigmatism", "fraction of the long side", "tangential smear in the field"),
        field<&T::coma>("coma", "fraction of the long side", "coma towards the edges"),
        field<&T::fieldPower>("field_power", "", "exponent of the growth over the field"),
        field<&T::defocusBias>("defocus_bias", "", "where in the frame best focus lies"),
        field<&T::glow>("glow", "", "spherical-aberration glow; not negative"),
        field<&T::glowRadius>("glow_radius", "fraction of the long side",
                              "its radius; above 0 whenever glow is"),
        field<&T::glowRing>("glow_ring", "share", "ring in the glow"),
        field<&T::glowChroma>("glow_chroma", "", "colour of the glow"),
        field<&T::glowFocusShift>("glow_focus_shift", "", "shift of focus by the glow"),
        field<&T::chromaSoft>("chroma_soft", "thousandths of the long side", "softness per channel"),
        field<&T::apertureResponse>("aperture_response", "", "how all this changes with the stop"),
    };
    return kRows;
}

std::span<const Field<SieveDisc>> FieldTable<SieveDisc>::rows()
{
    using T = SieveDisc;
    static constexpr Field<T> kRows[] = {
        requiredField<&T::id>("id", "", "id"),
        requiredField<&T::name>("name", "", "display name"),
        requiredField<&T::glowMult>("glow_mult", "", "value for the option glow_mult"),
        requiredField<&T::glowRadiusMult>("glow_radius_mult", "", "value for the option glow_radius_mult"),
    };
    return kRows;
}

std::span<const Field<LensProfile>> FieldTable<LensProfile>::rows()
{
    using T = LensProfile;
    static constexpr Field<T> kRows[] = {
        field<&T::name>("name", "", "display name, Russian"),
        field<&T::nameEn>("name_en", "", "English display name"),
        field<&T::notes>("notes", "", "notes shown to the user"),
        field<&T::notesEn>("notes_en", "", "English notes"),
        field<&T::fidelity>("fidelity", "", "how well grounded the profile is; changes no pixel"),
        requiredField<&T::optics>("optics", "", "the optical model"),
        field<&T::discs>("discs", "", "sieve discs of a soft-focus lens"),
        field<&T::apertureHint>("aperture_hint", "", "shown instead of the aperture knob"),
    };
    return kRows;
}

std::span<const Field<FilterProfile>> FieldTable<FilterProfile>::rows()
{
    using T = FilterProfile;
    static constexpr Field<T> kRows[] = {
        field<&T::name>("name", "", "display name, Russian"),
        field<&T::nameEn>("name_en", "", "English display name"),
        field<&T::notes>("notes", "", "notes shown to the user"),
        field<&T::notesEn>("notes_en", "", "English notes"),
        field<&T::type>("type", "", "cut, diffusion, grad or rays"),
        field<&T::gains>("gains", "", "transmission per channel; each above 0"),
        field<&T::bloom>("bloom", "", "strength of a diffusion; not negative"),
        field<&T::radiusFrac>("radius_frac", "fraction of the width", "radius of a diffusion"),
        field<&T::threshold>("threshold", "linear scene light", "level where the glow starts"),
        field<&T::haze>("haze", "", "general veil"),
        field<&T::grad>("grad", "", "edge or reverse"),
        field<&T::stops>("stops", "stops", "density of a neutral graduated filter"),
        field<&T::stopsRgb>("stops_rgb", "stops", "density per channel"),
        field<&T::edgeFrac>("edge_frac", "fraction of the long side", "softness of the line"),
        field<&T::reverseFar>("reverse_far", "share", "density left at the far end of a reverse filter"),
        field<&T::rays>("rays", "", "number of rays; 2 is a streak"),
        field<&T::angle>("angle", "degrees", "base rotation"),
        field<&T::lengthFrac>("length_frac", "fraction of the long side", "length of a ray"),
        field<&T::decay>("decay", "", "fall-off along the ray"),
        field<&T::widthFrac>("width_frac", "fraction of the long side", "width of a ray"),
        field<&T::strength>("strength", "", "strength of the rays"),
        field<&T::dispersion>("dispersion", "", "colour spread along the ray"),
        field<&T::tint>("tint", "", "colour of the streak"),
    };
    return kRows;
}

} // namespace tamlo
