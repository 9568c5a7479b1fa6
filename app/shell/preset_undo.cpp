#include "app/shell/preset_undo.h"

#include "app/shell/app_model.h"
#include "core/profiles/catalogue/profile_store.h"
#include "core/profiles/catalogue/user_files.h"
#include "core/text/error_words.h"
#include "core/text/loc.h"

#include <memory>

namespace tamlo::PresetUndo {

namespace {

using Text = std::optional<std::string>;

/// Errors: those of UserFiles and of the store's trash.
void put(ProfileStore& store, const std::filesystem::path& file, const Text& expected, const Text& wanted)
{
    const Text there = textOf(file);
    if (there == wanted) return;
    if (there && (!wanted || there != expected)) store.deletePreset(file.stem().string());
    if (wanted) UserFiles::write(file, *wanted);
}

void putAll(AppModel& model, const std::vector<FileChange>& changes, bool back)
{
    try {
        for (const FileChange& change : changes)
            put(model.store(), change.file, back ? change.after : change.before,
                back ? change.before : change.after);
    } catch (const std::exception& error) {
        model.tellFailure(T("preset.saveFailed", {{"error", ErrorWords::of(error)}}));
    }
    model.lists.refreshPresets();
}

} // namespace

std::optional<std::string> textOf(const std::filesystem::path& file)
{
    try {
        return UserFiles::readIfThere(file);
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

void record(AppModel& model, std::string name, std::vector<FileChange> changes)
{
    std::erase_if(changes, [](const FileChange& change) { return change.before == change.after; });
    if (changes.empty()) return;
    const auto shared = std::make_shared<const std::vector<FileChange>>(std::move(changes));
    model.recordBeside({.name = std::move(name),
                        .action = [&model, shared] { putAll(model, *shared, true); },
                        .inverse = [&model, shared] { putAll(model, *shared, false); }});
}

} // namespace tamlo::PresetUndo
