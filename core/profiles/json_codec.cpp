#include "core/profiles/json_codec.h"

#include <cmath>
#include <limits>

namespace tamlo {

Json parseJsonText(std::string_view text)
{
    const auto notTooDeep = [](int depth, Json::parse_event_t, const Json&) {
        if (depth > kDeepestJson)
            throw DecodeError::notJson("blocks lie more than " + std::to_string(kDeepestJson) + " deep");
        return true;
    };
    try {
        return Json::parse(text, notTooDeep);
    } catch (const Json::exception& error) {
        // The library puts its own name and number of the error in brackets before the text.
        const std::string_view what = error.what();
        const auto bracket = what.find("] ");
        throw DecodeError::notJson(bracket == std::string_view::npos ? what : what.substr(bracket + 2));
    }
}

std::string prettyJson(const Json& value)
{
    return value.dump(2, ' ', false, Json::error_handler_t::replace);
}

std::string_view jsonTypeName(const Json& value)
{
    switch (value.type()) {
    case Json::value_t::null:
        return "null";
    case Json::value_t::object:
        return "an object";
    case Json::value_t::array:
        return "a list";
    case Json::value_t::string:
        return "a text";
    case Json::value_t::boolean:
        return "true or false";
    case Json::value_t::number_float:
        return "a number with a fraction";
    default:
        return "an integer";
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
