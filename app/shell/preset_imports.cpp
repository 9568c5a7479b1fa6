// PresetFiles: recipes from elsewhere.

#include "app/shell/app_model.h"
#include "app/shell/preset_files.h"
#include "app/shell/preset_undo.h"
#include "core/profiles/catalogue/profile_store.h"
#include "core/profiles/catalogue/user_files.h"
#include "core/text/error_words.h"
#include "core/text/loc.h"

#include <utility>

namespace tamlo {

struct PresetFiles::Import {
    std::deque<Path> waiting;
    std::vector<PresetUndo::FileChange> changes;
    std::int64_t taken = 0;
};

void PresetFiles::importPresets(const std::vector<Path>& files)
{
    if (isImporting()) return; // the one that is under way asks first
    model_.beginAction();
    notes_.clear();
    import_ = std::make_shared<Import>(Import{{files.begin(), files.end()}, {}, 0});
    importNext();
}

void PresetFiles::importNext()
{
    while (import_ && !import_->waiting.empty()) {
        const Path file = std::move(import_->waiting.front());
        import_->waiting.pop_front();
        std::string id;
        bool isTaken = false;
        try {
            const JSONValue json = PresetDocument::decode(UserFiles::read(file));
            id = PresetDocument::validate(json, model_.store(), true).id();
            isTaken = model_.store().presetEntry(id).has_value();
        } catch (const std::exception& error) {
            notes_.push_back(file.filename().string() + ": " + ErrorWords::of(error));
            continue;
        }
        if (!isTaken) {
            importOne(file, id, PresetConflict::ask);
            continue;
        }
        const QuestionText text{T("preset.existsTitle"), T("preset.idTaken", {{"id", id}})};
        // The import goes on in the answer, be it at once or later, or never when the session has ended.
        model_.seams().questions.idTaken(text, true,
                                         Answer<PresetConflict>([this, weak = std::weak_ptr(import_), file,
                                                                 id](std::optional<PresetConflict> choice) {
                                             if (!weak.lock()) return;
                                             if (choice && *choice != PresetConflict::cancel)
                                                 importOne(file, id, *choice);
                                             importNext();
                                         }));
        return;
    }
    if (import_) endImport();
}

void PresetFiles::importOne(const Path& file, const std::string& id, PresetConflict conflict)
{
    const std::string name = file.filename().string();
    try {
        const Path there = fileOf(id);
        const auto before = PresetUndo::textOf(there);
        const PresetImportResult result = model_.store().importPreset(file, conflict);
        for (const std::string& warning : result.warnings) notes_.push_back(name + ": " + warning);
        if (!result.url) return;
        const bool isThere = *result.url == there;
        import_->changes.push_back(
            {*result.url, isThere ? before : std::nullopt, PresetUndo::textOf(*result.url)});
        ++import_->taken;
    } catch (const std::exception& error) {
        notes_.push_back(name + ": " + ErrorWords::of(error));
    }
}

void PresetFiles::endImport()
{
    const auto import = std::exchange(import_, nullptr);
    if (import->taken == 0) {
        const std::string why = notes_.empty() ? "" : " " + notes_.front();
        return model_.tellFailure(T("preset.nothingImported") + (why.empty() ? "" : ":" + why));
    }
    PresetUndo::record(model_, T("undo.presetsImported", {{"n", import->taken}}), std::move(import->changes));
    model_.lists.rebuildLists(); // profiles may have come inside them
    model_.tell(T("preset.imported", {{"n", import->taken}}));
}

} // namespace tamlo
