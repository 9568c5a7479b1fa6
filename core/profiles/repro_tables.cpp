#include "core/profiles/profile_tables.h"

namespace tamlo {

std::span<const Field<ScanParams>> FieldTable<ScanParams>::rows()
{
    using T = ScanParams;
    static constexpr Field<T> kRows[] = {
        field<&T::mtf>("mtf", "0.0016 of the width",
                       "radius of the optics' softness; larger is softer; 0 to 1.1 in use"),
        field<&T::sharpen>(
            "sharpen", "",
            "sharpening in the scanner; larger is crisper, with lighter and darker edges; 0 to 0.55 in use"),
        field<&T::sharpenFrac>("sharpen_frac", "fraction of the width",
                               "its radius; larger is coarser; 0.0007 to 0.0009 in use, absent 0.0007"),
        field<&T::highlightClip>("highlight_clip", "share",
                                 "range under white that is squeezed to a quarter; larger loses more of the "
                                 "highlights; 0 to 0.045 in use"),
        field<&T::longPx>(
            "long_px", "px",
            "most pixels on the long side; smaller is a smaller file; 3089 in use, absent: no limit"),
        field<&T::positiveGamma>("positive_gamma", "",
                                 "power on a positive's light; larger is darker and more contrasty; 0.78 to "
                                 "0.86 in use, absent 1"),
        field<&T::positiveDmax>(
            "positive_dmax", "density",
            "deepest density read on a positive; larger sees further into the shadows; 3.2 to 3.9 in use"),
        field<&T::flare>("flare", "share",
                         "stray light on a positive; larger greys the shadows; 0.0015 to 0.006 in use"),
    };
    return kRows;
}

std::span<const Field<InkjetParams>> FieldTable<InkjetParams>::rows()
{
    using T = InkjetParams;
    static constexpr Field<T> kRows[] = {
        field<&T::base>("base", "", "paper: office, newsprint, coated, photo or art; absent office"),
        field<&T::inks>("inks", "", "inks: inkjet_office or inkjet_photo; absent inkjet_office"),
        field<&T::gcr>(
            "gcr", "share",
            "common part of the colours printed as black; larger is more black ink; 0.5 to 0.7 in use"),
        field<&T::dropUm>("drop_um", "µm", "size of a drop; larger is coarser; 18 to 45 in use"),
        field<&T::spreadUm>("spread_um", "µm", "how far a drop runs; larger is coarser; 5 to 30 in use"),
        field<&T::gain>("gain", "share",
                        "dot gain in the middle tones; larger is darker; 0.1 to 0.25 in use"),
        field<&T::gainComp>("gain_comp", "share",
                            "gain that the printer allows for; smaller is darker; absent 0.85"),
        field<&T::swathMm>("swath_mm", "mm",
                           "height of a pass of the head; larger spaces the bands wider; 6 in use"),
        field<&T::passVar>("pass_var", "share",
                           "spread of ink from pass to pass; larger is clearer bands; 0.01 to 0.02 in use"),
        field<&T::seamAmp>("seam_amp", "share",
                           "strength of the seams between passes; larger shows lines; 0.05 to 0.1 in use"),
        field<&T::ripple>("ripple", "share",
                          "ripple from nozzle to nozzle; larger shows fine lines; 0.004 to 0.008 in use"),
        field<&T::nozzleMm>("nozzle_mm", "mm", "period of that ripple; larger is coarser; 0.35 in use"),
        field<&T::misalignDrops>("misalign_drops", "drops",
                                 "misalignment of the colours; larger is wider fringes; 1 in use"),
        field<&T::mottle>("mottle", "", "cloudiness of the ink; larger is cloudier; 0.008 to 0.03 in use"),
        field<&T::psfUm>("psf_um", "µm", "spread of light in the paper; larger is softer; 15 to 60 in use"),
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
        field<&T::gcr>(
            "gcr", "share",
            "common part of the colours printed as black; larger is more black ink; 0.6 to 1 in use"),
        field<&T::tac>(
            "tac", "solid inks",
            "most ink in one place; smaller is shallower shadows; 2.4 to 3.4 in use, absent: no limit"),
        field<&T::lpi>("lpi", "lines per inch", "screen; larger is finer dots; 85 to 200 in use"),
        field<&T::dotGain>("dot_gain", "share",
                           "dot gain in the middle tones; larger is darker; 0.13 to 0.26 in use"),
        field<&T::gainComp>("gain_comp", "share",
                            "gain that the press allows for; smaller is darker; absent 0.85"),
        field<&T::misregisterMm>(
            "misregister_mm", "mm",
            "spread of the colours' misregistration; larger is wider fringes; 0.03 to 0.15 in use"),
        field<&T::mottle>("mottle", "", "cloudiness of the ink; larger is cloudier; 0.012 to 0.05 in use"),
        field<&T::psfUm>("psf_um", "µm", "spread of light in the paper; larger is softer; 20 to 90 in use"),
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

std::span<const Field<CRTParams>> FieldTable<CRTParams>::rows()
{
    using T = CRTParams;
    static constexpr Field<T> kRows[] = {
        field<&T::mask>("mask", "",
                        "delta (round dots), grille (stripes) or none (one colour); absent delta"),
        field<&T::pitchMm>("pitch_mm", "mm",
                           "pitch of the mask; larger is coarser dots; 0.26 to 0.72 in use"),
        field<&T::dot>("dot", "share of the pitch",
                       "size of the phosphor; larger leaves less black between; 0.74 to 1 in use"),
        field<&T::depth>("depth", "share",
                         "darkness between the phosphors; larger shows the mask more; 0 to 0.65 in use"),
        field<&T::lines>(
            "lines", "",
            "scan lines of the tube; larger is finer and sharper down the picture; 350 to 1024 in use"),
        field<&T::spot>("spot", "share of a line",
                        "size of the beam; larger closes the gaps between lines; 0.42 to 0.5 in use"),
        field<&T::wires>("wires", "",
                         "damper wires of a grille; larger is more faint shadows across; 2 in use"),
        field<&T::wireMm>("wire_mm", "mm", "their width; larger is wider shadows; 0.05 in use, absent 0.12"),
        field<&T::wireDepth>("wire_depth", "share",
                             "their darkness; larger is darker; 0.3 in use, absent 0.55"),
        field<&T::lumaLines>(
            "luma_lines", "lines",
            "bandwidth of the signal's brightness; larger is sharper across the picture; 350 to 1024 in use"),
        field<&T::chromaLines>("chroma_lines", "lines",
                               "bandwidth of its colour; smaller lets colours run; 80 to 1024 in use"),
        field<&T::whiteK>("white_k", "kelvin", "white of the tube; above 7000 is bluer; 6500 to 9300 in use"),
        field<&T::adapt>(
            "adapt", "share",
            "how far the camera takes that white for white; larger is more neutral; 0.65 to 1 in use"),
        field<&T::phosphor>(
            "phosphor", "",
            "colour of a mono tube: green, amber or white; the option crt_phosphor overrides it"),
        field<&T::bloom>("bloom", "share",
                         "light that the glass spreads; larger glows more; 0.1 to 0.22 in use"),
        field<&T::bloomMm>("bloom_mm", "mm", "its radius; larger is wider; 1 to 1.8 in use"),
        field<&T::convergeMm>("converge_mm", "mm",
                              "error of the beams at the edges; larger is wider fringes; 0 to 0.35 in use"),
        field<&T::vignette>("vignette", "share",
                            "light lost in the corners; larger is darker corners; 0.1 to 0.18 in use"),
        field<&T::cornerR>("corner_r", "fraction of the height",
                           "corner radius of the raster; larger is rounder; 0 in use"),
        field<&T::curve>("curve", "", "sphere or cyl: shape of the face"),
        field<&T::bulge>("bulge", "",
                         "barrel of the curved face; larger is more curved; 0.006 to 0.012 in use"),
        field<&T::overscan>("overscan", "share",
                            "picture cut off at each edge; larger loses more; 0 to 0.03 in use"),
        field<&T::cameraPsfUm>(
            "camera_psf_um", "µm",
            "softness of the camera that photographs the screen; larger is softer; 60 to 110 in use"),
        field<&T::whiteMean>("white_mean", "share",
                             "brightness that the camera exposes white for; larger is brighter, and clips "
                             "more; 0.9 to 0.95 in use"),
        field<&T::nominalIn>(
            "nominal_in", "inch",
            "diagonal of the tube; larger makes the structure finer in the picture; 12 to 21 in use"),
        field<&T::bezel>("bezel", "", "frame of the tube; kept with the profile"),
    };
    return kRows;
}

} // namespace tamlo
