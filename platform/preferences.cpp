#include "platform/preferences.h"

#include "platform/atomic_file.h"
#include "platform/file_lock.h"
#include "platform/platform_error.h"
#include "platform/user_folder.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <fstream>
#include <map>

#include <nlohmann/json.hpp>

namespace tamlo::platform {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;
using Values = std::map<std::string, std::string>;

fs::path preferencesFile()
{
    return userFolder() / "preferences";
}

/// Nothing when there is a file that can't be read: it must not be written over.
std::optional<Values> readAll()
{
    std::error_code problem;
    const bool isThere = fs::exists(preferencesFile(), problem);
    if (problem) return std::nullopt;
    Values all;
    if (!isThere) return all;
    std::ifstream file(preferencesFile());
    if (!file) return std::nullopt;
    for (std::string line; std::getline(file, line);) {
        const auto equals = line.find('=');
        if (equals != std::string::npos) all[line.substr(0, equals)] = line.substr(equals + 1);
    }
    return file.bad() ? std::nullopt : std::optional(all);
}

} // namespace

std::optional<std::string> preference(const std::string& key)
{
    const Values all = readAll().value_or(Values());
    const auto found = all.find(key);
    return found == all.end() ? std::nullopt : std::optional(found->second);
}

void setPreference(const std::string& key, const std::optional<std::string>& value)
{
    const fs::path path = preferencesFile();
    std::error_code problem;
    fs::create_directories(path.parent_path(), problem);
    if (problem) throw PlatformError(problem.message());
    const FileLock lock = FileLock::take(path.string());
    std::optional<Values> all = readAll();
    if (!all) throw PlatformError("the preferences can't be read");
    all->erase(key);
    if (value) {
        std::string line = *value;
        std::replace(line.begin(), line.end(), '\n', ' ');
        (*all)[key] = line;
    }
    std::string text;
    for (const auto& [name, content] : *all) text += name + "=" + content + "\n";
    writeWhole(path.string(), text);
}

std::optional<bool> Preferences::flag(const std::string& key) const
{
    const std::optional<std::string> value = text(key);
    if (value == "true") return true;
    return value == "false" ? std::optional(false) : std::nullopt;
}

void Preferences::setFlag(const std::string& key, bool value)
{
    setText(key, value ? "true" : "false");
}

std::optional<double> Preferences::number(const std::string& key) const
{
    const std::string value = text(key).value_or("");
    double number = 0.0;
    const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), number);
    const bool isWhole = error == std::errc() && end == value.data() + value.size();
    return isWhole && std::isfinite(number) ? std::optional(number) : std::nullopt;
}

void Preferences::setNumber(const std::string& key, double value)
{
    std::array<char, 64> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    setText(key, std::string(digits.data(), end));
}

std::optional<std::vector<std::string>> Preferences::list(const std::string& key) const
{
    const Json json = Json::parse(text(key).value_or(""), nullptr, false);
    if (!json.is_array()) return std::nullopt;
    std::vector<std::string> values;
    for (const Json& value : json) {
        if (!value.is_string()) return std::nullopt;
        values.push_back(value.get<std::string>());
    }
    return values;
}

void Preferences::setList(const std::string& key, const std::vector<std::string>& values)
{
    // Compact and in ASCII: one line, whatever the texts hold.
    setText(key, Json(values).dump(-1, ' ', true, Json::error_handler_t::replace));
}

} // namespace tamlo::platform
