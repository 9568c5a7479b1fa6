#include "core/profiles/formats/json_codec.h"
#include "core/profiles/options/option_table.h"

#include <algorithm>

namespace tamlo {

namespace {

/// The value under the key, or under its older spelling, or null.
const Json& lookUp(const Json& object, const OptionRow& row)
{
    static const Json kNothing;
    const auto found = object.find(row.key);
    if (found != object.end() && (row.writesNull || !found->is_null())) return *found;
    const auto older = object.find(legacyCodingName(row.key));
    return older == object.end() ? kNothing : *older;
}

bool isKnownText(const OptionRow& row, const Json& value)
{
    return std::ranges::find(row.allowed, value.get<std::string>()) != row.allowed.end();
}

} // namespace

std::string legacyCodingName(std::string_view key)
{
    std::string out;
    bool raise = false;
    for (std::size_t i = 0; i < key.size(); ++i) {
        const char c = key[i];
        if (c == '_' && i + 1 < key.size() && (key[i + 1] < '0' || key[i + 1] > '9')) {
            raise = true;
            continue;
        }
        out += raise && c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
        raise = false;
    }
    return out;
}

RenderOptions optionsFromJson(const Json& object)
{
    return optionsFromJson(object, JsonPath{});
}

RenderOptions optionsFromJson(const Json& object, const JsonPath& at)
{
    if (!object.is_object()) throw DecodeError::wrongType(at, tamlo::T("json.object"), jsonTypeName(object));
    RenderOptions out;
    for (const OptionRow& row : optionTable()) {
        const Json& value = lookUp(object, row);
        if (value.is_null()) {
            if (row.writesNull && object.contains(row.key)) row.clear(out);
            continue;
        }
        if (row.keepsOnUnknown && value.is_string() && !isKnownText(row, value)) continue;
        row.read(out, value, JsonPath{&at, row.key});
    }
    return out;
}

RenderOptions decodeOptions(std::string_view jsonText)
{
    return optionsFromJson(parseJsonText(jsonText));
}

Json optionsToJson(const RenderOptions& options)
{
    const RenderOptions defaults;
    Json out = Json::object();
    for (const OptionRow& row : optionTable()) {
        Json value, usual;
        row.write(options, value);
        if (row.omitsDefault) row.write(defaults, usual);
        if (row.omitsDefault && value == usual) continue;
        if (!value.is_null() || row.writesNull) out[row.key] = std::move(value);
    }
    return out;
}

std::string encodeOptions(const RenderOptions& options)
{
    return prettyJson(optionsToJson(options));
}

} // namespace tamlo
