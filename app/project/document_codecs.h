// How a document writes the small values that profiles do not know: dates, identities, shared values, exact
// integers, and enumerations that fall back where a newer version knew more.
#pragma once

#include "app/project/date.h"
#include "app/project/project.h"
#include "app/project/shared.h"
#include "core/profiles/formats/field_table.h"

#include <limits>

namespace tamlo {

template <>
struct EnumTexts<Mark> {
    static constexpr std::array<std::pair<Mark, std::string_view>, 3> rows{
        {{Mark::none, "none"}, {Mark::selected, "selected"}, {Mark::rejected, "rejected"}}};
};
template <>
struct EnumTexts<GridFilter> {
    static constexpr std::array<std::pair<GridFilter, std::string_view>, 3> rows{
        {{GridFilter::all, "all"},
         {GridFilter::hideRejected, "hideRejected"},
         {GridFilter::selected, "selected"}}};
};
template <>
struct EnumTexts<SortMode> {
    static constexpr std::array<std::pair<SortMode, std::string_view>, 3> rows{
        {{SortMode::name, "name"}, {SortMode::shot, "shot"}, {SortMode::manual, "manual"}}};
};
template <>
struct EnumTexts<ExportSet> {
    static constexpr std::array<std::pair<ExportSet, std::string_view>, 3> rows{
        {{ExportSet::selected, "selected"},
         {ExportSet::notRejected, "notRejected"},
         {ExportSet::all, "all"}}};
};

/// A text outside the set reads as the fallback; another kind of value is an error.
template <typename E, E fallback>
struct LenientEnumCodec {
    static std::string expected() { return "one of " + rawTextsJoined<E>(); }
    static E read(const Json& value, const JsonPath& at)
    {
        if (!value.is_string()) throw DecodeError::wrongType(at, expected(), jsonTypeName(value));
        return fromRawText<E>(value.get_ref<const std::string&>()).value_or(fallback);
    }
    static Json write(E value) { return std::string(rawText(value)); }
};
template <>
struct JsonCodec<Mark> : LenientEnumCodec<Mark, Mark::none> {};
template <>
struct JsonCodec<GridFilter> : LenientEnumCodec<GridFilter, GridFilter::all> {};
template <>
struct JsonCodec<SortMode> : LenientEnumCodec<SortMode, SortMode::name> {};
template <>
struct JsonCodec<ExportSet> : LenientEnumCodec<ExportSet, ExportSet::selected> {};

/// Integers without a sign, exact to the last bit: one that went through a float is no hash any more.
template <typename Integer>
struct UnsignedCodec {
    static std::string expected()
    {
        return "an integer from 0 to " + std::to_string(std::numeric_limits<Integer>::max());
    }
    static Integer read(const Json& value, const JsonPath& at)
    {
        // Non-negative integers are parsed as unsigned ones.
        if (!value.is_number_unsigned() || value.get<std::uint64_t>() > std::numeric_limits<Integer>::max())
            throw DecodeError::wrongType(at, expected(),
                                         value.is_number() ? value.dump() : jsonTypeName(value));
        return static_cast<Integer>(value.get<std::uint64_t>());
    }
    static Json write(Integer value) { return value; }
};
template <>
struct JsonCodec<std::uint32_t> : UnsignedCodec<std::uint32_t> {};
template <>
struct JsonCodec<std::uint64_t> : UnsignedCodec<std::uint64_t> {};

template <>
struct JsonCodec<Date> {
    static std::string expected() { return "a date in seconds since 2001"; }
    static Date read(const Json& value, const JsonPath& at) { return {JsonCodec<double>::read(value, at)}; }
    static Json write(Date value) { return value.seconds; }
};

template <>
struct JsonCodec<Uuid> {
    static std::string expected() { return "a UUID"; }
    static Uuid read(const Json& value, const JsonPath& at)
    {
        const std::string text = JsonCodec<std::string>::read(value, at);
        const std::optional<Uuid> id = Uuid::parse(text);
        if (!id) throw DecodeError::wrongType(at, expected(), "\"" + text + "\"");
        return *id;
    }
    static Json write(const Uuid& value) { return value.text(); }
};

namespace detail {

template <typename V>
struct Bare<Shared<V>> {
    using Type = V;
    static constexpr bool isOptional = true;
};

} // namespace detail

} // namespace tamlo
