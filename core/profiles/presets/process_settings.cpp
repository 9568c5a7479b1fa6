#include "core/profiles/presets/process_settings.h"

namespace tamlo {

ProcessSettings ProcessSettings::fresh()
{
    constexpr double kSheetCm = 30;
    ProcessSettings settings;
    settings.options.sheetCm = kSheetCm;
    settings.options.srcLights = 1;
    return settings;
}

void ProcessSettings::apply(const Preset& preset, const std::string& name)
{
    const PresetSchema::KeySet keys = PresetSchema::keys(preset.blocks);
    if (keys.contains("stock") && preset.stock) stock = *preset.stock;
    if (keys.contains("lens") && preset.lens) lens = *preset.lens;
    if (keys.contains("paper")) paper = preset.paper.value_or("");
    reset(options, preset.blocks);
    tamlo::apply(options, preset.opts, {});
    presetName = preset.name.empty() ? name : preset.name;
    modified = false;
}

} // namespace tamlo
