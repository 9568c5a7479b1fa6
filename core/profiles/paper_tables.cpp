#include "core/profiles/profile_tables.h"

namespace tamlo {

std::span<const Field<PaperPigment>> FieldTable<PaperPigment>::rows()
{
    using T = PaperPigment;
    static constexpr Field<T> kRows[] = {
        field<&T::mode>("mode", "", "stain or ink"),
        field<&T::density>("density", "density", "density per channel; not negative"),
        field<&T::rgb>("rgb", "", "colour"),
        field<&T::opacity>("opacity", "", "opacity"),
    };
    return kRows;
}

std::span<const Field<PaperTexture>> FieldTable<PaperTexture>::rows()
{
    using T = PaperTexture;
    static constexpr Field<T> kRows[] = {
        field<&T::kind>("kind", "", "fibre, ink, reticulation or none"),
        field<&T::amount>("amount", "", "strength"),
        field<&T::fineUm>("fine_um", "um", "fine fibre scale"),
        field<&T::wideUm>("wide_um", "um", "wide cloud scale"),
        field<&T::wideAmp>("wide_amp", "share", "wide scale"),
        field<&T::fineMm>("fine_mm", "mm", "scale of the fine structure of an ink"),
        field<&T::fineAmp>("fine_amp", "", "its strength"),
        field<&T::brushMm>("brush_mm", "mm", "brush scale"),
        field<&T::raster>("raster", "", "raster strength"),
        field<&T::specks>("specks", "share", "specks"),
        field<&T::roller>("roller", "", "strength of roller streaks"),
        field<&T::cellUm>("cell_um", "um", "cell of a reticulation"),
    };
    return kRows;
}

std::span<const Field<PaperTransfer>> FieldTable<PaperTransfer>::rows()
{
    using T = PaperTransfer;
    static constexpr Field<T> kRows[] = {
        field<&T::pickup>("pickup", "share", "ink that the press takes"),
        field<&T::softenMm>("soften_mm", "mm", "softness of the transfer"),
    };
    return kRows;
}

std::span<const Field<PaperLayer>> FieldTable<PaperLayer>::rows()
{
    using T = PaperLayer;
    static constexpr Field<T> kRows[] = {
        field<&T::from>("from", "", "source of the layer: r, g, b or lum"),
        field<&T::name>("name", "", "name"),
        requiredField<&T::pigment>("pigment", "density", "density per channel"),
        field<&T::amount>("amount", "", "strength"),
        field<&T::shiftMm>("shift_mm", "mm", "misregistration"),
        field<&T::ev>("ev", "stops", "exposure"),
        field<&T::dmin>("dmin", "density", "of this layer"),
        field<&T::dmax>("dmax", "density", "of this layer"),
        field<&T::gamma>("gamma", "", "of this layer"),
        field<&T::toe>("toe", "", "of this layer"),
    };
    return kRows;
}

std::span<const Field<PaperCoat>> FieldTable<PaperCoat>::rows()
{
    using T = PaperCoat;
    static constexpr Field<T> kRows[] = {
        field<&T::style>("style", "", "none or brush"),
        field<&T::margin>("margin", "fraction", "margin"),
        field<&T::rough>("rough", "", "roughness"),
        field<&T::band>("band", "", "strength of the brush bands"),
    };
    return kRows;
}

std::span<const Field<PaperPlate>> FieldTable<PaperPlate>::rows()
{
    using T = PaperPlate;
    static constexpr Field<T> kRows[] = {
        field<&T::enabled>("enabled", "", "true presses the plate mark"),
        field<&T::marginMm>("margin_mm", "mm", "margin"),
        field<&T::offsetMm>("offset_mm", "mm", "offset"),
        field<&T::widthMm>("width_mm", "mm", "width of the bevel"),
        field<&T::depth>("depth", "", "depth"),
    };
    return kRows;
}

std::span<const Field<PaperRelief>> FieldTable<PaperRelief>::rows()
{
    using T = PaperRelief;
    static constexpr Field<T> kRows[] = {
        field<&T::amount>("amount", "", "strength"),
        field<&T::sheen>("sheen", "", "gloss"),
        field<&T::smoothMm>("smooth_mm", "mm", "smoothing of the relief"),
        field<&T::light>("light", "", "direction of the light, two numbers"),
        field<&T::slopeFloor>("slope_floor", "", "least slope"),
    };
    return kRows;
}

std::span<const Field<PaperFamily>> FieldTable<PaperFamily>::rows()
{
    using T = PaperFamily;
    static constexpr Field<T> kRows[] = {
        field<&T::id>("id", "", "family"),
        field<&T::name>("name", "", "label of the family, Russian"),
        field<&T::nameEn>("name_en", "", "English label"),
        field<&T::pick>("pick", "", "label of the second picker, Russian"),
        field<&T::pickEn>("pick_en", "", "English"),
        field<&T::option>("option", "", "entry of this profile in it, Russian"),
        field<&T::optionEn>("option_en", "", "English"),
        field<&T::order>("order", "", "place of the entry"),
    };
    return kRows;
}

std::span<const Field<PlateViewParams>> FieldTable<PlateViewParams>::rows()
{
    using T = PlateViewParams;
    static constexpr Field<T> kRows[] = {
        field<&T::scatter>("scatter", "", "scatter of the silver; above 0"),
        field<&T::silver>("silver", "", "colour of the silver"),
        field<&T::base>("base", "", "colour of the base"),
        field<&T::positiveEv>("positive_ev", "stops", "exposure of the positive"),
    };
    return kRows;
}

std::span<const Field<SurfaceParams>> FieldTable<SurfaceParams>::rows()
{
    using T = SurfaceParams;
    static constexpr Field<T> kRows[] = {
        field<&T::kind>("kind", "", "lustre"),
        field<&T::amount>("amount", "", "strength"),
        field<&T::cellUm>("cell_um", "um", "cell"),
        field<&T::light>("light", "", "direction of the light, two numbers"),
    };
    return kRows;
}

std::span<const Field<PaperProfile>> FieldTable<PaperProfile>::rows()
{
    using T = PaperProfile;
    static constexpr Field<T> kRows[] = {
        field<&T::name>("name", "", "display name, Russian"),
        field<&T::nameEn>("name_en", "", "English display name"),
        field<&T::notes>("notes", "", "notes shown to the user"),
        field<&T::notesEn>("notes_en", "", "English notes"),
        field<&T::fidelity>("fidelity", "", "how well grounded the profile is; changes no pixel"),
        field<&T::type>("type", "", "bw_paper, color_paper, alt_paper, reversal_paper or plate_view"),
        field<&T::kind>("kind", "", "silver, repro, scan or plate"),
        field<&T::process>("process", "", "the alternative process"),
        field<&T::repro>("repro", "", "inkjet, offset or crt"),
        field<&T::filmTypes>("film_types", "", "film types the paper accepts; absent means any"),
        field<&T::fixedGrade>("fixed_grade", "", "true: the grade cannot be changed"),
        field<&T::fixedExposure>("fixed_exposure", "", "true: the print exposure cannot be changed"),
        field<&T::dmin>("dmin", "density", "paper white"),
        field<&T::dmax>("dmax", "density", "deepest black; above dmin"),
        field<&T::gamma>("gamma", "", "contrast; above 0"),
        field<&T::toe>("toe", "", "softness of the foot"),
        field<&T::flare>("flare", "share of the light", "veiling flare of the enlarger"),
        field<&T::tone>("tone", "", "image tone"),
        field<&T::baseTint>("base_tint", "", "colour of the white"),
        field<&T::dyePurity>("dye_purity", "", "purity of the print dyes"),
        field<&T::spectralWeights>("spectral_weights", "", "how a single layer sums R, G, B of the negative"),
        field<&T::base>("base", "", "named base stock of an alternative process"),
        field<&T::baseRgb>("base_rgb", "", "base colour given directly"),
        field<&T::pigment>("pigment", "", "colorant"),
        field<&T::inkFloor>("ink_floor", "", "least ink"),
        field<&T::plug>("plug", "", "plugging of an ink process"),
        field<&T::thicknessMm>("thickness_mm", "mm", "thickness of the sheet or plate; 0.25 when absent"),
        field<&T::texture>("texture", "", "texture of the paper"),
        field<&T::transfer>("transfer", "", "transfer of a bromoil"),
        field<&T::layers>("layers", "", "layers of a multi-layer process"),
        field<&T::coat>("coat", "", "hand coating at the edge of the sheet"),
        field<&T::plate>("plate", "", "plate mark of a press"),
        field<&T::relief>("relief", "", "raised relief"),
        field<&T::family>("family", "", "group in the picker"),
        field<&T::scan>("scan", "", "scanner"),
        field<&T::inkjet>("inkjet", "", "inkjet printer"),
        field<&T::offset>("offset", "", "offset press"),
        field<&T::crt>("crt", "", "cathode-ray tube"),
        field<&T::plateView>("plate_view", "", "a plate viewed as itself"),
        field<&T::sheet>("sheet", "", "false: there is no sheet to mount"),
        field<&T::substrate>("substrate", "", "opaque: the base of the plate is not glass"),
        field<&T::surface>("surface", "", "added surface structure"),
    };
    return kRows;
}

} // namespace tamlo
