// ProfileStore: the presets, carried ones and the user's files.

#include "core/profiles/catalogue/preset_library.h"

#include "core/profiles/catalogue/profile_store.h"
#include "core/profiles/catalogue/user_files.h"
#include "core/profiles/formats/decode_error.h"
#include "core/profiles/formats/json_codec.h"
#include "core/profiles/formats/profile_error.h"
#include "core/text/bundled_profiles.h"
#include "core/text/loc.h"

#include <algorithm>
#include <chrono>

namespace tamlo {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kFolder = "presets/";
constexpr std::string_view kJsonExtension = ".json";
const std::string kExtension = "." + std::string(PresetSchema::fileExtension);

struct GroupRow {
    const char* title;
    const char* key;
};

constexpr GroupRow kGroups[] = {{"ЧБ", "presetGroup.bw"},
                                {"Цвет", "presetGroup.color"},
                                {"Слайд", "presetGroup.slide"},
                                {"Старые процессы", "presetGroup.alt"},
                                {"Инстант", "presetGroup.instant"}};

bool isPresetFile(const fs::path& path)
{
    return path.extension() == kExtension || path.extension() == kJsonExtension;
}

PresetError notFound(const std::string& id)
{
    return PresetError(T("preset.err.notFound", {{"id", id}}));
}

} // namespace

const std::vector<std::string>& PresetGroups::order()
{
    static const std::vector<std::string> kOrder = [] {
        std::vector<std::string> titles;
        for (const GroupRow& row : kGroups) titles.emplace_back(row.title);
        return titles;
    }();
    return kOrder;
}

std::string PresetGroups::title(const std::string& group, const std::string& en)
{
    if (Loc::current() == Loc::Lang::en && !en.empty()) return en;
    for (const GroupRow& row : kGroups)
        if (group == row.title) return T(row.key);
    return group;
}

std::vector<PresetEntry> ProfileStore::presetEntries(bool includeHidden) const
{
    std::map<std::string, PresetEntry> entries;
    for (const auto& [key, text] : BundledProfiles::files())
        if (key.starts_with(kFolder)) {
            const std::string id(
                key.substr(kFolder.size(), key.size() - kFolder.size() - kJsonExtension.size()));
            entries[id] = {id, std::nullopt, true, false};
        }
    std::vector<fs::path> files;
    std::error_code none; // without a folder of his own the user has no presets
    for (const fs::directory_entry& file : fs::directory_iterator(userRoot_ / "presets", none))
        if (isPresetFile(file.path()) && file.is_regular_file(none)) files.push_back(file.path());
    std::ranges::sort(files); // of two files of one id the .tpreset comes last and counts
    for (const fs::path& file : files) {
        const std::string id = file.stem().string();
        if (UserFiles::staysInFolder(id)) entries[id] = {id, file, false, false};
    }

    const PresetSchema::KeySet hidden = hiddenPresetIDs();
    std::vector<PresetEntry> out;
    for (auto& [id, entry] : entries) {
        entry.hidden = hidden.contains(id);
        if (includeHidden || !entry.hidden) out.push_back(std::move(entry));
    }
    return out;
}

std::vector<std::string> ProfileStore::listPresets() const
{
    return list(Kind::presets);
}

std::optional<PresetEntry> ProfileStore::presetEntry(const std::string& id) const
{
    for (PresetEntry& entry : presetEntries(true))
        if (entry.id == id) return std::move(entry);
    return std::nullopt;
}

PresetDocument ProfileStore::presetDocument(const std::string& id) const
{
    const std::optional<PresetEntry> entry = presetEntry(id);
    if (!entry) throw ProfileError::notFound(std::string(rawText(Kind::presets)), id, listPresets());
    const std::string text = entry->url ? UserFiles::read(*entry->url) : data(Kind::presets, id);
    PresetDocument document = PresetDocument::validate(PresetDocument::decode(text), *this, true);
    document.builtin = entry->builtin;
    document.url = entry->url;
    return document;
}

Preset ProfileStore::preset(const std::string& id) const
{
    const PresetDocument document = presetDocument(id);
    return document.typed(document.blocks());
}

PresetSchema::KeySet ProfileStore::hiddenPresetIDs() const
{
    PresetSchema::KeySet ids;
    try {
        const auto text = UserFiles::readIfThere(userRoot_ / "hidden_presets.json");
        const Json list = text ? parseJsonText(*text) : Json();
        if (list.is_array())
            for (const Json& id : list)
                if (id.is_string()) ids.insert(id.get<std::string>());
    } catch (const std::exception&) {
        return {}; // a broken file hides nothing
    }
    return ids;
}

void ProfileStore::writeHidden(const PresetSchema::KeySet& ids)
{
    UserFiles::write(userRoot_ / "hidden_presets.json", prettyJson(Json(ids)) + "\n");
}

void ProfileStore::setPresetHidden(const std::string& id, bool hidden)
{
    PresetSchema::KeySet ids = hiddenPresetIDs();
    if (hidden)
        ids.insert(id);
    else
        ids.erase(id);
    writeHidden(ids);
}

void ProfileStore::pruneHiddenPresets()
{
    PresetSchema::KeySet ids = hiddenPresetIDs();
    const std::vector<std::string> known = list(Kind::presets, true);
    if (std::erase_if(ids,
                      [&](const std::string& id) { return std::ranges::find(known, id) == known.end(); }) > 0)
        writeHidden(ids);
}

PresetDocument ProfileStore::makePreset(const std::string& id, const std::string& name,
                                        const PresetRecipe& recipe) const
{
    const PresetSchema::KeySet keys = PresetSchema::keys(recipe.blocks);
    PresetDocument document;
    JSONValue& json = document.json;
    json["format"] = PresetSchema::formatVersion;
    document.setID(PresetSchema::slug(id));
    document.setName(name);
    json["blocks"] = JSONValue::array();
    for (const PresetBlock block : PresetSchema::order())
        if (std::ranges::find(recipe.blocks, block) != recipe.blocks.end())
            json["blocks"].push_back(PresetSchema::rawText(block));
    if (!recipe.notes.empty()) json["notes"] = recipe.notes;
    if (keys.contains("stock")) json["stock"] = recipe.stock;
    if (keys.contains("lens")) json["lens"] = recipe.lens;
    if (keys.contains("paper")) json["paper"] = recipe.paper;
    json["opts"] = presetOptsFrom(recipe.opts.json(), keys).json();
    document.setEmbedded(embedUserProfiles(recipe));
    return document;
}

JSONValue ProfileStore::embedUserProfiles(const PresetRecipe& recipe) const
{
    const std::map<std::string_view, std::string> top{
        {"stock", recipe.stock}, {"lens", recipe.lens}, {"paper", recipe.paper}};
    JSONValue embedded = JSONValue::object();
    for (const PresetSchema::Reference& row : PresetSchema::references()) {
        const std::string name =
            row.inOpts ? stringValue(memberOf(recipe.opts.json(), row.key)).value_or("") : top.at(row.key);
        if (name.empty() || isBuiltin(row.kind, name)) continue;
        try {
            const Json profile = parseJsonText(data(row.kind, name));
            if (profile.is_object()) embedded[std::string(rawText(row.kind))][name] = profile;
        } catch (const std::exception&) {
            continue; // what can't be read can't travel; the preset still names it
        }
    }
    return embedded;
}

fs::path ProfileStore::write(const PresetDocument& document, const std::optional<Path>& to)
{
    const fs::path file = to ? *to : userFile(Kind::presets, document.id());
    UserFiles::write(file, document.encoded());
    return file;
}

fs::path ProfileStore::savePreset(const std::string& name, const PresetRecipe& recipe,
                                  const std::optional<std::string>& title)
{
    const fs::path path(name);
    const bool isPath = isPresetFile(path);
    const std::string id = isPath ? path.stem().string() : name;
    const PresetDocument document = makePreset(id, title && !title->empty() ? *title : id, recipe);
    return write(document, isPath ? std::optional(path) : std::nullopt);
}

fs::path ProfileStore::deletePreset(const std::string& id)
{
    const std::optional<PresetEntry> entry = presetEntry(id);
    if (!entry) throw notFound(id);
    if (!entry->url) throw PresetError(T("preset.err.builtinDelete", {{"id", id}}));
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(sinceEpoch).count();
    const fs::path to =
        trashFolder(Kind::presets) / (std::to_string(ms) + "_" + entry->url->filename().string());
    UserFiles::move(*entry->url, to);
    return to;
}

void ProfileStore::restorePreset(const std::string& id, const Path& from)
{
    if (!UserFiles::staysInFolder(id)) throw notFound(id);
    UserFiles::move(from, userFile(Kind::presets, id));
}

void ProfileStore::renamePreset(const std::string& id, const std::string& name)
{
    const std::optional<PresetEntry> entry = presetEntry(id);
    if (!entry) throw notFound(id);
    if (!entry->url) throw PresetError(T("preset.err.builtinRename", {{"id", id}}));
    PresetDocument document;
    document.json = PresetDocument::decode(UserFiles::read(*entry->url));
    document.setName(name);
    if (document.json.contains("name_en")) document.json["name_en"] = name; // or the old one would be shown
    write(document, entry->url);
}

std::string ProfileStore::duplicatePreset(const std::string& id, const std::optional<std::string>& as)
{
    PresetDocument document = presetDocument(id);
    const std::string stem = id + "_copy";
    std::string copy = PresetSchema::slug(as && !as->empty() ? *as : stem);
    for (int number = 2; presetEntry(copy); ++number) copy = stem + "_" + std::to_string(number);
    const std::string suffix = T("preset.copySuffix");
    document.setID(copy);
    document.setName((document.nameRu().empty() ? id : document.nameRu()) + suffix);
    if (const auto en = stringValue(memberOf(document.json, "name_en")))
        document.json["name_en"] = *en + suffix;
    write(document);
    return copy;
}

fs::path ProfileStore::exportPreset(const std::string& id, const Path& to) const
{
    const PresetDocument document = presetDocument(id);
    std::error_code ignored;
    fs::path file = to;
    if (fs::is_directory(to, ignored))
        file /= id + kExtension;
    else if (!isPresetFile(to))
        file += kExtension;
    UserFiles::write(file, document.encoded());
    return file;
}

std::vector<std::string> ProfileStore::presetsUsing(Kind kind, const std::string& name) const
{
    std::vector<std::string> ids;
    for (const std::string& id : list(Kind::presets, true)) {
        try {
            const PresetDocument document = presetDocument(id);
            const bool names = std::ranges::any_of(PresetSchema::references(), [&](const auto& row) {
                const JSONValue& holder = row.inOpts ? document.optsJSON() : document.json;
                return row.kind == kind && memberOf(holder, row.key) == name;
            });
            if (names) ids.push_back(id);
        } catch (const std::exception&) {
            continue; // a file that can't be read uses nothing
        }
    }
    return ids;
}

} // namespace tamlo
