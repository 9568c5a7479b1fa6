#include "app/shell/presets.h"

#include "app/project/process_rules.h"
#include "app/shell/app_model.h"
#include "core/text/loc.h"

namespace tamlo {

std::string blocksTail(const PresetSchema::Blocks& blocks)
{
    if (blocks.size() == PresetSchema::order().size()) return {};
    std::string out;
    for (const PresetBlock block : blocks)
        out += (out.empty() ? " · " : ", ") + T(std::string(PresetSchema::titleKey(block)));
    return out;
}

std::size_t Presets::apply(const std::vector<FrameID>& ids, const Preset& preset, const std::string& name)
{
    const std::string title = preset.name.empty() ? name : preset.name;
    const std::size_t changed =
        model_
            .editFrames(
                {T("undo.presetApplied", {{"name", title}, {"what", blocksTail(preset.blocks)}})}, ids,
                [&](Frame& frame) {
                    ProcessSettings settings = frame.process ? *frame.process : ProcessSettings::fresh();
                    applyPreset(settings, preset, name, model_.store());
                    model_.rack.give(frame, std::move(settings));
                })
            .size();
    if (changed > 1)
        model_.tell(T("presets.appliedMany",
                      {{"name", title},
                       {"frames", Loc::string("project.frames", static_cast<std::int64_t>(changed))}}));
    return changed;
}

void Presets::applyToTargets(const Preset& preset, const std::string& name)
{
    if (!model_.sides.editsB()) {
        apply(model_.selection.actionTargets(), preset, name);
        return;
    }
    ProcessSettings settings = *model_.sides.abB();
    applyPreset(settings, preset, name, model_.store());
    model_.sides.setB(settings);
}

} // namespace tamlo
