#include "core/profiles/formats/json_codec.h"
#include "core/profiles/formats/nearest_text.h"
#include "core/profiles/options/option_table.h"
#include "core/profiles/options/seed_stream.h"

#include "core/image/tamlo_error.h"
#include "core/text/loc.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace tamlo {

namespace {

std::string inQuotes(std::string_view text)
{
    return '"' + std::string(text) + '"';
}

template <typename Range>
std::string joinedChoices(const Range& texts)
{
    std::string out;
    std::size_t i = 0;
    for (std::string_view text : texts) {
        if (i > 0) out += i + 1 == std::size(texts) ? " " + T("common.or") + " " : ", ";
        out += inQuotes(text);
        ++i;
    }
    return out;
}

TamloError notAllowed(const OptionRow& row, std::string_view value)
{
    return TamloError::invalidArgument(
        T("options.err.notAllowed", {{"key", row.key}, {"allowed", allowedText(row)}, {"value", value}}));
}

template <typename Number>
std::optional<Number> parseNumber(std::string_view text)
{
    if (text.starts_with('+')) text.remove_prefix(1);
    Number number{};
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stop != end || text.empty()) return std::nullopt;
    return number;
}

std::optional<double> parseFinite(std::string_view text)
{
    const std::optional<double> number = parseNumber<double>(text);
    return number && std::isfinite(*number) ? number : std::nullopt;
}

std::optional<bool> parseBoolean(std::string_view text)
{
    for (std::string_view yes : {"true", "yes", "on", "1"})
        if (text == yes) return true;
    for (std::string_view no : {"false", "no", "off", "0"})
        if (text == no) return false;
    return std::nullopt;
}

std::vector<std::string_view> split(std::string_view text, char separator)
{
    std::vector<std::string_view> out;
    for (;;) {
        const auto at = text.find(separator);
        out.push_back(text.substr(0, at));
        if (at == std::string_view::npos) return out;
        text.remove_prefix(at + 1);
    }
}

/// Numbers between commas, or null when one of them is not a number.
Json parseNumbers(std::string_view text)
{
    Json out = Json::array();
    for (std::string_view part : split(text, ',')) {
        const std::optional<double> number = parseFinite(part);
        if (!number) return {};
        out.push_back(*number);
    }
    return out;
}

Json parseCrop(std::string_view text)
{
    const Json numbers = parseNumbers(text);
    if (numbers.size() != 4 && numbers.size() != 5) return {};
    Json out = {{"x", numbers[0]}, {"y", numbers[1]}, {"w", numbers[2]}, {"h", numbers[3]}};
    if (numbers.size() == 5) out["angle"] = numbers[4];
    return out;
}

Json parseSeeds(std::string_view text)
{
    Json out = Json::object();
    for (std::string_view part : split(text, ',')) {
        const auto equals = part.find('=');
        if (equals == std::string_view::npos) return {};
        const std::optional<std::int64_t> count = parseNumber<std::int64_t>(part.substr(equals + 1));
        if (!count) return {};
        out[std::string(part.substr(0, equals))] = *count;
    }
    return out;
}

/// The text as the JSON value of the row's type, or null when it is none.
Json parseValue(const OptionRow& row, const std::string& text)
{
    const auto orNull = [](const auto& value) { return value ? Json(*value) : Json(); };
    switch (row.type) {
    case OptionType::number:
        return orNull(parseFinite(text));
    case OptionType::integer:
        return orNull(parseNumber<std::int64_t>(text));
    case OptionType::boolean:
        return orNull(parseBoolean(text));
    case OptionType::text:
        return text;
    case OptionType::numbers:
        return parseNumbers(text);
    case OptionType::seeds:
        return parseSeeds(text);
    case OptionType::crop:
        return parseCrop(text);
    }
    return {};
}

bool cropIsAllowed(const Json& crop)
{
    const auto side = [&](const char* key) { return crop.at(key).get<double>(); };
    const auto inUnit = [](double v) { return v >= 0 && v <= 1; };
    return inUnit(side("x")) && inUnit(side("y")) && inUnit(side("w")) && inUnit(side("h")) &&
           side("w") > 0 && side("h") > 0;
}

bool isAllowed(const OptionRow& row, const Json& value)
{
    if (row.hasRange) {
        const double number = value.get<double>();
        return number >= row.low && number <= row.high;
    }
    if (!row.allowed.empty()) {
        const std::string text = value.is_string() ? value.get<std::string>() : value.dump();
        return std::ranges::find(row.allowed, text) != row.allowed.end();
    }
    if (row.type == OptionType::crop) return cropIsAllowed(value);
    if (row.type == OptionType::numbers) return value.size() == 3;
    if (row.type == OptionType::seeds)
        return std::ranges::all_of(value.items(), [](const auto& entry) {
            return std::ranges::find(Seeds::kSeedStreamTexts, entry.key()) != Seeds::kSeedStreamTexts.end();
        });
    return true;
}

std::vector<std::string> optionKeys()
{
    std::vector<std::string> out;
    for (const OptionRow& row : optionTable()) out.emplace_back(row.key);
    return out;
}

} // namespace

std::string allowedText(const OptionRow& row)
{
    if (!row.allowed.empty()) return T("options.oneOf", {{"list", joinedChoices(row.allowed)}});
    const std::string range =
        row.hasRange
            ? T("options.range", {{"low", Fmt::significant(row.low)}, {"high", Fmt::significant(row.high)}})
            : std::string();
    switch (row.type) {
    case OptionType::number:
        return T("options.number", {{"range", range}});
    case OptionType::integer:
        return T("options.integer", {{"range", range}});
    case OptionType::boolean:
        return T("options.boolean");
    case OptionType::text:
        return T("options.text");
    case OptionType::numbers:
        return T("options.triple");
    case OptionType::seeds:
        return T("options.seeds", {{"list", joinedChoices(Seeds::kSeedStreamTexts)}});
    case OptionType::crop:
        return T("options.crop");
    }
    return {};
}

void setOption(RenderOptions& options, const std::string& key, const std::string& value)
{
    const OptionRow* row = findOption(key);
    if (!row) {
        const std::optional<std::string> nearest = nearestText(key, optionKeys());
        throw TamloError::invalidArgument(
            nearest ? T("options.err.unknownNear", {{"key", key}, {"nearest", *nearest}})
                    : T("options.err.unknown", {{"key", key}}));
    }
    if (value.empty() && row->clear) {
        row->clear(options);
        return;
    }
    const Json parsed = parseValue(*row, value);
    if (parsed.is_null() || !isAllowed(*row, parsed)) throw notAllowed(*row, value);
    const JsonPath root;
    row->read(options, parsed, JsonPath{&root, row->key});
}

void checkOptions(const RenderOptions& options)
{
    for (const OptionRow& row : optionTable()) {
        Json value;
        row.write(options, value);
        if (value.is_null()) continue;
        if (!isAllowed(row, value))
            throw notAllowed(row, value.is_string() ? value.get<std::string>() : value.dump());
    }
}

} // namespace tamlo
