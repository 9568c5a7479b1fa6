// JSONValue: a JSON document held as it is, so that what this version does not know survives a load and a
// save, with accessors that are empty when the value is of another case.
#pragma once

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <string_view>

namespace tamlo {

using JSONValue = nlohmann::json;

inline std::optional<std::string> stringValue(const JSONValue& value)
{
    return value.is_string() ? std::optional(value.get<std::string>()) : std::nullopt;
}
inline std::optional<double> doubleValue(const JSONValue& value)
{
    return value.is_number() ? std::optional(value.get<double>()) : std::nullopt;
}
inline std::optional<bool> boolValue(const JSONValue& value)
{
    return value.is_boolean() ? std::optional(value.get<bool>()) : std::nullopt;
}
/// The object itself, or null.
inline const JSONValue* objectValue(const JSONValue& value)
{
    return value.is_object() ? &value : nullptr;
}
/// The list itself, or null.
inline const JSONValue* arrayValue(const JSONValue& value)
{
    return value.is_array() ? &value : nullptr;
}
/// The value under a key of an object; null when there is none, also where the value is no object.
inline const JSONValue& memberOf(const JSONValue& value, std::string_view key)
{
    static const JSONValue kNull;
    const auto found = value.is_object() ? value.find(key) : value.end();
    return found == value.end() ? kNull : *found;
}

} // namespace tamlo
