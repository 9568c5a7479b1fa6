#include "core/text/loc.h"

#include "core/text/bundled_profiles.h"
#include "platform/environment.h"
#include "platform/preferences.h"

#include <nlohmann/json.hpp>

#include <array>
#include <fstream>
#include <map>
#include <mutex>
#include <sstream>

namespace tamlo {
namespace {

using Loc::Lang;
using Table = nlohmann::json; // an object

struct State {
    std::mutex lock;
    bool overrideIsRead = false;
    std::optional<Lang> chosen;
    std::map<Lang, Table> tables;
};

/// The one place of the chosen language and the tables.
State& state()
{
    static State one;
    return one;
}

std::string tableText(Lang lang)
{
    const std::string name = "strings/" + std::string(Loc::rawText(lang)) + ".json";
    if (const auto root = platform::environmentVariable("TAMLO_PROFILES")) {
        std::ifstream file(*root + "/" + name, std::ios::binary);
        std::ostringstream text;
        if (file && text << file.rdbuf()) return std::move(text).str();
    }
    const auto& carried = BundledProfiles::files();
    const auto found = carried.find(name);
    return found == carried.end() ? std::string() : std::string(found->second);
}

/// A table that can't be read is empty, so that keys show through. Call with the lock held.
const Table& table(State& held, Lang lang)
{
    const auto known = held.tables.find(lang);
    if (known != held.tables.end()) return known->second;
    Table read = Table::parse(tableText(lang), nullptr, false);
    if (!read.is_object()) read = Table::object();
    return held.tables.emplace(lang, std::move(read)).first->second;
}

std::optional<std::string> textUnder(const Table& object, std::string_view key)
{
    const auto found = object.find(key);
    if (found == object.end() || !found->is_string()) return std::nullopt;
    return found->get<std::string>();
}

} // namespace

std::string_view Loc::rawText(Lang lang)
{
    return lang == Lang::ru ? "ru" : "en";
}

std::optional<Lang> Loc::langOf(std::string_view text)
{
    if (text == "ru") return Lang::ru;
    if (text == "en") return Lang::en;
    return std::nullopt;
}

Lang Loc::current()
{
    const std::optional<Lang> chosen = override();
    return chosen ? *chosen : systemLang();
}

std::optional<Lang> Loc::override()
{
    State& one = state();
    const std::lock_guard guard(one.lock);
    if (!one.overrideIsRead) one.chosen = langOf(platform::preference(kLangKey).value_or(""));
    one.overrideIsRead = true;
    return one.chosen;
}

void Loc::setOverride(std::optional<Lang> lang)
{
    State& one = state();
    const std::lock_guard guard(one.lock);
    one.chosen = lang;
    one.overrideIsRead = true;
}

void Loc::setLang(std::string_view id)
{
    const std::optional<Lang> lang = langOf(id);
    setOverride(lang);
    platform::setPreference(kLangKey, lang ? std::string(rawText(*lang)) : "system");
}

Lang Loc::systemLang()
{
    for (std::string language : platform::preferredLanguages()) {
        language.erase(std::min(language.find('-'), language.size()));
        if (language == "ru" || language == "RU" || language == "Ru") return Lang::ru;
    }
    return Lang::en;
}

std::string Loc::string(const std::string& key)
{
    // Some texts speak of the system that the program runs on.
    static constexpr const char* kHere = ".linux";
    for (const Lang lang : {current(), Lang::ru}) {
        if (const auto text = value(key + kHere, lang)) return *text;
        if (const auto text = value(key, lang)) return *text;
    }
    return key;
}

std::string Loc::string(const std::string& key, std::int64_t count, Args args)
{
    args.emplace_back("n", count);
    std::optional<std::string> text = plural(key, count, current());
    if (!text) text = plural(key, count, Lang::ru);
    return substitute(text ? *text : string(key), args);
}

std::optional<std::string> Loc::value(const std::string& key, Lang lang)
{
    State& one = state();
    const std::lock_guard guard(one.lock);
    return textUnder(table(one, lang), key);
}

std::optional<std::string> Loc::plural(const std::string& key, std::int64_t count, Lang lang)
{
    State& one = state();
    const std::lock_guard guard(one.lock);
    const Table& all = table(one, lang);
    const auto found = all.find(key);
    if (found == all.end() || !found->is_object()) return std::nullopt;
    for (std::string_view name :
         std::array{form(count, lang), std::string_view("many"), std::string_view("one")})
        if (auto text = textUnder(*found, name)) return text;
    return std::nullopt;
}

std::string_view Loc::form(std::int64_t count, Lang lang)
{
    const std::uint64_t n =
        count < 0 ? 0 - static_cast<std::uint64_t>(count) : static_cast<std::uint64_t>(count);
    if (lang == Lang::en) return n == 1 ? "one" : "many";
    if (n % 100 >= 11 && n % 100 <= 14) return "many";
    if (n % 10 == 1) return "one";
    return n % 10 >= 2 && n % 10 <= 4 ? "few" : "many";
}

std::string Loc::substitute(std::string_view text, const Args& args)
{
    std::string out;
    while (!text.empty()) {
        const auto open = text.find('{');
        out += text.substr(0, open);
        if (open == std::string_view::npos) break;
        text.remove_prefix(open);
        const auto close = text.find('}');
        const std::string_view name = close == std::string_view::npos ? "" : text.substr(1, close - 1);
        const auto arg =
            std::find_if(args.begin(), args.end(), [&](const auto& a) { return a.first == name; });
        const bool known = close != std::string_view::npos && arg != args.end();
        out += known ? arg->second.text() : "{";
        text.remove_prefix(known ? close + 1 : 1);
    }
    return out;
}

std::vector<std::string> Loc::keys(Lang lang)
{
    State& one = state();
    const std::lock_guard guard(one.lock);
    std::vector<std::string> out;
    for (const auto& entry : table(one, lang).items()) out.push_back(entry.key());
    return out;
}

std::string Loc::pick(const std::string& ru, const std::optional<std::string>& en)
{
    return current() == Lang::en && en && !en->empty() ? *en : ru;
}

std::string T(const std::string& key, const Loc::Args& args)
{
    return Loc::substitute(Loc::string(key), args);
}

} // namespace tamlo
