#include "core/profiles/profile_tables.h"

namespace tamlo {

std::span<const Field<ChatterColor>> FieldTable<ChatterColor>::rows()
{
    using T = ChatterColor;
    static constexpr Field<T> kRows[] = {
        field<&T::r>("r", "", "gain on red at low and high density"),
        field<&T::b>("b", "", "gain on blue at low and high density"),
        field<&T::dRange>("d_range", "density", "the two densities"),
    };
    return kRows;
}

std::span<const Field<ChatterParams>> FieldTable<ChatterParams>::rows()
{
    using T = ChatterParams;
    static constexpr Field<T> kRows[] = {
        field<&T::amp>("amp", "density", "amplitude"),
        field<&T::cardVar>("card_var", "", "spread from card to card"),
        field<&T::endGain>("end_gain", "", "range of the extra strength at the ends of the pull"),
        field<&T::endMm>("end_mm", "mm", "reach of the ends"),
        field<&T::alongMm>("along_mm", "mm", "scale along the pull"),
        field<&T::acrossMm>("across_mm", "mm", "scale across the pull"),
        field<&T::isoMm>("iso_mm", "mm", "scale of the isotropic part"),
        field<&T::isoShare>("iso_share", "share", "isotropic part"),
        field<&T::coarseAlongMm>("coarse_along_mm", "mm", "coarse scale along the pull"),
        field<&T::coarseAcrossMm>("coarse_across_mm", "mm", "coarse scale across the pull"),
        field<&T::coarseShare>("coarse_share", "share", "coarse part"),
        field<&T::clusterMm>("cluster_mm", "mm", "scale of the clusters"),
        field<&T::clusterMod>("cluster_mod", "", "depth of the clusters"),
        field<&T::pasteAmp>("paste_amp", "density", "amplitude of the paste"),
        field<&T::pasteMm>("paste_mm", "mm", "scale of the paste"),
        field<&T::ampBySize>("amp_by_size", "density", "amplitude by sheet size"),
        field<&T::pasteMmBySize>("paste_mm_by_size", "mm", "scale of the paste by sheet size"),
        field<&T::dGain>("d_gain", "", "gain by density"),
        field<&T::coarseFloor>("coarse_floor", "", "least share of the coarse part"),
        field<&T::color>("color", "", "how it shares out over the layers"),
    };
    return kRows;
}

std::span<const Field<SilkLatticeParams>> FieldTable<SilkLatticeParams>::rows()
{
    using T = SilkLatticeParams;
    static constexpr Field<T> kRows[] = {
        field<&T::amp>("amp", "", "amplitude"),
        field<&T::pitchMm>("pitch_mm", "mm", "pitch of the lattice"),
        field<&T::rowMm>("row_mm", "mm", "distance of the rows"),
        field<&T::rowLine>("row_line", "", "strength of the row lines"),
        field<&T::dot>("dot", "", "size of a dot"),
        field<&T::jitterMm>("jitter_mm", "mm", "jitter of the dots"),
        field<&T::jitterSigmaMm>("jitter_sigma_mm", "mm", "scale of the jitter"),
        field<&T::mod>("mod", "", "modulation"),
        field<&T::modSigmaMm>("mod_sigma_mm", "mm", "scale of the modulation"),
        field<&T::grain>("grain", "", "fine grain of the surface"),
        field<&T::grainMm>("grain_mm", "mm", "its scale"),
        field<&T::dGain>("d_gain", "", "gain by density"),
    };
    return kRows;
}

std::span<const Field<TextureParams>> FieldTable<TextureParams>::rows()
{
    using T = TextureParams;
    static constexpr Field<T> kRows[] = {
        field<&T::mottleScale>("mottle_scale", "fraction of the frame", "scale of development mottle"),
        field<&T::mottleAmp>("mottle_amp", "density", "its amplitude"),
        field<&T::fineAmp>("fine_amp", "density", "amplitude of fine noise"),
        field<&T::streaksAmp>("streaks_amp", "density", "amplitude of roller streaks"),
        field<&T::silkAmp>("silk_amp", "density", "amplitude of the plain silk texture"),
        field<&T::silkScaleUm>("silk_scale_um", "um", "its scale"),
        field<&T::cardUm>("card_um", "um", "long side of the picture when the frame block does not give it"),
        field<&T::chatter>("chatter", "", "roller chatter of pack film"),
        field<&T::silkLattice>("silk_lattice", "", "embossed lattice of the Silk surface"),
    };
    return kRows;
}

std::span<const Field<ToneMottleParams>> FieldTable<ToneMottleParams>::rows()
{
    using T = ToneMottleParams;
    static constexpr Field<T> kRows[] = {
        field<&T::amp>("amp", "", "amplitude"),
        field<&T::scale>("scale", "", "scale"),
        field<&T::warm>("warm", "", "colour of the warm patches"),
        field<&T::densityBias>("density_bias", "", "bias towards dense places"),
        field<&T::frameVar>("frame_var", "", "spread from frame to frame"),
    };
    return kRows;
}

std::span<const Field<WindowLine>> FieldTable<WindowLine>::rows()
{
    using T = WindowLine;
    static constexpr Field<T> kRows[] = {
        field<&T::mm>("mm", "mm", "width"),
        field<&T::gain>("gain", "", "strength"),
    };
    return kRows;
}

std::span<const Field<CornerLeaf>> FieldTable<CornerLeaf>::rows()
{
    using T = CornerLeaf;
    static constexpr Field<T> kRows[] = {
        field<&T::style>("style", "", "round or chamfer"),
        field<&T::mm>("mm", "mm", "size"),
        field<&T::roundMm>("round_mm", "mm", "rounding of a chamfer"),
    };
    return kRows;
}

std::span<const Field<CornerSpec>> FieldTable<CornerSpec>::rows()
{
    using T = CornerSpec;
    static constexpr Field<T> kRows[] = {
        field<&T::style>("style", "", "round or chamfer"),
        field<&T::mm>("mm", "mm", "size of all corners"),
        field<&T::roundMm>("round_mm", "mm", "rounding of a chamfer"),
        field<&T::tl>("tl", "", "top left corner; null is square"),
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
        field<&T::style>("style", "", "integral or peel"),
        field<&T::crop>("crop", "", "how the picture is cut to the card: square or aspect"),
        field<&T::sideFrac>("side_frac", "fraction of the width", "side border"),
        field<&T::topRatio>("top_ratio", "side borders", "top border"),
        field<&T::bottomRatio>("bottom_ratio", "side borders", "bottom border"),
        field<&T::baseTint>("base_tint", "", "colour of the card"),
        field<&T::nativeOrientation>("native_orientation", "", "portrait or landscape"),
        field<&T::imageLongMm>("image_long_mm", "mm", "long side of the picture"),
        field<&T::imageShortMm>("image_short_mm", "mm", "short side of the picture"),
        field<&T::windowLine>("window_line", "", "thin line at the edge of the picture"),
        field<&T::chips>("chips", "", "strength of the chipped edge"),
        field<&T::chipsBySize>("chips_by_size", "", "the same by sheet size"),
        field<&T::edgeYellow>("edge_yellow", "", "yellowing of the edge"),
        field<&T::sizes>("sizes", "", "sheet sizes of a peel-apart film"),
        field<&T::corner>("corner", "", "shape of the corners"),
        field<&T::embossUm>("emboss_um", "um", "height of the embossed lattice"),
        field<&T::stepMm>("step_mm", "mm", "step of the lattice"),
        field<&T::thicknessMm>("thickness_mm", "mm", "thickness of the card"),
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
