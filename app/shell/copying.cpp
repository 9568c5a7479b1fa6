#include "app/shell/copying.h"

#include "app/project/process_rules.h"
#include "app/project/settings_clipboard.h"
#include "app/shell/app_model.h"
#include "core/text/loc.h"

namespace tamlo {

namespace {

ProcessSettings settingsOf(const FrameRef& frame)
{
    return frame && frame->process ? *frame->process : ProcessSettings::fresh();
}

std::string framesText(std::size_t n)
{
    return Loc::string("project.frames", static_cast<std::int64_t>(n));
}

} // namespace

std::string Copying::settingsEnvelope(const FrameID& id) const
{
    const ProcessSettings settings = settingsOf(model_.project().frame(id));
    model_.tell(T("clipboard.copied", {{"summary", summary(settings, model_.store())}}));
    return SettingsClipboard::encode(settings);
}

std::string Copying::blockEnvelope(const FrameID& id, const std::string& title,
                                   const PresetSchema::Blocks& blocks) const
{
    const ProcessSettings settings = settingsOf(model_.project().frame(id));
    model_.tell(T("clipboard.blockCopied", {{"title", title}}));
    return BlockClipboard::encode(title, BlockClipboard::preset(title, blocks, settings));
}

void Copying::copySettings()
{
    const ProcessSettings settings =
        model_.sides.editsB() ? *model_.sides.abB() : model_.selection.currentProcess();
    SettingsClipboard::write(settings, model_.seams().clipboard);
    model_.tell(T("clipboard.copied", {{"summary", summary(settings, model_.store())}}));
}

void Copying::copyBlock(const std::string& title, const PresetSchema::Blocks& blocks)
{
    BlockClipboard::write(title, BlockClipboard::preset(title, blocks, model_.rack.rackSettings()),
                          model_.seams().clipboard);
    model_.tell(T("clipboard.blockCopied", {{"title", title}}));
}

bool Copying::hasSettings() const
{
    return SettingsClipboard::read(model_.seams().clipboard, model_.store()).has_value();
}

void Copying::pasteSettings()
{
    const auto pasted = SettingsClipboard::read(model_.seams().clipboard, model_.store());
    if (!pasted) return;
    if (model_.sides.editsB()) return model_.sides.setB(pasted->process);
    give(pasted->process, model_.selection.actionTargets());
}

void Copying::pasteBlock()
{
    const auto block = BlockClipboard::read(model_.seams().clipboard);
    if (!block) return;
    if (model_.sides.editsB())
        model_.presets.applyToTargets(block->preset, block->title);
    else
        stamp(block->title, block->preset, model_.selection.actionTargets());
}

std::optional<Copying::Pasted> Copying::paste(const std::string& text, const FrameIDs& ids)
{
    if (auto settings = SettingsClipboard::decode(text, model_.store())) {
        Pasted out = give(settings->process, ids);
        out.notes = std::move(settings->notes);
        return out;
    }
    if (auto block = BlockClipboard::decode(text)) {
        Pasted out = stamp(block->title, block->preset, ids);
        out.notes = std::move(block->notes);
        return out;
    }
    return std::nullopt;
}

Copying::Pasted Copying::give(const ProcessSettings& process, const FrameIDs& ids)
{
    const auto n = static_cast<std::int64_t>(ids.size());
    const Shared<ProcessSettings> shared = process;
    const auto changed =
        model_.editFrames({n == 1 ? T("clipboard.paste.one") : Loc::string("clipboard.paste.many", n)}, ids,
                          [&](Frame& frame) { model_.rack.give(frame, shared); });
    if (changed.empty()) return {};
    model_.tell(n == 1 ? T("clipboard.pasted.one") : Loc::string("clipboard.pasted.many", n));
    return {changed.size(), {}};
}

Copying::Pasted Copying::stamp(const std::string& title, const Preset& preset, const FrameIDs& ids)
{
    const Loc::Args args{{"title", title}, {"frames", framesText(ids.size())}};
    const bool one = ids.size() == 1;
    const auto changed = model_.editFrames(
        {T(one ? "clipboard.pasteBlock.one" : "clipboard.pasteBlock.many", args)}, ids, [&](Frame& frame) {
            ProcessSettings settings = frame.process ? *frame.process : ProcessSettings::fresh();
            applyPreset(settings, preset, title, model_.store());
            model_.rack.give(frame, std::move(settings));
        });
    if (changed.empty()) return {};
    model_.tell(T(one ? "clipboard.blockPasted.one" : "clipboard.blockPasted.many", args));
    return {changed.size(), {}};
}

} // namespace tamlo
