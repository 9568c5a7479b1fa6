#include "core/io/recipe.h"

#include "core/image/tamlo_error.h"
#include "core/profiles/formats/decode_error.h"
#include "core/profiles/formats/json_codec.h"
#include "core/profiles/options/option_table.h"
#include "core/text/error_words.h"
#include "core/text/loc.h"
#include "platform/metadata_reader.h"
#include "platform/metadata_writer.h"
#include "platform/platform_error.h"

namespace tamlo {
namespace {

// A JPEG holds its XMP in one segment of 65,502 bytes; the rest is for the other fields.
constexpr std::size_t kLongestMarkup = 58'000;

/// Whether a text fits there with the characters that markup spells out: "&quot;" takes six bytes.
bool fitsMetadata(const std::string& text)
{
    std::size_t bytes = 0;
    for (const char c : text) bytes += c == '"' ? 6 : c == '&' ? 5 : c == '<' || c == '>' ? 4 : 1;
    return bytes <= kLongestMarkup;
}

std::string oneLine(const JSONValue& value)
{
    return value.dump(-1, ' ', false, JSONValue::error_handler_t::replace);
}

TamloError damaged(const std::string& file, const std::string& error)
{
    return TamloError::io(T("recipe.err.damaged", {{"file", file}, {"error", error}}));
}

std::string textAt(const JSONValue& object, std::string_view key)
{
    const JsonPath root;
    const JSONValue& value = memberOf(object, key);
    if (value.is_null()) throw DecodeError::missingKey(root, key, JsonCodec<std::string>::expected());
    return JsonCodec<std::string>::read(value, JsonPath{&root, key});
}

/// Errors: DecodeError; TamloError invalidArgument for a value that is out of its range.
Recipe recipeOf(const JSONValue& object)
{
    const JsonPath root;
    Recipe recipe;
    recipe.film = textAt(object, "film");
    recipe.lens = textAt(object, "lens");
    recipe.paper = textAt(object, "paper");
    recipe.version = textAt(object, "version");
    if (const JSONValue& options = memberOf(object, "options"); !options.is_null())
        recipe.options = optionsFromJson(options);
    recipe.options.seed = JsonCodec<std::int64_t>::read(memberOf(object, "seed"), JsonPath{&root, "seed"});
    checkOptions(recipe.options);
    if (memberOf(object, "fit").is_string()) recipe.fit = textAt(object, "fit");
    if (recipe.fit && *recipe.fit != "crop" && *recipe.fit != "inside")
        throw DecodeError::wrongText(JsonPath{&root, "fit"}, *recipe.fit, "\"crop\" or \"inside\"");
    if (const JSONValue& embedded = memberOf(object, "embedded"); embedded.is_object())
        recipe.embedded = embedded;
    return recipe;
}

std::string unknownOptions(const JSONValue& object)
{
    std::string list;
    const JSONValue* options = objectValue(memberOf(object, "options"));
    if (!options) return list;
    for (const auto& [key, value] : options->items())
        if (!findOption(key)) list += (list.empty() ? "" : ", ") + key;
    return list;
}

} // namespace

JSONValue offDefault(const RenderOptions& options)
{
    const RenderOptions defaults;
    JSONValue out = JSONValue::object();
    for (const OptionRow& row : optionTable()) {
        JSONValue value, usual;
        row.write(options, value);
        row.write(defaults, usual);
        if (value != usual) out[row.key] = std::move(value);
    }
    return out;
}

JSONValue recipeToJson(const Recipe& recipe)
{
    JSONValue options = offDefault(recipe.options);
    options.erase("seed");
    JSONValue object{{"format", Recipe::kFormat}, {"version", recipe.version}, {"film", recipe.film},
                     {"lens", recipe.lens},       {"paper", recipe.paper},     {"seed", recipe.options.seed},
                     {"options", options}};
    if (recipe.fit) object["fit"] = *recipe.fit;
    if (!recipe.embedded.empty()) object["embedded"] = recipe.embedded;
    return object;
}

std::optional<std::string> encodeRecipe(const Recipe& recipe)
{
    JSONValue object = recipeToJson(recipe);
    std::string text = oneLine(object);
    if (!fitsMetadata(text) && object.erase("embedded") > 0) text = oneLine(object);
    return fitsMetadata(text) ? std::optional(text) : std::nullopt;
}

Recipe decodeRecipe(const std::string& text, const std::string& file)
{
    try {
        const JSONValue object = parseJsonText(text);
        const JsonPath root;
        const std::int64_t format =
            JsonCodec<std::int64_t>::read(memberOf(object, "format"), JsonPath{&root, "format"});
        if (format > Recipe::kFormat)
            throw TamloError::io(T("recipe.err.newer", {{"file", file},
                                                        {"version", textAt(object, "version")},
                                                        {"format", format},
                                                        {"known", Recipe::kFormat}}));
        Recipe recipe = recipeOf(object);
        if (const std::string list = unknownOptions(object); !list.empty())
            recipe.warnings.push_back(T("recipe.note.unknown", {{"file", file}, {"list", list}}));
        return recipe;
    } catch (const DecodeError& error) {
        throw damaged(file, error.what());
    } catch (const TamloError& error) {
        if (error.kind() == TamloError::Kind::invalidArgument) throw damaged(file, error.text());
        throw;
    }
}

Recipe readRecipe(const std::filesystem::path& file)
{
    std::optional<std::string> text;
    try {
        text = platform::readMetadataText(file, platform::kRecipeKey);
    } catch (const platform::PlatformError& error) {
        throw TamloError::io(
            T("recipe.err.unreadable", {{"file", file.string()}, {"error", ErrorWords::of(error)}}));
    }
    if (!text) throw TamloError::io(T("recipe.err.none", {{"file", file.string()}}));
    return decodeRecipe(*text, file.string());
}

} // namespace tamlo
