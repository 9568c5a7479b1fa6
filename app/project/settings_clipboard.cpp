#include "app/project/settings_clipboard.h"

#include "app/project/process_json.h"
#include "app/project/process_rules.h"
#include "core/text/loc.h"

#include <algorithm>

namespace tamlo {

namespace {

constexpr std::int64_t kVersion = 1;
constexpr const char* kApp = "Tamlo";

/// Values brought into the range of their option, each told.
class Clamps {
public:
    Json operator()(const OptionRow& row, Json value)
    {
        if (!row.hasRange || !value.is_number()) return value;
        const double number = value.get<double>();
        const double inside = std::clamp(number, row.low, row.high);
        if (inside == number) return value;
        if (!list_.empty()) list_ += "; ";
        list_ += std::string(row.key) + ": " + Fmt::significant(number) + " → " + Fmt::significant(inside);
        // An integer stays one: its reader takes no fraction, and its range ends on whole numbers.
        return row.type == OptionType::integer ? Json(static_cast<std::int64_t>(inside)) : Json(inside);
    }
    std::vector<std::string> notes() const
    {
        if (list_.empty()) return {};
        return {T("preset.note.clamped", {{"list", list_}})};
    }

private:
    std::string list_;
};

/// The object of an envelope of this sort, of a version that there can be.
std::optional<Json> envelopeOf(std::string_view text, const char* versionKey)
{
    Json json;
    try {
        json = parseJsonText(text);
    } catch (const DecodeError&) {
        return std::nullopt;
    }
    if (!json.is_object()) return std::nullopt;
    const auto version = json.find(versionKey);
    if (version == json.end() || jsonInteger(*version).value_or(0) < kVersion) return std::nullopt;
    const auto app = json.find("app");
    if (app != json.end() && !app->is_string() && !app->is_null()) return std::nullopt;
    return json;
}

void putOn(platform::Clipboard& clipboard, std::string_view type, const std::string& text)
{
    clipboard.clear();
    clipboard.setData(std::string(type), text);
    clipboard.setText(text);
}

/// Data of the type that does not decode is not followed by the plain text.
std::string takenFrom(const platform::Clipboard& clipboard, std::string_view type)
{
    auto data = clipboard.data(std::string(type));
    return data ? std::move(*data) : clipboard.text().value_or("");
}

void clampOptions(RenderOptions& options, Clamps& clamps)
{
    for (const OptionRow& row : optionTable()) {
        if (!row.hasRange) continue;
        Json value;
        row.write(options, value);
        if (!value.is_null()) row.read(options, clamps(row, std::move(value)), JsonPath{});
    }
}

Json presetJson(const Preset& preset)
{
    Json out{{"name", preset.name}, {"blocks", Json::array()}, {"opts", preset.opts.json()}};
    for (const PresetBlock block : preset.blocks)
        out["blocks"].push_back(std::string(PresetSchema::rawText(block)));
    if (preset.stock) out["stock"] = *preset.stock;
    if (preset.lens) out["lens"] = *preset.lens;
    if (preset.paper) out["paper"] = *preset.paper;
    return out;
}

PresetSchema::Blocks knownBlocks(const Json& preset)
{
    PresetSchema::Blocks out;
    const Json& given = memberOf(preset, "blocks");
    if (!given.is_array()) return out;
    for (const PresetBlock block : PresetSchema::order())
        if (std::ranges::find(given, Json(std::string(PresetSchema::rawText(block)))) != given.end())
            out.push_back(block);
    return out;
}

} // namespace

std::string SettingsClipboard::encode(const ProcessSettings& process)
{
    ProcessSettings settings = process;
    clearGeometry(settings.options);
    return prettyJson({{"tamloSettings", kVersion},
                       {"app", kApp},
                       {"process", JsonCodec<ProcessSettings>::write(settings)}});
}

std::optional<SettingsClipboard::Pasted> SettingsClipboard::decode(std::string_view text,
                                                                   const ProfileStore& store)
{
    const std::optional<Json> json = envelopeOf(text, "tamloSettings");
    if (!json || !memberOf(*json, "process").is_object()) return std::nullopt;
    Pasted out;
    try {
        out.process = JsonCodec<ProcessSettings>::read((*json)["process"], JsonPath{});
    } catch (const DecodeError&) {
        return std::nullopt;
    }
    migrateCRTZoom(out.process, store);
    Clamps clamps;
    clampOptions(out.process.options, clamps);
    out.notes = clamps.notes();
    return out;
}

void SettingsClipboard::write(const ProcessSettings& process, platform::Clipboard& clipboard)
{
    putOn(clipboard, kType, encode(process));
}

std::optional<SettingsClipboard::Pasted> SettingsClipboard::read(const platform::Clipboard& clipboard,
                                                                 const ProfileStore& store)
{
    return decode(takenFrom(clipboard, kType), store);
}

Preset BlockClipboard::preset(const std::string& title, const PresetSchema::Blocks& of,
                              const ProcessSettings& process)
{
    PresetSchema::Blocks others = PresetSchema::order();
    std::erase_if(others, [&](PresetBlock block) { return std::ranges::find(of, block) != of.end(); });
    RenderOptions options = process.options;
    reset(options, others);
    const PresetSchema::KeySet keys = PresetSchema::keys(of);
    Preset preset;
    preset.name = T("clipboard.blockPreset", {{"title", title}});
    preset.blocks = of;
    if (keys.contains("stock")) preset.stock = process.stock;
    if (keys.contains("lens")) preset.lens = process.lens;
    if (keys.contains("paper")) preset.paper = process.paper;
    preset.opts = presetOpts(options);
    return preset;
}

std::string BlockClipboard::encode(const std::string& title, const Preset& preset)
{
    return prettyJson(
        {{"tamloBlock", kVersion}, {"app", kApp}, {"title", title}, {"preset", presetJson(preset)}});
}

std::optional<BlockClipboard::Envelope> BlockClipboard::decode(std::string_view text)
{
    const std::optional<Json> json = envelopeOf(text, "tamloBlock");
    if (!json) return std::nullopt;
    const auto title = stringValue(memberOf(*json, "title"));
    const Json& given = memberOf(*json, "preset");
    Envelope out;
    out.preset.blocks = knownBlocks(given);
    if (!title || out.preset.blocks.empty()) return std::nullopt;
    out.title = *title;
    out.preset.name = stringValue(memberOf(given, "name")).value_or("");
    const PresetSchema::KeySet keys = PresetSchema::keys(out.preset.blocks);
    const auto reference = [&](const char* key) {
        return keys.contains(key) ? stringValue(memberOf(given, key)) : std::nullopt;
    };
    out.preset.stock = reference("stock");
    out.preset.lens = reference("lens");
    out.preset.paper = reference("paper");
    out.preset.opts = presetOptsFrom(memberOf(given, "opts"), keys);
    Clamps clamps;
    for (auto& [key, value] : out.preset.opts.values) value = clamps(*findOption(key), std::move(value));
    out.notes = clamps.notes();
    return out;
}

void BlockClipboard::write(const std::string& title, const Preset& preset, platform::Clipboard& clipboard)
{
    putOn(clipboard, kType, encode(title, preset));
}

std::optional<BlockClipboard::Envelope> BlockClipboard::read(const platform::Clipboard& clipboard)
{
    return decode(takenFrom(clipboard, kType));
}

} // namespace tamlo
