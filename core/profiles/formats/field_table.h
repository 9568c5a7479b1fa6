// One table of rows (key, member, required, unit, meaning) tells a JSON format: it is decoded, encoded,
// checked for unknown keys and listed for documents by the same rows. Conventions of every format: unknown
// keys are ignored, a null counts as absent, only a required key may not be absent.
#pragma once

#include "core/profiles/formats/json_codec.h"

#include <span>

namespace tamlo {

/// A row of a format: how one key of T is read, written and described.
template <typename T>
struct Field {
    const char* key;
    const char* unit;
    const char* meaning;
    bool required;
    void (*read)(T&, const Json&, const JsonPath&);
    Json (*write)(const T&); ///< null when absent
    std::string (*expected)();
    void (*describe)(const std::string& path, std::vector<FieldDoc>&);
    void (*collectUnknown)(const Json&, const std::string& path, std::vector<std::string>&);
};

/// The rows of a structure. Each specialisation gives `static std::span<const Field<T>> rows()`, and may
/// give `afterRead(T&, const Json&[, const JsonPath&])` and `afterWrite(const T&, Json&)` for what a row
/// cannot tell.
template <typename T>
struct FieldTable;

template <typename T>
concept HasFieldTable = requires
{
    FieldTable<T>::rows();
};

template <typename T>
T readFields(const Json& value, const JsonPath& at)
{
    if (!value.is_object()) throw DecodeError::wrongType(at, tamlo::T("json.object"), jsonTypeName(value));
    T out{};
    for (const Field<T>& field : FieldTable<T>::rows()) {
        const auto found = value.find(field.key);
        if (found != value.end() && !found->is_null())
            field.read(out, *found, JsonPath{&at, field.key});
        else if (field.required)
            throw DecodeError::missingKey(at, field.key, field.expected());
    }
    if constexpr (requires { FieldTable<T>::afterRead(out, value); }) FieldTable<T>::afterRead(out, value);
    if constexpr (requires { FieldTable<T>::afterRead(out, value, at); })
        FieldTable<T>::afterRead(out, value, at);
    return out;
}

template <typename T>
Json writeFields(const T& from)
{
    Json out = Json::object();
    for (const Field<T>& field : FieldTable<T>::rows()) {
        Json value = field.write(from);
        if (!value.is_null()) out[field.key] = std::move(value);
    }
    if constexpr (requires { FieldTable<T>::afterWrite(from, out); }) FieldTable<T>::afterWrite(from, out);
    return out;
}

/// Every key of the format with its blocks' keys below it: "layers.r.gamma", "discs[].id".
template <typename T>
void describeFields(const std::string& path, std::vector<FieldDoc>& out)
{
    for (const Field<T>& field : FieldTable<T>::rows()) {
        const std::string here = path.empty() ? field.key : path + "." + field.key;
        out.push_back({here, field.expected(), field.unit, field.meaning, field.required});
        field.describe(here, out);
    }
}

/// Paths of the keys that the format does not know.
template <typename T>
void unknownFields(const Json& value, const std::string& path, std::vector<std::string>& out)
{
    if (!value.is_object()) return;
    for (const auto& [key, entry] : value.items()) {
        const std::string here = path.empty() ? key : path + "." + key;
        const Field<T>* known = nullptr;
        for (const Field<T>& field : FieldTable<T>::rows())
            if (key == field.key) known = &field;
        if (known)
            known->collectUnknown(entry, here, out);
        else
            out.push_back(here);
    }
}

template <HasFieldTable T>
struct JsonCodec<T> {
    static std::string expected() { return tamlo::T("json.object"); }
    static T read(const Json& value, const JsonPath& at) { return readFields<T>(value, at); }
    static Json write(const T& value) { return writeFields(value); }
};

namespace detail {

template <typename>
struct MemberOf;
template <typename Owner, typename Value>
struct MemberOf<Value Owner::*> {
    using OwnerType = Owner;
    using ValueType = Value;
};

template <typename V>
struct Bare {
    using Type = V;
    static constexpr bool isOptional = false;
};
template <typename V>
struct Bare<std::optional<V>> {
    using Type = V;
    static constexpr bool isOptional = true;
};

/// Walks into a structure, or into the structures of a list; other values have no keys of their own.
template <typename V>
void describeValue(const std::string& path, std::vector<FieldDoc>& out)
{
    if constexpr (HasFieldTable<V>)
        describeFields<V>(path, out);
    else if constexpr (requires { requires HasFieldTable<typename V::value_type>; })
        describeFields<typename V::value_type>(path + "[]", out);
}

template <typename V>
void unknownInValue(const Json& value, const std::string& path, std::vector<std::string>& out)
{
    if constexpr (HasFieldTable<V>) {
        unknownFields<V>(value, path, out);
    } else if constexpr (requires { requires HasFieldTable<typename V::value_type>; }) {
        if (value.is_array())
            for (const Json& entry : value) unknownFields<typename V::value_type>(entry, path + "[]", out);
    }
}

} // namespace detail

/// A row for the member: optional members are left out when empty.
template <auto Member>
constexpr auto field(const char* key, const char* unit, const char* meaning, bool required = false)
{
    using Owner = typename detail::MemberOf<decltype(Member)>::OwnerType;
    using Value = typename detail::MemberOf<decltype(Member)>::ValueType;
    using Bare = typename detail::Bare<Value>::Type;
    return Field<Owner>{key,
                        unit,
                        meaning,
                        required,
                        +[](Owner& to, const Json& json, const JsonPath& at) {
                            to.*Member = JsonCodec<Bare>::read(json, at);
                        },
                        +[](const Owner& from) -> Json {
                            if constexpr (detail::Bare<Value>::isOptional)
                                return from.*Member ? JsonCodec<Bare>::write(*(from.*Member)) : Json();
                            else
                                return JsonCodec<Bare>::write(from.*Member);
                        },
                        &JsonCodec<Bare>::expected,
                        &detail::describeValue<Bare>,
                        &detail::unknownInValue<Bare>};
}

/// A row whose key must be there.
template <auto Member>
constexpr auto requiredField(const char* key, const char* unit, const char* meaning)
{
    return field<Member>(key, unit, meaning, true);
}

} // namespace tamlo
