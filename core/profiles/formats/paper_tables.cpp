#include "core/profiles/formats/profile_tables.h"

namespace tamlo {

std::span<const Field<PaperPigment>> FieldTable<PaperPigment>::rows()
{
    using T = PaperPigment;
    static constexpr Field<T> kRows[] = {
        field<&T::mode>("mode", "", "stain (colour in the fibre) or ink (a covering layer); absent stain"),
        field<&T::density>("density", "density",
                           "stain: density of the full colorant in R, G, B, not negative; larger is darker, "
                           "and in one channel takes that colour away; absent 1.6"),
        field<&T::rgb>("rgb", "", "ink: colour of the full ink; smaller is blacker; absent 0.02"),
        field<&T::opacity>("opacity", "share", "ink: how far it covers the base; larger is deeper; absent 1"),
    };
    return kRows;
}

std::span<const Field<PaperTexture>> FieldTable<PaperTexture>::rows()
{
    using T = PaperTexture;
    static constexpr Field<T> kRows[] = {
        field<&T::kind>("kind", "", "fibre, ink, reticulation or none; absent none"),
        field<&T::amount>("amount", "", "strength in the middle tones; larger is rougher"),
        field<&T::fineUm>("fine_um", "µm",
                          "fibre: scale of the fine structure; larger is coarser; absent 45"),
        field<&T::wideUm>("wide_um", "µm", "fibre: scale of the clouds; larger is wider; absent 900"),
        field<&T::wideAmp>("wide_amp", "share",
                           "fibre: clouds beside the fine structure; larger is cloudier; absent 0.55"),
        field<&T::fineMm>("fine_mm", "mm",
                          "ink: scale of the fine structure; larger is coarser; absent 0.55"),
        field<&T::fineAmp>("fine_amp", "share",
                           "ink: fine structure beside the brush; larger is grittier; absent 0.85"),
        field<&T::brushMm>("brush_mm", "mm", "ink: scale of the brush; larger is broader marks; absent 22"),
        field<&T::raster>("raster", "",
                          "ink: strength of the rows of the brush; larger shows rows; absent 0.22"),
        field<&T::specks>("specks", "share",
                          "ink: single points of ink in the light parts; larger is more; absent 0.16"),
        field<&T::roller>(
            "roller", "share",
            "ink: roller (1) in place of brush (0); larger is broader and calmer, without rows"),
        field<&T::cellUm>("cell_um", "µm", "reticulation: size of a cell; larger is coarser; absent 125"),
    };
    return kRows;
}

std::span<const Field<PaperTransfer>> FieldTable<PaperTransfer>::rows()
{
    using T = PaperTransfer;
    static constexpr Field<T> kRows[] = {
        field<&T::pickup>("pickup", "share", "ink that the press takes over; smaller flattens the shadows"),
        field<&T::softenMm>("soften_mm", "mm", "softness that pressing costs; larger is softer"),
    };
    return kRows;
}

std::span<const Field<PaperLayer>> FieldTable<PaperLayer>::rows()
{
    using T = PaperLayer;
    static constexpr Field<T> kRows[] = {
        field<&T::from>("from", "", "part of the negative that prints this coat: r, g, b or lum; absent lum"),
        field<&T::name>("name", "", "name of the coat"),
        requiredField<&T::pigment>("pigment", "density",
                                   "density of the full pigment in R, G, B; larger is darker, and in one "
                                   "channel takes that colour away"),
        field<&T::amount>("amount", "", "strength of the coat; larger is denser; absent 1"),
        field<&T::shiftMm>("shift_mm", "mm", "spread of its misregistration; larger is wider fringes"),
        field<&T::ev>("ev", "stops", "its exposure beside the print's; larger is darker"),
        field<&T::dmin>("dmin", "density", "its own, in place of the paper's"),
        field<&T::dmax>("dmax", "density", "its own, in place of the paper's; larger reaches deeper"),
        field<&T::gamma>("gamma", "", "its own, in place of the paper's; larger is more contrast"),
        field<&T::toe>("toe", "", "its own, in place of the paper's; larger eases into white sooner"),
    };
    return kRows;
}

std::span<const Field<PaperCoat>> FieldTable<PaperCoat>::rows()
{
    using T = PaperCoat;
    static constexpr Field<T> kRows[] = {
        field<&T::style>("style", "",
                         "none, clean or brush: how the coating ends round the picture; absent none"),
        field<&T::margin>("margin", "fraction of the long side",
                          "coated margin; larger is wider; absent 0.045"),
        field<&T::rough>("rough", "", "raggedness of brush strokes; larger is wilder; absent 1"),
        field<&T::band>(
            "band", "share",
            "colorant in the margin, where no negative held light back; larger is darker; absent 0.82"),
    };
    return kRows;
}

std::span<const Field<PaperPlate>> FieldTable<PaperPlate>::rows()
{
    using T = PaperPlate;
    static constexpr Field<T> kRows[] = {
        field<&T::enabled>("enabled", "", "true presses the mark of a printing plate into the sheet"),
        field<&T::marginMm>("margin_mm", "mm",
                            "greatest distance of the mark from the picture; larger moves it out where the "
                            "margin allows; absent 18"),
        field<&T::offsetMm>("offset_mm", "mm", "that distance where margin_mm is absent"),
        field<&T::widthMm>("width_mm", "mm", "width of the bevel; larger is softer; absent 0.9"),
        field<&T::depth>("depth", "", "depth of the mark; larger shows more; absent 0.09"),
    };
    return kRows;
}

std::span<const Field<PaperRelief>> FieldTable<PaperRelief>::rows()
{
    using T = PaperRelief;
    static constexpr Field<T> kRows[] = {
        field<&T::amount>("amount", "", "light and shade on raised pigment; larger stands out more"),
        field<&T::sheen>("sheen", "", "gloss of the dense parts; larger lightens the shadows more"),
        field<&T::smoothMm>("smooth_mm", "mm",
                            "smoothing of the surface; larger is rounder shapes; absent 0.15"),
        field<&T::light>("light", "", "where the light comes from, as two numbers, right and down"),
        field<&T::slopeFloor>(
            "slope_floor", "",
            "slope that counts as steep at least; larger keeps a flat picture flatter; absent 0.012"),
    };
    return kRows;
}

std::span<const Field<PaperFamily>> FieldTable<PaperFamily>::rows()
{
    using T = PaperFamily;
    static constexpr Field<T> kRows[] = {
        field<&T::id>("id", "", "id that profiles of one family share: crt, offset, inkjet"),
        field<&T::name>("name", "", "label of the family in Russian"),
        field<&T::nameEn>("name_en", "", "label in English"),
        field<&T::pick>("pick", "", "label of the list within the family in Russian"),
        field<&T::pickEn>("pick_en", "", "that label in English"),
        field<&T::option>("option", "", "entry of this profile in that list in Russian"),
        field<&T::optionEn>("option_en", "", "that entry in English"),
        field<&T::order>("order", "", "place of the entry; larger is later"),
    };
    return kRows;
}

std::span<const Field<PlateViewParams>> FieldTable<PlateViewParams>::rows()
{
    using T = PlateViewParams;
    static constexpr Field<T> kRows[] = {
        field<&T::scatter>(
            "scatter", "",
            "scattering of the silver, above 0; larger gathers the highlights and reads milkier; absent 0.3"),
        field<&T::silver>("silver", "", "colour of the silver; larger is lighter highlights"),
        field<&T::base>("base", "", "colour of the lacquer or iron; larger is lighter blacks"),
        field<&T::positiveEv>("positive_ev", "stops",
                              "exposure of a plate seen as a positive; larger is lighter; absent -1.5"),
    };
    return kRows;
}

std::span<const Field<SurfaceParams>> FieldTable<SurfaceParams>::rows()
{
    using T = SurfaceParams;
    static constexpr Field<T> kRows[] = {
        field<&T::kind>("kind", "", "lustre"),
        field<&T::amount>("amount", "", "strength; larger catches more light"),
        field<&T::cellUm>("cell_um", "µm", "size of a bump; larger is coarser; absent 350"),
        field<&T::light>("light", "",
                         "where the light comes from, as two numbers, right and down; absent -0.72, -0.7"),
    };
    return kRows;
}

static constexpr Field<PaperProfile> kPaperProfileRows[] = {
    field<&PaperProfile::name>("name", "", "display name in Russian; in English too where name_en is absent"),
    field<&PaperProfile::nameEn>("name_en", "", "display name in English"),
    field<&PaperProfile::notes>("notes", "", "notes for the photographer in Russian"),
    field<&PaperProfile::notesEn>("notes_en", "", "notes in English"),
    field<&PaperProfile::fidelity>(
        "fidelity", "",
        "how well grounded the numbers are: measured, datasheet, physical, alike (by "
        "eye), revival or draft; a badge that changes no pixel"),
    field<&PaperProfile::type>("type", "", "bw_paper, color_paper, alt_paper, reversal_paper or plate_view"),
    field<&PaperProfile::kind>(
        "kind", "",
        "silver, scan, repro or plate: what prints or shows the film; absent silver; a paper of "
        "your own that names another is not listed"),
    field<&PaperProfile::process>("process", "",
                                  "alternative process: albumen, bromoil, carbon, collotype, cyanotype, gum, "
                                  "platinum, salt or vandyke; its presence makes the paper one"),
    field<&PaperProfile::repro>("repro", "", "inkjet, offset or crt: which block of the three is read"),
    field<&PaperProfile::filmTypes>("film_types", "", "film types that the paper accepts; absent: any"),
    field<&PaperProfile::fixedGrade>("fixed_grade", "", "true: the option grade has no effect"),
    field<&PaperProfile::fixedExposure>("fixed_exposure", "", "true: the option print_ev has no effect"),
    field<&PaperProfile::exposureEv>(
        "exposure_ev", "stops",
        "reversal paper: light that the printer gives beyond what prints a transmission of 0.18 as 0.18, "
        "since a slide's grey card is denser; larger is lighter; absent 0"),
    field<&PaperProfile::dmin>("dmin", "density", "density of the paper's white; absent 0.05"),
    field<&PaperProfile::dmax>("dmax", "density",
                               "deepest black, above dmin; larger is deeper blacks; absent 2.1"),
    field<&PaperProfile::gamma>(
        "gamma", "density per log exposure",
        "slope at middle grey at grade 2, above 0; larger is more contrast; absent 1.8"),
    field<&PaperProfile::toe>("toe", "",
                              "shape of the curve; larger eases into white sooner and keeps the blacks apart "
                              "longer; absent 1.25"),
    field<&PaperProfile::flare>("flare", "share",
                                "stray light of the enlarger; larger greys the highlights and flattens them"),
    field<&PaperProfile::tone>("tone", "",
                               "tone of the print in R, G, B; larger in a channel tints the picture its way"),
    field<&PaperProfile::baseTint>("base_tint", "",
                                   "colour of the paper's white, of the margin too; larger is lighter"),
    field<&PaperProfile::dyePurity>(
        "dye_purity", "share",
        "reversal paper: how far its dyes spread from their mean; larger is more colourful"),
    field<&PaperProfile::spectralWeights>(
        "spectral_weights", "",
        "how a single layer adds up R, G, B of a colour negative, scaled to a sum "
        "of 1, which must be above 0; more blue is an older paper"),
    field<&PaperProfile::base>("base", "",
                               "stock of an alternative process: white_rag, cream or buff; absent white_rag"),
    field<&PaperProfile::baseRgb>("base_rgb", "", "its colour, where base is no known name"),
    field<&PaperProfile::pigment>("pigment", "", "colorant of an alternative process"),
    field<&PaperProfile::inkFloor>("ink_floor", "share",
                                   "light parts that take no ink; larger is a harder start of the tones"),
    field<&PaperProfile::plug>("plug", "", "filling-in of the shadows with ink; larger closes them sooner"),
    field<&PaperProfile::thicknessMm>(
        "thickness_mm", "mm",
        "thickness of the sheet or plate; larger throws a longer shadow on the table; absent 0.25"),
    field<&PaperProfile::texture>("texture", "", "structure of the surface"),
    field<&PaperProfile::transfer>("transfer", "", "pressing of a bromoil onto another sheet"),
    field<&PaperProfile::layers>("layers", "",
                                 "coats of a print in several layers, in the order of printing"),
    field<&PaperProfile::coat>("coat", "", "coating by hand round the picture"),
    field<&PaperProfile::plate>("plate", "", "mark of a printing plate"),
    field<&PaperProfile::relief>("relief", "", "raised pigment in slanting light"),
    field<&PaperProfile::family>("family", "", "entry that several profiles share in a list"),
    field<&PaperProfile::scan>("scan", "", "scanner, projector or light table"),
    field<&PaperProfile::inkjet>("inkjet", "", "inkjet printer"),
    field<&PaperProfile::offset>("offset", "", "offset press"),
    field<&PaperProfile::crt>("crt", "", "screen of a cathode-ray tube"),
    field<&PaperProfile::plateView>("plate_view", "", "a plate looked at as it is"),
    field<&PaperProfile::sheet>("sheet", "", "false: there is no sheet to mount; absent true"),
    field<&PaperProfile::substrate>("substrate", "",
                                    "opaque: the plate's base is not glass, so light leaves no ring"),
    field<&PaperProfile::surface>("surface", "", "bumps on the surface of any paper"),
};

std::span<const Field<PaperProfile>> FieldTable<PaperProfile>::rows()
{
    return kPaperProfileRows;
}

} // namespace tamlo
