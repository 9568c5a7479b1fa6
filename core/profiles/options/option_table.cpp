#include "core/profiles/options/option_table.h"

#include "core/profiles/formats/field_table.h"
#include "core/profiles/options/crop_fields.h"

namespace tamlo {

std::span<const Field<Crop>> FieldTable<Crop>::rows()
{
    static constexpr Field<Crop> kRows[] = {
        requiredField<&Crop::x>("x", "fraction", "left edge"),
        requiredField<&Crop::y>("y", "fraction", "top edge"),
        requiredField<&Crop::w>("w", "fraction", "width"),
        requiredField<&Crop::h>("h", "fraction", "height"),
        field<&Crop::angle>("angle", "degrees", "tilt"),
    };
    return kRows;
}

namespace {

using O = RenderOptions;

constexpr std::string_view kSrcExposure[] = {"auto", "as_shot", "highlights", "shadows"};
constexpr std::string_view kWbMode[] = {"film", "asshot", "custom"};
constexpr std::string_view kFrameSize[] = {
    "custom",     "full",        "half",  "xpan", "645",   "6x6",         "6x7",         "6x8",
    "6x9",        "6x12",        "3x4",   "4x5",  "8x10",  "ninth_plate", "sixth_plate", "quarter_plate",
    "half_plate", "whole_plate", "6.5x9", "9x12", "13x18", "18x24"};
constexpr std::string_view kCropGate[] = {"full", "none"};
constexpr std::string_view kInkjetFeed[] = {"long", "short"};
constexpr std::string_view kReproRaster[] = {"auto", "off"};
constexpr std::string_view kCrtPhosphor[] = {"green", "amber", "white"};
constexpr std::string_view kCoat[] = {"none", "clean", "brush"};
constexpr std::string_view kPeelSize[] = {"3x4", "4x5", "8x10"};
constexpr std::string_view kRotate[] = {"0", "90", "180", "270"};
constexpr std::string_view kTable[] = {"none", "white", "grey", "black", "linen", "oak", "walnut"};
constexpr std::string_view kMat[] = {"none", "classic", "double", "emboss", "french"};
constexpr std::string_view kMatColor[] = {"white", "cream", "grey", "black"};
constexpr std::string_view kMatCore[] = {"white", "cream"};
constexpr std::string_view kEmbossLine[] = {"none", "single", "double", "single_tb", "double_tb"};
constexpr std::string_view kStampSize[] = {"s", "m", "l", "xl"};
constexpr std::string_view kSocialBy[] = {"width", "long"};

template <typename E>
constexpr auto enumTexts()
{
    std::array<std::string_view, EnumTexts<E>::rows.size()> out{};
    for (std::size_t i = 0; i < out.size(); ++i) out[i] = EnumTexts<E>::rows[i].second;
    return out;
}

constexpr auto kFilmFormat = enumTexts<FilmFormat>();
constexpr auto kDevelopment = enumTexts<Development>();
constexpr auto kGrainEngine = enumTexts<GrainEngine>();
constexpr auto kFrameStyle = enumTexts<FrameStyle>();

template <typename V>
constexpr OptionType typeOf()
{
    if constexpr (std::is_same_v<V, double>) return OptionType::number;
    if constexpr (std::is_same_v<V, std::int64_t>) return OptionType::integer;
    if constexpr (std::is_same_v<V, bool>) return OptionType::boolean;
    if constexpr (std::is_same_v<V, std::vector<double>>) return OptionType::numbers;
    if constexpr (std::is_same_v<V, SeedVariants>) return OptionType::seeds;
    if constexpr (std::is_same_v<V, Crop>) return OptionType::crop;
    return OptionType::text;
}

template <auto Member>
constexpr OptionRow option(const char* key, const char* unit, const char* meaning)
{
    using Value = typename detail::MemberOf<decltype(Member)>::ValueType;
    using Bare = typename detail::Bare<Value>::Type;
    OptionRow row{};
    row.key = key;
    row.type = typeOf<Bare>();
    row.unit = unit;
    row.meaning = meaning;
    row.read =
        +[](O& to, const Json& json, const JsonPath& at) { to.*Member = JsonCodec<Bare>::read(json, at); };
    if constexpr (detail::Bare<Value>::isOptional) {
        row.write = +[](const O& from, Json& to) {
            if (from.*Member) to = JsonCodec<Bare>::write(*(from.*Member));
        };
        row.clear = +[](O& to) { (to.*Member).reset(); };
    } else {
        row.write = +[](const O& from, Json& to) { to = JsonCodec<Bare>::write(from.*Member); };
        row.clear = nullptr;
    }
    return row;
}

constexpr OptionRow ranged(OptionRow row, double low, double high)
{
    row.low = low;
    row.high = high;
    row.hasRange = true;
    return row;
}

constexpr OptionRow oneOf(OptionRow row, std::span<const std::string_view> allowed)
{
    row.allowed = allowed;
    return row;
}

constexpr OptionRow lenient(OptionRow row)
{
    row.keepsOnUnknown = true;
    return row;
}

/// An option that is written only where it is not its default: documents from before it stay as they are.
template <auto Member>
constexpr OptionRow silent(OptionRow row)
{
    using Value = typename detail::MemberOf<decltype(Member)>::ValueType;
    row.write = +[](const O& from, Json& to) {
        if (from.*Member != Value{}) to = JsonCodec<Value>::write(from.*Member);
    };
    row.clear = +[](O& to) { to.*Member = Value{}; };
    return row;
}

constexpr OptionRow nullable(OptionRow row)
{
    row.writesNull = true;
    return row;
}

constexpr OptionRow kRows[] = {
    ranged(option<&O::ev>("ev", "stops",
                          "exposure of the film; larger is lighter, and moves up the film's curve"),
           -6, 6),
    lenient(oneOf(option<&O::srcExposure>(
                      "src_exposure", "",
                      "exposure of a RAW picture ahead of ev: auto brings its median to the film's middle, "
                      "as_shot keeps it dark or light, highlights and shadows hold those ends as well"),
                  kSrcExposure)),
    lenient(oneOf(option<&O::wbMode>("wb_mode", "",
                                     "white balance: film sees the light as it was, at 5500 K; asshot takes "
                                     "the camera's; custom takes the film's own light for white"),
                  kWbMode)),
    ranged(option<&O::wbTemp>("wb_temp", "mired", "shift of the light's colour; larger is warmer"), -600,
           600),
    ranged(option<&O::wbTint>("wb_tint", "", "shift across it; larger is more magenta, smaller greener"),
           -150, 150),
    ranged(option<&O::stop>("stop", "stops",
                            "aperture, in stops closed from wide open; larger clears the lens's faults as "
                            "its aperture_response says"),
           0, 8),
    option<&O::filter>("filter", "",
                       "older single filter, read when filter_cut and filter_diffusion are both absent"),
    ranged(option<&O::filterAmount>("filter_amount", "",
                                    "strength of filter; larger acts more, a colour filter up to 1"),
           0, 3),
    option<&O::filterCut>("filter_cut", "", "colour filter"),
    ranged(option<&O::filterCutAmount>("filter_cut_amount", "", "its strength; larger acts more, up to 1"), 0,
           3),
    option<&O::filterDiffusion>("filter_diffusion", "", "diffusion filter"),
    ranged(option<&O::filterDiffusionAmount>("filter_diffusion_amount", "",
                                             "its strength; larger glows and veils more"),
           0, 3),
    option<&O::filterRays>("filter_rays", "", "star or streak filter"),
    ranged(option<&O::raysAngle>("rays_angle", "degrees", "its turn, clockwise"), -90, 90),
    option<&O::filterGrad>("filter_grad", "", "graduated filter"),
    ranged(option<&O::gradPos>("grad_pos", "half long sides",
                               "place of its line from the centre; larger is lower"),
           -1, 1),
    ranged(option<&O::gradAngle>("grad_angle", "degrees", "its turn, clockwise"), -180, 180),
    ranged(option<&O::glowMult>("glow_mult", "", "multiplies the lens's glow; larger is dreamier, 0 is none"),
           0, 4),
    ranged(option<&O::glowRadiusMult>("glow_radius_mult", "",
                                      "multiplies the radius of that glow; larger is wider"),
           0.1, 4),
    option<&O::distortion>("distortion", "", "false takes the lens's distortion away"),
    nullable(
        lenient(oneOf(option<&O::format>("format", "",
                                         "film format; 4x5 and half are the older names of sheet and of half "
                                         "a 135 frame; a smaller format enlarges grain, softness and glow"),
                      kFilmFormat))),
    ranged(
        option<&O::format120Cm>("format_120_cm", "cm", "width of a 120 frame, an older form of frame_size"),
        6, 9),
    oneOf(option<&O::frameSize>("frame_size", "",
                                "frame within the format, which must have it (custom always fits); a larger "
                                "one makes grain and softness finer in the picture"),
          kFrameSize),
    oneOf(option<&O::cropGate>("crop_gate", "",
                               "what a crop takes from the film: full, a part of the frame, so that grain "
                               "grows; none, the whole frame"),
          kCropGate),
    option<&O::masterCap>("master_cap", "", "true reduces a source that is finer than the film could be"),
    ranged(option<&O::push>("push", "stops",
                            "longer development; larger is more contrast, grain and fog, and on a slide also "
                            "lighter; below 0 is pulled"),
           -2, 3),
    oneOf(option<&O::dev>("dev", "", "developer, of those that the type of film can have"), kDevelopment),
    ranged(option<&O::devTempC>("dev_temp_c", "degrees Celsius",
                                "temperature of instant development; below 21 is flatter, bluer and rougher, "
                                "above more contrasty"),
           4, 38),
    ranged(option<&O::devMottle>(
               "dev_mottle", "",
               "multiplies the clouds and marks of instant film; larger is dirtier, 0 is clean"),
           0, 3),
    ranged(option<&O::devUneven>("dev_uneven", "",
                                 "uneven development in the tank; larger shows more streaks and patches"),
           0, 3),
    ranged(option<&O::c41TempC>("c41_temp_c", "degrees Celsius",
                                "bath of a colour negative developed by hand (dev hand); smaller drifts "
                                "further in colour and fogs more"),
           18, 37.8),
    option<&O::redscale>("redscale", "",
                         "true loads a colour negative back to front: red and orange pictures, which "
                         "want about three stops more (ev)"),
    ranged(option<&O::expiredYears>(
               "expired_years", "years",
               "years past the film's date; larger is foggier, flatter, slower and grainier"),
           0, 80),
    ranged(option<&O::plateShift>("plate_shift", "",
                                  "multiplies the misregistration of three plates; larger is wider fringes"),
           0, 3),
    ranged(option<&O::platePour>("plate_pour", "",
                                 "multiplies the traces of coating a plate; larger is more uneven"),
           0, 3),
    ranged(option<&O::intensify>("intensify", "",
                                 "silver intensification of wet collodion; larger deepens its densities"),
           0, 1),
    ranged(option<&O::grainMult>("grain_mult", "", "multiplies the strength of the grain; 0 is none"), 0, 5),
    ranged(option<&O::grainSizeMult>("grain_size_mult", "",
                                     "multiplies the size of the grain; larger is coarser"),
           0.1, 5),
    option<&O::interlayer>("interlayer", "", "true takes the film's matrix_ds and sensitization_ds"),
    option<&O::grainRms>("grain_rms", "", "true takes the film's amount_rms for the grain"),
    oneOf(option<&O::grainEngine>("grain_engine", "",
                                  "model of the grain: growth rebuilds crystals, classic adds smooth noise"),
          kGrainEngine),
    ranged(option<&O::halationMult>("halation_mult", "", "multiplies halation; larger glows more, 0 is none"),
           0, 5),
    option<&O::seed>("seed", "", "seed of every random pattern of the frame"),
    option<&O::seedVariants>(
        "seed_variants", "",
        "re-rolls by stream: film, frame, print, table, develop; each count is another pattern"),
    ranged(option<&O::printEv>("print_ev", "stops", "exposure of the print; larger is darker, on a scan too"),
           -4, 4),
    ranged(option<&O::grade>("grade", "", "paper grade; larger is more contrast, 2 is the paper's own"), 0,
           5),
    ranged(option<&O::printBlack>("print_black", "", "lifts the darkest tone; larger is a weaker black"), 0,
           1),
    ranged(option<&O::printWhite>("print_white", "", "lowers the lightest tone; larger is a greyer white"), 0,
           1),
    ranged(
        option<&O::border>("border", "fraction of the long side", "margin round the print; larger is wider"),
        0, 0.5),
    option<&O::borderBlack>("border_black", "", "true gives the margin the darkest tone of the print"),
    option<&O::paperBase>("paper_base", "", "stock of an alternative process: white_rag, cream or buff"),
    ranged(option<&O::printCm>(
               "print_cm", "cm",
               "long side of the print; larger makes the paper's structure finer in the picture"),
           5, 200),
    ranged(option<&O::sheetCm>("sheet_cm", "cm",
                               "long side of the sheet with its margins, which then decides print_cm"),
           5, 200),
    ranged(option<&O::printTexture>("print_texture", "",
                                    "multiplies the paper's structure; larger is rougher, 0 is smooth"),
           0, 3),
    ranged(option<&O::inkjetBanding>("inkjet_banding", "",
                                     "multiplies the bands of an inkjet; larger shows more, 0 is even"),
           0, 2),
    oneOf(option<&O::inkjetFeed>("inkjet_feed", "", "side that the paper feeds along, and the bands across"),
          kInkjetFeed),
    oneOf(option<&O::reproRaster>(
              "repro_raster", "",
              "auto enlarges a reproduction until its dots can be drawn, off leaves its size"),
          kReproRaster),
    ranged(option<&O::crtZoom>(
               "crt_zoom", "",
               "closeness to the screen; larger shows a smaller piece with coarser dots and lines"),
           1, 10),
    ranged(option<&O::crtSizeIn>("crt_size_in", "inch",
                                 "older form of crt_zoom, as a diagonal; smaller is closer"),
           5, 32),
    oneOf(option<&O::crtPhosphor>("crt_phosphor", "", "colour of a mono tube"), kCrtPhosphor),
    ranged(option<&O::inkRoller>("ink_roller", "",
                                 "roller (1) in place of brush (0) in an inked print; larger is calmer"),
           0, 1),
    oneOf(option<&O::coat>("coat", "", "how the coating of an alternative print ends"), kCoat),
    ranged(option<&O::coatRough>("coat_rough", "", "raggedness of brush strokes; larger is wilder"), 0, 3),
    ranged(option<&O::pickup>("pickup", "share",
                              "ink that a transfer takes over; smaller flattens the shadows, and below 0.4 "
                              "most of them go solid"),
           0.05, 1),
    ranged(option<&O::relief>("relief", "", "multiplies the relief of carbon or gum; larger stands out more"),
           0, 3),
    option<&O::plateMark>("plate_mark", "",
                          "mark of a printing plate, true or false in place of the paper's own"),
    ranged(option<&O::frame>("frame", "fraction of the long side",
                             "width of the rebate; larger is wider, 0 is the style's own"),
           0, 0.2),
    ranged(option<&O::frameRough>("frame_rough", "", "raggedness of the rebate; larger is rougher"), 0, 2),
    oneOf(option<&O::frameStyle>("frame_style", "", "edge of the film printed with the picture"),
          kFrameStyle),
    silent<&O::framePrint>(option<&O::framePrint>(
        "frame_print", "",
        "true shows the film out to its own edge, with its perforations and what is printed there")),
    silent<&O::framePrintText>(option<&O::framePrintText>(
        "frame_print_text", "", "word printed on the film's edge in place of the film's plain name")),
    silent<&O::frameNumber>(
        ranged(option<&O::frameNumber>("frame_number", "", "number printed on the film's edge; 0 is none"), 0,
               9999)),
    option<&O::instantFrame>("instant_frame", "", "false leaves the card of instant film away"),
    oneOf(option<&O::peelSize>("peel_size", "", "sheet of a pack film, where it is made in that size"),
          kPeelSize),
    option<&O::cardOutside>("card_outside", "", "colour round the card as three numbers, linear R, G, B"),
    oneOf(option<&O::rotate>("rotate", "", "orientation in degrees clockwise"), kRotate),
    option<&O::mirror>("mirror", "", "true turns left and right round"),
    option<&O::crop>("crop", "", "rectangle of the source: x, y, w, h as fractions, and angle in degrees"),
    oneOf(option<&O::table>("table", "",
                            "table that the sheet lies on; oak and walnut are older names of grey"),
          kTable),
    ranged(option<&O::tableWidthCm>("table_width_cm", "cm", "table round the sheet; larger is wider"), 0.5,
           15),
    oneOf(option<&O::mat>("mat", "", "board over the print"), kMat),
    ranged(option<&O::matWidthCm>("mat_width_cm", "cm", "width of the board; larger is wider"), 1.5, 15),
    ranged(option<&O::matBottomWeight>("mat_bottom_weight", "side widths",
                                       "width of its lower part; larger sits the picture higher"),
           1, 1.4),
    oneOf(option<&O::matColor>("mat_color", "", "face of the board"), kMatColor),
    oneOf(option<&O::matCore>("mat_core", "", "core of the board, seen in the bevel"), kMatCore),
    ranged(option<&O::matBevelMm>("mat_bevel_mm", "mm", "width of the bevel; larger is a thicker board"), 0.6,
           4),
    ranged(option<&O::matRevealMm>("mat_reveal_mm", "mm",
                                   "strip of the second board of a double mat; larger is wider"),
           2, 15),
    oneOf(option<&O::matRevealColor>("mat_reveal_color", "", "colour of that strip"), kMatColor),
    ranged(option<&O::matGripMm>("mat_grip_mm", "mm",
                                 "how far the board covers the sheet; larger hides more of its margin"),
           2, 10),
    oneOf(option<&O::embossLine>("emboss_line", "",
                                 "line pressed into the margin; _tb runs above and below only"),
          kEmbossLine),
    option<&O::blindStamp>("blind_stamp", "", "true presses a studio stamp into the margin"),
    option<&O::stampText>("stamp_text", "", "letters pressed into the lower margin"),
    oneOf(option<&O::stampSize>("stamp_size", "", "height of those letters"), kStampSize),
    ranged(option<&O::socialPx>("social_px", "px", "size of a copy for sharing; larger is more pixels"), 16,
           20000),
    oneOf(option<&O::socialBy>("social_by", "", "side that social_px measures"), kSocialBy),
    option<&O::socialCrop45>("social_crop45", "", "true cuts that copy to 4:5"),
};

} // namespace

std::span<const OptionRow> optionTable()
{
    return kRows;
}

const OptionRow* findOption(std::string_view key)
{
    for (const OptionRow& row : kRows)
        if (key == row.key) return &row;
    return nullptr;
}

} // namespace tamlo
