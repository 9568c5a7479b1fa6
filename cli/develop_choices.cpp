#include "cli/develop_choices.h"

#include "cli/catalogue.h"
#include "cli/usage_error.h"
#include "core/image/tamlo_error.h"
#include "core/profiles/decode_error.h"
#include "core/profiles/film_format.h"
#include "core/profiles/option_table.h"
#include "core/profiles/process_settings.h"
#include "core/profiles/profile_json.h"
#include "core/profiles/user_files.h"
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
    std::set<std::string> given; ///< keys that the file sets, in their snake_case form
};

TamloError badOptionsFile(const std::filesystem::path& path, const std::exception& error)
{
    return TamloError::io(T("cli.badOptionsFile", {{"file", path.string()}, {"error", error.what()}}));
}

FileOptions readOptions(const std::filesystem::path& path)
{
    const std::string text = UserFiles::read(path);
    try {
        FileOptions file{decodeOptions(text), {}};
        const nlohmann::json object = nlohmann::json::parse(text);
        for (const OptionRow& row : optionTable())
            if (object.contains(row.key) || object.contains(legacyCodingName(row.key)))
                file.given.insert(row.key);
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
        setOption(options, key, text);
    } catch (const TamloError& error) {
        throw UsageError(asGiven + ": " + error.what());
    }
}

/// Splits "key=value" and sets it. Returns the key.
std::string applySetting(RenderOptions& options, const std::string& setting)
{
    const std::size_t equals = setting.find('=');
    if (equals == std::string::npos || equals == 0)
        throw UsageError(T("cli.badSetting", {{"text", setting}}));
    const std::string key = setting.substr(0, equals);
    applyText(options, key, setting.substr(equals + 1), "--set " + setting);
    return key;
}

/// The option of a key as it is named on the command line.
std::string optionName(std::string key)
{
    std::replace(key.begin(), key.end(), '_', '-');
    return "--" + key;
}

/// A filter named on the command line must be there. One that only the option file names is left to the
/// render, which skips what it does not know: the file may come from elsewhere.
void requireFilters(const RenderOptions& options, const std::set<std::string>& named,
                    const ProfileStore& store)
{
    const std::pair<const char*, const OptText&> slots[] = {{"filter", options.filter},
                                                            {"filter_cut", options.filterCut},
                                                            {"filter_diffusion", options.filterDiffusion},
                                                            {"filter_rays", options.filterRays},
                                                            {"filter_grad", options.filterGrad}};
    for (const auto& [key, id] : slots)
        if (named.contains(key) && id && !id->empty()) requireProfile(store, Kind::filters, *id);
}

std::string defaultPaper(const FilmProfile& film)
{
    return film.type == "color" ? "color_ra4" : ProfileStore::defaultPaperName(film);
}

/// The preset of an id, or of a file: one that is there, or that is named as a preset's.
PresetDocument readPreset(const std::string& idOrFile, const ProfileStore& store)
{
    const std::filesystem::path path(idOrFile);
    std::error_code ignored;
    const bool isFile = path.extension() == ".tpreset" || path.extension() == ".json" ||
                        path.has_parent_path() || std::filesystem::is_regular_file(path, ignored);
    if (!isFile) requireProfile(store, Kind::presets, idOrFile);
    try {
        if (!isFile) return store.presetDocument(idOrFile);
        return PresetDocument::validate(PresetDocument::decode(UserFiles::read(path)), store, true);
    } catch (const PresetError& error) {
        throw std::runtime_error(idOrFile + ": " + error.what());
    }
}

/// A profile of the catalogue, or one that travels in the preset. A name that the user typed must be there.
template <typename Profile>
Profile profileNamed(const ProfileStore& store, Kind kind, const std::string& name,
                     const PresetDocument& preset, Profile (ProfileStore::*load)(const std::string&) const)
{
    const JSONValue& travelling = memberOf(memberOf(preset.embedded(), rawText(kind)), name);
    if (travelling.is_object() && !store.offers(kind, name)) {
        try {
            return ProfileJSON::decodeObject<Profile>(travelling);
        } catch (const DecodeError& error) {
            throw std::runtime_error(name + ": " + error.what());
        }
    }
    requireProfile(store, kind, name);
    return (store.*load)(name);
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

} // namespace

DevelopChoices resolveChoices(const RenderArguments& arguments, const ProfileStore& store)
{
    DevelopChoices choices;
    ProcessSettings frame{.stock = "portra400",
                          .lens = "modern_clean",
                          .paper = "",
                          .options = {},
                          .presetName = {},
                          .modified = false};
    std::set<std::string> given;
    PresetDocument document;
    if (arguments.preset) {
        document = readPreset(*arguments.preset, store);
        const Preset preset = document.typed(document.blocks());
        frame.apply(preset, document.id());
        for (const auto& [key, value] : preset.opts.values) given.insert(key);
        choices.notes = document.warnings;
    }
    frame.stock = arguments.film.value_or(frame.stock);
    frame.lens = arguments.lens.value_or(frame.lens);

    RenderChoices& render = choices.render;
    render.film = profileNamed(store, Kind::films, frame.stock, document, &ProfileStore::film);
    render.lens = profileNamed(store, Kind::lenses, frame.lens, document, &ProfileStore::lens);
    std::string paper = arguments.paper.value_or(frame.paper);
    if (paper.empty()) paper = defaultPaper(render.film);
    render.paper = profileNamed(store, Kind::papers, paper, document, &ProfileStore::paper);
    // A recipe's paper is left where the user chose a film that can't be printed on it.
    const auto& films = render.paper.filmTypes;
    if (!arguments.paper && films && std::ranges::find(*films, render.film.type) == films->end())
        render.paper = store.paper(defaultPaper(render.film));

    render.options = frame.options;
    if (arguments.optionsFile) {
        const FileOptions file = readOptions(*arguments.optionsFile);
        applyFile(render.options, file);
        given.insert(file.given.begin(), file.given.end());
    }
    std::set<std::string> named;
    for (const std::string& setting : arguments.settings) named.insert(applySetting(render.options, setting));
    for (const auto& [key, text] : arguments.named) {
        applyText(render.options, key, text, optionName(key) + " " + text);
        named.insert(key);
    }
    requireFilters(render.options, named, store);
    given.merge(named);
    render.options = optionsForFilm(std::move(render.options), render.film, given);
    choices.seedIsGiven = arguments.seed.has_value() || given.contains("seed");
    if (arguments.seed) render.options.seed = *arguments.seed;
    return choices;
}

} // namespace tamlo::cli
