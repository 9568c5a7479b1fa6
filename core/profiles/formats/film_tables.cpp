#include "core/profiles/formats/profile_tables.h"

namespace tamlo {

std::span<const Field<ColorLayers>> FieldTable<ColorLayers>::rows()
{
    using T = ColorLayers;
    static constexpr Field<T> kRows[] = {
        requiredField<&T::r>("r", "", "curve of the red-sensitive layer, which forms cyan dye"),
        requiredField<&T::g>("g", "", "curve of the green-sensitive layer, which forms magenta dye"),
        requiredField<&T::b>("b", "", "curve of the blue-sensitive layer, which forms yellow dye"),
    };
    return kRows;
}

std::span<const Field<Couplers>> FieldTable<Couplers>::rows()
{
    using T = Couplers;
    static constexpr Field<T> kRows[] = {
        field<&T::saturation>(
            "saturation", "share",
            "how far the couplers spread the three layers from their mean; larger is more colourful; below 0 "
            "mutes slides and instant film and does nothing on a negative"),
        field<&T::matrix>(
            "matrix", "",
            "the same as a 3 x 3 matrix on each layer's distance from their mean (rows r, g, b), always in "
            "force on a colour negative, in place of saturation; a larger diagonal is purer colour"),
        field<&T::matrixDs>("matrix_ds", "",
                            "a second such matrix, for what a data sheet tells, in force with the option "
                            "interlayer where there is no matrix"),
    };
    return kRows;
}

std::span<const Field<DyeParams>> FieldTable<DyeParams>::rows()
{
    using T = DyeParams;
    static constexpr Field<T> kRows[] = {
        field<&T::crosstalk>("crosstalk", "",
                             "unwanted absorptions of instant dyes, 3 x 3: how much of each dye shows in the "
                             "other channels; larger off the diagonal is muddier colour"),
    };
    return kRows;
}

std::span<const Field<FilmBalance>> FieldTable<FilmBalance>::rows()
{
    using T = FilmBalance;
    static constexpr Field<T> kRows[] = {
        field<&T::illuminantK>("illuminant_K", "kelvin",
                               "light that the film is balanced for; smaller renders daylight bluer; 3200 on "
                               "tungsten films, absent means daylight"),
    };
    return kRows;
}

std::span<const Field<HalationParams>> FieldTable<HalationParams>::rows()
{
    using T = HalationParams;
    static constexpr Field<T> kRows[] = {
        field<&T::strength>(
            "strength", "share",
            "light above the threshold that the film base returns; larger is a stronger glow round lights"),
        field<&T::radiusUm>("radius_um", "µm",
                            "radius (sigma) of the glow on the film, above 0; larger spreads the same light "
                            "wider; absent 200"),
        field<&T::threshold>("threshold", "linear scene light",
                             "level above which light glows, where middle grey is 0.18; larger leaves the "
                             "glow to the brightest lights; absent 0.8"),
        field<&T::tint>("tint", "",
                        "colour of the glow; 1, 0.3, 0.08 (also when absent) is red-orange and 1, 1, 1 is "
                        "white; no effect on a single layer"),
        field<&T::glassMm>("glass_mm", "mm",
                           "thickness of a plate's glass, whose back returns a sharp ring; larger is a wider "
                           "ring, 1.75 times this in radius; absent: no ring"),
    };
    return kRows;
}

std::span<const Field<GrainParams>> FieldTable<GrainParams>::rows()
{
    using T = GrainParams;
    static constexpr Field<T> kRows[] = {
        field<&T::sizeUm>("size_um", "µm", "size of the grain on the film, not negative; larger is coarser"),
        field<&T::amount>("amount", "density",
                          "strength of the grain at a density of 1 above dmin, judged by eye, not negative; "
                          "larger is noisier"),
        field<&T::amountRms>("amount_rms", "density",
                             "strength that measures the published granularity, in place of amount with the "
                             "option grain_rms; larger is noisier"),
        field<&T::layerScale>("layer_scale", "",
                              "strength in the layers r, g, b as multiples of amount; larger puts more noise "
                              "of that layer's colour into the picture"),
        field<&T::layerSizeScale>(
            "layer_size_scale", "",
            "size in the layers r, g, b as multiples of size_um; larger is coarser in that layer"),
    };
    return kRows;
}

std::span<const Field<LookParams>> FieldTable<LookParams>::rows()
{
    using T = LookParams;
    static constexpr Field<T> kRows[] = {
        field<&T::shadowTint>("shadow_tint", "share",
                              "light added to R, G, B in the shadows, less and less towards white; larger in "
                              "a channel gives shadows of its colour"),
        field<&T::highlightTint>("highlight_tint", "share",
                                 "light added to R, G, B in the highlights, less and less towards black; "
                                 "larger in a channel gives highlights of its colour"),
        field<&T::saturation>("saturation", "share",
                              "change of the picture's saturation; larger is more colourful, -1 is grey"),
        field<&T::greenMute>("green_mute", "share",
                             "part of what green has over red and blue that is taken away and in part given "
                             "to red; larger turns foliage browner and duller"),
        field<&T::dyeFade>("dye_fade", "share",
                           "dye lost with age in R, G, B, held to 0.95; larger lightens and flattens that "
                           "channel: a large first number leaves a red picture; absent on fresh film"),
    };
    return kRows;
}

std::span<const Field<FilmMTF>> FieldTable<FilmMTF>::rows()
{
    using T = FilmMTF;
    static constexpr Field<T> kRows[] = {
        field<&T::f50CycMm>(
            "f50_cyc_mm", "cycles per mm",
            "fineness at which the film's contrast falls to half; larger is sharper; absent: no softness"),
    };
    return kRows;
}

std::span<const Field<FilmAdjacency>> FieldTable<FilmAdjacency>::rows()
{
    using T = FilmAdjacency;
    static constexpr Field<T> kRows[] = {
        field<&T::k>("k", "",
                     "strength of the edge effect of development; larger draws clearer lines along edges, "
                     "which look sharper"),
        field<&T::um>("um", "µm", "its reach on the film; larger gives wider lines; absent 150"),
        field<&T::sat>("sat", "density",
                       "its ceiling, which it nears at hard edges as k times this; larger lets hard edges "
                       "ring, 5 and more is no ceiling; absent 0.6"),
    };
    return kRows;
}

std::span<const Field<IRProxy>> FieldTable<IRProxy>::rows()
{
    using T = IRProxy;
    static constexpr Field<T> kRows[] = {
        field<&T::weights>(
            "weights", "",
            "shares of R, G, B that make up the estimate of infrared, scaled to a sum of 1; a larger share "
            "makes things of that colour bright in infrared; absent 0.55, 0.45, 0"),
        field<&T::chlorophyll>(
            "chlorophyll", "",
            "gain of foliage in that estimate; larger makes leaves redder and brighter; absent 1.6"),
    };
    return kRows;
}

static constexpr Field<FilmProfile> kFilmProfileRows[] = {
    field<&FilmProfile::name>("name", "", "display name in Russian; in English too where name_en is absent"),
    field<&FilmProfile::nameEn>("name_en", "", "display name in English"),
    field<&FilmProfile::notes>("notes", "", "notes for the photographer in Russian"),
    field<&FilmProfile::notesEn>("notes_en", "", "notes in English"),
    field<&FilmProfile::fidelity>(
        "fidelity", "",
        "how well grounded the numbers are: measured, datasheet, physical, alike (by "
        "eye), revival or draft; a badge that changes no pixel"),
    requiredField<&FilmProfile::type>(
        "type", "",
        "color, bw, slide, instant, collodion or tricolor: the path that the picture "
        "takes, and with it which blocks below are read"),
    field<&FilmProfile::formatDefault>(
        "format_default", "",
        "format that a frame starts with: 135, 120, sheet or plate, also the older "
        "half and 4x5; a smaller one enlarges grain, softness and glow; absent 135"),
    field<&FilmProfile::formats>("formats", "",
                                 "the only formats that the material is made in, such as plate; absent: any"),
    field<&FilmProfile::section>("section", "",
                                 "plates lists a dry plate of type bw beside collodion; absent: by the type"),
    field<&FilmProfile::hidden>("hidden", "", "true keeps the film out of lists; its name still works"),
    field<&FilmProfile::neutral>("neutral", "", "true marks the Neutral film, which is listed first"),
    field<&FilmProfile::spectralWeights>(
        "spectral_weights", "",
        "how a single layer adds up R, G, B, scaled to a sum of 1, which must be "
        "above 0; a larger share lightens things of that colour, no red is an "
        "orthochromatic film; makes instant film black and white"),
    field<&FilmProfile::negative>("negative", "",
                                  "the one silver curve; bw, collodion and tricolor must have it"),
    field<&FilmProfile::layers>("layers", "",
                                "the three dye curves; color, slide and instant must have them"),
    field<&FilmProfile::couplers>("couplers", "", "how the layers act on each other's colour"),
    field<&FilmProfile::dyes>("dyes", "", "purity of the dyes"),
    field<&FilmProfile::balance>("balance", "", "light that the film is balanced for"),
    field<&FilmProfile::halation>("halation", "", "light that the film base returns; absent: none"),
    field<&FilmProfile::grain>("grain", "", "grain; absent: size_um 5 and amount 0.08"),
    field<&FilmProfile::look>("look", "", "trim of the finished colours"),
    field<&FilmProfile::mtf>("mtf", "", "sharpness of the emulsion"),
    field<&FilmProfile::adjacency>("adjacency", "", "edge effect of development"),
    field<&FilmProfile::softenFrac>(
        "soften_frac", "fraction of the long side",
        "softness of instant film, from the spread of its dyes; larger is softer"),
    field<&FilmProfile::texture>("texture", "", "surface that development leaves on instant film"),
    field<&FilmProfile::frame>("frame", "", "card round an instant picture"),
    field<&FilmProfile::tempSensitivity>(
        "temp_sensitivity", "",
        "how strongly instant development answers to the option dev_temp_c away "
        "from 21 degrees; larger is flatter and bluer in the cold; absent 1"),
    field<&FilmProfile::sensitization>(
        "sensitization", "",
        "which light each layer sees, 3 x 3 (rows the layers r, g, b, columns R, G, B, each row scaled "
        "to a sum of 1), always in force; larger off the diagonal moves and mutes hues"),
    field<&FilmProfile::sensitizationDs>(
        "sensitization_ds", "",
        "a second such matrix, in force with the option interlayer; a smaller diagonal is more muted"),
    field<&FilmProfile::irProxy>("ir_proxy", "",
                                 "false-colour infrared: the layers see infrared, red and green"),
    field<&FilmProfile::imageTone>(
        "image_tone", "",
        "colour of the silver of a black-and-white instant film; larger in a channel "
        "tints the picture its way"),
    field<&FilmProfile::toneMottle>("tone_mottle", "",
                                    "warm clouds in the silver of a black-and-white instant film"),
    field<&FilmProfile::dryplate>("dryplate", "", "rim and frilled edge of a coated dry plate"),
    field<&FilmProfile::collodion>("collodion", "", "traces of pouring collodion by hand"),
    field<&FilmProfile::tricolor>("tricolor", "", "three separation plates and their projection"),
    field<&FilmProfile::dminRef>(
        "dmin_ref", "density",
        "dmin of the layers r, g, b before ageing; the program sets it, a profile leaves it out"),
};

std::span<const Field<FilmProfile>> FieldTable<FilmProfile>::rows()
{
    return kFilmProfileRows;
}

} // namespace tamlo
