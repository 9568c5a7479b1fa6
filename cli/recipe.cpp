#include "cli/recipe.h"

#include "cli/columns.h"
#include "cli/messages.h"
#include "core/image/tamlo_error.h"
#include "core/profiles/catalogue/profile_store.h"
#include "core/profiles/catalogue/profile_validator.h"
#include "core/profiles/formats/decode_error.h"
#include "core/profiles/formats/json_codec.h"
#include "core/profiles/formats/profile_json.h"
#include "core/profiles/options/film_format.h"
#include "core/profiles/options/option_table.h"
#include "core/profiles/presets/preset_schema.h"

#include <algorithm>
#include <ostream>
#include <utility>

namespace tamlo::cli {
namespace {

using Kind = ProfileKind;

void checkEmbedded(const Recipe& recipe, const std::string& file, const ProfileStore& store)
{
    for (const Kind kind : {Kind::films, Kind::lenses, Kind::papers}) {
        const JSONValue* profiles = objectValue(memberOf(recipe.embedded, rawText(kind)));
        if (!profiles) continue;
        for (const auto& [id, profile] : profiles->items()) {
            try {
                ProfileValidator::validate(kind, profile.dump(), store);
            } catch (const ProfileValidator::Failure& failure) {
                const std::string error = id + ": " + failure.messages().front();
                throw TamloError::io(T("recipe.err.damaged", {{"file", file}, {"error", error}}));
            }
        }
    }
}

/// Whether format and frame size are those that the recipe's film brings of itself.
bool hasFilmsOwnFormat(const Recipe& recipe, const ProfileStore& store)
{
    const JSONValue& embedded = memberOf(memberOf(recipe.embedded, rawText(Kind::films)), recipe.film);
    if (!embedded.is_object() && !store.offers(Kind::films, recipe.film)) return false;
    const FilmProfile film =
        embedded.is_object() ? ProfileJSON::decodeObject<FilmProfile>(embedded) : store.film(recipe.film);
    const RenderOptions own = optionsForFilm(recipe.options, film, {});
    return own.format == recipe.options.format && own.frameSize == recipe.options.frameSize;
}

bool isGiven(const RenderArguments& arguments, const std::string& key)
{
    return arguments.named.contains(key) ||
           std::ranges::any_of(arguments.settings,
                               [&](const std::string& text) { return text.starts_with(key + "="); });
}

/// Filters do not travel: the print is only the same where each of them is.
void requireFilters(const RenderArguments& arguments, const Recipe& recipe, const ProfileStore& store)
{
    const JSONValue options = offDefault(recipe.options);
    for (const PresetSchema::Reference& row : PresetSchema::references()) {
        const std::string id = stringValue(memberOf(options, row.key)).value_or("");
        if (!row.inOpts || id.empty() || id == "none" || isGiven(arguments, std::string(row.key))) continue;
        if (!store.offers(row.kind, id))
            throw TamloError::io(T("cli.likeNoFilter", {{"file", arguments.like->string()}, {"id", id}}));
    }
}

/// A crop and a turn belong to one photograph; whoever repeats them on another hears of it.
void noteFrameKeys(const RenderArguments& arguments, const Recipe& recipe, std::vector<std::string>& notes)
{
    std::string list;
    const JSONValue options = offDefault(recipe.options);
    for (const auto& [key, value] : options.items())
        if (PresetSchema::isFrameOnly(key) && !isGiven(arguments, key))
            list += (list.empty() ? "" : ", ") + key;
    if (!list.empty())
        notes.push_back(T("cli.likeFrameKeys", {{"file", arguments.like->string()}, {"list", list}}));
}

/// The value as --set takes it.
std::string settingText(const JSONValue& value)
{
    if (value.is_string()) return value.get<std::string>();
    if (value.is_array() || value.contains("w")) { // numbers, or a crop in the order of its fields
        std::string text;
        const auto add = [&](const JSONValue& part) { text += (text.empty() ? "" : ",") + part.dump(); };
        if (value.is_array())
            for (const JSONValue& part : value) add(part);
        else
            for (const char* side : {"x", "y", "w", "h", "angle"})
                if (value.contains(side)) add(value[side]);
        return text;
    }
    std::string text = value.dump();
    if (text.ends_with(".0")) text.resize(text.size() - 2);
    if (!value.is_object()) return text;
    text.clear();
    for (const auto& [stream, count] : value.items())
        text += (text.empty() ? "" : ",") + stream + "=" + count.dump();
    return text;
}

/// As one word of a shell.
std::string quoted(const std::string& word)
{
    constexpr std::string_view kPlain = "_-.,:=+/@%";
    if (std::ranges::all_of(word, [&](unsigned char c) {
            return std::isalnum(c) || kPlain.find(static_cast<char>(c)) != std::string_view::npos;
        }))
        return word;
    std::string out = "'";
    for (const char c : word) out += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return out + "'";
}

std::string commandLine(const Recipe& recipe, const JSONValue& options)
{
    std::string line = "tamlo develop " + T("cli.recipe.photo") + " --film " + quoted(recipe.film) +
                       " --lens " + quoted(recipe.lens) + " --paper " + quoted(recipe.paper) + " --seed " +
                       std::to_string(recipe.options.seed);
    if (recipe.fit) line += " --fit " + *recipe.fit;
    std::string settings;
    for (const auto& [key, value] : options.items()) settings += " " + quoted(key + "=" + settingText(value));
    return settings.empty() ? line : line + " --set" + settings;
}

/// "Kodak Tri-X 400 (trix400)", or the id alone where the catalogue does not have it.
template <typename Profile>
std::string titled(const ProfileStore& store, Kind kind, const std::string& id,
                   Profile (ProfileStore::*load)(const std::string&) const)
{
    if (!store.offers(kind, id)) return id;
    const Profile profile = (store.*load)(id);
    const std::string name = Loc::pick(profile.name.value_or(id), profile.nameEn);
    return name == id ? id : name + " (" + id + ")";
}

} // namespace

LikePrint readLike(const RenderArguments& arguments, const ProfileStore& store)
{
    const std::string file = arguments.like->string();
    const Recipe recipe = readRecipe(*arguments.like);
    checkEmbedded(recipe, file, store);
    requireFilters(arguments, recipe, store);
    LikePrint like{{recipe.film, recipe.lens, recipe.paper, recipe.options, {}, false},
                   recipe.fit,
                   {},
                   recipe.embedded,
                   recipe.warnings};
    for (const OptionRow& row : optionTable()) like.given.insert(row.key);
    if (arguments.film && *arguments.film != recipe.film && hasFilmsOwnFormat(recipe, store)) {
        like.given.erase("format");
        like.given.erase("frame_size");
    }
    if (recipe.version != TAMLO_VERSION)
        like.notes.push_back(
            T("cli.likeVersion", {{"file", file}, {"version", recipe.version}, {"own", TAMLO_VERSION}}));
    noteFrameKeys(arguments, recipe, like.notes);
    return like;
}

JSONValue travellingProfiles(const Recipe& recipe, const RenderChoices& render, const ProfileStore& store)
{
    JSONValue out = JSONValue::object();
    const auto add = [&](Kind kind, const std::string& id, const auto& profile) {
        if (!store.isBuiltin(kind, id))
            out[std::string(rawText(kind))][id] = parseJsonText(ProfileJSON::encode(profile));
    };
    add(Kind::films, recipe.film, render.film);
    add(Kind::lenses, recipe.lens, render.lens);
    add(Kind::papers, recipe.paper, render.paper);
    return out;
}

void showRecipe(const ShowArguments& arguments, const ProfileStore& store, std::ostream& out)
{
    const Recipe recipe = readRecipe(arguments.id);
    for (const std::string& note : recipe.warnings) tellNote(note);
    if (arguments.json) {
        out << prettyJson(recipeToJson(recipe)) << '\n';
        return;
    }
    JSONValue options = offDefault(recipe.options);
    options.erase("seed");
    std::vector<std::pair<std::string, std::string>> rows{
        {T("cli.recipe.film"), titled(store, Kind::films, recipe.film, &ProfileStore::film)},
        {T("cli.recipe.lens"), titled(store, Kind::lenses, recipe.lens, &ProfileStore::lens)},
        {T("cli.recipe.paper"), titled(store, Kind::papers, recipe.paper, &ProfileStore::paper)},
        {T("cli.recipe.seed"), std::to_string(recipe.options.seed)},
        {T("cli.recipe.version"), recipe.version}};
    for (const auto& [key, value] : options.items()) rows.emplace_back(key, settingText(value));
    std::size_t width = 0;
    for (const auto& [name, value] : rows) width = std::max(width, columnsOf(name));
    for (const auto& [name, value] : rows) out << leftAligned(name, width + 2) << value << '\n';
    out << '\n' << commandLine(recipe, options) << '\n';
}

} // namespace tamlo::cli
