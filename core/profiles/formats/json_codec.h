// JsonCodec<T>: how one type of value is read from JSON, written to it and named in a message. Numbers are
// read as 64-bit floats, also when written without a point; an integer may be written with a zero fraction.
// Structures are read by their field table (field_table.h).
#pragma once

#include "core/profiles/formats/decode_error.h"
#include "core/profiles/formats/option_enums.h"
#include "core/profiles/formats/profile_values.h"
#include "core/text/loc.h"

#include <nlohmann/json.hpp>

namespace tamlo {

using Json = nlohmann::json;

/// Errors: DecodeError notJson, also for blocks and lists that lie more than kDeepestJson deep in each other.
Json parseJsonText(std::string_view text);
/// No format of ours goes deeper than six; what writes and frees a value calls itself for each level.
inline constexpr int kDeepestJson = 64;
/// Pretty-printed with sorted keys, slashes as they are; bytes that are no text become U+FFFD.
std::string prettyJson(const Json& value);
/// "a number", "null", "a text": what a JSON value is, for a message.
std::string jsonTypeName(const Json& value);
/// An integer of the range of 64 bits, which a JSON number may also be written with a zero fraction.
std::optional<std::int64_t> jsonInteger(const Json& value);

/// One line of a format's reference, for documents.
struct FieldDoc {
    std::string path;
    std::string type;
    std::string unit;
    std::string meaning;
    bool required = false;
};

template <typename T>
struct JsonCodec;

template <>
struct JsonCodec<double> {
    static std::string expected() { return tamlo::T("json.number"); }
    static double read(const Json& value, const JsonPath& at)
    {
        if (!value.is_number()) throw DecodeError::wrongType(at, expected(), jsonTypeName(value));
        return value.get<double>();
    }
    static Json write(double value) { return value; }
};

template <>
struct JsonCodec<std::int64_t> {
    static std::string expected() { return tamlo::T("json.integer"); }
    static std::int64_t read(const Json& value, const JsonPath& at)
    {
        const std::optional<std::int64_t> integer = jsonInteger(value);
        if (!integer) throw DecodeError::wrongType(at, expected(), jsonTypeName(value));
        return *integer;
    }
    static Json write(std::int64_t value) { return value; }
};

template <>
struct JsonCodec<bool> {
    static std::string expected() { return tamlo::T("json.boolean"); }
    static bool read(const Json& value, const JsonPath& at)
    {
        if (!value.is_boolean()) throw DecodeError::wrongType(at, expected(), jsonTypeName(value));
        return value.get<bool>();
    }
    static Json write(bool value) { return value; }
};

template <>
struct JsonCodec<std::string> {
    static std::string expected() { return tamlo::T("json.text"); }
    static std::string read(const Json& value, const JsonPath& at)
    {
        if (!value.is_string()) throw DecodeError::wrongType(at, expected(), jsonTypeName(value));
        return value.get<std::string>();
    }
    static Json write(const std::string& value) { return value; }
};

template <>
struct JsonCodec<Vec3d> {
    static std::string expected() { return tamlo::T("json.triple"); }
    static Vec3d read(const Json& value, const JsonPath& at)
    {
        if (!value.is_array()) throw DecodeError::wrongType(at, expected(), jsonTypeName(value));
        if (value.size() != 3) throw DecodeError::wrongCount(at, 3, value.size());
        Vec3d out{};
        for (std::size_t i = 0; i < 3; ++i)
            out[i] = JsonCodec<double>::read(value[i], JsonPath{&at, {}, static_cast<long>(i)});
        return out;
    }
    static Json write(const Vec3d& value) { return Json::array({value[0], value[1], value[2]}); }
};

template <typename T>
struct JsonCodec<std::vector<T>> {
    static std::string expected() { return tamlo::T("json.listOf", {{"each", JsonCodec<T>::expected()}}); }
    static std::vector<T> read(const Json& value, const JsonPath& at)
    {
        if (!value.is_array()) throw DecodeError::wrongType(at, expected(), jsonTypeName(value));
        std::vector<T> out;
        out.reserve(value.size());
        for (std::size_t i = 0; i < value.size(); ++i)
            out.push_back(JsonCodec<T>::read(value[i], JsonPath{&at, {}, static_cast<long>(i)}));
        return out;
    }
    static Json write(const std::vector<T>& values)
    {
        Json out = Json::array();
        for (const T& value : values) out.push_back(JsonCodec<T>::write(value));
        return out;
    }
};

template <typename T>
struct JsonCodec<std::map<std::string, T>> {
    static std::string expected() { return tamlo::T("json.objectOf", {{"each", JsonCodec<T>::expected()}}); }
    static std::map<std::string, T> read(const Json& value, const JsonPath& at)
    {
        if (!value.is_object()) throw DecodeError::wrongType(at, expected(), jsonTypeName(value));
        std::map<std::string, T> out;
        for (const auto& [key, entry] : value.items())
            out.emplace(key, JsonCodec<T>::read(entry, JsonPath{&at, key}));
        return out;
    }
    static Json write(const std::map<std::string, T>& values)
    {
        Json out = Json::object();
        for (const auto& [key, value] : values) out[key] = JsonCodec<T>::write(value);
        return out;
    }
};

/// The raw texts of an enumeration, quoted and joined for a message: "a", "b" or "c".
template <typename E>
std::string rawTextsJoined()
{
    std::string out;
    const auto& rows = EnumTexts<E>::rows;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (i > 0) out += i + 1 == rows.size() ? " " + T("common.or") + " " : ", ";
        out += '"' + std::string(rows[i].second) + '"';
    }
    return out;
}

template <typename E>
requires std::is_enum_v<E>
struct JsonCodec<E> {
    static std::string expected() { return tamlo::T("json.oneOf", {{"allowed", rawTextsJoined<E>()}}); }
    static E read(const Json& value, const JsonPath& at)
    {
        const std::string text = JsonCodec<std::string>::read(value, at);
        const std::optional<E> found = fromRawText<E>(text);
        if (!found) throw DecodeError::wrongText(at, text, rawTextsJoined<E>());
        return *found;
    }
    static Json write(E value) { return std::string(rawText(value)); }
};

} // namespace tamlo
