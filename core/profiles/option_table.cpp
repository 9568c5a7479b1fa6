#include "core/profiles/option_table.h"

#include "core/profiles/field_table.h"

namespace tamlo {

template <>
struct FieldTable<Crop> {
    static std::span<const Field<Crop>> rows();
};

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

constexpr OptionRow nullable(OptionRow row)
{
    row.writesNull = true;
    return row;
}

constexpr OptionRow kRows[] = {
    ranged(option<&O::ev>("ev", "stops", "exposure"), -6, 6),
    lenient(oneOf(option<&O::srcExposure>("src_exposure", "", "exposure of a RAW source"), kSrcExposure)),
    lenient(oneOf(option<&O::wbMode>("wb_mode", "", "white balance"), kWbMode)),
    ranged(option<&O::wbTemp>("wb_temp", "mired", "shift of the colour temperature"), -600, 600),
    ranged(option<&O::wbTint>("wb_tint", "", "shift of the tint"), -150, 150),
    ranged(option<&O::stop>("stop", "stops", "aperture, stopped down from the lens's own default"), 0, 8),
    option<&O::filter>("filter", "", "old single filter, read when neither slot below is set"),
    ranged(option<&O::filterAmount>("filter_amount", "", "its amount"), 0, 3),
    option<&O::filterCut>("filter_cut", "", "colour filter"),
    ranged(option<&O::filterCutAmount>("filter_cut_amount", "", "its amount"), 0, 3),
    option<&O::filterDiffusion>("filter_diffusion", "", "diffusion filter"),
    ranged(option<&O::filterDiffusionAmount>("filter_diffusion_amount", "", "its amount"), 0, 3),
    option<&O::filterRays>("filter_rays", "", "ray filter"),
    ranged(option<&O::raysAngle>("rays_angle", "degrees", "its rotation"), -90, 90),
    option<&O::filterGrad>("filter_grad", "", "graduated filter"),
    ranged(option<&O::gradPos>("grad_pos", "", "position of its line"), -1, 1),
    ranged(option<&O::gradAngle>("grad_angle", "degrees", "its rotation"), -180, 180),
    ranged(option<&O::glowMult>("glow_mult", "", "multiplies the glow of the lens"), 0, 4),
    ranged(option<&O::glowRadiusMult>("glow_radius_mult", "", "multiplies the radius of the glow"), 0.1, 4),
    option<&O::distortion>("distortion", "", "lens distortion"),
    nullable(lenient(
        oneOf(option<&O::format>("format", "", "film format; absent means that of the film"), kFilmFormat))),
    ranged(option<&O::format120Cm>("format_120_cm", "cm", "width of a 120 frame, older form of frame_size"),
           6, 9),
    oneOf(option<&O::frameSize>("frame_size", "", "frame size inside the format"), kFrameSize),
    oneOf(option<&O::cropGate>("crop_gate", "", "what a crop takes from the film"), kCropGate),
    option<&O::masterCap>("master_cap", "", "cut the input down to the ceiling of the film"),
    ranged(option<&O::push>("push", "stops", "push development"), -2, 3),
    oneOf(option<&O::dev>("dev", "", "developer"), kDevelopment),
    ranged(option<&O::devTempC>("dev_temp_c", "degrees Celsius", "temperature of the developer"), 4, 38),
    ranged(option<&O::devMottle>("dev_mottle", "", "development mottle"), 0, 3),
    ranged(option<&O::devUneven>("dev_uneven", "", "uneven development in the tank"), 0, 3),
    ranged(option<&O::c41TempC>("c41_temp_c", "degrees Celsius", "temperature of the colour process"), 18,
           37.8),
    option<&O::redscale>("redscale", "", "film loaded back to front"),
    ranged(option<&O::expiredYears>("expired_years", "years", "age of the film"), 0, 80),
    ranged(option<&O::plateShift>("plate_shift", "", "misregistration of three plates"), 0, 3),
    ranged(option<&O::platePour>("plate_pour", "", "pour of collodion and edge of a dry plate"), 0, 3),
    ranged(option<&O::intensify>("intensify", "", "silver intensification"), 0, 1),
    ranged(option<&O::grainMult>("grain_mult", "", "multiplies grain strength"), 0, 5),
    ranged(option<&O::grainSizeMult>("grain_size_mult", "", "multiplies grain size"), 0.1, 5),
    option<&O::interlayer>("interlayer", "", "interlayer physics by the datasheet"),
    option<&O::grainRms>("grain_rms", "", "grain by the datasheet"),
    oneOf(option<&O::grainEngine>("grain_engine", "", "model of the grain"), kGrainEngine),
    ranged(option<&O::halationMult>("halation_mult", "", "multiplies halation"), 0, 5),
    option<&O::seed>("seed", "", "seed of every random pattern of the frame"),
    option<&O::seedVariants>("seed_variants", "", "re-rolls by stream: film, frame, print, table, develop"),
    ranged(option<&O::printEv>("print_ev", "stops", "print exposure; more is darker"), -4, 4),
    ranged(option<&O::grade>("grade", "", "paper grade"), 0, 5),
    ranged(option<&O::printBlack>("print_black", "", "how deep the darkest tone goes"), 0, 1),
    ranged(option<&O::printWhite>("print_white", "", "how white the lightest stays"), 0, 1),
    ranged(option<&O::border>("border", "fraction of the long side", "print border"), 0, 0.5),
    option<&O::borderBlack>("border_black", "", "field around a scan or screen in the black of the print"),
    option<&O::paperBase>("paper_base", "", "base stock of an alternative process"),
    ranged(option<&O::printCm>("print_cm", "cm", "long side of the print"), 5, 200),
    ranged(option<&O::sheetCm>("sheet_cm", "cm", "long side of the sheet; the print is worked out from it"),
           5, 200),
    ranged(option<&O::printTexture>("print_texture", "", "multiplies paper texture"), 0, 3),
    ranged(option<&O::inkjetBanding>("inkjet_banding", "", "feed banding"), 0, 2),
    oneOf(option<&O::inkjetFeed>("inkjet_feed", "", "side that the paper feeds along"), kInkjetFeed),
    oneOf(option<&O::reproRaster>("repro_raster", "", "resolution policy of a reproduction"), kReproRaster),
    ranged(option<&O::crtZoom>("crt_zoom", "", "closeness to the screen"), 1, 10),
    ranged(option<&O::crtSizeIn>("crt_size_in", "inch", "older diagonal of the screen"), 5, 32),
    oneOf(option<&O::crtPhosphor>("crt_phosphor", "", "phosphor of a mono tube"), kCrtPhosphor),
    ranged(option<&O::inkRoller>("ink_roller", "", "roller strength of an ink process"), 0, 1),
    oneOf(option<&O::coat>("coat", "", "hand coating"), kCoat),
    ranged(option<&O::coatRough>("coat_rough", "", "roughness of the coating"), 0, 3),
    ranged(option<&O::pickup>("pickup", "share", "ink that a transfer takes"), 0.05, 1),
    ranged(option<&O::relief>("relief", "", "relief of carbon or gum"), 0, 3),
    option<&O::plateMark>("plate_mark", "", "plate mark of a press"),
    ranged(option<&O::frame>("frame", "fraction", "rebate width; 0 takes that of the style"), 0, 0.2),
    ranged(option<&O::frameRough>("frame_rough", "", "roughness of the rebate"), 0, 2),
    oneOf(option<&O::frameStyle>("frame_style", "", "rebate"), kFrameStyle),
    option<&O::instantFrame>("instant_frame", "", "draw the instant card"),
    oneOf(option<&O::peelSize>("peel_size", "", "size of a peel-apart sheet"), kPeelSize),
    option<&O::cardOutside>("card_outside", "", "colour around the card"),
    oneOf(option<&O::rotate>("rotate", "", "orientation in degrees clockwise"), kRotate),
    option<&O::mirror>("mirror", "", "mirror"),
    option<&O::crop>("crop", "", "rectangle of the source"),
    oneOf(option<&O::table>("table", "", "table under the sheet"), kTable),
    ranged(option<&O::tableWidthCm>("table_width_cm", "cm", "margin of the table"), 0.5, 15),
    oneOf(option<&O::mat>("mat", "", "mat over the print"), kMat),
    ranged(option<&O::matWidthCm>("mat_width_cm", "cm", "width of the mat"), 1.5, 15),
    ranged(option<&O::matBottomWeight>("mat_bottom_weight", "", "bottom margin as a multiple of the others"),
           1, 1.4),
    oneOf(option<&O::matColor>("mat_color", "", "face of the mat"), kMatColor),
    oneOf(option<&O::matCore>("mat_core", "", "core of the mat"), kMatCore),
    ranged(option<&O::matBevelMm>("mat_bevel_mm", "mm", "bevel"), 0.6, 4),
    ranged(option<&O::matRevealMm>("mat_reveal_mm", "mm", "reveal"), 2, 15),
    oneOf(option<&O::matRevealColor>("mat_reveal_color", "", "colour of the reveal"), kMatColor),
    ranged(option<&O::matGripMm>("mat_grip_mm", "mm", "how far the mat overlaps the sheet"), 2, 10),
    oneOf(option<&O::embossLine>("emboss_line", "", "embossed line"), kEmbossLine),
    option<&O::blindStamp>("blind_stamp", "", "blind stamp"),
    option<&O::stampText>("stamp_text", "", "text of the studio stamp"),
    oneOf(option<&O::stampSize>("stamp_size", "", "size of the stamp"), kStampSize),
    ranged(option<&O::socialPx>("social_px", "px", "size of the social copy"), 16, 20000),
    oneOf(option<&O::socialBy>("social_by", "", "side that social_px measures"), kSocialBy),
    option<&O::socialCrop45>("social_crop45", "", "crop the social copy to 4:5"),
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
