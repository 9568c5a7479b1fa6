#include "platform/environment.h"

#include <algorithm>
#include <cstdlib>

namespace tamlo::platform {
namespace {

/// "ru_RU.UTF-8" as "ru-RU".
std::string languageOf(std::string locale)
{
    locale.erase(std::min(locale.find_first_of(".@"), locale.size()));
    std::replace(locale.begin(), locale.end(), '_', '-');
    return locale;
}

/// The locale of messages: the first variable that is set and not empty tells.
std::string messageLocale()
{
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"})
        if (const auto value = environmentVariable(name); value && !value->empty()) return *value;
    return "C";
}

} // namespace

std::optional<std::string> environmentVariable(const std::string& name)
{
    const char* value = std::getenv(name.c_str());
    if (!value) return std::nullopt;
    return std::string(value);
}

std::vector<std::string> preferredLanguages()
{
    const std::string locale = languageOf(messageLocale());
    if (locale == "C" || locale == "POSIX") return {}; // such a locale overrules LANGUAGE
    std::vector<std::string> out;
    std::string list = environmentVariable("LANGUAGE").value_or("");
    while (!list.empty()) {
        const std::string one = languageOf(list.substr(0, list.find(':')));
        if (!one.empty()) out.push_back(one);
        const auto colon = list.find(':');
        list = colon == std::string::npos ? "" : list.substr(colon + 1);
    }
    if (out.empty()) out.push_back(locale);
    return out;
}

} // namespace tamlo::platform
