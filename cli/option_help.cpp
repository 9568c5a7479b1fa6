#include "cli/option_help.h"

#include "cli/columns.h"
#include "cli/messages.h"
#include "cli/option_words.h"
#include "cli/usage_error.h"
#include "core/profiles/formats/nearest_text.h"
#include "platform/console.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <ostream>
#include <sstream>

namespace tamlo::cli {
namespace {

using nlohmann::ordered_json;

/// "half long sides" to "halfLongSides".
std::string camelCase(std::string_view words)
{
    std::string out;
    bool raise = false;
    for (const char c : words) {
        if (c != ' ') out += raise && c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
        raise = c == ' ';
    }
    return out;
}

std::string typeOf(const OptionRow& row)
{
    constexpr const char* kKeys[] = {"optionType.number", "optionType.integer", "optionType.boolean",
                                     "optionType.text",   "optionType.numbers", "optionType.seeds",
                                     "optionType.crop"};
    return T(kKeys[static_cast<std::size_t>(row.type)]);
}

std::string rangeOf(const OptionRow& row)
{
    if (row.hasRange) return Fmt::significant(row.low) + " … " + Fmt::significant(row.high);
    std::string out;
    for (const std::string_view text : row.allowed) out.append(out.empty() ? "" : " | ").append(text);
    return out;
}

nlohmann::json defaultOf(const OptionRow& row)
{
    nlohmann::json value;
    row.write(RenderOptions{}, value);
    return value;
}

/// Two options follow the film, and one the picture, where nothing is said.
std::string standardOf(const OptionRow& row)
{
    const std::string_view key = row.key;
    if (key == "format" || key == "frame_size") return T("cli.optionHelp.ownFormat");
    if (key == "seed") return T("cli.optionHelp.ownSeed");
    const nlohmann::json value = defaultOf(row);
    if (value.is_null()) return "–";
    if (value.is_number_float()) return Fmt::significant(value.get<double>());
    return value.is_string() ? value.get<std::string>() : value.dump();
}

ordered_json asJson(const OptionRow& row)
{
    const OptionInWords words = inWords(row);
    constexpr const char* kTypes[] = {"number", "integer", "boolean", "text", "numbers", "seeds", "crop"};
    ordered_json entry{{"key", row.key}, {"type", kTypes[static_cast<std::size_t>(row.type)]}};
    if (row.hasRange) {
        entry["low"] = row.low;
        entry["high"] = row.high;
    }
    if (!row.allowed.empty()) entry["values"] = row.allowed;
    entry["default"] = ordered_json::parse(defaultOf(row).dump());
    if (*row.unit) entry["unit"] = row.unit;
    entry["meaning"] = words.meaning;
    if (!words.synonyms.empty()) entry["synonyms"] = words.synonyms;
    return entry;
}

/// Words folded at a width, every line but the first indented; a width of 0 folds nothing.
std::string folded(const std::string& text, std::size_t indent, std::size_t width)
{
    if (width < indent + 20) return text;
    std::string out;
    std::size_t column = indent;
    std::istringstream words(text);
    for (std::string word; words >> word; column += columnsOf(word)) {
        if (out.empty()) {
            out = word;
        } else if (column + 1 + columnsOf(word) > width) {
            out += "\n" + std::string(indent, ' ') + word;
            column = indent;
        } else {
            out += " " + word;
            ++column;
        }
    }
    return out;
}

/// A list of texts as long as a column has room for.
std::string inColumn(const std::string& range)
{
    constexpr std::size_t kWidest = 30;
    if (columnsOf(range) <= kWidest) return range;
    const auto cut = range.rfind(" | ", kWidest - 4);
    return range.substr(0, cut) + " | …";
}

} // namespace

OptionInWords inWords(const OptionRow& row)
{
    return {row.key,
            typeOf(row),
            rangeOf(row),
            standardOf(row),
            *row.unit ? T("optionUnit." + camelCase(row.unit)) : "",
            T("option." + std::string(row.key)),
            synonymsOf(row.key)};
}

void listOptions(const ListArguments& arguments, std::ostream& out)
{
    if (arguments.json) {
        ordered_json list = ordered_json::array();
        for (const OptionRow& row : optionTable()) list.push_back(asJson(row));
        out << list.dump(2) << '\n';
        return;
    }
    std::vector<std::array<std::string, 5>> rows;
    std::vector<std::string> meanings;
    for (const OptionRow& row : optionTable()) {
        if (arguments.ids) {
            out << row.key << '\n';
            continue;
        }
        const OptionInWords words = inWords(row);
        const std::string& range = words.range;
        rows.push_back({words.key, words.type, inColumn(range), words.standard, words.unit});
        meanings.push_back(words.meaning);
    }
    std::array<std::size_t, 5> widths{};
    for (const auto& row : rows)
        for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], columnsOf(row[i]) + 2);
    std::size_t indent = 0;
    for (const std::size_t width : widths) indent += width;
    const std::size_t columns = platform::outputColumns();
    // On a narrow terminal the meaning stands on lines of its own.
    constexpr std::size_t kRoomForWords = 36;
    const bool below = columns > 0 && columns < indent + kRoomForWords;
    for (std::size_t n = 0; n < rows.size(); ++n) {
        std::string line;
        for (std::size_t i = 0; i < widths.size(); ++i) line += leftAligned(rows[n][i], widths[i]);
        if (below) {
            line.erase(line.find_last_not_of(' ') + 1);
            out << line << "\n    " << folded(meanings[n], 4, columns) << '\n';
        } else {
            out << line << folded(meanings[n], indent, columns) << '\n';
        }
    }
}

void helpOnOption(const HelpArguments& arguments, std::ostream& out)
{
    const std::string key = arguments.topic == kIsoWord ? "ev" : optionKey(arguments.topic);
    const OptionRow* row = findOption(key);
    if (!row) {
        std::vector<std::string> words;
        for (const OptionRow& one : optionTable()) words.emplace_back(one.key);
        for (const Synonym& one : synonyms()) words.emplace_back(one.word);
        for (const CommandDescription& command : describeCommands()) words.push_back(command.name);
        const auto near = nearestText(arguments.topic, words);
        throw UsageError(near ? T("cli.noSuchTopicNear", {{"name", arguments.topic}, {"near", *near}})
                              : T("cli.noSuchTopic", {{"name", arguments.topic}}));
    }
    const OptionInWords words = inWords(*row);
    const std::string example = !row->allowed.empty() ? std::string(row->allowed.back())
                                : row->hasRange       ? Fmt::significant(row->high)
                                                      : "";
    const std::pair<const char*, std::string> rows[] = {
        {"cli.optionHelp.type", words.type},
        {row->hasRange ? "cli.optionHelp.range" : "cli.optionHelp.values", words.range},
        {"cli.optionHelp.unit", words.unit},
        {"cli.optionHelp.default", words.standard},
        {"cli.optionHelp.synonyms", joined(words.synonyms, T("common.and"))},
        {"cli.optionHelp.example",
         example.empty() ? "" : "tamlo develop … --set " + words.key + "=" + example}};
    out << words.key << "\n  " << folded(words.meaning, 2, platform::outputColumns()) << '\n';
    std::size_t width = 0;
    for (const auto& [title, value] : rows) width = std::max(width, columnsOf(T(title)) + 2);
    for (const auto& [title, value] : rows)
        if (!value.empty())
            out << "  " << leftAligned(T(title), width) << folded(value, width + 2, platform::outputColumns())
                << '\n';
}

} // namespace tamlo::cli
