#include "app/shell/presets.h"

#include "app/project/process_rules.h"
#include "app/shell/app_model.h"
#include "core/profiles/catalogue/profile_store.h"
#include "core/text/error_words.h"
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
    const std::string title = preset.name.empty() ? name : Loc::pick(preset.name, preset.nameEn);
    const std::size_t changed =
        model_
            .editFrames(
                {T("undo.presetApplied", {{"name", title}, {"what", blocksTail(preset.blocks)}})}, ids,
                [&](Frame& frame) {
                    ProcessSettings settings = frame.process ? *frame.process : ProcessSettings::fresh();
                    tamlo::applyPreset(settings, preset, name, model_.store());
                    model_.rack.give(frame, std::move(settings));
                })
            .size();
    if (changed > 1)
        model_.tell(T("presets.appliedMany",
                      {{"name", title},
                       {"frames", Loc::string("project.frames", static_cast<std::int64_t>(changed))}}));
    return changed;
}

void Presets::applyPreset(const std::string& id, const PresetSchema::Blocks& blocks)
{
    try {
        const PresetDocument document = model_.store().presetDocument(id);
        applyToTargets(document.typed(blocks.empty() ? document.blocks() : blocks), id);
    } catch (const std::exception& error) {
        model_.tellFailure(ErrorWords::of(error));
    }
}

void Presets::applyToTargets(const Preset& preset, const std::string& name)
{
    if (!model_.sides.editsB()) {
        apply(model_.selection.actionTargets(), preset, name);
        return;
    }
    ProcessSettings settings = *model_.sides.abB();
    tamlo::applyPreset(settings, preset, name, model_.store());
    model_.sides.setB(settings);
}

} // namespace tamlo
