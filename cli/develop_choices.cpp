#include "cli/develop_choices.h"

#include "cli/catalogue.h"
#include "cli/usage_error.h"
#include "core/image/tamlo_error.h"
#include "core/profiles/decode_error.h"
#include "core/profiles/film_format.h"
#include "core/profiles/option_table.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <fstream>
#include <set>
#include <sstream>
#include <utility>

namespace tamlo::cli {
namespace {

using Kind = ProfileStore::Kind;

std::string readText(const std::filesystem::path& path)
{
    std::error_code ignored;
    if (std::filesystem::is_directory(path, ignored))
        throw TamloError::io(path.string() + " is a folder, not a file of options");
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    if (!file || !(text << file.rdbuf())) throw TamloError::io("cannot read the options in " + path.string());
    return text.str();
}

struct FileOptions {
    RenderOptions options;
    std::set<std::string> given; ///< keys that the file sets, in their snake_case form
};

FileOptions readOptions(const std::filesystem::path& path)
{
    const std::string text = readText(path);
    try {
        FileOptions file{decodeOptions(text), {}};
        const nlohmann::json object = nlohmann::json::parse(text);
        for (const OptionRow& row : optionTable())
            if (object.contains(row.key) || object.contains(legacyCodingName(row.key)))
                file.given.insert(row.key);
        checkOptions(file.options);
        return file;
    } catch (const DecodeError& error) {
        throw TamloError::io("the options in " + path.string() + " can't be used: " + error.what());
    } catch (const TamloError& error) {
        throw TamloError::io("the options in " + path.string() + " can't be used: " + error.what());
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
        throw UsageError("--set takes key=value, not '" + setting + "'");
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

} // namespace

DevelopChoices resolveChoices(const RenderArguments& arguments, const ProfileStore& store)
{
    requireProfile(store, Kind::films, arguments.film);
    requireProfile(store, Kind::lenses, arguments.lens);
    if (arguments.paper) requireProfile(store, Kind::papers, *arguments.paper);

    DevelopChoices choices;
    RenderChoices& render = choices.render;
    render.film = store.film(arguments.film);
    render.lens = store.lens(arguments.lens);
    render.paper = store.paper(arguments.paper.value_or(defaultPaper(render.film)));

    FileOptions file;
    if (arguments.optionsFile) file = readOptions(*arguments.optionsFile);
    render.options = file.options;
    std::set<std::string> named;
    for (const std::string& setting : arguments.settings) named.insert(applySetting(render.options, setting));
    for (const auto& [key, text] : arguments.named) {
        applyText(render.options, key, text, optionName(key) + " " + text);
        named.insert(key);
    }
    requireFilters(render.options, named, store);
    file.given.merge(named);
    render.options = optionsForFilm(std::move(render.options), render.film, file.given);
    choices.seedIsGiven = arguments.seed.has_value() || file.given.contains("seed");
    if (arguments.seed) render.options.seed = *arguments.seed;
    return choices;
}

} // namespace tamlo::cli
