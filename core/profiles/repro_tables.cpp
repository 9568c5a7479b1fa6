#include "core/profiles/profile_tables.h"

namespace tamlo {

std::span<const Field<ScanParams>> FieldTable<ScanParams>::rows()
{
    using T = ScanParams;
    static constexpr Field<T> kRows[] = {
        field<&T::mtf>("mtf", "", "softness of the optics"),
        field<&T::sharpen>("sharpen", "", "capture sharpening"),
        field<&T::sharpenFrac>("sharpen_frac", "fraction of the width", "its radius"),
        field<&T::highlightClip>("highlight_clip", "", "how far the highlights are clipped"),
        field<&T::longPx>("long_px", "px", "ceiling on the long side; absent means none"),
        field<&T::positiveGamma>("positive_gamma", "", "gamma when scanning a positive"),
        field<&T::positiveDmax>("positive_dmax", "density", "deepest density read on a positive"),
        field<&T::flare>("flare", "share", "its own flare"),
    };
    return kRows;
}

std::span<const Field<InkjetParams>> FieldTable<InkjetParams>::rows()
{
    using T = InkjetParams;
    static constexpr Field<T> kRows[] = {
        field<&T::base>("base", "", "paper"),
        field<&T::inks>("inks", "", "ink set"),
        field<&T::gcr>("gcr", "share", "grey component replacement"),
        field<&T::dropUm>("drop_um", "um", "drop"),
        field<&T::spreadUm>("spread_um", "um", "spread of a drop"),
        field<&T::gain>("gain", "", "dot gain"),
        field<&T::gainComp>("gain_comp", "", "compensation of the gain"),
        field<&T::swathMm>("swath_mm", "mm", "height of a pass"),
        field<&T::passVar>("pass_var", "", "spread of the passes"),
        field<&T::seamAmp>("seam_amp", "", "strength of the seams"),
        field<&T::ripple>("ripple", "", "ripple of the feed"),
        field<&T::nozzleMm>("nozzle_mm", "mm", "pitch of nozzle defects"),
        field<&T::misalignDrops>("misalign_drops", "drops", "misalignment of the heads"),
        field<&T::mottle>("mottle", "", "mottle of the ink"),
        field<&T::psfUm>("psf_um", "um", "spread of light in the paper"),
        field<&T::dither>("dither", "", "true: blue-noise dither"),
    };
    return kRows;
}

std::span<const Field<OffsetParams>> FieldTable<OffsetParams>::rows()
{
    using T = OffsetParams;
    static constexpr Field<T> kRows[] = {
        field<&T::base>("base", "", "paper"),
        field<&T::inks>("inks", "", "ink set"),
        field<&T::gcr>("gcr", "share", "grey component replacement"),
        field<&T::tac>("tac", "", "total ink"),
        field<&T::lpi>("lpi", "lines per inch", "screen"),
        field<&T::dotGain>("dot_gain", "", "dot gain"),
        field<&T::gainComp>("gain_comp", "", "compensation of the gain"),
        field<&T::misregisterMm>("misregister_mm", "mm", "misregistration"),
        field<&T::mottle>("mottle", "", "mottle of the ink"),
        field<&T::psfUm>("psf_um", "um", "spread of light in the paper"),
    };
    return kRows;
}

std::span<const Field<CRTBezelParams>> FieldTable<CRTBezelParams>::rows()
{
    using T = CRTBezelParams;
    static constexpr Field<T> kRows[] = {
        field<&T::thin>("thin", "", "width of the thin frame"),
        field<&T::wide>("wide", "", "width of the wide frame"),
        field<&T::face>("face", "", "face of the frame"),
        field<&T::lip>("lip", "", "lip at the glass"),
        field<&T::cornerR>("corner_r", "", "corner radius"),
        field<&T::plastic>("plastic", "", "brightness of the plastic"),
        field<&T::glass>("glass", "", "reflection of the glass"),
        field<&T::lipGain>("lip_gain", "", "brightness of the lip"),
    };
    return kRows;
}

std::span<const Field<CRTParams>> FieldTable<CRTParams>::rows()
{
    using T = CRTParams;
    static constexpr Field<T> kRows[] = {
        field<&T::mask>("mask", "", "delta, grille or none"),
        field<&T::pitchMm>("pitch_mm", "mm", "mask pitch"),
        field<&T::dot>("dot", "share of the pitch", "phosphor"),
        field<&T::depth>("depth", "", "depth of the mask"),
        field<&T::lines>("lines", "", "scan lines"),
        field<&T::spot>("spot", "", "size of the scanning spot"),
        field<&T::wires>("wires", "", "damper wires of a grille tube"),
        field<&T::wireMm>("wire_mm", "mm", "their width"),
        field<&T::wireDepth>("wire_depth", "", "their depth"),
        field<&T::lumaLines>("luma_lines", "lines", "bandwidth of brightness"),
        field<&T::chromaLines>("chroma_lines", "lines", "bandwidth of colour"),
        field<&T::whiteK>("white_k", "kelvin", "white of the tube"),
        field<&T::adapt>("adapt", "share", "how far the camera adapts to it"),
        field<&T::phosphor>("phosphor", "", "colour of a mono tube"),
        field<&T::bloom>("bloom", "", "glow of the glass"),
        field<&T::bloomMm>("bloom_mm", "mm", "its radius"),
        field<&T::convergeMm>("converge_mm", "mm", "convergence error at the corners"),
        field<&T::vignette>("vignette", "", "fall-off of the tube"),
        field<&T::cornerR>("corner_r", "", "corner radius"),
        field<&T::curve>("curve", "", "sphere or cyl"),
        field<&T::bulge>("bulge", "", "barrel of the curved face"),
        field<&T::overscan>("overscan", "share", "cut off at the edges"),
        field<&T::cameraPsfUm>("camera_psf_um", "um", "sharpness of the camera"),
        field<&T::whiteMean>("white_mean", "", "target mean of white"),
        field<&T::nominalIn>("nominal_in", "inch", "nominal diagonal"),
        field<&T::bezel>("bezel", "", "frame of the tube"),
    };
    return kRows;
}

} // namespace tamlo
