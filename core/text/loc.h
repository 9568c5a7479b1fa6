// Loc: every text that the user reads, by key, in two languages. The tables are flat JSON objects of keys and
// texts, "strings/ru.json" and "strings/en.json" of what the program carries. Russian is the base: a key that
// English lacks shows its Russian text, and one that both lack shows itself. Any thread may ask; one lock
// guards the chosen language and the tables, which are read on first use.
#pragma once

#include "core/text/fmt.h"

#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tamlo {

namespace Loc {

enum class Lang { ru, en };

/// Key of the preference: "ru", "en", or "system".
inline constexpr const char* kLangKey = "lang";

/// What stands in the place of {name}: a text, an integer in decimal, a fraction with at most two digits.
class Arg {
public:
    Arg(std::string text) : text_(std::move(text)) {}
    Arg(std::string_view text) : text_(text) {}
    Arg(const char* text) : text_(text) {}
    Arg(double value) : text_(Fmt::number(value, 2)) {}
    Arg(std::integral auto value) : text_(std::to_string(value)) {}
    const std::string& text() const { return text_; }

private:
    std::string text_;
};
using Args = std::vector<std::pair<std::string, Arg>>;

/// Raw text of a language: "ru", "en"; and the language of a raw text.
std::string_view rawText(Lang lang);
std::optional<Lang> langOf(std::string_view text);

/// The language in force: the chosen one, else the system's.
Lang current();
/// The chosen language, at first the stored preference; absent means the system's.
std::optional<Lang> override();
/// Chooses a language for this run.
void setOverride(std::optional<Lang> lang);
/// Chooses "ru" or "en", or the system's with anything else, and stores the choice.
/// Errors: PlatformError when it can't be stored; the language has changed all the same.
void setLang(std::string_view id);
/// Russian when the user's languages hold it, else English.
Lang systemLang();

/// The text of a key.
std::string string(const std::string& key);
/// The text for a count, which is also the placeholder {n}.
std::string string(const std::string& key, std::int64_t count, Args args = {});
/// A key's text in one table.
std::optional<std::string> value(const std::string& key, Lang lang);
/// A plural text in one table, its placeholders unfilled.
std::optional<std::string> plural(const std::string& key, std::int64_t count, Lang lang);
/// Name of the plural form that a count takes: "one", "few", "many".
std::string_view form(std::int64_t count, Lang lang);
/// Fills the placeholders in one pass; those without an entry stay.
std::string substitute(std::string_view text, const Args& args);
/// All keys of a table, sorted.
std::vector<std::string> keys(Lang lang);
/// The one of two names that suits the language in force.
std::string pick(const std::string& ru, const std::optional<std::string>& en);

} // namespace Loc

/// The text of a key with its placeholders filled.
std::string T(const std::string& key, const Loc::Args& args = {});

} // namespace tamlo
