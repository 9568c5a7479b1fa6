// The option table: one row for each of the 97 stored fields of RenderOptions with its key, type, range and
// allowed texts. JSON, the command line's key=value and the documents all read it: a new option is one row
// here and a text, under its key, that tells what it means. Files may hold values out of a row's range (the
// stages clamp or tell their own rule); the command line is checked against it.
#pragma once

#include "core/profiles/options/render_options.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json_fwd.hpp>

namespace tamlo {

struct JsonPath;

enum class OptionType { number, integer, boolean, text, numbers, seeds, crop };

struct OptionRow {
    const char* key;
    OptionType type;
    const char* unit;
    double low = 0; ///< closed range of a number, where hasRange
    double high = 0;
    bool hasRange = false;
    std::span<const std::string_view> allowed; ///< empty: any
    /// Decoding keeps the value it has for a text outside `allowed`, without a message.
    bool keepsOnUnknown = false;
    /// An absent value is written as null, since the default is not absence.
    bool writesNull = false;
    /// The default is absence: a document that was made before the option stays as it is, byte for byte.
    bool omitsDefault = false;

    void (*read)(RenderOptions&, const nlohmann::json&, const JsonPath&);
    void (*write)(const RenderOptions&, nlohmann::json&); ///< null when absent
    void (*clear)(RenderOptions&);                        ///< makes it absent; null where it never is
};

/// The rows in the order of RenderOptions.
std::span<const OptionRow> optionTable();
/// The row of a key, or null.
const OptionRow* findOption(std::string_view key);

/// What a row takes, in words: "a number from 0 to 5", "one of "film", "asshot" or "custom"".
std::string allowedText(const OptionRow& row);

/// The older camelCase spelling of a key: "print_cm" gives "printCm". A part that starts with a digit has no
/// letter to raise and keeps its underscore: "format_120_cm" gives "format_120Cm".
std::string legacyCodingName(std::string_view key);

/// Options of a JSON object; any subset of keys is valid. The snake_case key wins over the older spelling,
/// an absent key keeps its default. An explicit null for `format` means the film's own format.
/// Errors: DecodeError naming the key and what was expected.
RenderOptions decodeOptions(std::string_view jsonText);
RenderOptions optionsFromJson(const nlohmann::json& object);
/// The same for options within a document: `at` is their place in it, for messages.
RenderOptions optionsFromJson(const nlohmann::json& object, const JsonPath& at);
/// Every stored key; a value that is absent is left out (a `format` that is absent is null).
nlohmann::json optionsToJson(const RenderOptions& options);
/// The same, pretty-printed with sorted keys.
std::string encodeOptions(const RenderOptions& options);

/// Sets one option from the text of a command line, after checking type, range and allowed texts. An empty
/// text makes an optional value absent. Lists are "0.1,0.2,0.3", a crop is "x,y,w,h" or "x,y,w,h,angle",
/// re-rolls are "film=1,frame=2".
/// Errors: TamloError invalidArgument: one sentence that names what is allowed, or the nearest known key.
void setOption(RenderOptions& options, const std::string& key, const std::string& value);

/// Checks every value against its row.
/// Errors: TamloError invalidArgument with the sentence of setOption for the first that is not allowed.
void checkOptions(const RenderOptions& options);

} // namespace tamlo
