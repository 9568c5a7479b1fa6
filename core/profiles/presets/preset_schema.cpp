#include "core/profiles/presets/preset_schema.h"

#include "platform/unicode.h"

#include <algorithm>

namespace tamlo {

namespace {

using namespace std::string_view_literals;
using PresetSchema::Blocks;
using PresetSchema::KeySet;

constexpr std::string_view kSource[] = {"src_exposure", "wb_mode", "wb_temp", "wb_tint"};
constexpr std::string_view kLight[] = {"ev"};
constexpr std::string_view kOptics[] = {"lens", "stop", "glow_mult", "glow_radius_mult", "distortion"};
constexpr std::string_view kFilter[] = {"filter",           "filter_amount",
                                        "filter_cut",       "filter_cut_amount",
                                        "filter_diffusion", "filter_diffusion_amount",
                                        "filter_rays",      "rays_angle",
                                        "filter_grad",      "grad_pos",
                                        "grad_angle"};
constexpr std::string_view kFilm[] = {"stock",           "format",        "frame_size",  "grain_mult",
                                      "grain_size_mult", "halation_mult", "interlayer",  "grain_rms",
                                      "format_120_cm",   "peel_size",     "plate_shift", "plate_pour"};
constexpr std::string_view kDevelop[] = {"push",          "dev",        "dev_temp_c",
                                         "dev_mottle",    "c41_temp_c", "redscale",
                                         "expired_years", "dev_uneven", "intensify"};
constexpr std::string_view kPrint[] = {
    "paper",        "print_ev",     "grade",           "print_black",    "print_white", "paper_base",
    "print_cm",     "sheet_cm",     "print_texture",   "inkjet_banding", "inkjet_feed", "crt_zoom",
    "crt_size_in",  "crt_phosphor", "ink_roller",      "coat",           "coat_rough",  "pickup",
    "relief",       "border",       "frame",           "frame_rough",    "frame_style", "instant_frame",
    "border_black", "frame_print",  "frame_print_text"};
constexpr std::string_view kFinish[] = {
    "plate_mark",     "emboss_line",   "blind_stamp",      "stamp_text",        "stamp_size", "table",
    "table_width_cm", "mat",           "mat_width_cm",     "mat_bottom_weight", "mat_color",  "mat_core",
    "mat_bevel_mm",   "mat_reveal_mm", "mat_reveal_color", "mat_grip_mm"};

struct BlockRow {
    PresetBlock block;
    std::string_view text;
    std::string_view titleKey;
    std::span<const std::string_view> keys;
};

constexpr BlockRow kBlocks[] = {
    {PresetBlock::source, "source", "block.source", kSource},
    {PresetBlock::light, "light", "block.light", kLight},
    {PresetBlock::optics, "optics", "block.glass", kOptics},
    {PresetBlock::filter, "filter", "block.filter", kFilter},
    {PresetBlock::film, "film", "block.film", kFilm},
    {PresetBlock::develop, "develop", "block.dev", kDevelop},
    {PresetBlock::print, "print", "block.print", kPrint},
    {PresetBlock::finish, "finish", "block.finish", kFinish},
};

constexpr std::array kFrameOnly{"crop"sv, "crop_angle"sv, "rotate"sv, "mirror"sv};
constexpr std::array kNever{"seed"sv,          "frame_number"sv, "seed_variants"sv, "master_cap"sv,
                            "card_outside"sv,  "grain_engine"sv, "social_px"sv,     "social_by"sv,
                            "social_crop45"sv, "crop_gate"sv,    "repro_raster"sv,  "src_lights"sv};

constexpr std::array kMovedToPrint{"border"sv, "frame"sv, "frame_rough"sv, "frame_style"sv,
                                   "instant_frame"sv};
constexpr std::array kMovedToSource{"wb_mode"sv, "wb_temp"sv, "wb_tint"sv};

constexpr PresetSchema::Reference kReferences[] = {
    {"stock", ProfileKind::films, false},        {"lens", ProfileKind::lenses, false},
    {"paper", ProfileKind::papers, false},       {"filter", ProfileKind::filters, true},
    {"filter_cut", ProfileKind::filters, true},  {"filter_diffusion", ProfileKind::filters, true},
    {"filter_rays", ProfileKind::filters, true}, {"filter_grad", ProfileKind::filters, true},
};

const BlockRow& rowOf(PresetBlock block)
{
    return kBlocks[static_cast<std::size_t>(block)];
}

bool holds(const auto& list, std::string_view key)
{
    return std::ranges::find(list, key) != list.end();
}

bool holdsBlock(const Blocks& blocks, PresetBlock block)
{
    return std::ranges::find(blocks, block) != blocks.end();
}

} // namespace

const PresetSchema::Triple& PresetSchema::neutral()
{
    static const Triple kNeutral{"digital_negative", "modern_clean", "color_scan"};
    return kNeutral;
}

const Blocks& PresetSchema::order()
{
    static const Blocks kOrder = [] {
        Blocks all;
        for (const BlockRow& row : kBlocks) all.push_back(row.block);
        return all;
    }();
    return kOrder;
}

Blocks PresetSchema::blocks(int inFormat)
{
    Blocks out = order();
    if (inFormat < 4) std::erase(out, PresetBlock::source);
    return out;
}

std::string_view PresetSchema::rawText(PresetBlock block)
{
    return rowOf(block).text;
}

std::optional<PresetBlock> PresetSchema::blockOf(std::string_view rawText)
{
    for (const BlockRow& row : kBlocks)
        if (row.text == rawText) return row.block;
    return std::nullopt;
}

std::string_view PresetSchema::titleKey(PresetBlock block)
{
    return rowOf(block).titleKey;
}

std::span<const std::string_view> PresetSchema::keys(PresetBlock block)
{
    return rowOf(block).keys;
}

KeySet PresetSchema::keys(const Blocks& blocks)
{
    KeySet out;
    for (const PresetBlock block : blocks)
        for (std::string_view key : keys(block)) out.emplace(key);
    return out;
}

bool PresetSchema::isFrameOnly(std::string_view key)
{
    return holds(kFrameOnly, key);
}

bool PresetSchema::isNever(std::string_view key)
{
    return isFrameOnly(key) || holds(kNever, key);
}

std::vector<std::string> PresetSchema::allowedTexts(const OptionRow& row)
{
    std::vector<std::string> out(row.allowed.begin(), row.allowed.end());
    // A preset that wants no line says nothing of it.
    if (row.key == "emboss_line"sv) std::erase(out, "none");
    return out;
}

std::span<const PresetSchema::Reference> PresetSchema::references()
{
    return kReferences;
}

KeySet PresetSchema::legacyMovedKeys(double format, const Blocks& blocks, const KeySet& optsKeys)
{
    KeySet out;
    if (holdsBlock(blocks, PresetBlock::finish)) out.insert(kMovedToPrint.begin(), kMovedToPrint.end());
    const bool older =
        format < 4 && holdsBlock(blocks, PresetBlock::filter) && !holdsBlock(blocks, PresetBlock::source);
    if (older && std::ranges::any_of(kMovedToSource, [&](auto key) { return optsKeys.contains(key); }))
        out.insert(kMovedToSource.begin(), kMovedToSource.end());
    return out;
}

std::string PresetSchema::slug(std::string_view text)
{
    constexpr std::size_t kLongest = 80;
    constexpr std::string_view kForbidden = "\\/:*?\"<>|";
    std::string id = platform::whiteSpaceReplaced(platform::lowerCased(platform::trimmed(text)), "_");
    std::erase_if(id, [&](char c) {
        return (static_cast<unsigned char>(c) < 0x20) || kForbidden.find(c) != std::string_view::npos;
    });
    id.erase(0, std::min(id.find_first_not_of("._"), id.size()));
    id.erase(id.find_last_not_of("._") + 1);
    // Until none is left: an id with two points in a row would be refused as a file's name.
    for (auto at = id.find(".."); at != std::string::npos; at = id.find("..")) id.erase(at, 1);
    id = platform::firstCharacters(id, kLongest);
    return id.empty() ? "preset" : id;
}

} // namespace tamlo
