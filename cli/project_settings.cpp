#include "cli/project_settings.h"

#include "cli/catalogue.h"
#include "cli/messages.h"
#include "cli/option_words.h"
#include "cli/usage_error.h"
#include "core/image/tamlo_error.h"
#include "core/profiles/options/option_table.h"
#include "core/text/error_words.h"

#include <algorithm>

namespace tamlo::cli {
namespace {

using Kind = ProfileStore::Kind;
using Step = std::function<void(ProcessSettings&)>;

/// Options that a render takes from the frame, from the roll or from an export.
constexpr std::string_view kNotOfAProcess[] = {"crop", "rotate",    "mirror",
                                               "seed", "crop_gate", "crt_size_in"};

/// A profile's name of one of the three kinds.
Step profileStep(const ProfileStore& store, Kind kind, std::string ProcessSettings::*member,
                 const std::string& name)
{
    const bool suitsFilm = kind == Kind::papers && name.empty();
    return [member, id = suitsFilm ? name : profileNamed(store, kind, name)](ProcessSettings& settings) {
        settings.*member = id;
    };
}

bool yesOrNo(const std::string& setting, const std::string& value)
{
    if (value == "true" || value == "on" || value == "yes" || value == "1") return true;
    if (value == "false" || value == "off" || value == "no" || value == "0") return false;
    throw UsageError(T("cli.project.notYesOrNo", {{"setting", setting}}));
}

/// The id of a filter that a value names; every other value as it came.
std::string filterOrText(const ProfileStore& store, const std::string& key, const std::string& value)
{
    for (const PresetSchema::Reference& reference : PresetSchema::references())
        if (reference.inOpts && key == reference.key && !value.empty())
            return profileNamed(store, reference.kind, value);
    return value;
}

Step optionStep(const ProfileStore& store, const std::string& setting, const std::string& word,
                const std::string& text)
{
    const std::string key = optionKey(word);
    if (std::ranges::find(kNotOfAProcess, key) != std::end(kNotOfAProcess))
        throw UsageError(T("cli.project.notOfAProcess", {{"key", key}}));
    const std::string value = filterOrText(store, key, text);
    try {
        RenderOptions trial;
        setOptionByWord(trial, key, value);
    } catch (const TamloError& error) {
        throw UsageError(setting + ": " + ErrorWords::of(error));
    }
    return [key, value](ProcessSettings& settings) { setOptionByWord(settings.options, key, value); };
}

Step stepOf(const ProfileStore& store, const std::string& setting)
{
    const std::size_t equals = setting.find('=');
    if (equals == std::string::npos || equals == 0)
        throw UsageError(T("cli.project.badSetting", {{"text", setting}}));
    const std::string key = setting.substr(0, equals), value = setting.substr(equals + 1);
    if (key == "film") return profileStep(store, Kind::films, &ProcessSettings::stock, value);
    if (key == "lens") return profileStep(store, Kind::lenses, &ProcessSettings::lens, value);
    if (key == "paper") return profileStep(store, Kind::papers, &ProcessSettings::paper, value);
    if (key == "social" || key == "social_crop45") {
        const auto member = key == "social" ? &ProcessSettings::social : &ProcessSettings::socialCrop45;
        return [member, on = yesOrNo(setting, value)](ProcessSettings& settings) { settings.*member = on; };
    }
    return optionStep(store, setting, key, value);
}

} // namespace

std::function<void(ProcessSettings&)> processChange(const std::vector<std::string>& settings,
                                                    const ProfileStore& store)
{
    std::vector<Step> steps;
    for (const std::string& setting : settings) steps.push_back(stepOf(store, setting));
    return [steps](ProcessSettings& process) {
        for (const Step& step : steps) step(process);
    };
}

PresetSchema::Blocks blocksNamed(const std::string& text)
{
    std::vector<std::string> known;
    for (const PresetBlock block : PresetSchema::order()) known.emplace_back(PresetSchema::rawText(block));
    PresetSchema::Blocks named;
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find(',', begin), text.size());
        const std::string name = text.substr(begin, end - begin);
        const auto block = PresetSchema::blockOf(name);
        if (!block)
            throw UsageError(
                T("cli.project.noBlock", {{"name", name}, {"list", joined(known, T("common.and"))}}));
        named.push_back(*block);
        begin = end + 1;
    }
    PresetSchema::Blocks out = PresetSchema::order();
    std::erase_if(out, [&](PresetBlock block) { return std::ranges::find(named, block) == named.end(); });
    return out;
}

std::string blocksTitle(const PresetSchema::Blocks& blocks)
{
    std::string out;
    for (const PresetBlock block : blocks)
        out += (out.empty() ? "" : ", ") + T(std::string(PresetSchema::titleKey(block)));
    return out;
}

} // namespace tamlo::cli
