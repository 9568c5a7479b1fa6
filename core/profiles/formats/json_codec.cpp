#include "core/profiles/formats/json_codec.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace tamlo {

Json parseJsonText(std::string_view text)
{
    const auto notTooDeep = [](int depth, Json::parse_event_t, const Json&) {
        if (depth > kDeepestJson) throw DecodeError::notJson(T("json.tooDeep", {{"depth", kDeepestJson}}));
        return true;
    };
    try {
        return Json::parse(text, notTooDeep);
    } catch (const Json::parse_error& error) {
        // The library's own words are English; the place is what helps.
        const std::string_view before = text.substr(0, std::min(error.byte, text.size()));
        const auto line = 1 + std::ranges::count(before, '\n');
        const auto column = before.size() - (before.rfind('\n') + 1);
        throw DecodeError::notJson(T("json.brokenAt", {{"line", line}, {"column", column}}));
    } catch (const Json::exception&) {
        throw DecodeError::notJson(T("json.tooLargeNumber"));
    }
}

std::string prettyJson(const Json& value)
{
    return value.dump(2, ' ', false, Json::error_handler_t::replace);
}

std::string jsonTypeName(const Json& value)
{
    switch (value.type()) {
    case Json::value_t::null:
        return "null";
    case Json::value_t::object:
        return T("json.object");
    case Json::value_t::array:
        return T("json.list");
    case Json::value_t::string:
        return T("json.text");
    case Json::value_t::boolean:
        return T("json.boolean");
    case Json::value_t::number_float:
        return T("json.fraction");
    default:
        return T("json.integer");
    }
}

std::optional<std::int64_t> jsonInteger(const Json& value)
{
    if (value.is_number_unsigned()) {
        const auto number = value.get<std::uint64_t>();
        if (number > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()))
            return std::nullopt;
        return static_cast<std::int64_t>(number);
    }
    if (value.is_number_integer()) return value.get<std::int64_t>();
    if (!value.is_number_float()) return std::nullopt;
    const double number = value.get<double>();
    constexpr double kTwo63 = 9223372036854775808.0;
    if (number != std::floor(number) || number < -kTwo63 || number >= kTwo63) return std::nullopt;
    return static_cast<std::int64_t>(number);
}

} // namespace tamlo
