// ProfileStore::importPreset: a preset and the profiles that travel in it, all or nothing.

#include "core/image/tamlo_error.h"
#include "core/profiles/catalogue/profile_store.h"
#include "core/profiles/catalogue/profile_validator.h"
#include "core/profiles/catalogue/user_files.h"
#include "core/profiles/formats/json_codec.h"
#include "core/text/error_words.h"
#include "core/text/loc.h"

namespace tamlo {

namespace fs = std::filesystem;

namespace {

/// Files written in one go: unless kept, each is again what it was before.
class Undo {
public:
    Undo() = default;
    Undo(const Undo&) = delete;
    Undo& operator=(const Undo&) = delete;
    ~Undo()
    {
        for (auto file = before_.rbegin(); file != before_.rend(); ++file) putBack(*file);
    }

    /// To be called before the file is written. Errors: TamloError io.
    void remember(const fs::path& file) { before_.push_back({file, UserFiles::readIfThere(file)}); }
    void keepAll() { before_.clear(); }

private:
    struct Before {
        fs::path file;
        std::optional<std::string> text;
    };

    static void putBack(const Before& before) noexcept
    {
        try {
            std::error_code ignored;
            if (before.text)
                UserFiles::write(before.file, *before.text);
            else if (fs::is_regular_file(before.file, ignored))
                fs::remove(before.file, ignored);
        } catch (const std::exception&) {
            // The disk refuses now what it took a moment ago; there is nothing left to try.
        }
    }

    std::vector<Before> before_;
};

/// Saved names by the kind and name that the document uses.
using Renamings = std::map<std::pair<ProfileKind, std::string>, std::string>;

void renameReferences(JSONValue& json, const Renamings& renamings)
{
    for (const PresetSchema::Reference& row : PresetSchema::references()) {
        const JSONValue& holder = row.inOpts ? memberOf(json, "opts") : json;
        const auto name = stringValue(memberOf(holder, row.key));
        const auto renamed = name ? renamings.find({row.kind, *name}) : renamings.end();
        if (renamed == renamings.end()) continue;
        JSONValue& target = row.inOpts ? json["opts"] : json;
        target[std::string(row.key)] = renamed->second;
    }
}

void numberTheNames(PresetDocument& document, int number)
{
    const std::string suffix = " (" + std::to_string(number) + ")";
    document.setName((document.nameRu().empty() ? document.id() : document.nameRu()) + suffix);
    if (const auto en = stringValue(memberOf(document.json, "name_en")))
        document.json["name_en"] = *en + suffix;
}

/// A preset whose id is taken goes where the user wants it. Errors: PresetError where he is to be asked.
void settleConflict(const ProfileStore& store, PresetConflict onConflict, PresetDocument& document,
                    PresetImportResult& result)
{
    using Action = PresetImportResult::Action;
    int number = 2;
    switch (onConflict) {
    case PresetConflict::ask:
        throw PresetError(T("preset.idTaken", {{"id", result.id}}), true);
    case PresetConflict::cancel:
        result.action = Action::cancelled;
        return;
    case PresetConflict::replace:
        result.action = Action::replaced;
        return;
    case PresetConflict::copy:
        result.action = Action::copied;
        while (store.presetEntry(result.id + "_" + std::to_string(number))) ++number;
        numberTheNames(document, number);
        result.id += "_" + std::to_string(number);
        document.setID(result.id);
    }
}

/// Saves the profiles that travel in a preset, each told to `before` ahead of its file. One whose name the
/// program carries is saved under a name with the preset's id, and the preset then uses that.
template <typename Before>
void saveEmbedded(ProfileStore& store, PresetDocument& document, const std::string& id, const Before& before)
{
    Renamings renamings;
    JSONValue saved = JSONValue::object();
    for (const ProfileKind kind : kProfileKinds) {
        const std::string kindText(rawText(kind));
        const JSONValue* profiles = objectValue(memberOf(document.embedded(), kindText));
        if (!profiles || kind == ProfileKind::presets) continue;
        for (const auto& [name, profile] : profiles->items()) {
            std::string savedAs = name;
            if (store.isBuiltin(kind, name)) {
                savedAs = name + "__" + id;
                renamings[{kind, name}] = savedAs;
                document.warnings.push_back(T("preset.note.profileRenamed",
                                              {{"name", name}, {"kind", kindText}, {"saved", savedAs}}));
            }
            if (UserFiles::staysInFolder(savedAs)) before(kind, savedAs);
            store.saveUserProfile(kind, savedAs, prettyJson(profile));
            saved[kindText][savedAs] = profile;
        }
    }
    if (!saved.empty()) document.setEmbedded(std::move(saved));
    renameReferences(document.json, renamings);
}

} // namespace

PresetImportResult ProfileStore::importPreset(const Path& url, PresetConflict onConflict)
{
    const std::string fileName = url.filename().string();
    std::string text;
    try {
        text = UserFiles::read(url);
    } catch (const TamloError&) {
        throw PresetError(T("preset.err.unreadable", {{"file", fileName}}));
    }
    PresetDocument document = PresetDocument::validate(PresetDocument::decode(text), *this, true);

    PresetImportResult result;
    result.id = document.id();
    if (presetEntry(result.id)) settleConflict(*this, onConflict, document, result);
    if (result.action == PresetImportResult::Action::cancelled) {
        result.warnings = document.warnings;
        return result;
    }
    Undo undo;
    try {
        saveEmbedded(*this, document, result.id,
                     [&](Kind kind, const std::string& name) { undo.remember(userFile(kind, name)); });
        undo.remember(userFile(Kind::presets, result.id));
        result.url = write(document);
    } catch (const std::exception& error) {
        throw PresetError(
            T("preset.err.importFailed", {{"file", fileName}, {"error", ErrorWords::of(error)}}));
    }
    undo.keepAll();
    result.warnings = document.warnings;
    return result;
}

} // namespace tamlo
