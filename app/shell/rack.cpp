#include "app/shell/rack.h"

#include "app/project/loaded.h"
#include "app/project/process_rules.h"
#include "app/shell/app_model.h"
#include "app/shell/knob_changes.h"
#include "app/shell/knob_table.h"
#include "core/text/loc.h"

#include <algorithm>
#include <unordered_map>

namespace tamlo {

namespace {

ProcessSettings settingsOf(const Frame& frame)
{
    return frame.process ? *frame.process : ProcessSettings::fresh();
}

std::string streamTitle(Seeds::SeedStream stream)
{
    return T("seedStream." + std::string(Seeds::rawText(stream)));
}

void rolled(ProcessSettings& settings, Seeds::SeedStream stream)
{
    SeedVariants variants = settings.options.seedVariants.value_or(SeedVariants());
    ++variants[std::string(Seeds::rawText(stream))];
    settings.options.seedVariants = std::move(variants);
}

/// Works a change out once for all frames that share a process, so that they share the new one too.
class SharedChange {
public:
    explicit SharedChange(Rack::Change change) : change_(std::move(change)) {}

    Shared<ProcessSettings> operator()(const Frame& frame)
    {
        const ProcessSettings* before = frame.process ? &*frame.process : nullptr;
        const auto known = known_.find(before);
        if (known != known_.end()) return known->second;
        ProcessSettings after = settingsOf(frame);
        change_(after);
        return known_.emplace(before, std::move(after)).first->second;
    }

private:
    Rack::Change change_;
    std::unordered_map<const ProcessSettings*, Shared<ProcessSettings>> known_;
};

} // namespace

ProcessSettings Rack::rackSettings() const
{
    if (model_.sides.editsB()) return *model_.sides.abB();
    return model_.selection.screen() == Screen::develop ? model_.selection.currentProcess()
                                                        : ProcessSettings::fresh();
}

WindowOf Rack::window() const
{
    return {model_.store(), model_.project().cropGate, model_.seams().sourceSize};
}

ProcessSettings Rack::turned(const ProcessSettings& from, ProcessSettings to) const
{
    to = formatFittingStock(from, std::move(to), model_.store());
    if (to.presetName && !(to == from)) to.modified = true;
    return to;
}

void Rack::give(Frame& frame, Shared<ProcessSettings> process, Refit refit) const
{
    const ProcessSettings before = settingsOf(frame);
    if (frame.process == process) return;
    frame.process = std::move(process);
    followFormatWindow(frame, before, window(), refit);
}

void Rack::setRackSettings(const ProcessSettings& to)
{
    if (model_.sides.editsB()) return model_.sides.setB(turned(*model_.sides.abB(), to));
    const FrameRef frame = model_.selection.currentFrame();
    if (frame) takeSettings(turned(settingsOf(*frame), to));
}

void Rack::toDefault(const Knob& knob)
{
    model_.endGesture();
    const ProcessSettings from = rackSettings();
    ProcessSettings to = from;
    tamlo::toDefault(knob, to.options);
    to = turned(from, std::move(to));
    if (model_.sides.editsB())
        model_.sides.setB(std::move(to));
    else
        takeSettings(to, T("knob.toDefault", {{"label", knob.title()}}));
    model_.endGesture();
}

void Rack::takeSettings(const ProcessSettings& to, const std::optional<std::string>& name)
{
    const FrameRef frame = model_.selection.currentFrame();
    if (!frame || model_.selection.screen() != Screen::develop) return;
    const ProcessSettings from = settingsOf(*frame);
    if (to == from) return;
    History::Change step{T("undo.startPrinting")};
    if (frame->process) {
        KnobChange knob = changeOf(from, to, model_.store());
        step = {name.value_or(knob.name), "frame:" + knob.key};
    }
    model_.editFrames(std::move(step), {frame->id},
                      [&](Frame& changed) { give(changed, to, Refit::automaticAndBeyond); });
}

void Rack::startPrinting()
{
    const FrameRef frame = model_.selection.currentFrame();
    if (!frame || frame->process || model_.selection.screen() != Screen::develop) return;
    model_.editFrames({T("undo.startPrinting")}, {frame->id}, [&](Frame& changed) {
        give(changed, ProcessSettings::fresh(), Refit::automaticAndBeyond);
    });
}

ProcessSettings Rack::recipeOf(const ProcessSettings& settings) const
{
    const PresetInfo* info = settings.presetName ? model_.lists.presetTitled(*settings.presetName) : nullptr;
    if (!info) return ProcessSettings::fresh();
    const auto preset = loaded([&] { return model_.store().preset(info->id); });
    if (!preset) return ProcessSettings::fresh();
    ProcessSettings out = settings;
    applyPreset(out, *preset, info->title, model_.store());
    return out;
}

std::size_t Rack::change(const FrameIDs& ids, const Change& change)
{
    SharedChange after([&](ProcessSettings& settings) {
        const ProcessSettings from = settings;
        change(settings);
        settings = turned(from, std::move(settings));
    });
    std::string name;
    for (const FrameID& id : ids) {
        const FrameRef frame = model_.project().frame(id);
        if (!frame) continue;
        const ProcessSettings from = settingsOf(*frame);
        const Shared<ProcessSettings> to = after(*frame);
        if (*to == from) continue;
        name = changeOf(from, *to, model_.store()).name;
        break;
    }
    if (ids.size() > 1) name = T("undo.markMany", {{"name", name}, {"n", ids.size()}});
    return model_
        .editFrames({name}, ids,
                    [&](Frame& frame) {
                        const Shared<ProcessSettings> to = after(frame);
                        if (!(*to == settingsOf(frame))) give(frame, to);
                    })
        .size();
}

std::size_t Rack::resetBlock(const FrameIDs& ids, const std::string& title,
                             const PresetSchema::Blocks& blocks)
{
    model_.endGesture();
    SharedChange after([&](ProcessSettings& settings) {
        const ProcessSettings from = settings;
        resetBlocks(settings, blocks);
        settings = turned(from, std::move(settings));
    });
    return model_
        .editFrames({T("undo.resetBlock", {{"title", title}})}, ids,
                    [&](Frame& frame) {
                        if (frame.process) give(frame, after(frame));
                    })
        .size();
}

void Rack::resetRackBlock(const std::string& title, const PresetSchema::Blocks& blocks)
{
    if (!model_.sides.editsB()) {
        resetBlock(model_.selection.actionTargets(), title, blocks);
        return;
    }
    ProcessSettings settings = *model_.sides.abB();
    resetBlocks(settings, blocks);
    model_.sides.setB(turned(*model_.sides.abB(), std::move(settings)));
}

std::size_t Rack::reroll(const FrameIDs& ids, Seeds::SeedStream stream)
{
    model_.endGesture();
    const std::string title = streamTitle(stream);
    const std::size_t changed = model_
                                    .editFrames({T("undo.reroll", {{"stream", title}})}, ids,
                                                [&](Frame& frame) {
                                                    ProcessSettings settings = settingsOf(frame);
                                                    rolled(settings, stream);
                                                    give(frame, std::move(settings));
                                                })
                                    .size();
    if (changed > 0) model_.tell(T("status.rerolled", {{"stream", title}}));
    return changed;
}

void Rack::rerollRack(Seeds::SeedStream stream)
{
    if (!model_.sides.editsB()) {
        if (const FrameRef frame = model_.selection.currentFrame()) reroll({frame->id}, stream);
        return;
    }
    ProcessSettings settings = *model_.sides.abB();
    rolled(settings, stream);
    model_.sides.setB(settings);
}

void Rack::resetSettingsOfTargets()
{
    if (model_.sides.editsB()) return model_.sides.setB(ProcessSettings::fresh());
    resetSettings(model_.selection.actionTargets());
}

std::size_t Rack::resetSettings(const FrameIDs& ids)
{
    const auto n = std::ranges::count_if(ids, [&](const FrameID& id) {
        const FrameRef frame = model_.project().frame(id);
        return frame && frame->process;
    });
    const std::string name = n == 1 ? T("undo.resetSettings") : T("undo.resetSettingsMany", {{"n", n}});
    return model_.editFrames({name}, ids, [&](Frame& frame) { give(frame, std::nullopt); }).size();
}

} // namespace tamlo
