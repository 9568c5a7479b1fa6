#include "cli/develop_choices.h"

#include "cli/catalogue.h"
#include "cli/choice_notes.h"
#include "cli/option_words.h"
#include "cli/recipe.h"
#include "cli/usage_error.h"
#include "core/image/tamlo_error.h"
#include "core/profiles/catalogue/user_files.h"
#include "core/profiles/formats/decode_error.h"
#include "core/profiles/formats/nearest_text.h"
#include "core/profiles/formats/profile_json.h"
#include "core/profiles/options/film_format.h"
#include "core/profiles/options/option_table.h"
#include "core/profiles/presets/process_settings.h"
#include "core/text/error_words.h"
#include "core/text/loc.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <set>
#include <stdexcept>
#include <utility>

namespace tamlo::cli {
namespace {

using Kind = ProfileStore::Kind;

struct FileOptions {
    RenderOptions options;
    std::set<std::string> given;    ///< keys that the file sets, in their snake_case form
    std::vector<std::string> notes; ///< on keys that nobody knows
};

std::string unknownKeyNote(const std::filesystem::path& path, const std::string& key)
{
    std::vector<std::string> keys;
    for (const OptionRow& row : optionTable()) keys.emplace_back(row.key);
    const std::string word = optionKey(key);
    const auto nearest = word == key ? nearestText(key, keys) : word;
    if (!nearest) return T("cli.unknownOption", {{"file", path.string()}, {"key", key}});
    return T("cli.unknownOptionNear", {{"file", path.string()}, {"key", key}, {"nearest", *nearest}});
}

TamloError badOptionsFile(const std::filesystem::path& path, const std::exception& error)
{
    return TamloError::io(
        T("cli.badOptionsFile", {{"file", path.string()}, {"error", ErrorWords::of(error)}}));
}

FileOptions readOptions(const std::filesystem::path& path)
{
    const std::string text = UserFiles::read(path);
    try {
        FileOptions file{decodeOptions(text), {}, {}};
        const nlohmann::json object = nlohmann::json::parse(text);
        for (const auto& [key, value] : object.items()) {
            const auto row = std::ranges::find_if(optionTable(), [&](const OptionRow& one) {
                return key == one.key || key == legacyCodingName(one.key);
            });
            if (row != optionTable().end())
                file.given.insert(row->key);
            else
                file.notes.push_back(unknownKeyNote(path, key));
        }
        checkOptions(file.options);
        return file;
    } catch (const DecodeError& error) {
        throw badOptionsFile(path, error);
    } catch (const TamloError& error) {
        throw badOptionsFile(path, error);
    }
}

/// Sets an option; `asGiven` is what the user wrote.
void applyText(RenderOptions& options, const std::string& key, const std::string& text,
               const std::string& asGiven)
{
    try {
        setOptionByWord(options, key, text);
    } catch (const TamloError& error) {
        throw UsageError(asGiven + ": " + ErrorWords::of(error));
    }
}

/// "iso=200" exposes the film for another speed than its own.
void applyIndex(RenderOptions& options, const std::string& text, const ProfileStore& store,
                const std::string& film)
{
    const std::optional<int> speed = filmSpeed(store, film);
    if (!speed) throw UsageError(T("cli.noSpeed", {{"film", film}}));
    options.ev = stopsOfIndex(text, *speed);
}

/// The option of a key as it is named on the command line.
std::string optionName(std::string key)
{
    std::replace(key.begin(), key.end(), '_', '-');
    return "--" + key;
}

/// A slot of the options, what it holds, and the type of filter that acts in it.
struct FilterSlot {
    const char* key;
    OptText RenderOptions::*id;
    std::vector<std::string> types;
};

const std::vector<FilterSlot>& filterSlots()
{
    static const std::vector<FilterSlot> slots{
        {"filter_cut", &RenderOptions::filterCut, {"cut"}},
        {"filter_diffusion", &RenderOptions::filterDiffusion, {"diffusion"}},
        {"filter_rays", &RenderOptions::filterRays, {"rays"}},
        {"filter_grad", &RenderOptions::filterGrad, {"grad"}},
        {"filter", &RenderOptions::filter, {"cut", "diffusion"}}};
    return slots;
}

/// Where the filter of an id belongs, when that is not the given slot.
std::optional<std::string> otherSlot(const FilterSlot& given, const std::string& id,
                                     const ProfileStore& store)
{
    const std::string type = store.filterProfile(id).type.value_or("");
    if (type.empty() || std::ranges::find(given.types, type) != given.types.end()) return std::nullopt;
    for (const FilterSlot& slot : filterSlots())
        if (slot.types.front() == type)
            return T("cli.wrongSlot", {{"id", id},
                                       {"kind", T("cli.filterType." + type)},
                                       {"slot", slot.key},
                                       {"given", given.key}});
    return std::nullopt;
}

/// A filter named on the command line must be there, by its id or its name, and in its own slot. One that
/// only the option file names is left to the render, which skips what it does not know: the file may come
/// from elsewhere.
void settleFilters(DevelopChoices& choices, const std::set<std::string>& named, const ProfileStore& store)
{
    for (const FilterSlot& slot : filterSlots()) {
        OptText& id = choices.render.options.*slot.id;
        if (!choices.asked.contains(slot.key) || !id || id->empty() || *id == "none") continue;
        if (named.contains(slot.key))
            id = profileNamed(store, Kind::filters, *id, choices.notes);
        else if (!store.offers(Kind::filters, *id))
            continue;
        const auto wrong = otherSlot(slot, *id, store);
        if (wrong && named.contains(slot.key)) throw UsageError(*wrong);
        if (wrong) choices.notes.push_back(*wrong);
    }
}

/// The preset of an id or a name, or of a file: one that is there, or that is named as a preset's.
PresetDocument readPreset(const std::string& idOrFile, const ProfileStore& store,
                          std::vector<std::string>& notes)
{
    const std::filesystem::path path(idOrFile);
    std::error_code ignored;
    const bool isFile = path.extension() == ".tpreset" || path.extension() == ".json" ||
                        path.has_parent_path() || std::filesystem::is_regular_file(path, ignored);
    try {
        if (!isFile) return store.presetDocument(profileNamed(store, Kind::presets, idOrFile, notes));
        return PresetDocument::validate(PresetDocument::decode(UserFiles::read(path)), store, true);
    } catch (const PresetError& error) {
        throw std::runtime_error(idOrFile + ": " + error.what());
    }
}

/// Profiles that came with a preset or a print.
struct Travelling {
    JSONValue profiles;
    bool standFirst = false; ///< before the user's own of their names; else only where there are none
};

/// A profile of the catalogue by its id or name, or one that travels. `name` becomes its id.
template <typename Profile>
Profile load(const ProfileStore& store, Kind kind, std::string& name, const Travelling& embedded,
             Profile (ProfileStore::*read)(const std::string&) const, std::vector<std::string>& notes)
{
    const JSONValue& travelling = memberOf(memberOf(embedded.profiles, rawText(kind)), name);
    const bool isThere = embedded.standFirst ? store.isBuiltin(kind, name) : store.offers(kind, name);
    if (travelling.is_object() && !isThere) {
        try {
            return ProfileJSON::decodeObject<Profile>(travelling);
        } catch (const DecodeError& error) {
            throw std::runtime_error(name + ": " + error.what());
        }
    }
    name = profileNamed(store, kind, name, notes);
    return (store.*read)(name);
}

/// Takes over what the file sets.
void applyFile(RenderOptions& options, const FileOptions& file)
{
    const JsonPath root;
    for (const std::string& key : file.given) {
        const OptionRow* row = findOption(key);
        nlohmann::json value;
        row->write(file.options, value);
        if (value.is_null())
            row->clear(options);
        else
            row->read(options, value, JsonPath{&root, key});
    }
}

/// What a preset or the recipe of a print, or nothing, lays below the other options.
struct Base {
    ProcessSettings frame{.stock = "portra400",
                          .lens = "modern_clean",
                          .paper = "",
                          .options = {},
                          .presetName = {},
                          .modified = false};
    Travelling embedded;
    std::set<std::string> given; ///< keys that it sets
};

Base readBase(DevelopChoices& choices, const RenderArguments& arguments, const ProfileStore& store)
{
    Base base;
    base.frame.options.srcLights = ProcessSettings::fresh().options.srcLights;
    if (arguments.like && arguments.preset) throw UsageError(T("cli.likeOrPreset"));
    if (arguments.like) {
        LikePrint like = readLike(arguments, store);
        choices.notes = std::move(like.notes);
        choices.fit = like.fit;
        return {std::move(like.frame), {std::move(like.embedded), true}, std::move(like.given)};
    }
    if (!arguments.preset) return base;
    const PresetDocument document = readPreset(*arguments.preset, store, choices.notes);
    base.embedded.profiles = document.embedded();
    const Preset preset = document.typed(document.blocks());
    base.frame.apply(preset, document.id());
    choices.preset = document.id();
    for (const auto& [key, value] : preset.opts.values) base.given.insert(key);
    choices.notes.insert(choices.notes.end(), document.warnings.begin(), document.warnings.end());
    return base;
}

void loadProfiles(DevelopChoices& choices, const Base& base, const RenderArguments& arguments,
                  const ProfileStore& store)
{
    RenderChoices& render = choices.render;
    const Travelling& embedded = base.embedded;
    choices.film = arguments.film.value_or(base.frame.stock);
    choices.lens = arguments.lens.value_or(base.frame.lens);
    render.film = load(store, Kind::films, choices.film, embedded, &ProfileStore::film, choices.notes);
    render.lens = load(store, Kind::lenses, choices.lens, embedded, &ProfileStore::lens, choices.notes);
    choices.paper = arguments.paper.value_or(base.frame.paper);
    if (choices.paper.empty()) choices.paper = defaultPaper(render.film);
    render.paper = load(store, Kind::papers, choices.paper, embedded, &ProfileStore::paper, choices.notes);
    // A recipe's paper is left where the user chose a film that can't be printed on it.
    const auto& films = render.paper.filmTypes;
    if (arguments.paper || !films || std::ranges::find(*films, render.film.type) != films->end()) return;
    choices.paper = defaultPaper(render.film);
    render.paper = store.paper(choices.paper);
}

/// Settings by name, in order. Returns their keys.
std::set<std::string> applySettings(DevelopChoices& choices, const RenderArguments& arguments,
                                    const ProfileStore& store)
{
    std::set<std::string> keys;
    RenderOptions& options = choices.render.options;
    const auto apply = [&](const std::string& word, const std::string& text, const std::string& asGiven) {
        if (word == kIsoWord)
            applyIndex(options, text, store, choices.film);
        else
            applyText(options, word, text, asGiven);
        keys.insert(word == kIsoWord ? "ev" : optionKey(word));
    };
    for (const std::string& setting : arguments.settings) {
        const std::size_t equals = setting.find('=');
        if (equals == std::string::npos || equals == 0)
            throw UsageError(T("cli.badSetting", {{"text", setting}}));
        apply(setting.substr(0, equals), setting.substr(equals + 1), "--set " + setting);
    }
    for (const auto& [word, text] : arguments.named) apply(word, text, optionName(word) + " " + text);
    return keys;
}

} // namespace

DevelopChoices resolveChoices(const RenderArguments& arguments, const ProfileStore& store)
{
    DevelopChoices choices;
    Base base = readBase(choices, arguments, store);
    loadProfiles(choices, base, arguments, store);

    RenderChoices& render = choices.render;
    render.options = base.frame.options;
    if (arguments.optionsFile) {
        FileOptions file = readOptions(*arguments.optionsFile);
        applyFile(render.options, file);
        choices.asked = std::move(file.given);
        choices.notes.insert(choices.notes.end(), file.notes.begin(), file.notes.end());
    }
    const std::set<std::string> named = applySettings(choices, arguments, store);
    choices.asked.insert(named.begin(), named.end());
    settleFilters(choices, named, store);
    std::set<std::string>& given = base.given;
    given.insert(choices.asked.begin(), choices.asked.end());
    render.options = optionsForFilm(std::move(render.options), render.film, given);
    choices.seedIsGiven = arguments.seed.has_value() || given.contains("seed");
    if (arguments.seed) render.options.seed = *arguments.seed;
    if (arguments.fit) choices.fit = arguments.fit;
    choices.recipe = {choices.film, choices.lens, choices.paper, {}, choices.fit, TAMLO_VERSION, {}, {}};
    choices.recipe.embedded = travellingProfiles(choices.recipe, render, store);
    addChoiceNotes(choices);
    return choices;
}

} // namespace tamlo::cli
