#include "core/profiles/profile_tables.h"

namespace tamlo {

std::span<const Field<ColorLayers>> FieldTable<ColorLayers>::rows()
{
    using T = ColorLayers;
    static constexpr Field<T> kRows[] = {
        requiredField<&T::r>("r", "", "red-sensitive layer"),
        requiredField<&T::g>("g", "", "green-sensitive layer"),
        requiredField<&T::b>("b", "", "blue-sensitive layer"),
    };
    return kRows;
}

std::span<const Field<Couplers>> FieldTable<Couplers>::rows()
{
    using T = Couplers;
    static constexpr Field<T> kRows[] = {
        field<&T::saturation>("saturation", "", "colour gain of the DIR couplers"),
        field<&T::matrix>("matrix", "", "dye mixing, 3 x 3"),
        field<&T::matrixDs>("matrix_ds", "",
                            "dye mixing by datasheet, taken when the option interlayer is on"),
    };
    return kRows;
}

std::span<const Field<DyeParams>> FieldTable<DyeParams>::rows()
{
    using T = DyeParams;
    static constexpr Field<T> kRows[] = {
        field<&T::crosstalk>("crosstalk", "", "dye crosstalk, 3 x 3"),
    };
    return kRows;
}

std::span<const Field<FilmBalance>> FieldTable<FilmBalance>::rows()
{
    using T = FilmBalance;
    static constexpr Field<T> kRows[] = {
        field<&T::illuminantK>("illuminant_K", "kelvin",
                               "illuminant the film is balanced for; absent means daylight"),
    };
    return kRows;
}

std::span<const Field<HalationParams>> FieldTable<HalationParams>::rows()
{
    using T = HalationParams;
    static constexpr Field<T> kRows[] = {
        field<&T::strength>("strength", "share", "light returned by the base"),
        field<&T::radiusUm>("radius_um", "um", "radius of the glow on the film; above zero"),
        field<&T::threshold>("threshold", "linear scene light", "level above which light scatters"),
        field<&T::tint>("tint", "", "colour of the glow"),
        field<&T::glassMm>("glass_mm", "mm", "thickness of the glass of a plate"),
    };
    return kRows;
}

std::span<const Field<GrainParams>> FieldTable<GrainParams>::rows()
{
    using T = GrainParams;
    static constexpr Field<T> kRows[] = {
        field<&T::sizeUm>("size_um", "um", "mean grain size; not negative"),
        field<&T::amount>("amount", "", "grain strength; not negative"),
        field<&T::amountRms>("amount_rms", "",
                             "strength by the datasheet; replaces amount when the option grain_rms is on"),
        field<&T::layerScale>("layer_scale", "", "relative strength per dye layer"),
        field<&T::layerSizeScale>("layer_size_scale", "", "relative grain size per dye layer"),
    };
    return kRows;
}

std::span<const Field<LookParams>> FieldTable<LookParams>::rows()
{
    using T = LookParams;
    static constexpr Field<T> kRows[] = {
        field<&T::shadowTint>("shadow_tint", "", "tint added to the shadows"),
        field<&T::highlightTint>("highlight_tint", "", "tint added to the highlights"),
        field<&T::saturation>("saturation", "", "gain of saturation"),
        field<&T::greenMute>("green_mute", "", "muting of greens"),
        field<&T::dyeFade>("dye_fade", "", "fading per layer"),
    };
    return kRows;
}

std::span<const Field<FilmMTF>> FieldTable<FilmMTF>::rows()
{
    using T = FilmMTF;
    static constexpr Field<T> kRows[] = {
        field<&T::f50CycMm>("f50_cyc_mm", "cycles per mm",
                            "frequency of half response; absent: no softening"),
    };
    return kRows;
}

std::span<const Field<FilmAdjacency>> FieldTable<FilmAdjacency>::rows()
{
    using T = FilmAdjacency;
    static constexpr Field<T> kRows[] = {
        field<&T::k>("k", "", "strength of the edge effect"),
        field<&T::um>("um", "um", "its reach"),
        field<&T::sat>("sat", "", "its limit"),
    };
    return kRows;
}

std::span<const Field<IRProxy>> FieldTable<IRProxy>::rows()
{
    using T = IRProxy;
    static constexpr Field<T> kRows[] = {
        field<&T::weights>("weights", "", "how R, G, B make up the infrared"),
        field<&T::chlorophyll>("chlorophyll", "", "boost of foliage"),
    };
    return kRows;
}

std::span<const Field<FilmProfile>> FieldTable<FilmProfile>::rows()
{
    using T = FilmProfile;
    static constexpr Field<T> kRows[] = {
        field<&T::name>("name", "", "display name, Russian"),
        field<&T::nameEn>("name_en", "", "English display name"),
        field<&T::notes>("notes", "", "notes shown to the user"),
        field<&T::notesEn>("notes_en", "", "English notes"),
        field<&T::fidelity>("fidelity", "", "how well grounded the profile is; changes no pixel"),
        requiredField<&T::type>("type", "",
                                "color, bw, slide, instant, collodion or tricolor: the render path"),
        field<&T::formatDefault>("format_default", "", "film format a frame starts with; absent means 135"),
        field<&T::formats>("formats", "", "the only formats the material is made in"),
        field<&T::section>("section", "", "section of the picker when the type does not tell it"),
        field<&T::hidden>("hidden", "", "true keeps the profile out of the pickers"),
        field<&T::neutral>("neutral", "", "true marks the Neutral film"),
        field<&T::spectralWeights>("spectral_weights", "", "how a single-layer emulsion sums R, G, B"),
        field<&T::negative>("negative", "", "the one silver curve of bw, collodion, tricolor"),
        field<&T::layers>("layers", "", "the three dye curves of color, slide, instant"),
        field<&T::couplers>("couplers", "", "interlayer and dye mixing"),
        field<&T::dyes>("dyes", "", "dye crosstalk"),
        field<&T::balance>("balance", "", "illuminant of the film"),
        field<&T::halation>("halation", "", "light that the base returns"),
        field<&T::grain>("grain", "", "grain"),
        field<&T::look>("look", "", "final colour trim"),
        field<&T::mtf>("mtf", "", "emulsion sharpness"),
        field<&T::adjacency>("adjacency", "", "edge effect of development"),
        field<&T::softenFrac>("soften_frac", "fraction of the long side", "softness of instant film"),
        field<&T::texture>("texture", "", "surface of instant film"),
        field<&T::frame>("frame", "", "card of instant film"),
        field<&T::tempSensitivity>("temp_sensitivity", "",
                                   "sensitivity of instant development to temperature"),
        field<&T::sensitization>("sensitization", "", "spectral crossover of the layers, 3 x 3"),
        field<&T::sensitizationDs>("sensitization_ds", "",
                                   "the same by datasheet, with the option interlayer"),
        field<&T::irProxy>("ir_proxy", "", "false-colour infrared"),
        field<&T::imageTone>("image_tone", "", "colour of the silver image of a mono instant film"),
        field<&T::toneMottle>("tone_mottle", "", "mottle of a mono instant film"),
        field<&T::dryplate>("dryplate", "", "emulsion edge of a dry plate"),
        field<&T::collodion>("collodion", "", "pour of wet collodion"),
        field<&T::tricolor>("tricolor", "", "three separation plates"),
        field<&T::dminRef>("dmin_ref", "density", "the three dmin before ageing; set by ageing"),
    };
    return kRows;
}

} // namespace tamlo
