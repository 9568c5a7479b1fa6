#include "core/profiles/formats/profile_tables.h"

namespace tamlo {

std::span<const Field<ChatterColor>> FieldTable<ChatterColor>::rows()
{
    using T = ChatterColor;
    static constexpr Field<T> kRows[] = {
        field<&T::r>("r", "", "gain on red at the two densities; above 1 is redder marks"),
        field<&T::b>("b", "", "gain on blue at the two densities; above 1 is bluer marks"),
        field<&T::dRange>("d_range", "density", "the two densities"),
    };
    return kRows;
}

std::span<const Field<ChatterParams>> FieldTable<ChatterParams>::rows()
{
    using T = ChatterParams;
    static constexpr Field<T> kRows[] = {
        field<&T::amp>("amp", "density",
                       "strength of the marks that the rollers leave across the pull; larger shows more"),
        field<&T::cardVar>("card_var", "share",
                           "spread of that strength from card to card; larger differs more"),
        field<&T::endGain>(
            "end_gain", "share",
            "least and greatest extra strength at the two ends of the pull; larger marks the ends more"),
        field<&T::endMm>("end_mm", "mm", "reach of the ends; larger reaches further in"),
        field<&T::alongMm>("along_mm", "mm", "scale of the fine marks along the pull; larger is wider bars"),
        field<&T::acrossMm>("across_mm", "mm", "their scale across the pull; larger is longer bars"),
        field<&T::isoMm>("iso_mm", "mm", "scale of a round part mixed in; larger is coarser"),
        field<&T::isoShare>("iso_share", "share", "that round part; larger looks less like bars"),
        field<&T::coarseAlongMm>("coarse_along_mm", "mm",
                                 "scale of the coarse marks along the pull; larger is wider bars"),
        field<&T::coarseAcrossMm>("coarse_across_mm", "mm",
                                  "their scale across the pull; larger is longer bars"),
        field<&T::coarseShare>("coarse_share", "share",
                               "coarse marks among all; larger is broader unevenness"),
        field<&T::clusterMm>("cluster_mm", "mm", "scale on which the marks gather; larger is wider groups"),
        field<&T::clusterMod>("cluster_mod", "share",
                              "how unevenly they gather; larger leaves clearer gaps between groups"),
        field<&T::pasteAmp>("paste_amp", "density",
                            "strength of the clouds that the paste leaves; larger shows more"),
        field<&T::pasteMm>("paste_mm", "mm", "their scale; larger is wider clouds"),
        field<&T::ampBySize>("amp_by_size", "density", "amp by sheet size (3x4, 4x5, 8x10), in place of amp"),
        field<&T::pasteMmBySize>("paste_mm_by_size", "mm", "paste_mm by sheet size, in place of paste_mm"),
        field<&T::dGain>("d_gain", "",
                         "densities where the marks begin and are full, and the share below the first; a "
                         "larger last number marks light parts more"),
        field<&T::coarseFloor>("coarse_floor", "share",
                               "that share for the coarse marks; larger marks light parts more"),
        field<&T::color>("color", "", "how the marks share out over the layers"),
    };
    return kRows;
}

std::span<const Field<SilkLatticeParams>> FieldTable<SilkLatticeParams>::rows()
{
    using T = SilkLatticeParams;
    static constexpr Field<T> kRows[] = {
        field<&T::amp>("amp", "density", "strength of the pressed lattice; larger shows more"),
        field<&T::pitchMm>("pitch_mm", "mm",
                           "distance of the pits along a row; larger is coarser; absent 0.36"),
        field<&T::rowMm>("row_mm", "mm", "distance of the rows; larger is coarser; absent 0.72"),
        field<&T::rowLine>("row_line", "",
                           "strength of the grooves between rows; larger draws lines; absent 1"),
        field<&T::dot>("dot", "", "strength of the pits; larger draws points; absent 0.8"),
        field<&T::jitterMm>("jitter_mm", "mm", "how far the lattice wanders; larger is less regular"),
        field<&T::jitterSigmaMm>("jitter_sigma_mm", "mm", "scale of that wander; larger bends slower"),
        field<&T::mod>("mod", "share", "how unevenly deep the lattice is; larger is patchier"),
        field<&T::modSigmaMm>("mod_sigma_mm", "mm", "scale of those patches; larger is wider ones"),
        field<&T::grain>("grain", "share",
                         "fine noise in place of lattice; larger is rougher and less regular"),
        field<&T::grainMm>("grain_mm", "mm", "its scale; larger is coarser"),
        field<&T::dGain>("d_gain", "",
                         "densities where the lattice begins and is full, and the share below the first; a "
                         "larger last number shows it more in light parts"),
    };
    return kRows;
}

std::span<const Field<TextureParams>> FieldTable<TextureParams>::rows()
{
    using T = TextureParams;
    static constexpr Field<T> kRows[] = {
        field<&T::mottleScale>("mottle_scale", "fraction of the width",
                               "scale (sigma) of development clouds; larger is wider clouds"),
        field<&T::mottleAmp>("mottle_amp", "density", "their strength; larger is a cloudier picture"),
        field<&T::fineAmp>("fine_amp", "density",
                           "strength of noise as fine as the pixels; larger is grittier"),
        field<&T::streaksAmp>("streaks_amp", "density",
                              "strength of streaks along the pull; larger shows more"),
        field<&T::silkAmp>("silk_amp", "density", "strength of a plain silk surface; larger shows more"),
        field<&T::silkScaleUm>("silk_scale_um", "µm", "its scale on the card; larger is coarser; absent 90"),
        field<&T::cardUm>("card_um", "µm",
                          "width of the picture on the card, where the frame block gives none; larger makes "
                          "every structure finer in the picture; absent 79000"),
        field<&T::chatter>("chatter", "", "marks of the rollers on pack film"),
        field<&T::silkLattice>("silk_lattice", "", "pressed lattice of a silk surface"),
    };
    return kRows;
}

std::span<const Field<ToneMottleParams>> FieldTable<ToneMottleParams>::rows()
{
    using T = ToneMottleParams;
    static constexpr Field<T> kRows[] = {
        field<&T::amp>("amp", "share", "strength of the warm clouds; larger shows more"),
        field<&T::scale>("scale", "fraction of the width",
                         "their scale; larger is wider clouds; absent 0.09"),
        field<&T::warm>("warm", "",
                        "how the clouds tint R, G, B, below 0 darker; (0.6, 0, -0.9) is a warm silver"),
        field<&T::densityBias>(
            "density_bias", "share",
            "how much more thin silver is toned than dense; larger leaves the blacks alone"),
        field<&T::frameVar>("frame_var", "share",
                            "spread of the strength from frame to frame; larger differs more"),
    };
    return kRows;
}

std::span<const Field<WindowLine>> FieldTable<WindowLine>::rows()
{
    using T = WindowLine;
    static constexpr Field<T> kRows[] = {
        field<&T::mm>("mm", "mm", "width of the line round the opening; larger is wider"),
        field<&T::gain>("gain", "share", "light left in the line; larger is a fainter line, 1 is none"),
    };
    return kRows;
}

std::span<const Field<CornerLeaf>> FieldTable<CornerLeaf>::rows()
{
    using T = CornerLeaf;
    static constexpr Field<T> kRows[] = {
        field<&T::style>("style", "", "round or chamfer (cut straight)"),
        field<&T::mm>("mm", "mm", "size; larger takes more off the corner, 0 is square"),
        field<&T::roundMm>("round_mm", "mm", "rounding of a chamfer; larger is softer; absent 0.3 of mm"),
    };
    return kRows;
}

std::span<const Field<CornerSpec>> FieldTable<CornerSpec>::rows()
{
    using T = CornerSpec;
    static constexpr Field<T> kRows[] = {
        field<&T::style>("style", "", "round or chamfer (cut straight), of all corners"),
        field<&T::mm>("mm", "mm", "size of all corners; larger takes more off, 0 is square"),
        field<&T::roundMm>("round_mm", "mm", "rounding of a chamfer; larger is softer; absent 0.3 of mm"),
        field<&T::tl>("tl", "", "top left corner in place of the common values; null is square"),
        field<&T::tr>("tr", "", "top right corner; null is square"),
        field<&T::bl>("bl", "", "bottom left corner; null is square"),
        field<&T::br>("br", "", "bottom right corner; null is square"),
    };
    return kRows;
}

std::span<const Field<InstantFrameParams>> FieldTable<InstantFrameParams>::rows()
{
    using T = InstantFrameParams;
    static constexpr Field<T> kRows[] = {
        field<&T::style>("style", "", "integral (a card with a mask) or peel (a sheet of pack film)"),
        field<&T::crop>("crop", "", "how the picture is cut to the card: square or aspect"),
        field<&T::sideFrac>("side_frac", "fraction of the long side",
                            "side border of an integral card; larger is a wider card; absent 0.06"),
        field<&T::topRatio>("top_ratio", "side borders",
                            "top border of an integral card; larger is a higher card; absent 1"),
        field<&T::bottomRatio>("bottom_ratio", "side borders",
                               "bottom border of an integral card; larger is a deeper chin; absent 1"),
        field<&T::baseTint>("base_tint", "", "colour of the card; larger is lighter"),
        field<&T::nativeOrientation>("native_orientation", "",
                                     "portrait or landscape: how the card leaves the camera; a picture of "
                                     "the other way gets a turned card"),
        field<&T::imageLongMm>(
            "image_long_mm", "mm",
            "long side of the picture; larger makes every structure of the card finer in the picture"),
        field<&T::imageShortMm>("image_short_mm", "mm",
                                "short side of the picture; absent: as the long side"),
        field<&T::windowLine>("window_line", "", "dark line round the opening of an integral card"),
        field<&T::chips>(
            "chips", "",
            "how often the emulsion of a peeled sheet is chipped at its edge; larger is more chips"),
        field<&T::chipsBySize>("chips_by_size", "",
                               "the same by sheet size (3x4, 4x5, 8x10), in place of chips"),
        field<&T::edgeYellow>("edge_yellow", "",
                              "yellowing of a peeled sheet from its edge; larger is yellower"),
        field<&T::sizes>("sizes", "",
                         "sheet sizes of a pack film, the first being the usual one: 3x4, 4x5, 8x10"),
        field<&T::corner>("corner", "", "corners of an integral card; null is square, absent: round, 0.3 mm"),
        field<&T::embossUm>(
            "emboss_um", "µm",
            "height of the lattice pressed into the card; larger catches more light, 0 is a smooth card"),
        field<&T::stepMm>("step_mm", "mm",
                          "step of that lattice as measured; kept with the profile, changes no pixel"),
        field<&T::thicknessMm>(
            "thickness_mm", "mm",
            "thickness of the card; larger throws a longer shadow on the table; absent 0.45"),
    };
    return kRows;
}

void FieldTable<CornerSpec>::afterRead(CornerSpec& to, const Json& from)
{
    to.hasTL = from.contains("tl");
    to.hasTR = from.contains("tr");
    to.hasBL = from.contains("bl");
    to.hasBR = from.contains("br");
}

void FieldTable<CornerSpec>::afterWrite(const CornerSpec& from, Json& to)
{
    if (from.hasTL && !from.tl) to["tl"] = nullptr;
    if (from.hasTR && !from.tr) to["tr"] = nullptr;
    if (from.hasBL && !from.bl) to["bl"] = nullptr;
    if (from.hasBR && !from.br) to["br"] = nullptr;
}

void FieldTable<InstantFrameParams>::afterRead(InstantFrameParams& to, const Json& from)
{
    to.hasCornerKey = from.contains("corner");
}

void FieldTable<InstantFrameParams>::afterWrite(const InstantFrameParams& from, Json& to)
{
    if (from.hasCornerKey && !from.corner) to["corner"] = nullptr;
}

} // namespace tamlo
