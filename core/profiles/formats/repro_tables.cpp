#include "core/profiles/formats/profile_tables.h"

namespace tamlo {

std::span<const Field<ScanParams>> FieldTable<ScanParams>::rows()
{
    using T = ScanParams;
    static constexpr Field<T> kRows[] = {
        field<&T::mtf>("mtf", "0.0016 of the width", "radius of the optics' softness; larger is softer"),
        field<&T::sharpen>("sharpen", "",
                           "sharpening in the scanner; larger is crisper, with lighter and darker edges"),
        field<&T::sharpenFrac>("sharpen_frac", "fraction of the width",
                               "its radius; larger is coarser; absent 0.0007"),
        field<&T::highlightClip>(
            "highlight_clip", "share",
            "range under white that is squeezed to a quarter; larger loses more of the highlights"),
        field<&T::longPx>("long_px", "px",
                          "most pixels on the long side; smaller is a smaller file; absent: no limit"),
        field<&T::positiveGamma>(
            "positive_gamma", "",
            "power on a positive's light; larger is darker and more contrasty; absent 1"),
        field<&T::positiveDmax>("positive_dmax", "density",
                                "deepest density read on a positive; larger sees further into the shadows"),
        field<&T::flare>("flare", "share", "stray light on a positive; larger greys the shadows"),
    };
    return kRows;
}

std::span<const Field<InkjetParams>> FieldTable<InkjetParams>::rows()
{
    using T = InkjetParams;
    static constexpr Field<T> kRows[] = {
        field<&T::base>("base", "", "paper: office, newsprint, coated, photo or art; absent office"),
        field<&T::inks>("inks", "", "inks: inkjet_office or inkjet_photo; absent inkjet_office"),
        field<&T::gcr>("gcr", "share",
                       "common part of the colours printed as black; larger is more black ink"),
        field<&T::dropUm>("drop_um", "µm", "size of a drop; larger is coarser"),
        field<&T::spreadUm>("spread_um", "µm", "how far a drop runs; larger is coarser"),
        field<&T::gain>("gain", "share", "dot gain in the middle tones; larger is darker"),
        field<&T::gainComp>("gain_comp", "share",
                            "gain that the printer allows for; smaller is darker; absent 0.85"),
        field<&T::swathMm>("swath_mm", "mm", "height of a pass of the head; larger spaces the bands wider"),
        field<&T::passVar>("pass_var", "share", "spread of ink from pass to pass; larger is clearer bands"),
        field<&T::seamAmp>("seam_amp", "share", "strength of the seams between passes; larger shows lines"),
        field<&T::ripple>("ripple", "share", "ripple from nozzle to nozzle; larger shows fine lines"),
        field<&T::nozzleMm>("nozzle_mm", "mm", "period of that ripple; larger is coarser"),
        field<&T::misalignDrops>("misalign_drops", "drops",
                                 "misalignment of the colours; larger is wider fringes"),
        field<&T::mottle>("mottle", "", "cloudiness of the ink; larger is cloudier"),
        field<&T::psfUm>("psf_um", "µm", "spread of light in the paper; larger is softer"),
        field<&T::dither>("dither", "", "true lays single drops, false even ink; absent true"),
    };
    return kRows;
}

std::span<const Field<OffsetParams>> FieldTable<OffsetParams>::rows()
{
    using T = OffsetParams;
    static constexpr Field<T> kRows[] = {
        field<&T::base>("base", "", "paper: office, newsprint, coated, photo or art; absent coated"),
        field<&T::inks>("inks", "",
                        "inks: offset_newsprint, offset_coated or offset_art; absent offset_coated"),
        field<&T::gcr>("gcr", "share",
                       "common part of the colours printed as black; larger is more black ink"),
        field<&T::tac>("tac", "solid inks",
                       "most ink in one place; smaller is shallower shadows; absent: no limit"),
        field<&T::lpi>("lpi", "lines per inch", "screen; larger is finer dots"),
        field<&T::dotGain>("dot_gain", "share", "dot gain in the middle tones; larger is darker"),
        field<&T::gainComp>("gain_comp", "share",
                            "gain that the press allows for; smaller is darker; absent 0.85"),
        field<&T::misregisterMm>("misregister_mm", "mm",
                                 "spread of the colours' misregistration; larger is wider fringes"),
        field<&T::mottle>("mottle", "", "cloudiness of the ink; larger is cloudier"),
        field<&T::psfUm>("psf_um", "µm", "spread of light in the paper; larger is softer"),
    };
    return kRows;
}

std::span<const Field<CRTBezelParams>> FieldTable<CRTBezelParams>::rows()
{
    using T = CRTBezelParams;
    static constexpr Field<T> kRows[] = {
        field<&T::thin>("thin", "",
                        "narrow side of the tube's frame; kept with the profile, no frame is drawn"),
        field<&T::wide>("wide", "", "wide side; kept with the profile"),
        field<&T::face>("face", "", "face of the frame; kept with the profile"),
        field<&T::lip>("lip", "", "lip at the glass; kept with the profile"),
        field<&T::cornerR>("corner_r", "", "corner radius; kept with the profile"),
        field<&T::plastic>("plastic", "", "brightness of the plastic; kept with the profile"),
        field<&T::glass>("glass", "", "reflection of the glass; kept with the profile"),
        field<&T::lipGain>("lip_gain", "", "brightness of the lip; kept with the profile"),
    };
    return kRows;
}

static constexpr Field<CRTParams> kCRTParamsRows[] = {
    field<&CRTParams::mask>("mask", "",
                            "delta (round dots), grille (stripes) or none (one colour); absent delta"),
    field<&CRTParams::pitchMm>("pitch_mm", "mm", "pitch of the mask; larger is coarser dots"),
    field<&CRTParams::dot>("dot", "share of the pitch",
                           "size of the phosphor; larger leaves less black between"),
    field<&CRTParams::depth>("depth", "share", "darkness between the phosphors; larger shows the mask more"),
    field<&CRTParams::lines>("lines", "",
                             "scan lines of the tube; larger is finer and sharper down the picture"),
    field<&CRTParams::spot>("spot", "share of a line",
                            "size of the beam; larger closes the gaps between lines"),
    field<&CRTParams::wires>("wires", "", "damper wires of a grille; larger is more faint shadows across"),
    field<&CRTParams::wireMm>("wire_mm", "mm", "their width; larger is wider shadows; absent 0.12"),
    field<&CRTParams::wireDepth>("wire_depth", "share", "their darkness; larger is darker; absent 0.55"),
    field<&CRTParams::lumaLines>(
        "luma_lines", "lines", "bandwidth of the signal's brightness; larger is sharper across the picture"),
    field<&CRTParams::chromaLines>("chroma_lines", "lines",
                                   "bandwidth of its colour; smaller lets colours run"),
    field<&CRTParams::whiteK>("white_k", "kelvin", "white of the tube; above 7000 is bluer"),
    field<&CRTParams::adapt>("adapt", "share",
                             "how far the camera takes that white for white; larger is more neutral"),
    field<&CRTParams::phosphor>(
        "phosphor", "", "colour of a mono tube: green, amber or white; the option crt_phosphor overrides it"),
    field<&CRTParams::bloom>("bloom", "share", "light that the glass spreads; larger glows more"),
    field<&CRTParams::bloomMm>("bloom_mm", "mm", "its radius; larger is wider"),
    field<&CRTParams::convergeMm>("converge_mm", "mm",
                                  "error of the beams at the edges; larger is wider fringes"),
    field<&CRTParams::vignette>("vignette", "share", "light lost in the corners; larger is darker corners"),
    field<&CRTParams::cornerR>("corner_r", "fraction of the height",
                               "corner radius of the raster; larger is rounder"),
    field<&CRTParams::curve>("curve", "", "sphere or cyl: shape of the face"),
    field<&CRTParams::bulge>("bulge", "", "barrel of the curved face; larger is more curved"),
    field<&CRTParams::overscan>("overscan", "share", "picture cut off at each edge; larger loses more"),
    field<&CRTParams::cameraPsfUm>("camera_psf_um", "µm",
                                   "softness of the camera that photographs the screen; larger is softer"),
    field<&CRTParams::whiteMean>(
        "white_mean", "share",
        "brightness that the camera exposes white for; larger is brighter, and clips more"),
    field<&CRTParams::nominalIn>("nominal_in", "inch",
                                 "diagonal of the tube; larger makes the structure finer in the picture"),
    field<&CRTParams::bezel>("bezel", "", "frame of the tube; kept with the profile"),
};

std::span<const Field<CRTParams>> FieldTable<CRTParams>::rows()
{
    return kCRTParamsRows;
}

} // namespace tamlo
