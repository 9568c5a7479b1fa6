#include "app/shell/preset_files.h"

#include "app/shell/app_model.h"
#include "app/shell/preset_undo.h"
#include "core/profiles/catalogue/profile_store.h"
#include "core/text/error_words.h"
#include "core/text/loc.h"

#include <algorithm>
#include <utility>

namespace tamlo {

namespace {

PresetRecipe recipeOf(const ProcessSettings& settings, const PresetSchema::Blocks& blocks)
{
    return {.stock = settings.stock,
            .lens = settings.lens,
            .paper = settings.paper,
            .opts = presetOpts(settings.options),
            .blocks = blocks,
            .notes = {}};
}

std::string trimmed(const std::string& text)
{
    constexpr const char* kBlank = " \t\r\n";
    const auto first = text.find_first_not_of(kBlank);
    return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(kBlank) - first + 1);
}

/// The blocks that a preset is brought up to date in: all, where it spoke of all that its format knows.
PresetSchema::Blocks blocksToUpdate(const PresetDocument& document)
{
    const PresetSchema::Blocks own = document.blocks();
    const PresetSchema::Blocks known = PresetSchema::blocks(document.format());
    const bool isWhole = std::ranges::all_of(
        known, [&](PresetBlock block) { return std::ranges::find(own, block) != own.end(); });
    return isWhole ? PresetSchema::order() : own;
}

/// Values of `from` in place of those of `into`, options that this version does not know left alone.
void takeRecipe(PresetDocument& into, const PresetDocument& from)
{
    const PresetSchema::KeySet known = PresetSchema::keys(PresetSchema::order());
    JSONValue opts = from.json.at("opts");
    if (const JSONValue* old = objectValue(into.optsJSON()))
        for (const auto& [key, value] : old->items())
            if (!known.contains(key)) opts[key] = value;
    for (const char* key : {"format", "blocks", "stock", "lens", "paper", "embedded"}) {
        into.json.erase(key);
        if (from.json.contains(key)) into.json[key] = from.json.at(key);
    }
    into.json["opts"] = std::move(opts);
}

} // namespace

ProcessSettings PresetFiles::shownSettings() const
{
    return model_.sides.editsB() ? *model_.sides.abB() : model_.selection.currentProcess();
}

PresetFiles::Path PresetFiles::fileOf(const std::string& id) const
{
    const auto entry = model_.store().presetEntry(id);
    if (entry && entry->url) return *entry->url;
    return model_.store().userRoot() / "presets" / (id + "." + std::string(PresetSchema::fileExtension));
}

std::string PresetFiles::titleOf(const std::string& id) const
{
    try {
        return model_.store().presetDocument(id).name();
    } catch (const std::exception&) {
        return id; // one that can't be read can still be thrown away
    }
}

void PresetFiles::fail(const std::exception& error)
{
    model_.tellFailure(T("preset.saveFailed", {{"error", ErrorWords::of(error)}}));
}

void PresetFiles::savePresetPanel(const Blocks& blocks)
{
    const NameQuestion question{
        {T("preset.saveTitle"), T("preset.saveInfo")}, T("preset.savePlaceholder"), {}};
    model_.seams().questions.presetName(question,
                                        Answer<std::string>([this, blocks](std::optional<std::string> name) {
                                            if (name) savePreset(*name, blocks);
                                        }));
}

void PresetFiles::savePreset(const std::string& name, const Blocks& blocks)
{
    const std::string title = trimmed(name);
    if (title.empty()) return;
    const std::string id = PresetSchema::slug(title);
    const ProcessSettings settings = shownSettings();
    if (!model_.store().presetEntry(id)) return write(id, title, settings, blocks);
    const QuestionText text{T("preset.existsTitle"), T("preset.idTaken", {{"id", id}})};
    model_.seams().questions.idTaken(
        text, true,
        Answer<PresetConflict>([this, id, title, settings, blocks](std::optional<PresetConflict> choice) {
            if (choice == PresetConflict::replace) return write(id, title, settings, blocks);
            if (choice != PresetConflict::copy) return;
            int number = 2;
            while (model_.store().presetEntry(id + "_" + std::to_string(number))) ++number;
            const std::string n = std::to_string(number);
            write(id + "_" + n, title + " (" + n + ")", settings, blocks);
        }));
}

void PresetFiles::write(const std::string& id, const std::string& name, const ProcessSettings& settings,
                        const Blocks& blocks)
{
    model_.beginAction();
    try {
        const Path file = fileOf(id);
        const auto before = PresetUndo::textOf(file);
        const PresetDocument document = model_.store().makePreset(id, name, recipeOf(settings, blocks));
        model_.store().write(document, file);
        PresetUndo::record(model_, T("undo.presetSaved", {{"name", name}}),
                           {{file, before, document.encoded()}});
        model_.lists.refreshPresets();
        model_.tell(T("preset.saved", {{"file", file.filename().string()}}));
    } catch (const std::exception& error) {
        fail(error);
    }
}

void PresetFiles::updatePresetFromCurrent(const std::string& id)
{
    model_.beginAction();
    try {
        PresetDocument document = model_.store().presetDocument(id);
        const PresetRecipe recipe = recipeOf(shownSettings(), blocksToUpdate(document));
        takeRecipe(document, model_.store().makePreset(id, document.name(), recipe));
        const Path file = fileOf(id);
        const auto before = PresetUndo::textOf(file);
        model_.store().write(document, file);
        PresetUndo::record(model_, T("undo.presetUpdated", {{"name", document.name()}}),
                           {{file, before, document.encoded()}});
        model_.lists.refreshPresets();
        model_.tell(T("preset.saved", {{"file", file.filename().string()}}));
    } catch (const std::exception& error) {
        fail(error);
    }
}

void PresetFiles::renamePresetPanel(const std::string& id)
{
    const NameQuestion question{{T("preset.renameTitle"), ""}, T("preset.savePlaceholder"), titleOf(id)};
    model_.seams().questions.presetName(question,
                                        Answer<std::string>([this, id](std::optional<std::string> name) {
                                            if (name) renamePreset(id, *name);
                                        }));
}

void PresetFiles::renamePreset(const std::string& id, const std::string& name)
{
    const std::string title = trimmed(name);
    if (title.empty() || title == titleOf(id)) return;
    model_.beginAction();
    try {
        const Path file = fileOf(id);
        const auto before = PresetUndo::textOf(file);
        model_.store().renamePreset(id, title);
        PresetUndo::record(model_, T("undo.presetRenamed", {{"name", title}}),
                           {{file, before, PresetUndo::textOf(file)}});
        model_.lists.refreshPresets();
        model_.tell(T("preset.renamed", {{"name", title}}));
    } catch (const std::exception& error) {
        fail(error);
    }
}

std::optional<std::string> PresetFiles::duplicatePreset(const std::string& id)
{
    model_.beginAction();
    try {
        const std::string copy = model_.store().duplicatePreset(id);
        const Path file = fileOf(copy);
        PresetUndo::record(model_, T("undo.presetDuplicated", {{"name", titleOf(id)}}),
                           {{file, std::nullopt, PresetUndo::textOf(file)}});
        model_.lists.refreshPresets();
        model_.tell(T("preset.saved", {{"file", file.filename().string()}}));
        return copy;
    } catch (const std::exception& error) {
        fail(error);
        return std::nullopt;
    }
}

void PresetFiles::deletePreset(const std::string& id)
{
    const auto entry = model_.store().presetEntry(id);
    if (!entry) return model_.tellFailure(T("preset.err.notFound", {{"id", id}}));
    const std::string title = titleOf(id);
    const bool isUsers = entry->url.has_value();
    const QuestionText text{T(isUsers ? "preset.deleteTitle" : "preset.builtinTitle", {{"name", title}}),
                            T(isUsers ? "preset.deleteNote" : "preset.builtinNote")};
    model_.seams().questions.deletePreset(text,
                                          Answer<bool>([this, id, title, isUsers](std::optional<bool> yes) {
                                              if (!yes.value_or(false)) return;
                                              if (isUsers) return trash(id, title);
                                              setHidden(id, true);
                                              if (!model_.lastActionFailed()) model_.tell(T("preset.hidden"));
                                          }));
}

void PresetFiles::trash(const std::string& id, const std::string& title)
{
    model_.beginAction();
    try {
        const Path file = fileOf(id);
        const auto before = PresetUndo::textOf(file);
        model_.store().deletePreset(id);
        PresetUndo::record(model_, T("undo.presetDeleted", {{"name", title}}),
                           {{file, before, std::nullopt}});
        model_.lists.refreshPresets();
        model_.tell(T("preset.trashed", {{"name", title}}));
    } catch (const std::exception& error) {
        fail(error);
    }
}

void PresetFiles::showPreset(const std::string& id)
{
    setHidden(id, false);
}

void PresetFiles::setHidden(const std::string& id, bool hidden)
{
    const auto entry = model_.store().presetEntry(id);
    if (!entry || entry->hidden == hidden) return;
    model_.beginAction();
    const auto set = [this, id](bool to) {
        try {
            model_.store().setPresetHidden(id, to);
        } catch (const std::exception& error) {
            fail(error);
        }
        model_.lists.refreshPresets();
    };
    set(hidden);
    if (model_.lastActionFailed()) return;
    model_.recordBeside(
        {.name = T(hidden ? "undo.presetHidden" : "undo.presetShown", {{"name", titleOf(id)}}),
         .action = [set, hidden] { set(!hidden); },
         .inverse = [set, hidden] { set(hidden); }});
}

std::optional<PresetFiles::Path> PresetFiles::exportPreset(const std::string& id, const Path& to)
{
    model_.beginAction();
    try {
        const Path file = model_.store().exportPreset(id, to);
        model_.tell(T("preset.saved", {{"file", file.filename().string()}}));
        return file;
    } catch (const std::exception& error) {
        fail(error);
        return std::nullopt;
    }
}

} // namespace tamlo
