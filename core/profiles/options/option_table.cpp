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
constexpr OptionRow option(const char* key, const char* unit)
{
    using Value = typename detail::MemberOf<decltype(Member)>::ValueType;
    using Bare = typename detail::Bare<Value>::Type;
    OptionRow row{};
    row.key = key;
    row.type = typeOf<Bare>();
    row.unit = unit;
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

constexpr OptionRow omitted(OptionRow row)
{
    row.omitsDefault = true;
    return row;
}

constexpr OptionRow kRows[] = {
    ranged(option<&O::ev>("ev", "stops"), -6, 6),
    lenient(oneOf(option<&O::srcExposure>("src_exposure", ""), kSrcExposure)),
    omitted(ranged(option<&O::srcLights>("src_lights", ""), 0, 1)),
    lenient(oneOf(option<&O::wbMode>("wb_mode", ""), kWbMode)),
    ranged(option<&O::wbTemp>("wb_temp", "mired"), -600, 600),
    ranged(option<&O::wbTint>("wb_tint", ""), -150, 150),
    ranged(option<&O::stop>("stop", "stops"), 0, 8),
    option<&O::filter>("filter", ""),
    ranged(option<&O::filterAmount>("filter_amount", ""), 0, 3),
    option<&O::filterCut>("filter_cut", ""),
    ranged(option<&O::filterCutAmount>("filter_cut_amount", ""), 0, 3),
    option<&O::filterDiffusion>("filter_diffusion", ""),
    ranged(option<&O::filterDiffusionAmount>("filter_diffusion_amount", ""), 0, 3),
    option<&O::filterRays>("filter_rays", ""),
    ranged(option<&O::raysAngle>("rays_angle", "degrees"), -90, 90),
    option<&O::filterGrad>("filter_grad", ""),
    ranged(option<&O::gradPos>("grad_pos", "half long sides"), -1, 1),
    ranged(option<&O::gradAngle>("grad_angle", "degrees"), -180, 180),
    ranged(option<&O::glowMult>("glow_mult", ""), 0, 4),
    ranged(option<&O::glowRadiusMult>("glow_radius_mult", ""), 0.1, 4),
    option<&O::distortion>("distortion", ""),
    nullable(lenient(oneOf(option<&O::format>("format", ""), kFilmFormat))),
    ranged(option<&O::format120Cm>("format_120_cm", "cm"), 6, 9),
    oneOf(option<&O::frameSize>("frame_size", ""), kFrameSize),
    oneOf(option<&O::cropGate>("crop_gate", ""), kCropGate),
    option<&O::masterCap>("master_cap", ""),
    ranged(option<&O::push>("push", "stops"), -2, 3),
    oneOf(option<&O::dev>("dev", ""), kDevelopment),
    ranged(option<&O::devTempC>("dev_temp_c", "degrees Celsius"), 4, 38),
    ranged(option<&O::devMottle>("dev_mottle", ""), 0, 3),
    ranged(option<&O::devUneven>("dev_uneven", ""), 0, 3),
    ranged(option<&O::c41TempC>("c41_temp_c", "degrees Celsius"), 18, 37.8),
    option<&O::redscale>("redscale", ""),
    ranged(option<&O::expiredYears>("expired_years", "years"), 0, 80),
    ranged(option<&O::plateShift>("plate_shift", ""), 0, 3),
    ranged(option<&O::platePour>("plate_pour", ""), 0, 3),
    ranged(option<&O::intensify>("intensify", ""), 0, 1),
    ranged(option<&O::grainMult>("grain_mult", ""), 0, 5),
    ranged(option<&O::grainSizeMult>("grain_size_mult", ""), 0.1, 5),
    option<&O::interlayer>("interlayer", ""),
    option<&O::grainRms>("grain_rms", ""),
    oneOf(option<&O::grainEngine>("grain_engine", ""), kGrainEngine),
    ranged(option<&O::halationMult>("halation_mult", ""), 0, 5),
    option<&O::seed>("seed", ""),
    option<&O::seedVariants>("seed_variants", ""),
    ranged(option<&O::printEv>("print_ev", "stops"), -4, 4),
    ranged(option<&O::grade>("grade", ""), 0, 5),
    ranged(option<&O::printBlack>("print_black", ""), 0, 1),
    ranged(option<&O::printWhite>("print_white", ""), 0, 1),
    ranged(option<&O::border>("border", "fraction of the long side"), 0, 0.5),
    option<&O::borderBlack>("border_black", ""),
    option<&O::paperBase>("paper_base", ""),
    ranged(option<&O::printCm>("print_cm", "cm"), 5, 200),
    ranged(option<&O::sheetCm>("sheet_cm", "cm"), 5, 200),
    ranged(option<&O::printTexture>("print_texture", ""), 0, 3),
    ranged(option<&O::inkjetBanding>("inkjet_banding", ""), 0, 2),
    oneOf(option<&O::inkjetFeed>("inkjet_feed", ""), kInkjetFeed),
    oneOf(option<&O::reproRaster>("repro_raster", ""), kReproRaster),
    ranged(option<&O::crtZoom>("crt_zoom", ""), 1, 10),
    ranged(option<&O::crtSizeIn>("crt_size_in", "inch"), 5, 32),
    oneOf(option<&O::crtPhosphor>("crt_phosphor", ""), kCrtPhosphor),
    ranged(option<&O::inkRoller>("ink_roller", ""), 0, 1),
    oneOf(option<&O::coat>("coat", ""), kCoat),
    ranged(option<&O::coatRough>("coat_rough", ""), 0, 3),
    ranged(option<&O::pickup>("pickup", "share"), 0.05, 1),
    ranged(option<&O::relief>("relief", ""), 0, 3),
    option<&O::plateMark>("plate_mark", ""),
    ranged(option<&O::frame>("frame", "fraction of the long side"), 0, 0.2),
    ranged(option<&O::frameRough>("frame_rough", ""), 0, 2),
    oneOf(option<&O::frameStyle>("frame_style", ""), kFrameStyle),
    silent<&O::framePrint>(option<&O::framePrint>("frame_print", "")),
    silent<&O::framePrintText>(option<&O::framePrintText>("frame_print_text", "")),
    silent<&O::frameNumber>(ranged(option<&O::frameNumber>("frame_number", ""), 0, 9999)),
    option<&O::instantFrame>("instant_frame", ""),
    oneOf(option<&O::peelSize>("peel_size", ""), kPeelSize),
    option<&O::cardOutside>("card_outside", ""),
    oneOf(option<&O::rotate>("rotate", ""), kRotate),
    option<&O::mirror>("mirror", ""),
    option<&O::crop>("crop", ""),
    oneOf(option<&O::table>("table", ""), kTable),
    ranged(option<&O::tableWidthCm>("table_width_cm", "cm"), 0.5, 15),
    oneOf(option<&O::mat>("mat", ""), kMat),
    ranged(option<&O::matWidthCm>("mat_width_cm", "cm"), 1.5, 15),
    ranged(option<&O::matBottomWeight>("mat_bottom_weight", "side widths"), 1, 1.4),
    oneOf(option<&O::matColor>("mat_color", ""), kMatColor),
    oneOf(option<&O::matCore>("mat_core", ""), kMatCore),
    ranged(option<&O::matBevelMm>("mat_bevel_mm", "mm"), 0.6, 4),
    ranged(option<&O::matRevealMm>("mat_reveal_mm", "mm"), 2, 15),
    oneOf(option<&O::matRevealColor>("mat_reveal_color", ""), kMatColor),
    ranged(option<&O::matGripMm>("mat_grip_mm", "mm"), 2, 10),
    oneOf(option<&O::embossLine>("emboss_line", ""), kEmbossLine),
    option<&O::blindStamp>("blind_stamp", ""),
    option<&O::stampText>("stamp_text", ""),
    oneOf(option<&O::stampSize>("stamp_size", ""), kStampSize),
    ranged(option<&O::socialPx>("social_px", "px"), 16, 20000),
    oneOf(option<&O::socialBy>("social_by", ""), kSocialBy),
    option<&O::socialCrop45>("social_crop45", ""),
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
