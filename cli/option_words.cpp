#include "cli/option_words.h"

#include "cli/usage_error.h"
#include "core/text/loc.h"
#include "platform/unicode.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>

namespace tamlo::cli {
namespace {

constexpr Synonym kSynonyms[] = {
    {"exposure", "ev"},
    {"tint", "wb_tint"},
    {"glow", "glow_mult"},
    {"developer", "dev"},
    {"expired", "expired_years"},
    {"grain", "grain_mult"},
    {"grain_size", "grain_size_mult"},
    {"halation", "halation_mult"},
    {"print_exposure", "print_ev"},
    {"contrast", "grade"},
    {"blacks", "print_black"},
    {"whites", "print_white"},
    {"rebate", "frame_style"},
};

std::optional<double> decimal(std::string_view text)
{
    double number = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (text.empty() || error != std::errc() || stop != end || !std::isfinite(number)) return std::nullopt;
    return number;
}

/// "1/3", without a sign.
std::optional<double> fraction(std::string_view text)
{
    const auto slash = text.find('/');
    if (slash == std::string_view::npos) return std::nullopt;
    const auto above = decimal(text.substr(0, slash)), below = decimal(text.substr(slash + 1));
    if (!above || !below || *above < 0 || !(*below > 0)) return std::nullopt;
    return *above / *below;
}

/// The shortest text that reads back as the number.
std::string shortest(double number)
{
    char text[64];
    return {text, std::to_chars(text, text + sizeof text, number).ptr};
}

std::string withoutSpecialSigns(std::string text)
{
    constexpr std::pair<std::string_view, std::string_view> kSigns[] = {
        {"\u2212", "-"}, {"\u2013", "-"}, {"\u00bd", " 1/2"}, {"\u2153", " 1/3"}, {"\u2154", " 2/3"}};
    for (const auto& [sign, plain] : kSigns)
        for (auto at = text.find(sign); at != std::string::npos; at = text.find(sign))
            text.replace(at, sign.size(), plain);
    return platform::trimmed(text);
}

} // namespace

std::span<const Synonym> synonyms()
{
    return kSynonyms;
}

std::vector<std::string> synonymsOf(std::string_view key)
{
    std::vector<std::string> words;
    for (const Synonym& row : kSynonyms)
        if (row.key == key) words.emplace_back(row.word);
    if (key == "ev") words.emplace_back(kIsoWord);
    return words;
}

std::string optionKey(const std::string& word)
{
    std::string key = word;
    std::ranges::replace(key, '-', '_');
    for (const OptionRow& row : optionTable())
        if (key == row.key || key == legacyCodingName(row.key)) return row.key;
    for (const Synonym& row : kSynonyms)
        if (row.word == key) return std::string(row.key);
    return word;
}

std::string plainNumber(const std::string& given)
{
    std::string text = withoutSpecialSigns(given);
    if (std::ranges::count(text, ',') == 1 && text.find('.') == std::string::npos)
        std::ranges::replace(text, ',', '.');
    std::string_view rest = text;
    const bool negative = rest.starts_with('-');
    if (negative || rest.starts_with('+')) rest.remove_prefix(1);
    while (rest.starts_with(' ')) rest.remove_prefix(1);
    std::optional<double> number = decimal(rest);
    if (number && *number < 0) return given; // a second sign
    if (!number) number = fraction(rest);
    if (const auto space = rest.find(' '); !number && space != std::string_view::npos) {
        const auto whole = decimal(rest.substr(0, space)), part = fraction(rest.substr(space + 1));
        if (whole && part && *whole >= 0) number = *whole + *part;
    }
    if (!number) return given;
    return shortest(negative ? -*number : *number);
}

void setOptionByWord(RenderOptions& options, const std::string& word, const std::string& text)
{
    const std::string key = optionKey(word);
    const OptionRow* row = findOption(key);
    const bool isNumber = row && (row->type == OptionType::number || row->type == OptionType::integer);
    setOption(options, key, isNumber ? plainNumber(text) : text);
}

double stopsOfIndex(const std::string& text, int speed)
{
    const auto index = decimal(plainNumber(text));
    constexpr double kLowest = 0.1, kHighest = 1e6;
    if (!index || *index < kLowest || *index > kHighest) throw UsageError(T("cli.badIso", {{"value", text}}));
    return std::log2(speed / *index);
}

} // namespace tamlo::cli
